"""What quill fix makes of the tracks that people complain about: each is fixed, or what is left is
said."""

import collections
import json
import os
import re
import unittest

from complaint_cases import read_all
from quill_runner import QuillTest

# What needs a person, by the case: the codes that are said to be left. All else is fixed, but what
# must be made anew.
LEFT = {
    "files.cases: the signature of SubRip turned into a track": "Q142",
    "header.cases: a map with one item": "Q121 Q204",
    "maps.cases: a clock beyond 32 bits": "Q311",
    "maps.cases: a cue that ends before zero when it is mapped": "Q313",
    "maps.cases: a number with a unit in a map": "Q422",
    "maps.cases: an item that no map has": "Q421",
    "misplaced.cases: a number before the time": "Q101",
    "misplaced.cases: a word on the timing line": "Q108",
    "misplaced.cases: words behind the end time and a text below": "Q405",
    "missing-blank-lines.cases: a cue runs on from a comment": "Q107",
    "missing-blank-lines.cases: two identifiers": "Q106",
    "references.cases: a bracket that was written twice": "Q431",
    "settings.cases: a decimal comma in a line": "Q411",
    "settings.cases: a decimal comma in a position": "Q411",
    "settings.cases: a fraction": "Q411",
    "settings.cases: a line beyond the screen": "Q407",
    "settings.cases: a position beyond the screen": "Q407",
    "settings.cases: a position in pixels": "Q406",
    "settings.cases: a region": "Q412",
    "settings.cases: a setting that nobody knows": "Q403",
    "settings.cases: an alignment that is no word": "Q408",
    "settings.cases: coordinates of another format": "Q403",
    "settings.cases: text on the timing line": "Q405",
    "stray-text.cases: a blank line within a comment": "Q106",
    "stray-text.cases: a blank line within a style block": "Q106",
    "stray-text.cases: a blank line within a text": "Q106",
    "stray-text.cases: a cue that is commented out": "Q306",
    "stray-text.cases: text above the first cue": "Q105",
    "stray-text.cases: two lines behind a blank line": "Q105",
    "tags.cases: a bracket that is not closed": "Q304",
    "tags.cases: a place of another format": "Q433",
    "tags.cases: a soft line break of another format": "Q433",
    "tags.cases: an override beside settings": "Q433",
    "times.cases: a date before the start": "Q101",
    "times.cases: a number and a bracket before the start": "Q101",
    "times.cases: a number and a colon before the start": "Q101",
    "times.cases: a time below zero": "Q101",
    "times.cases: colours of a terminal": "Q101",
    "times.cases: frames behind a semicolon": "Q101",
    "times.cases: frames": "Q101",
    "times.cases: hours beyond the clock": "Q309",
    "times.cases: minutes beyond 59": "Q101",
    "times.cases: no end": "Q103",
    "times.cases: no start": "Q101",
    "times.cases: seconds beyond 59": "Q101",
    "times.cases: words for a time": "Q101",
    "whole-tracks.cases: a quoted signature": "Q149",
    "whole-tracks.cases: a second track without a blank line above": "Q120",
    "whole-tracks.cases: a whole track on one line": "Q122",
    "whole-tracks.cases: two segments with maps": "Q120",
}

# What a person would change has more cues or fewer than what is left as it is.
OTHER_CUES = {
    "times-of-cues.cases: the same cue twice": 2,
    "whole-tracks.cases: a track without a cue": 0,
    "whole-tracks.cases: comments with an arrow and no cue": 0,
    "whole-tracks.cases: a track of comments": 0,
    "whole-tracks.cases: only a first line": 0,
}


class Complaints(QuillTest):
    def setUp(self):
        super().setUp()
        self.cases = {self.file(f"{index:03}.vtt", case.track): case
                      for index, case in enumerate(read_all())}

    def run_fix(self, *arguments):
        """What is said to be fixed, and to be left, by track."""
        result = self.quill("fix", "--all", *arguments, self.folder)
        fixed, left = collections.defaultdict(set), collections.defaultdict(set)
        for line in result.out.decode().splitlines() + self.messages(result):
            path, words = line.split(":", 1)
            code = re.search(r" \[(Q\d{3})\]", words)
            if ": fixed: " in words:
                fixed[path].add(code.group(1))
            elif ": left: " in words or " nothing was written: " in words:
                left[path].add(code.group(1))
            else:  # it is not in the encoding that it seems to be, or packed badly
                self.assertRegex(words, "it is not in the encoding|gzip cannot unpack it")
                left[path].add("Q133" if "encoding" in words else "Q136")
        return fixed, left

    def check(self):
        """The findings that are no remarks, and the number of cues, by track."""
        found, cues = collections.defaultdict(list), {}
        for line in map(json.loads, self.quill("check", "--format", "json", "--sums",
                                               self.folder).out.splitlines()):
            if line.get("severity", "remark") != "remark":
                found[line["track"]].append(line["code"])
            if "track" in line and "sums" in line:
                cues[line["track"]] = line["sums"]["cues_delivered"]
        return found, cues

    def test_each_is_fixed_or_left_and_said(self):
        before, _ = self.check()
        fixed, left = self.run_fix("--dry-run")
        self.run_fix("--in-place", "--quiet")
        after, cues = self.check()
        for path, case in self.cases.items():
            with self.subTest(case.name):
                expected = case.findings[0][1] if case.fixed is None else LEFT.get(case.name, "")
                self.assertEqual(" ".join(sorted(left[path])), expected)
                self.assertLessEqual(set(after[path]), left[path])
                self.assertEqual(set(after[path]) & (fixed[path] - left[path]), set())
                # What stood behind a fault in its chunk arrives when that is fixed.
                faults = {code for code in before[path] if code[1] != "2"}
                self.assertLessEqual(faults, fixed[path] | left[path])
                if case.fixed is not None and not left[path]:
                    shown = len(case.shows.split(" | "))
                    self.assertEqual(cues[path], OTHER_CUES.get(case.name, shown))

    def test_a_second_run_changes_nothing(self):
        self.run_fix("--in-place", "--quiet")
        fixed, _ = self.run_fix("--dry-run")
        self.assertEqual({os.path.basename(path): codes for path, codes in fixed.items() if codes},
                         {})

    def test_every_case_that_is_named_is_there(self):
        names = {case.name for case in self.cases.values()}
        self.assertLessEqual(set(LEFT) | set(OTHER_CUES), names)


if __name__ == "__main__":
    unittest.main()
