"""quill check on many tracks at a time, some of which are hostile."""

import json
import os
import re
import select
import subprocess
import unittest

from quill_runner import EMULATOR, SANITIZED, QuillTest, broken, fixture

GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
LOST = GOOD.replace(b"Hello", b"<x>")
CRASHING = GOOD.replace(b"Hello", b"&nbsp;")
ENDING = GOOD.replace(b"Hello", b"NOTE")


class Catalogue(QuillTest):
    def setUp(self):
        super().setUp()
        os.mkdir(os.path.join(self.folder, "t"))

    def fill(self, count, every=None):
        """Tracks of which every so many-th loses a cue; the first one is the largest by far."""
        for number in range(count):
            track = LOST if every and number % every == 0 else GOOD
            self.file(f"t/{number:04}.vtt", track if number else track + LOST[8:] * 3000)

    def check(self, *arguments, **how):
        return self.quill("check", *arguments, "t", cwd=self.folder, **how)

    def test_the_output_does_not_depend_on_the_jobs(self):
        self.fill(200, 7)
        for style in (("--sums",), ("--all",), ("--format", "json")):
            one = self.check("--jobs", "1", *style)
            self.assertEqual((one.code, one.err), (1, b""))
            for jobs in ("2", "7"):
                with self.subTest(style=style, jobs=jobs):
                    self.assertEqual(self.check("--jobs", jobs, *style), one)
        tracks = [line["track"] for line in map(json.loads, one.out.splitlines())
                  if "sums" in line and "track" in line]
        self.assertEqual(tracks, [f"t/{number:04}.vtt" for number in range(200)])

    def test_a_crash_costs_one_track(self):
        for fault, track, how in (("crash", CRASHING, "crashed by SIGSEGV"),
                                  ("exit", ENDING, "ended the process")):
            if SANITIZED and fault == "crash":  # which the sanitizer reports as its own find
                continue
            self.fill(20)
            for number in (5, 6, 19):
                self.file(f"t/{number:04}.vtt", track)
            for jobs in ("1", "3"):
                with self.subTest(fault=fault, jobs=jobs):
                    result = self.check("--jobs", jobs, "--module", fixture("broken"),
                                        "--format", "json", "--fail-on", "never",
                                        env=broken(fault))
                    lines = list(map(json.loads, result.out.splitlines()))
                    failures = [line for line in lines if "failure" in line]
                    said = [f"{fixture('broken')} {how} in pfnParse on the block at line 3 of "
                            f"t/{number:04}.vtt; build the module again, or copy it again, and try "
                            "it with quill conform" for number in (5, 6, 19)]
                    self.assertEqual((result.code, self.messages(result)), (3, said))
                    self.assertEqual([line["failure"] for line in failures], said)
                    self.assertEqual(lines[-1]["total"]["tracks"], 17)
                    self.assertEqual(lines[-1]["total"]["failed"], 3)

    @unittest.skipIf(SANITIZED or EMULATOR, "whose own memory would be measured")
    def test_memory_does_not_grow_with_the_tracks(self):
        self.fill(2, 2)
        os.mkfifo(os.path.join(self.folder, "last"))
        peaks = []
        for count in (50, 3000):
            process = self.start("check", "--jobs", "1", "--files-from", "-", cwd=self.folder,
                                 stdout=subprocess.DEVNULL)
            with process.stdin as names:
                names.write(b"t/0001.vtt\n" * count + b"last\n")
            with open(os.path.join(self.folder, "last"), "wb") as last:  # when it is read
                with open(f"/proc/{process.pid}/task/{process.pid}/children",
                          encoding="ascii") as file:
                    children = file.read().split()
                self.assertEqual(len(children), 1)
                peaks.append([self.peak_of(one) for one in (process.pid, *children)])
                last.write(GOOD)
            self.assertEqual(process.wait(60), 0)
        for few, many in zip(*peaks):
            self.assertLess(many - few, 200, peaks)

    @staticmethod
    def peak_of(process):
        """In KiB, without the pages of files, of which the system maps more or fewer as it likes."""
        with open(f"/proc/{process}/status", encoding="ascii") as file:
            sizes = dict(re.findall(r"(VmHWM|RssFile):\s*(\d+)", file.read()))
        return int(sizes["VmHWM"]) - int(sizes["RssFile"])

    def test_wrong_numbers_of_jobs(self):
        for number in ("0", "257", "x", "-1"):
            with self.subTest(number):
                self.assert_fails(self.check("--jobs", number), 2, "--jobs takes a whole number "
                                  f'of processes from 1 to 256, not "{number}"')

    def test_progress_on_a_terminal(self):
        self.fill(3)
        os.mkfifo(os.path.join(self.folder, "slow"))
        ours, theirs = os.openpty()
        with os.fdopen(ours, "rb", buffering=0) as ours, os.fdopen(theirs, "wb") as theirs:
            # As long as no track has ended nothing can be shown, however long that takes.
            process = self.start("check", "--jobs", "1", "slow", "t", "t", cwd=self.folder,
                                 stderr=theirs)
            with open(os.path.join(self.folder, "slow"), "wb") as slow:  # which quill has opened now
                self.assertEqual(select.select([ours], [], [], 1.3)[0], [])
                slow.write(GOOD)
            shown = self.read_until(ours, b" left\r\x1b[K").decode()
            self.assertRegex(shown, r"\r\x1b\[K\d of 7 tracks, \d a second, 00:\d\d:\d\d left")
            process.stdout.read()
            self.assertEqual(process.wait(60), 1)


if __name__ == "__main__":
    unittest.main()
