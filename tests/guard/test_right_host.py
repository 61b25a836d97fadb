"""A right host: through the guard it prints, says and returns what it does without.

Besides what hosts.py needs: QUILLCAPTION_MODULE is the module's file, GUARD_HOST the example host,
GUARD_ODD_HOST the one of odd_host.c, GUARD_QUILL quill, if there is one.
"""

import os
import shutil
import subprocess
import unittest

import hosts
from hosts import EMULATOR, GUARD, SANITIZED, FolderTest

MODULE = os.environ["QUILLCAPTION_MODULE"]
HOST = [*EMULATOR, os.environ["GUARD_HOST"]]
SAMPLES = sorted(hosts.SAMPLES.glob("*.vtt"))


def play(module, track, **variables):
    """Exit code, standard output, standard error."""
    done = subprocess.run([*HOST, module, track], check=False, timeout=60, capture_output=True,
                          env={**os.environ, **variables})
    return done.returncode, done.stdout, done.stderr.decode()


class RightHostTest(unittest.TestCase):
    maxDiff = None

    def test_nothing_is_said_and_nothing_differs(self):
        self.assertGreater(len(SAMPLES), 10)
        for track in SAMPLES:
            with self.subTest(track.name):
                self.assertEqual(play(GUARD, track), play(MODULE, track))

    @unittest.skipUnless("GUARD_QUILL" in os.environ, "there is no quill")
    def test_quill_is_one_whatever_its_chunks(self):
        for size in ("1", "16", "1460")[:1 if EMULATOR else 3]:
            for track in SAMPLES:
                with self.subTest(size=size, track=track.name):
                    through, without = (subprocess.run(
                        [*EMULATOR, os.environ["GUARD_QUILL"], "cues", "--chunk", size,
                         "--module", module, track], check=False, timeout=60, capture_output=True)
                        for module in (GUARD, MODULE))
                    self.assertNotIn(b"quillcaption-guard:", through.stderr)
                    self.assertEqual((through.returncode, through.stdout, through.stderr),
                                     (without.returncode, without.stdout, without.stderr))

    def test_the_sum_is_told_when_asked_for(self):
        track = SAMPLES[0].with_name("regions.vtt")
        code, output, said = play(GUARD, track, QUILLCAPTION_GUARD_SUMMARY="always")
        self.assertEqual((code, output), play(MODULE, track)[:2])
        self.assertEqual(said, "quillcaption-guard: 9 calls, 1 parser, 5 cues, 0 mistakes\n")

    def test_odd_hosts_are_right_too(self):
        done = subprocess.run([*EMULATOR, os.environ["GUARD_ODD_HOST"], GUARD], check=False,
                              timeout=60, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stderr), (0, b""))

    @unittest.skipIf(EMULATOR or SANITIZED,
                     "emulators and sanitizers want nothing loaded before them")
    def test_names_that_all_can_see_do_not_lead_the_module_back_to_the_guard(self):
        self.assertEqual(play(GUARD, SAMPLES[0], LD_PRELOAD=GUARD), play(MODULE, SAMPLES[0]))


class SettingsTest(FolderTest):
    def setUp(self):
        super().setUp()
        self.track = SAMPLES[0].with_name("regions.vtt")

    def test_another_module_may_be_named(self):
        lonely = shutil.copy(GUARD, self.folder)
        code, output, said = play(lonely, self.track, QUILLCAPTION_GUARD_MODULE=MODULE)
        self.assertEqual((code, output, said), play(MODULE, self.track))

    def test_a_module_that_cannot_be_loaded_makes_no_parser(self):
        (self.folder / "text.so").write_text("no module")
        lonely = shutil.copy(GUARD, self.folder)
        for name, reason in (("", "quillcaption.so: cannot open shared object file"),
                             (str(self.folder / "text.so"), "text.so: file too short"),
                             (lonely, "that file is the guard itself"),
                             ("libm.so.6", "it has no descriptor WEBVTT_MODULE_INFO")):
            with self.subTest(name):
                code, output, said = play(lonely, self.track, QUILLCAPTION_GUARD_MODULE=name)
                self.assertEqual((code, output), (1, b""))
                self.assertIn(reason, said)
                self.assertIn("Set QUILLCAPTION_GUARD_MODULE to the file of the module", said)

    def test_values_that_cannot_be_are_told(self):
        for name, value, possible in (
                ("QUILLCAPTION_GUARD_ON_MISTAKE", "stop\x1b", "report or abort"),
                ("QUILLCAPTION_GUARD_SUMMARY", "yes", "mistakes or always"),
                ("QUILLCAPTION_GUARD_SLOW_MS", "1s", "a number of milliseconds"),
                ("QUILLCAPTION_GUARD_SLOW_MS", "1234567890", "a number of milliseconds")):
            with self.subTest(value):
                shown = value.replace("\x1b", "?")
                self.assertEqual(
                    play(GUARD, self.track, **{name: value})[2],
                    f"quillcaption-guard: {name} is \"{shown}\", which counts as not set: "
                    f"it can be {possible}\n")


if __name__ == "__main__":
    unittest.main()
