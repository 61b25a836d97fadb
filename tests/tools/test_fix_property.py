"""What holds for every track that quill fix is given: the ones here come from the generator of
tests/model, damage and all, with fixed seeds, and from the samples."""

import collections
import glob
import json
import os
import random
import re
import shutil
import sys
import unittest

from quill_runner import SLOW, QuillTest

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, os.pardir)
sys.path.insert(1, os.path.join(ROOT, "tests", "model"))
from generate import Generator  # pylint: disable=wrong-import-position

# In the ordinary tests a few hundred; the campaign says how many else.
COUNT = int(os.environ.get("QUILL_FIX_TRACKS", "100" if SLOW else "400"))
BATCH = 500  # as many are read in one run of quill
# Of a hundred generated tracks, damaged beyond what anybody writes, at most two may be given up.
GIVEN_UP = 2


class EveryTrack(QuillTest):
    def make_tracks(self, first, count):
        for name in os.listdir(self.folder):
            os.remove(os.path.join(self.folder, name))
        for index in range(first, first + count):
            track = Generator(random.Random(f"fix/{index}")).track()
            self.file(f"{index:06}.vtt", track)
        for sample in glob.glob(os.path.join(ROOT, "samples", "*.vtt")):
            shutil.copy(sample, self.folder)

    def said(self, *arguments):
        result = self.quill("fix", "--all", *arguments, self.folder)
        return result.out.decode(), self.messages(result)

    def cues_delivered(self):
        lines = self.quill("check", "--format", "json", "--sums", self.folder).out.splitlines()
        return {line["track"]: line["sums"]["cues_delivered"]
                for line in map(json.loads, lines) if "track" in line and "sums" in line}

    def contents(self):
        contents = {}
        for name in os.listdir(self.folder):
            with open(os.path.join(self.folder, name), "rb") as file:
                contents[name] = file.read()
        return contents

    def assert_rest_is_the_same(self, before, after, named):
        """Every line on which something is to be seen, unless a fix names it."""
        if named & {"Q133", "Q136"}:
            return  # all of it was converted
        lines = iter(re.split(b"\r\n|\r|\n", after))
        for number, line in enumerate(re.split(b"\r\n|\r|\n", before), start=1):
            if line.strip(b" \t\0") and number not in named:
                self.assertIn(line, lines)  # behind the one that was found before

    def test_nothing_is_delivered_less_and_a_second_run_changes_nothing(self):
        for first in range(0, COUNT, BATCH):
            count = min(BATCH, COUNT - first)
            self.make_tracks(first, count)
            self.examine(count)

    def examine(self, count):
        before = self.contents()
        cues = self.cues_delivered()
        said, _ = self.said("--dry-run")
        self.assertEqual(self.contents(), before)
        fixed = {os.path.basename(path)
                 for path in re.findall(r"^(.*?):\d+: fixed: ", said, re.MULTILINE)}
        named = collections.defaultdict(set)
        for path, line, code in re.findall(r"^(.*?):(\d+): fixed: .*\[(Q\d+)\]$", said, re.M):
            named[os.path.basename(path)] |= {int(line), code}
        _, messages = self.said("--in-place")
        given_up = [message for message in messages if "could not be verified" in message]
        self.assertLessEqual(len(given_up) * 100, count * GIVEN_UP, given_up)
        after = self.contents()
        changed = {name for name, track in after.items() if track != before[name]}
        self.assertEqual(changed, fixed)
        for name in changed:
            self.assert_rest_is_the_same(before[name], after[name], named[name])
        self.assertGreater(len(changed), count // 4)
        more = 0
        for path, delivered in self.cues_delivered().items():
            self.assertGreaterEqual(delivered, cues[path], path)
            more += delivered > cues[path]
        self.assertGreater(more, count // 10)
        said, _ = self.said("--dry-run")
        self.assertNotIn(": fixed: ", said)


if __name__ == "__main__":
    unittest.main()
