"""What quill fix makes of tracks: a table of tracks before and after, and of what is said."""

import os
import re
import unittest

from fix_table import ROWS
from quill_runner import QuillTest


class Table(QuillTest):
    """Runs quill over all rows at once, each of them a file of one folder."""

    def setUp(self):
        super().setUp()
        self.paths = [self.file(f"{index:03}.vtt", row.before) for index, row in enumerate(ROWS)]

    def said(self, *arguments):
        """The lines on standard output by file."""
        lines = self.quill(*arguments, self.folder).out.decode().splitlines()
        return {path: [line for line in lines if line.startswith(path + ":")]
                for path in self.paths}

    def content(self, path):
        with open(path, "rb") as file:
            return file.read()

    def test_outcomes(self):
        said = self.said("fix", "--dry-run", "--all")
        result = self.quill("fix", "--in-place", "--quiet", self.folder)
        self.assertEqual(self.messages(result), [])
        for path, row in zip(self.paths, ROWS):
            with self.subTest(row.before):
                self.assertEqual(self.content(path), row.after)
                fixed = re.findall(r":(\d+): fixed: .*\[(Q\d+)\]$", "\n".join(said[path]), re.M)
                self.assertEqual(" ".join(f"{line}:{code}" for line, code in fixed), row.fixed)
                left = re.findall(r":(\d+): left: .*\[(Q\d+)\]; ", "\n".join(said[path]))
                self.assertEqual(" ".join(f"{line}:{code}" for line, code in left), row.left)

    def test_a_second_run_changes_nothing(self):
        self.quill("fix", "--in-place", "--quiet", self.folder)
        for path, lines in self.said("fix", "--dry-run", "--all").items():
            self.assertEqual([line for line in lines if ": fixed: " in line], [], path)

    def test_check_finds_nothing_of_what_was_fixed(self):
        self.quill("fix", "--in-place", "--quiet", self.folder)
        findings = self.said("check", "--quiet")
        for path, row in zip(self.paths, ROWS):
            codes = set(re.findall(r"\[(Q\d+)\]", "\n".join(findings[path])))
            left = {one.split(":")[1] for one in row.left.split()}
            fixed = {one.split(":")[1] for one in row.fixed.split()}
            self.assertEqual(codes & (fixed - left), set(), row)

    def test_a_row_for_every_fix_that_the_code_makes(self):
        """A code that is named in the room but fixed in no row would be one without a test."""
        room = os.environ["QUILL_FIX_ROOM"]
        sources = "".join(self.content(os.path.join(room, name)).decode()
                          for name in os.listdir(room))
        codes = {name: number for number, name in re.findall(
            r"^(Q\d+) \w+ +([a-z0-9-]+)", self.quill("check", "--codes").out.decode(), re.M)}
        self.assertTrue(codes)
        del codes["region"]  # the name of a setting as well
        del codes["not-utf-8"]  # fixed with --from only
        named = {number for name, number in codes.items() if f'"{name}"' in sources}
        fixed = {one.split(":")[1] for row in ROWS for one in row.fixed.split()}
        self.assertEqual(sorted(named - fixed), [])

    def section(self, title):
        page = self.content(os.path.join(os.environ["QUILL_DOCS"], "fix.md")).decode()
        return page.split(f"## {title}\n")[1].split("\n## ")[0]

    def test_the_page_has_the_reasons_that_the_code_has(self):
        source = self.content(os.path.join(os.environ["QUILL_FIX_ROOM"], "reason.cpp")).decode()
        reasons = re.findall(r'^    {"(Q[Q\d ]*)",\s*"(.*)"},$', source, re.MULTILINE)
        page = re.findall(r"^\| .* \| (.*) \| (Q[Q\d ]*) \|$", self.section("What needs a person"),
                          re.MULTILINE)
        self.assertGreater(len(reasons), 20)
        self.assertEqual([(codes, words) for words, codes in page], reasons)

    def test_what_is_left_is_said_with_the_reason(self):
        reasons = {code: words for words, codes in re.findall(
            r"^\| .* \| (.*) \| (Q[Q\d ]*) \|$", self.section("What needs a person"), re.MULTILINE)
                   for code in codes.split()}
        said = "\n".join(line for lines in self.said("fix", "--dry-run", "--all").values()
                         for line in lines)
        left = re.findall(r": left: .* \[(Q\d+)\]; (.*?): \w", said)
        self.assertEqual(len(left), said.count(": left: "))
        for code, words in left:
            with self.subTest(code):
                self.assertIn(words, (reasons[code], "its block would give no cue all the same"))

    def test_the_page_names_the_codes_that_are_fixed(self):
        section = self.section("What is fixed")
        fixed = {one.split(":")[1] for row in ROWS for one in row.fixed.split()}
        named = set(re.findall(r"Q\d{3}", section))
        self.assertEqual(named, fixed | {"Q417"})  # which is fixed with --from only


if __name__ == "__main__":
    unittest.main()
