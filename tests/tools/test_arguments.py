"""The command line of quill: what it takes, and what it says when it does not."""

import os
import re
import unittest

from quill_runner import QuillTest

TRACK = b"WEBVTT\n\n00:05.000 --> 00:07.000\nx\n\n"


class Arguments(QuillTest):
    def setUp(self):
        super().setUp()
        self.track = self.file("track.vtt", TRACK)

    def test_version(self):
        result = self.quill("--version")
        self.assertEqual(result, (0, f"quill {os.environ['QUILL_VERSION']}\n".encode(), b""))

    def test_help(self):
        for arguments, words in ((("--help",), ("cues", "--version")),
                                 (("-h",), ("cues",)),
                                 (("cues", "--help"), (
                                     "--format", "--chunk", "--pts", "--module", "--quiet",
                                     "Examples:", "some-stream | quill cues -", "U+FFFD",
                                     "Exit codes:", "  0  ", "  1  ", "  2  ", "  3  "))):
            with self.subTest(arguments):
                result = self.quill(*arguments)
                self.assertEqual((result.code, result.err), (0, b""))
                for word in words:
                    self.assertIn(word, result.out.decode())
                self.assertLess(max(map(len, result.out.splitlines())), 100)

    def test_the_examples_of_the_help_work(self):
        lines = re.findall("^  (.*quill cues .*)$", self.quill("cues", "--help").out.decode(),
                           re.MULTILINE)
        self.assertGreaterEqual(len(lines), 4)
        for line in lines:
            with self.subTest(line):
                arguments = re.sub(" > .*|.*quill ", "", line).split()
                result = self.quill(*arguments, stdin=TRACK, cwd=self.folder)
                self.assertEqual(result.code, 0)
                self.assertIn(b"x", result.out)

    def test_wrong_usage(self):
        track = self.track
        pts = "--pts takes a whole number of 90 kHz ticks from 0 to 4294967295, not "
        chunk = "--chunk takes a whole number of bytes from 1 to 268435456, not "
        for arguments, words in (
                ((), "subcommand is required"),
                (("show", track), '"show"'),
                (("--verbose", "cues", track), "--verbose"),
                (("cues",), "TRACK is required"),
                (("cues", "--verbose", track), "--verbose"),
                (("cues", track, "other.vtt"), "other.vtt"),
                (("cues", "--format", "vtt", track), '--format takes text, json or srt, not "vtt"'),
                (("cues", "--format", "TEXT", track), 'not "TEXT"'),
                (("cues", "--format", "", track), 'not ""'),
                (("cues", track, "--format"), "--format: 1 required FORMAT missing"),
                (("cues", track, "--chunk"), "--chunk: 1 required BYTES missing"),
                (("cues", track, "--pts"), "--pts: 1 required TICKS missing"),
                (("cues", track, "--module"), "--module: 1 required FILE missing"),
                (("cues", "--chunk", "0", track), chunk + '"0"'),
                (("cues", "--chunk", "268435457", track), chunk + '"268435457"'),
                (("cues", "--chunk", "-1", track), chunk + '"-1"'),
                (("cues", "--chunk", "1k", track), chunk + '"1k"'),
                (("cues", "--chunk", "0x10", track), chunk + '"0x10"'),
                (("cues", "--chunk", " 1", track), chunk + '" 1"'),
                (("cues", "--chunk=", track), "--chunk"),
                (("cues", "--pts", "abc", track), pts + '"abc"'),
                (("cues", "--pts", "-1", track), pts + '"-1"'),
                (("cues", "--pts", "1.5", track), pts + '"1.5"'),
                (("cues", "--pts", "4294967296", track), pts + '"4294967296"'),
                (("cues", "--pts", "99999999999999999999", track), pts + '"9'),
                (("cues", "--pts", "\x1b[2J", track), pts + '"\\x1b[2J"')):
            with self.subTest(arguments):
                self.assert_fails(self.quill(*arguments), 2, words, "--help")

    def test_what_is_taken(self):
        for arguments, start in ((("--pts", "0"), b"00:00:05"), (("--pts=90000",), b"00:00:04"),
                                 (("--pts", "0090000"), b"00:00:04"),
                                 (("--pts", "4294967295"), b"-13:15:16"),
                                 (("--chunk", "1"), b"00:00:05"),
                                 (("--chunk", "268435456"), b"00:00:05")):
            with self.subTest(arguments):
                result = self.quill("cues", *arguments, self.track)
                self.assertEqual((result.code, result.out.split(b".")[0]), (0, start))

    def test_a_name_that_looks_like_an_option(self):
        os.rename(self.track, os.path.join(self.folder, "--pts"))
        result = self.quill("cues", "--", "--pts", cwd=self.folder)
        self.assertEqual(result.code, 0)


if __name__ == "__main__":
    unittest.main()
