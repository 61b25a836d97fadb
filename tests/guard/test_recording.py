"""What the guard records of a host, and what it does when it can't.

Besides what hosts.py needs: QUILLCAPTION_MODULE is the module's file, GUARD_HOST the example host,
GUARD_ODD_HOST the one of odd_host.c, GUARD_PRINTING_HOST the one of printing_host.cpp.
"""

import json
import os
import resource
import unittest

from hosts import GUARD, SAMPLES, FolderTest, mistake, run

MODULE = os.environ["QUILLCAPTION_MODULE"]
HEADER = '{"log":"quillcaption","version":1,'


class RecordingTest(FolderTest):
    def entries(self):
        return [json.loads(line) for line in self.log.read_text().splitlines()]

    def play(self, track="regions.vtt", preexec=None, **variables):
        """The example host with a log; it must see what it sees without."""
        variables.setdefault("QUILLCAPTION_GUARD_LOG", str(self.log))
        through = run(os.environ["GUARD_HOST"], GUARD, SAMPLES / track, preexec=preexec, **variables)
        without = run(os.environ["GUARD_HOST"], MODULE, SAMPLES / track)
        self.assertEqual((through.returncode, through.stdout), (without.returncode, without.stdout))
        return through.stderr.decode()

    def test_a_session_is_whole(self):
        self.assertEqual(self.play(), "")
        entries = self.entries()
        self.assertTrue(self.log.read_text().startswith(HEADER))
        self.assertEqual((entries[0]["module"], entries[0]["text"]), ("quillcaption.so", "shown"))
        self.assertEqual([entry["do"] for entry in entries if "do" in entry],
                         ["create", "set_event_nty"] + ["parse", "get_parse_result"] * 3 + ["release"])
        self.assertEqual(entries[-1], {"end": {"calls": 9, "parsers": 1, "cues": 5, "mistakes": 0}})
        texts = [cue["pcText"] for entry in entries for cue in entry.get("cues", [])]
        self.assertEqual(texts[0], 'A cue in the region "speech".\n')

    def test_mistakes_are_recorded_at_their_calls(self):
        for name, code, call in (("H101_no_callback", "H101", 3), ("H105_release_in_callback", "H105", 6),
                                 ("H120_uncaught_exception", "H120", 4),
                                 ("H123_record_kept", "H123", 5)):
            with self.subTest(name):
                done = run(mistake(name), GUARD, QUILLCAPTION_GUARD_LOG=str(self.log))
                mistakes = [entry for entry in self.entries() if "mistake" in entry]
                self.assertEqual([(one["mistake"], one["call"]) for one in mistakes], [(code, call)])
                self.assertIn("quillcaption-guard: " + mistakes[0]["text"],
                              done.stderr.decode().splitlines())

    def test_a_release_that_is_put_off_is_told(self):
        run(mistake("H105_release_in_callback"), GUARD, QUILLCAPTION_GUARD_LOG=str(self.log))
        returns = [entry for entry in self.entries() if "return" in entry]
        self.assertEqual([one["return"] for one in returns if one.get("passed") is False], [6])
        self.assertEqual([one["return"] for one in returns if one.get("released")], [5])

    def test_a_log_that_cannot_be_written_is_told_once(self):
        fifo = self.folder / "fifo"
        os.mkfifo(fifo)
        for path, reason in ((self.folder / "none/log", "No such file or directory"),
                             (self.folder, "Is a directory"),
                             (fifo, "No such device or address"),
                             ("/dev/full", "No space left on device")):
            with self.subTest(str(path)):
                said = self.play(QUILLCAPTION_GUARD_LOG=str(path))
                self.assertEqual(said, f"quillcaption-guard: cannot record to {path}: {reason}; going on "
                                       "without. Set QUILLCAPTION_GUARD_LOG to a file that can be "
                                       "written, on a system with room for it\n")

    @unittest.skipIf(os.environ["GUARD_COUNTS"] == "1", "such a host writes its counts as well")
    def test_a_limit_of_files_does_not_end_the_host(self):
        for size in (0, 700):  # at its limit a file brings a signal, before it a part is written
            with self.subTest(size):
                said = self.play(preexec=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)))
                self.assertIn("going on without", said)
                self.assertEqual(said.count("\n"), 1)
                self.assertEqual(self.log.stat().st_size, size)

    def test_the_log_ends_before_its_limit(self):
        said = self.play("dialogue.vtt", QUILLCAPTION_GUARD_LOG_MAX="4096")
        self.assertEqual(said, f"quillcaption-guard: the log {self.log} has reached "
                               "QUILLCAPTION_GUARD_LOG_MAX; nothing is recorded from here on\n")
        self.assertLessEqual(self.log.stat().st_size, 4096)
        self.assertEqual(self.entries()[-1], {"stopped": "limit"})

    def test_values_that_cannot_be_are_told(self):
        for name, value, possible in (
                ("QUILLCAPTION_GUARD_LOG_MAX", "4095", "a number of bytes from 4096 to 999999999"),
                ("QUILLCAPTION_GUARD_LOG_MAX", "1M", "a number of bytes from 4096 to 999999999"),
                ("QUILLCAPTION_GUARD_LOG_TEXT", "none", "shown or hidden")):
            with self.subTest(value):
                self.assertEqual(self.play(**{name: value}),
                                 f"quillcaption-guard: {name} is \"{value}\", which counts as not set: "
                                 f"it can be {possible}\n")

    def test_each_process_may_have_a_log_of_its_own(self):
        self.play(QUILLCAPTION_GUARD_LOG=str(self.folder / "%p.log"))
        logs = list(self.folder.iterdir())
        self.assertEqual(len(logs), 1)
        self.assertTrue(logs[0].stem.isdigit(), logs)

    def test_a_child_leaves_the_log_alone(self):
        done = run(os.environ["GUARD_ODD_HOST"], GUARD, QUILLCAPTION_GUARD_LOG=str(self.log))
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        numbers = [entry["call"] for entry in self.entries() if "do" in entry]
        self.assertEqual(sorted(numbers), list(range(1, len(numbers) + 1)))

    def test_what_others_print_meanwhile_is_not_the_modules(self):
        for text in ("shown", "hidden"):
            host = os.environ["GUARD_PRINTING_HOST"]
            through = run(host, GUARD, QUILLCAPTION_GUARD_LOG=str(self.log),
                          QUILLCAPTION_GUARD_LOG_TEXT=text)
            self.assertEqual((through.returncode, through.stderr), (0, b""))
            self.assertEqual(through.stdout, run(host, MODULE).stdout)
            self.assertIn(b"host: ", through.stdout)
            printed = [entry["printed"] for entry in self.entries() if "return" in entry]
            self.assertNotIn("host: ", "".join(printed))
            self.assertIn("data is 900000\n[WEBVTT] ERR:: Buffer Exhausted\n[WEBVTT] ERR:: FINISHED\n",
                          "".join(printed))


if __name__ == "__main__":
    unittest.main()
