"""What quill cues does when something goes wrong with the track, the module or the output."""

import fcntl
import os
import struct
import subprocess
import termios
import time
import tty
import unittest

from quill_runner import PATIENCE, QuillTest

CUE = b"00:00:01.000 --> 00:00:02.000\n"
CUE_AS_TEXT = CUE + b"  %s\n\n"


def cue(text):
    return CUE + text + b"\n\n"


class Rejected(QuillTest):
    def test_what_is_no_track(self):
        for track, words in ((b"1\n00:00:01,000 --> 00:00:02,000\nx\n\n", '"1"'),
                             (b"WEBVTTX\n\n" + cue(b"x"), '"WEBVTTX"'),
                             (b"webvtt\r\n\r\n", '"webvtt"'),
                             (b"\nWEBVTT\n\n", 'is ""'),
                             (b"WEBV", '"WEBV"'),
                             (b"\xef\xbb\xbfWEBVTT\n\n", "byte order mark"),
                             (b"x" * 50 + b"\n", '"' + "x" * 40 + '..."'),
                             (b"x" * (3 << 20), '"' + "x" * 40 + '..."'),
                             (b"\x1b[2J\x9b\n", '"\\x1b[2J\\x9b"'),
                             (b"", "empty")):
            for arguments in ((), ("--chunk", "1"), ("--quiet",)):
                with self.subTest(track[:40], arguments=arguments):
                    result = self.cues(track, *arguments)
                    self.assert_fails(result, 1, "track.vtt: not a WebVTT track", words)

    def test_reading_stops(self):
        process = self.start("cues", "-")
        process.stdin.write(b"no track\n")
        self.assertEqual(process.wait(PATIENCE), 1)  # though standard input is still open

    def test_diagnostics_of_the_second_look_are_not_shown(self):
        diagnostics = self.cues(b"no track\n").err.decode()
        self.assertEqual(diagnostics.count("It is NOT a valid WebVTT track"), 1)
        diagnostics = self.cues(b"WEBVTT\n\n" + cue(b"<unknown>")).err.decode()
        self.assertEqual(diagnostics.count("FINISHED"), 1)  # of the closing line feeds


class Lost(QuillTest):
    """Result 2 of a track that was not rejected."""

    def test_a_start_tag_that_is_not_known(self):
        head = b"WEBVTT\n\n" + cue(b"before")
        bad = cue(b"<unknown>x") + cue(b"lost")
        for arguments in ((), ("--quiet",)):
            with self.subTest(arguments):
                result = self.cues(head + bad, *arguments)
                self.assertEqual((result.code, result.out), (0, CUE_AS_TEXT % b"before"))
                self.assertEqual(len(self.messages(result)), 1)
                self.assertRegex(self.messages(result)[0],
                                 rf"^warning: .*track\.vtt: bytes 0 to {len(head + bad) - 1} "
                                 rf"\(a chunk of {len(head + bad)}\): a start tag that is not known")

    def test_reading_goes_on_with_the_next_chunk(self):
        head = b"WEBVTT\n\n" + cue(b"before")
        bad = cue(b"<unknown>x")
        tail = cue(b"after")
        track = head + bad.ljust(len(head), b"\n") + tail
        self.assertLessEqual(len(bad), len(head))
        result = self.cues(track, "--chunk", str(len(head)))
        self.assertEqual((result.code, result.out),
                         (0, CUE_AS_TEXT % b"before" + CUE_AS_TEXT % b"after"))
        self.assertIn(f"bytes {len(head)} to {2 * len(head) - 1} (a chunk of {len(head)})",
                      self.messages(result)[0])

    def test_the_last_cue(self):
        track = b"WEBVTT\n\n" + CUE + b"<unknown>"
        result = self.cues(track)
        self.assertEqual((result.code, result.out), (0, b""))
        self.assertIn(f"line feeds fed after the last of {len(track)} bytes",
                      self.messages(result)[0])


class Thrown(QuillTest):
    def test_errors_of_the_real_module(self):
        good = cue(b"good")
        for bad, what in ((b"X-TIMESTAMP-MAP\n\n", "basic_string::at"),
                          (b"X-TIMESTAMP-MAP=MPEGTS:1\n\n", "basic_string::substr"),
                          (b"\n00:01.000 --> 00:02.000 line:-\nx\n\n", "basic_string::at")):
            for arguments in ((), ("--quiet",)):
                with self.subTest(bad, arguments=arguments):
                    track = b"WEBVTT\n" + bad + b"\n" + good
                    result = self.cues(track, *arguments)
                    self.assertEqual((result.code, result.out), (1, b""))
                    self.assertEqual(len(self.messages(result)), 1)
                    self.assertRegex(
                        self.messages(result)[0],
                        rf"track\.vtt: bytes 0 to {len(track) - 1} \(a chunk of {len(track)}\): "
                        rf"the module threw std::out_of_range: {what}; the rest of this chunk is "
                        r"lost, reading goes on$")

    def test_reading_goes_on_with_the_next_chunk(self):
        head = b"WEBVTT\n\n" + CUE[:-1] + b" line:,end\nbad\n\n"
        result = self.cues(head + cue(b"good"), "--chunk", str(len(head)))
        self.assertEqual((result.code, result.out), (1, CUE_AS_TEXT % b"good"))
        self.assertIn(f"bytes 0 to {len(head) - 1} ", self.messages(result)[0])

    def test_exceptions_of_any_type(self):
        for what, said in (("own", "scripted::Mishap: what the module says: own;"),
                           ("a\x1b\x07b", "Mishap: what the module says: a\\x1b\\x07b;"),
                           ("int", "the module threw int;"),
                           ("foreign", "the module threw an exception that is not of C++;"),
                           ("bad_alloc", "the module threw std::bad_alloc: std::bad_alloc;")):
            with self.subTest(what):
                result = self.scripted(b"cue plain\nthrow " + what.encode() + b"\ncue lost\n")
                self.assertEqual(result.code, 1)
                self.assertEqual(result.out, CUE + b"  one\n  two\n\n")
                self.assertIn(said, self.messages(result)[0])

    def test_an_exception_when_cues_are_asked_for(self):
        result = self.scripted(b"later own\n")
        self.assert_fails(result, 1, "the module threw scripted::Mishap")
        self.assertIn(b"released 1\n", result.err)

    def test_a_module_that_makes_no_parser(self):
        result = self.scripted(b"x\n", env={**os.environ, "SCRIPTED_MODULE_MAKES_NO_PARSER": "1"})
        self.assert_fails(result, 1, "the module made no parser: result 2")


class Unreadable(QuillTest):
    def test_files(self):
        self.assert_fails(self.quill("cues", self.folder + "/none.vtt"), 2,
                          "none.vtt: No such file or directory")
        self.assert_fails(self.quill("cues", self.folder), 2, self.folder + ": Is a directory")
        self.assert_fails(self.quill("cues", self.file("a", b"") + "/b"), 2, "Not a directory")
        self.assert_fails(self.quill("cues", self.folder + "/a\x1b[2Jb"), 2, "a\\x1b[2Jb: No such")

    def test_standard_input(self):
        folder = os.open(self.folder, os.O_RDONLY)  # can be opened, but not read
        self.addCleanup(os.close, folder)
        process = self.start("cues", "-", stdin=folder)
        self.assert_fails(self.finish(process), 2, "standard input: Is a directory")

    def test_an_error_midway(self):
        # Reading the one side of a terminal fails once the other side was closed.
        for arguments in ((), ("--chunk", "1000")):
            with self.subTest(arguments):
                ours, theirs = os.openpty()
                tty.setraw(theirs)
                process = self.start("cues", "--quiet", *arguments, "-", stdin=ours)
                os.close(ours)
                os.write(theirs, b"WEBVTT\n\n" + cue(b"seen") + CUE + b"cut off")
                if not arguments:
                    self.read_until(process.stdout, CUE_AS_TEXT % b"seen")
                os.close(theirs)
                result = self.finish(process)
                self.assertEqual(result.code, 2)
                self.assertEqual(result.out, b"" if not arguments else CUE_AS_TEXT % b"seen")
                self.assertEqual(self.messages(result), ["standard input: Input/output error"])


class Unwritable(QuillTest):
    def test_a_full_disk(self):
        for arguments in (("cues", self.file("a", b"WEBVTT\n\n" + cue(b"x"))),
                          ("--help",), ("cues", "--help"), ("--version",)):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                result = self.quill(*arguments, stdout=full)
                self.assertEqual(result.code, 2)
                self.assertIn("standard output: No space left on device",
                              self.messages(result)[0])

    def test_a_closed_pipe(self):
        for arguments in ((), ("--quiet",)):
            with self.subTest(arguments):
                process = self.start("cues", *arguments, "-")
                process.stdin.write(b"WEBVTT\n\n" + cue(b"x"))
                self.read_until(process.stdout, CUE_AS_TEXT % b"x")
                process.stdout.close()
                process.stdin.write(cue(b"y"))
                result = self.finish(process)  # though standard input is still open
                self.assertEqual(result.code, 2)
                self.assertEqual(self.messages(result), [] if arguments else [
                    "standard output was closed; cues written: 1; the rest of the track was not "
                    "read"])

    def test_the_parser_is_released_when_the_pipe_closes(self):
        reader, writer = os.pipe()
        os.close(reader)
        with open(writer, "wb") as closed:
            result = self.scripted(b"cue plain\n", stdout=closed)
        self.assertEqual(result.code, 2)
        self.assertIn(b"released 1\n", result.err)
        self.assertIn(b"unloaded\n", result.err)

    def test_cues_written_to_a_pipe_that_closes_midway(self):
        # A full pipe ends with the end of a cue, so that the count is tested at its border.
        shown = CUE_AS_TEXT % (b"x" * 94)
        self.assertEqual(len(shown), 128)
        track = self.file("track.vtt", b"WEBVTT\n\n" + cue(b"x" * 94) * 2000)
        process = self.start("cues", "--chunk", "1000000", track, stdin=subprocess.DEVNULL)
        capacity = fcntl.fcntl(process.stdout, 1032)  # F_GETPIPE_SZ
        deadline = time.monotonic() + PATIENCE
        held = 0
        while held < capacity and time.monotonic() < deadline:
            held = struct.unpack("i", fcntl.ioctl(process.stdout, termios.FIONREAD, b"\0" * 4))[0]
            time.sleep(0.01)
        process.stdout.close()
        result = self.finish(process)
        self.assertEqual(result.code, 2)
        self.assertIn(f"cues written: {capacity // len(shown)};", self.messages(result)[0])

    def test_descriptors_that_are_closed_from_the_start(self):
        track = self.file("track.vtt", b"WEBVTT\n\n" + cue(b"x"))
        for closed, code, out in ((0, 0, CUE_AS_TEXT % b"x"), (1, 2, b""),
                                  (2, 0, CUE_AS_TEXT % b"x")):
            with self.subTest(closed):
                result = self.quill("cues", track, preexec_fn=lambda: os.close(closed))
                self.assertEqual((result.code, result.out), (code, out))
                if closed == 1:
                    self.assertIn("standard output: Bad file descriptor",
                                  self.messages(result)[0])
        result = self.quill("cues", "-", preexec_fn=lambda: os.close(0))
        self.assert_fails(result, 2, "standard input: Bad file descriptor")


if __name__ == "__main__":
    unittest.main()
