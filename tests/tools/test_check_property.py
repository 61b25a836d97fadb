"""What holds for every track: the ones here come from the generator of tests/model, damage and
all, with fixed seeds."""

import json
import os
import random
import sys
import unittest

from quill_runner import SLOW, QuillTest

sys.path.insert(1, os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "model"))
from generate import Generator  # pylint: disable=wrong-import-position

WHOLE = 256 << 20
# A chunk size, and how many tracks are played with it.
RUNS = ((WHOLE, 80), (7, 60), (64, 60))


class EveryTrack(QuillTest):
    def tracks(self, chunk, count):
        for index in range(count // 8 if SLOW else count):
            yield Generator(random.Random(f"check/{chunk}/{index}")).track()

    def check(self, chunk, paths):
        result = self.quill("check", "--format", "json", "--chunk", chunk, *paths)
        self.assertIn(result.code, (0, 1))
        self.assertEqual(result.err, b"")
        lines = map(json.loads, result.out.splitlines())
        return [line for line in lines if "track" in line]

    def cue_count(self, chunk, path):
        result = self.quill("cues", "--quiet", "--format", "json", "--chunk", chunk, path)
        return len(result.out.splitlines())

    def test_bytes_counts_and_lines(self):
        for chunk, count in RUNS:
            tracks = {self.file(f"{chunk}-{index}.vtt", track): track
                      for index, track in enumerate(self.tracks(chunk, count))}
            findings = {path: [] for path in tracks}
            sums = {}
            for line in self.check(chunk, tracks):
                if "sums" in line:
                    sums[line["track"]] = line["sums"]
                else:
                    findings[line["track"]].append(line)
            self.assertEqual(list(sums), list(tracks))
            for path, track in tracks.items():
                with self.subTest(chunk=chunk, track=track):
                    self.check_sums(sums[path], track, findings[path])
                    self.assertEqual(sums[path]["cues_delivered"], self.cue_count(chunk, path))

    def check_sums(self, sums, track, findings):
        self.assertEqual(sum(sums["bytes"].values()), len(track))
        for severity, count in sums["findings"].items():
            self.assertEqual(sum(one["severity"] == severity for one in findings), count)
        lines = track.replace(b"\r\n", b"\n").replace(b"\r", b"\n").count(b"\n") + 1
        for finding in findings:
            self.assertGreaterEqual(finding["line"], 1)
            self.assertLessEqual(finding["line"], lines)

    def test_in_one_chunk_nothing_is_left_unexplained(self):
        """Remains, and cues that come otherwise, are made by the borders of chunks."""
        paths = [self.file(f"whole-{index}.vtt", track)
                 for index, track in enumerate(self.tracks(WHOLE, RUNS[0][1]))]
        codes = {line.get("code") for line in self.check(WHOLE, paths)}
        self.assertIn("Q101", codes)
        self.assertEqual(codes & {"Q119", "Q205", "Q206", "Q207", "Q209", "Q307", "Q308"}, set())


if __name__ == "__main__":
    unittest.main()
