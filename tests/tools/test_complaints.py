"""Tracks that people complain about: what quill check says of each, and of each when it is fixed."""

import collections
import json
import unittest

from complaint_cases import read_all, to_bytes
from quill_runner import QuillTest


class Complaints(QuillTest):
    def setUp(self):
        super().setUp()
        self.cases = read_all()

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
        got = [f"{line['line']} {line['code']} {line['severity']} {line['message']} | "
               f"{line['hint']}" for line in lines]
        wanted = ["{} {} {} {} | {}".format(*finding) for finding in expected]
        self.assertEqual(len(got), len(wanted), f"got {got}, not {wanted}")
        for line, (number, code, severity, message, fix) in zip(lines, expected):
            self.assertEqual((str(line["line"]), line["code"], line["severity"]),
                             (number, code, severity), got)
            self.assertIn(message, line["message"])
            self.assertIn(fix, line["hint"])

    def test_there_are_many(self):
        self.assertGreaterEqual(len(self.cases), 120)
        names = [case.name for case in self.cases]
        self.assertEqual(len(set(names)), len(names))

    def test_each_is_answered(self):
        found = self.findings([(case.name, case.options, case.track) for case in self.cases])
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
