"""The command line of quill check, and how it behaves on a terminal."""

import json
import os
import re
import select
import time
import unittest

from quill_runner import PATIENCE, QuillTest

GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
REMARK = GOOD.replace(b"Hello", b"&copy;")
CHANGED = GOOD.replace(b"Hello", b"AT&T")
LOST = GOOD.replace(b"Hello", b"<x>")


class Command(QuillTest):
    def setUp(self):
        super().setUp()
        self.track = self.file("track.vtt", GOOD)

    def test_exit_codes(self):
        for level, codes in (((), (0, 0, 0, 1)), (("--fail-on", "lost"), (0, 0, 0, 1)),
                             (("--fail-on", "changed"), (0, 0, 1, 1)),
                             (("--fail-on", "remark"), (0, 1, 1, 1)),
                             (("--fail-on", "never"), (0, 0, 0, 0))):
            for track, code in zip((GOOD, REMARK, CHANGED, LOST), codes):
                with self.subTest(level=level, track=track):
                    result = self.quill("check", *level, self.file("one.vtt", track))
                    self.assertEqual((result.code, result.err), (code, b""))

    def test_wrong_usage(self):
        for arguments, words in (
                (("check",), "TRACK or --files-from is required"),
                (("check", "--fail-on", "all", self.track),
                 '--fail-on takes lost, changed, remark or never, not "all"'),
                (("check", "--chunk", "0", self.track),
                 '--chunk takes a whole number of bytes from 1 to 268435456, not "0"'),
                (("check", "--pts", "-1", self.track), "--pts takes a whole number of 90 kHz ticks")):
            with self.subTest(arguments):
                self.assert_fails(self.quill(*arguments), 2, words)

    def test_a_track_that_cannot_be_read_keeps_no_other_from_being_checked(self):
        missing = os.path.join(self.folder, "missing.vtt")
        lost = self.file("lost.vtt", LOST)
        result = self.quill("check", self.track, missing, lost)
        self.assertEqual(result.code, 2)
        self.assertEqual(self.messages(result), [missing + ": No such file or directory"])
        self.assertIn(lost.encode() + b":4:1: lost: ", result.out)
        self.assertIn(b"total: 2 tracks, 1 with findings, 1 could not be checked: 1 cue delivered",
                      result.out)

    def test_standard_input(self):
        result = self.quill("check", "-", stdin=LOST)
        self.assertEqual((result.code, result.out.splitlines()[0]),
                         (1, b'standard input:4:1: lost: unknown start tag "<x>" [Q109]; '
                             b"remove the tag, or write &lt; for its bracket"))

    def test_a_module_that_cannot_be_loaded(self):
        self.assert_fails(self.quill("check", "--module", self.track, self.track), 3, self.track)

    def test_a_closed_output(self):
        read, write = os.pipe()
        os.close(read)
        with os.fdopen(write, "wb") as pipe:
            result = self.quill("check", self.file("lost.vtt", LOST), stdout=pipe)
        self.assertEqual(result.code, 2)
        self.assertEqual(self.messages(result),
                         ["standard output was closed; the rest was not checked"])

    def test_nothing_but_ascii_in_json_and_no_control_bytes_in_text(self):
        track = self.file("b\x1b[1m.vtt", b"WEBVTT\n\n\xe9\x1b[2J\xc3\xa9\n\n")
        json_lines = self.quill("check", "--format", "json", track).out
        self.assertTrue(json_lines.isascii())
        self.assertEqual(json.loads(json_lines.splitlines()[0])["track"], track)
        text = self.quill("check", track).out
        self.assertNotIn(b"\x1b", text)
        self.assertIn('"\\xe9\\x1b[2Jé"'.encode(), text)

    def test_the_examples_of_the_help_work(self):
        text = self.quill("check", "--help").out.decode()
        lines = re.findall("^  (.*quill check .*)$", text, re.MULTILINE)
        self.assertEqual(len(lines), 6)
        for line in lines:
            with self.subTest(line):
                result = self.quill(*line.partition("quill ")[2].split(), stdin=GOOD,
                                    cwd=self.folder)
                self.assertEqual((result.code, result.err), (0, b""))

    def test_the_help_is_narrow_and_lists_the_exit_codes(self):
        text = self.quill("check", "--help").out.decode()
        self.assertLess(max(map(len, text.splitlines())), 100)
        for code in range(4):
            self.assertIn(f"\n  {code}  ", text)


class Terminal(QuillTest):
    """The other end of the terminals is the test."""

    def open_terminal(self):
        ours, theirs = os.openpty()
        ours = os.fdopen(ours, "rb", buffering=0)
        self.addCleanup(ours.close)
        return ours, os.fdopen(theirs, "wb", buffering=0)

    def shown(self, **environment):
        """What quill check prints on a terminal about a track that loses a cue."""
        ours, theirs = self.open_terminal()
        with theirs:
            self.quill("check", "--quiet", self.file("lost.vtt", LOST), stdout=theirs,
                       env={**os.environ, **environment})
            return self.read_until(ours, b"\r\n").decode()

    def test_colour_on_a_terminal(self):
        self.assertIn(":4:1: \x1b[1;31mlost\x1b[0m: unknown", self.shown(NO_COLOR=""))

    def test_no_colour_where_it_is_not_wanted(self):
        self.assertIn(":4:1: lost: unknown", self.shown(NO_COLOR="1"))

    def test_no_colour_elsewhere(self):
        result = self.quill("check", self.file("lost.vtt", LOST))
        self.assertIn(b":4:1: lost: unknown", result.out)
        self.assertNotIn(b"\x1b", result.out)

    def slow_run(self, is_enough, **how):
        """A track that takes more than a second to arrive, and goes on until that is enough."""
        process = self.start("check", "--sums", "-", **how)
        process.stdin.write(GOOD[:7])
        time.sleep(1.3)
        deadline = time.monotonic() + PATIENCE
        while not is_enough() and time.monotonic() < deadline:
            process.stdin.write(b"More: to come\n")
        process.stdin.write(GOOD[7:])
        process.stdin.close()
        out = process.stdout.read()
        self.assertEqual(process.wait(60), 0)
        self.assertIn(b"standard input: 1 cue delivered", out)

    def test_progress_on_a_terminal(self):
        ours, theirs = self.open_terminal()
        with theirs:
            # On a machine that has much to do quill may have begun late.
            self.slow_run(lambda: select.select([ours], [], [], 0.1)[0], stderr=theirs)
            # Wiped away at the end.
            shown = self.read_until(ours, b"read\r\x1b[K").decode()
        self.assertIn("standard input: 0 KiB read", shown)

    def test_no_progress_elsewhere(self):
        with open(os.path.join(self.folder, "errors"), "wb+") as errors:
            self.slow_run(lambda: True, stderr=errors)
            errors.seek(0)
            self.assertEqual(errors.read(), b"")

    def test_no_progress_for_short_work(self):
        track = self.file("track.vtt", GOOD)
        ours, theirs = self.open_terminal()
        with theirs:
            for _ in range(30):  # until it is short, on a machine that has much to do
                start = time.monotonic()
                process = self.start("check", track, stderr=theirs)
                self.assertEqual(process.wait(60), 0)
                if time.monotonic() - start < 1:
                    break
                self.discard(ours)
            self.assertEqual(select.select([ours], [], [], 0.2)[0], [])

    @staticmethod
    def discard(terminal):
        while select.select([terminal], [], [], 0.2)[0]:
            os.read(terminal.fileno(), 65536)


if __name__ == "__main__":
    unittest.main()
