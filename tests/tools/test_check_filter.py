"""Which codes quill check reports, what it explains, and what it takes misspelt words for."""

import os
import unittest

from diagnostics_page import read_entries
from quill_runner import QuillTest

# Gives Q101, Q303 and Q408.
TRACK = (b"WEBVTT\n\n00:01.000 --> 00:02.000 align:center\nHello & you\n\n"
         b"00:03 --> 00:04.000\nHello\n\n")
ALL = ["Q101", "Q303", "Q408"]

# Arguments, and the codes that are left.
FILTERS = (
    ((), ALL),
    (("--select", "Q1"), ["Q101"]),
    (("--select", "Q1,Q4"), ["Q101", "Q408"]),
    (("--select", "Q1", "--select", "Q408"), ["Q101", "Q408"]),
    (("--ignore", "Q408"), ["Q101", "Q303"]),
    (("--ignore", "Q3,Q4"), ["Q101"]),
    (("--ignore", "Q"), []),
    (("--select", "Q", "--ignore", "Q3"), ["Q101", "Q408"]),
    (("--select", "Q101", "--ignore", "Q1"), ["Q101"]),
    (("--select", "Q1", "--ignore", "Q1"), []),
    (("--ignore", "Q", "--select", "Q30"), ["Q303"]),
)

# Files .quillcheck, further arguments, and the codes that are left.
FILES = (
    ('ignore = ["Q408", "Q3"]\n', (), ["Q101"]),
    ("# ours\nselect = Q1, Q3  # for now\n", (), ["Q101", "Q303"]),
    ('select = ["Q3"]\nignore = ["Q3"]\n', (), []),
    ('select = ["Q1"]\n', ("--select", "Q4"), ["Q408"]),
    ('select = ["Q1"]\n', ("--ignore", "Q4"), ["Q101"]),
    ('ignore = ["Q1"]\n', ("--ignore", "Q4"), ["Q101", "Q303"]),
    ("", (), ALL),
)


class Filter(QuillTest):
    def setUp(self):
        super().setUp()
        self.track = self.file("t.vtt", TRACK)

    def codes(self, *arguments, track=None):
        result = self.quill("check", "--quiet", *arguments, track or self.track)
        self.assertEqual(result.err, b"")
        self.assertEqual(result.code, 1 if b"Q101" in result.out else 0)
        return sorted(line.split("[")[1].split("]")[0] for line in result.out.decode().splitlines())

    def test_select_and_ignore(self):
        for arguments, codes in FILTERS:
            with self.subTest(arguments):
                self.assertEqual(self.codes(*arguments), codes)

    def test_the_sums_know_nothing_else(self):
        out = self.quill("check", "--ignore", "Q3,Q4", self.track).out.decode()
        self.assertTrue(out.endswith("1 lost, 0 changed, 0 remarks: 1 Q101\n"), out)

    def test_a_file(self):
        for text, arguments, codes in FILES:
            self.file(".quillcheck", text.encode())
            with self.subTest(text, arguments=arguments):
                self.assertEqual(self.codes(*arguments), codes)

    def test_the_nearest_file_above_the_track_counts(self):
        os.makedirs(os.path.join(self.folder, "a/b"))
        self.file(".quillcheck", b"select = Q1\n")
        self.file("a/.quillcheck", b"select = Q3\n")
        for folder, codes in ((".", ["Q101"]), ("a", ["Q303"]), ("a/b", ["Q303"])):
            track = self.file(folder + "/t.vtt", TRACK)
            with self.subTest(folder):
                self.assertEqual(self.codes(track=track), codes)
                result = self.quill("check", "--quiet", "-", cwd=os.path.dirname(track),
                                    stdin=TRACK)
                self.assertIn(codes[0].encode(), result.out)
                self.assertEqual(len(result.out.splitlines()), 1)

    def test_a_file_that_is_not_understood(self):
        path = os.path.join(self.folder, ".quillcheck")
        for text, words in (("selct = Q1\n", 'not "selct"; did you mean "select"?'),
                            ("ignore = Q999\n", 'ignore takes codes and beginnings of codes, such '
                                                'as Q408 and Q3, not "Q999"'),
                            ("[a]\nignore = Q1\n", 'not "a.ignore"')):
            self.file(".quillcheck", text.encode())
            with self.subTest(text):
                self.assert_fails(self.quill("check", self.track), 2, path + ": ", words)

    def test_explain(self):
        for entry in read_entries():
            result = self.quill("check", "--explain", entry.code)
            text = result.out.decode()
            with self.subTest(entry.code):
                self.assertEqual((result.code, result.err), (0, b""))
                self.assertTrue(text.startswith(f"{entry.code} {entry.name}\n\n"))
                words = " ".join(text.split())
                for part in entry.text.split(" Fixed"):
                    self.assertIn(part, words)
                self.assertNotIn("```", text)
                self.assertNotIn("#", text)
                if entry.track:
                    self.assertIn("\n    ", text)

    def test_misspelt_words(self):
        for arguments, words in (
                (("chek", self.track), 'no subcommand or option "chek"; did you mean "check"?'),
                (("inspcet",), 'did you mean "inspect"?'),
                (("check", "--formt", "json", self.track), 'did you mean "--format"?'),
                (("check", "--fail-no=lost", self.track), 'did you mean "--fail-on"?'),
                (("--versoin",), 'did you mean "--version"?'),
                (("check", "--explain", "Q1O1"), 'no code "Q1O1"; did you mean "Q101"?'),
                (("check", "--select", "Q1,X", self.track), 'not "X"'),
                (("check", "--ignore", "Q488", self.track), 'not "Q488"; did you mean "Q408"?')):
            with self.subTest(arguments):
                self.assert_fails(self.quill(*arguments), 2, words)

    def test_words_that_are_like_no_other(self):
        for arguments in (("xyz",), ("check", "--nonsense", self.track), ("x" * 5000,),
                          ("check", "--explain", "1")):
            with self.subTest(arguments):
                result = self.quill(*arguments)
                self.assertEqual(result.code, 2)
                self.assertNotIn(b"did you mean", result.err)


if __name__ == "__main__":
    unittest.main()
