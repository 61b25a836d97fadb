"""Tracks that people complain about: what quill check says of each, and of each when it is fixed."""

import collections
import json
import re
import unittest

from complaint_cases import read_all, to_bytes
from quill_runner import QuillTest, place


# The first byte that is not UTF-8, and what hides the text.
OTHER_COLUMNS = ("Q417", "Q302")


class Complaints(QuillTest):
    cases = read_all()
    found_once = {}

    def found(self):
        """What is found in each of the cases, by name."""
        if not self.found_once:
            self.found_once.update(self.findings([(case.name, case.options, case.track)
                                                  for case in self.cases]))
        return self.found_once

    def findings(self, tracks):
        """What is found in each of the named tracks, which come with their options: by name."""
        found = {name: [] for name, _, _ in tracks}
        groups = collections.defaultdict(list)
        for number, (name, options, track) in enumerate(tracks):
            groups[tuple(options)].append((name, self.file(f"{number}.vtt", track)))
        for options, group in groups.items():
            names = {path: name for name, path in group}
            result = self.quill("check", "--format", "json", *options, *names)
            self.assertEqual(result.err, b"")
            for line in map(json.loads, result.out.splitlines()):
                if "code" in line:
                    found[names[line["track"]]].append(line)
        return found

    def compare(self, expected, lines):
        got = [f"{place(line)} {line['code']} {line['severity']} {line['message']} | "
               f"{line['hint']}" for line in lines]
        wanted = ["{} {} {} {} | {}".format(*finding) for finding in expected]
        self.assertEqual(len(got), len(wanted), f"got {got}, not {wanted}")
        for line, (number, code, severity, message, fix) in zip(lines, expected):
            self.assertEqual((place(line), line["code"], line["severity"]),
                             (number, code, severity), got)
            self.assertIn(message, line["message"])
            self.assertIn(fix, line["hint"])

    def test_a_column_is_that_of_what_is_quoted(self):
        found = self.found()
        count = 0
        for case in self.cases:
            # A byte that is no part of UTF-8 is a character too.
            lines = re.split("\r\n|\n|\r", case.track.decode(errors="surrogateescape"))
            for finding in found[case.name]:
                # As far as it is written as it stands: a tag may go on, and what cannot be seen is
                # escaped.
                quoted = re.findall(r'"([^\\]+?)(?:>|\\|\.\.\.|"(?=[ ,;:.]|$))', finding["message"])
                if "column" in finding and quoted and finding["code"] not in OTHER_COLUMNS:
                    there = lines[finding["line"] - 1][finding["column"] - 1:]
                    count += 1
                    with self.subTest(case.name, there=there, quoted=quoted):
                        self.assertTrue(there.startswith(tuple(quoted)))
        self.assertGreater(count, 100)

    def test_a_cause_is_the_line_that_is_named(self):
        found = self.found()
        causes = [finding for one in found.values() for finding in one if "cause_line" in finding]
        for finding in causes:
            self.assertRegex(finding["message"], rf"line {finding['cause_line']}\b")
        self.assertGreater(len(causes), 5)

    def test_there_are_many(self):
        self.assertGreaterEqual(len(self.cases), 120)
        names = [case.name for case in self.cases]
        self.assertEqual(len(set(names)), len(names))

    def test_each_is_answered(self):
        found = self.found()
        for case in self.cases:
            with self.subTest(case.name):
                self.compare(case.findings, found[case.name])

    def test_no_fixed_track_is_complained_about(self):
        fixed = [case for case in self.cases if case.fixed is not None]
        found = self.findings([(case.name, case.options, case.fixed) for case in fixed])
        for case in fixed:
            with self.subTest(case.name):
                self.compare(case.left, found[case.name])

    def test_every_fixed_track_gives_its_cues(self):
        for case in self.cases:
            if case.fixed is None:
                continue
            with self.subTest(case.name):
                lines = self.cues(case.fixed, "--format", "json", "--quiet").out.splitlines()
                texts = [json.loads(line)["pcText"].rstrip("\n") for line in lines]
                shown = to_bytes(case.shows).decode().replace("\\n", "\n").split(" | ")
                self.assertEqual(texts, shown)

    def test_only_what_must_be_made_anew_has_no_fix(self):
        for case in self.cases:
            with self.subTest(case.name):
                self.assertTrue(case.fixed is not None or case.findings[0][1] >= "Q131")


if __name__ == "__main__":
    unittest.main()
