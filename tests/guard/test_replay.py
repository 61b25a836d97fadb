"""What the guard records is played again by quill, and comes out as recorded: of every host that
makes a mistake, of a right one, and of quill itself.

Besides what hosts.py needs: GUARD_QUILL is quill, GUARD_HOST the example host, GUARD_BROKEN the module
that can be made to do one thing wrong.
"""

import json
import os
import re
import unittest

from hosts import (GUARD, MISTAKES, ONLY_WITHOUT_SANITIZER, SAMPLES, SANITIZED, FolderTest, mistake,
                   run)

QUILL = os.environ["GUARD_QUILL"]

# How many calls of a host do not return, because that ends within one.
WITHOUT_RETURN = {"H119_unloaded_in_call": 1, "H122_record_changed": 1, "H122_record_freed": 1}


class ReplayTest(FolderTest):
    def run_program(self, *command, **variables):
        done = run(*command, cwd=self.folder, **variables)
        return done.returncode, done.stdout.decode("latin-1"), done.stderr.decode("latin-1")

    def record(self, host, *arguments, **variables):
        return self.run_program(host, GUARD, *arguments, QUILLCAPTION_GUARD_LOG=str(self.log),
                                **variables)

    def replay(self, *arguments):
        code, out, said = self.run_program(QUILL, "replay", *arguments, self.log)
        self.assertEqual((code, said), (0, ""), out)
        return out

    def expect_same(self, without_return=0):
        verdict = self.replay()
        self.assertRegex(verdict, r"session.log: all \d+ calls? came out as recorded")
        returned = re.search(r"(\d+) more did not return", verdict)
        self.assertEqual(int(returned[1]) if returned else 0, without_return, verdict)
        self.assertNotIn("cut off", verdict)

    def expect_same_case(self):
        self.folder.joinpath("session.cases").write_text(self.replay("--case"))
        code, out, _ = self.run_program(QUILL, "conform", "--cases", "session.cases")
        self.assertEqual((code, out), (0, "passed  session/session\n1 case: 1 passed\n"))

    def test_every_mistaken_host_comes_out_as_recorded(self):
        self.assertGreater(len(MISTAKES), 20)
        for name in (path.stem for path in MISTAKES):
            if SANITIZED and name in ONLY_WITHOUT_SANITIZER:
                continue
            with self.subTest(name):
                self.record(mistake(name), QUILLCAPTION_GUARD_SLOW_MS="400")
                self.expect_same(WITHOUT_RETURN.get(name, 0))
                self.assertIn(f"\n      {name[:4]}", self.replay("--show"))

    def test_a_right_host(self):
        for track in sorted(SAMPLES.glob("*.vtt")):
            with self.subTest(track.name):
                self.record(os.environ["GUARD_HOST"], track)
                self.expect_same()
                self.expect_same_case()

    def test_a_hidden_session(self):
        self.record(os.environ["GUARD_HOST"], SAMPLES / "dialogue.vtt",
                    QUILLCAPTION_GUARD_LOG_TEXT="hidden")
        self.assertNotIn("ferry", self.log.read_text())
        self.expect_same()
        self.expect_same_case()

    def test_what_was_fed(self):
        track = SAMPLES / "dialogue.vtt"
        code, out, said = self.run_program(QUILL, "cues", "--chunk", "100", "--record", self.log,
                                           track)
        self.assertEqual((code, out, said), self.run_program(QUILL, "cues", "--chunk", "100", track))
        self.expect_same()
        self.replay("--track", "fed.vtt")
        self.assertEqual(self.folder.joinpath("fed.vtt").read_bytes(),
                         track.read_bytes() + b"\n\n\n")

    def test_quill_records_itself(self):
        for track in sorted(SAMPLES.glob("*.vtt")):
            with self.subTest(track.name):
                told = self.run_program(QUILL, "cues", "--pts", "90000", track)
                self.assertEqual(self.run_program(QUILL, "cues", "--pts", "90000", "--record",
                                                  self.log, track), told)
                self.expect_same()
                self.assertIn("pfnSetVideoPTS, parser 1, 90000 ticks\n", self.replay("--show"))

    def test_a_count_that_contradicts_the_list(self):
        """A module that says two cues and lists three differs from the right one when it is played."""
        wrong = {"BROKEN_MODULE_WRAPS": os.environ["QUILLCAPTION_MODULE"],
                 "BROKEN_MODULE_FAULT": "counts-to-two"}
        track = self.folder.joinpath("t.vtt")
        track.write_text("WEBVTT\n\n" + "00:01.000 --> 00:02.000\nx\n\n" * 3)
        module = ("--module", os.environ["GUARD_BROKEN"])
        self.assertEqual(self.run_program(QUILL, "cues", "--quiet", "--record", self.log, *module,
                                          track, **wrong)[0], 0)
        counts = [json.loads(line).get("u4CueCount") for line in self.log.read_text().splitlines()
                  if '"delivery"' in line]
        self.assertEqual(counts, [2, None])
        code, out, _ = self.run_program(QUILL, "replay", self.log)
        self.assertEqual(code, 1)
        self.assertIn("expected  count 2, reserved 0", out)
        self.assertEqual(self.run_program(QUILL, "replay", *module, self.log, **wrong)[0], 0)

    def test_quill_cannot_record(self):
        track = SAMPLES / "dialogue.vtt"
        for log, module, code, words in (
                ("/none/x.log", [], 2, "quill: /none/x.log: No such file"),
                ("x%p.log", [], 2, 'quill: x%p.log: "%p" cannot be part of a log\'s name'),
                (".", [], 2, "quill: .: Is a directory"),
                ("x.log", ["--module", "none.so"], 3, "quill: cannot read the module none.so")):
            with self.subTest(log):
                done = self.run_program(QUILL, "cues", "--record", log, *module, track)
                self.assertEqual((done[0], done[1]), (code, ""))
                self.assertTrue(done[2].startswith(words), done[2])

    def test_the_sample_is_what_its_host_does(self):
        """But for the times, the thread's number and the version of the guard."""
        self.record(mistake("three_mistakes"))
        self.assertEqual(self.without_chance(self.log), self.without_chance(SAMPLES / "three-mistakes.log"))

    @staticmethod
    def without_chance(log):
        lines = [json.loads(line) for line in log.read_text().splitlines()]
        for line in lines:
            for name in ("us", "started", "guard"):
                line.pop(name, None)
            if "mistake" in line:
                line["text"] = re.sub(r"thread \d+", "thread T", line["text"])
        return lines


if __name__ == "__main__":
    unittest.main()
