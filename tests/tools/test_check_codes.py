"""The codes of quill check: the page about them, the table in the tool, and what the tool says."""

import json
import unittest

from diagnostics_page import read_entries
from quill_runner import QuillTest

# What no track can bring the module to.
WITHOUT_EXAMPLE = ["Q119"]


class Codes(QuillTest):
    def setUp(self):
        super().setUp()
        self.entries = read_entries()

    def table(self):
        result = self.quill("check", "--codes", "--format", "json")
        self.assertEqual((result.code, result.err), (0, b""))
        return [json.loads(line) for line in result.out.splitlines()]

    def test_page_and_table_hold_the_same_codes(self):
        self.assertEqual([(entry.code, entry.name) for entry in self.entries],
                         [(code["code"], code["name"]) for code in self.table()])

    def test_page_and_table_say_the_same(self):
        for entry, code in zip(self.entries, self.table()):
            with self.subTest(entry.code):
                wanted = f"{code['cause']}. Fix: {code['hint']}."
                self.assertEqual(entry.text[:len(wanted)], wanted)

    def test_numbers_and_names_are_used_once(self):
        table = self.table()
        for key in ("code", "name"):
            values = [code[key] for code in table]
            self.assertEqual(len(set(values)), len(values))
        self.assertEqual([code["code"] for code in table], sorted(code["code"] for code in table))

    def test_the_number_tells_the_severity(self):
        severities = {"Q1": ["lost"], "Q2": ["lost"], "Q3": ["changed"],
                      "Q4": ["changed", "remark"]}
        for code in self.table():
            with self.subTest(code["code"]):
                self.assertIn(code["severity"], severities[code["code"][:2]])

    def test_the_list_is_one_line_a_code(self):
        result = self.quill("check", "--codes")
        lines = result.out.decode().splitlines()
        self.assertEqual(len(lines), len(self.entries))
        self.assertEqual(lines[0], "Q101 lost    start-time: The start time is not valid; "
                                   "write MM:SS.mmm or HH:MM:SS.mmm")

    def test_every_code_but_a_few_has_an_example(self):
        self.assertEqual([entry.code for entry in self.entries if entry.track is None],
                         WITHOUT_EXAMPLE)

    def codes_of(self, tracks, chunk):
        """The codes of each track; all of them go into one run."""
        paths = {self.file(name + ".vtt", track): name for name, track in tracks.items()}
        size = ["--chunk", chunk] if chunk else []
        result = self.quill("check", "--format", "json", *size, *paths)
        found = {name: set() for name in tracks}
        for line in map(json.loads, result.out.splitlines()):
            if "track" in line:
                found[paths[line["track"]]].add(line.get("code"))
        return found

    def test_every_example_gives_its_code(self):
        for chunk in {entry.chunk for entry in self.entries}:
            tracks = {entry.code: entry.track for entry in self.entries
                      if entry.track is not None and entry.chunk == chunk}
            for code, found in self.codes_of(tracks, chunk).items():
                with self.subTest(code):
                    self.assertIn(code, found)

    def test_no_fixed_example_gives_its_code(self):
        for chunk in {entry.fixed_chunk for entry in self.entries}:
            tracks = {entry.code: entry.fixed for entry in self.entries
                      if entry.fixed is not None and entry.fixed_chunk == chunk}
            for code, found in self.codes_of(tracks, chunk).items():
                with self.subTest(code):
                    self.assertEqual(found, {None})

    def test_every_code_but_a_few_is_fixed(self):
        self.assertEqual([entry.code for entry in self.entries if entry.fixed is None],
                         WITHOUT_EXAMPLE)


if __name__ == "__main__":
    unittest.main()
