"""Handles, first lines, blocks, chunk borders and zero bytes, with the outcome written by hand."""

import unittest

from hosting import EXHAUSTED, FAILED, FINISHED, TIMES, Host, Table, play_track, without_noise
from model.module import Module
from script import call

NOT_A_TRACK = "ERR It is NOT a valid WebVTT track, Parse abort!"
BAD_MAGIC = "ERR Invalid magic number"
API = "[WEBVTT API:IZorWebVtt_Parser_%s] handle MUST not be NULL"


class ModuleTest(Table):
    def test_handles(self):
        report = Module().play([
            call("create_null"), call("parse", "0x0", data=b"x"), call("create", "a"),
            call("create", "b"), call("release", "a"), call("release", "a"),
            call("pts", "a", number=1), call("callback", "a", number=1), call("result", "a"),
            call("parse_null", "a", number=1), call("parse_null", "b", number=3000000000)])

        def line(name):
            return f'out "{API % name}\\n"'
        self.assertEqual([
            [line("Create"), "ret 2"], [line("rsltParse"), "ret 2"], ["ret 0 handle new"],
            ["ret 0 handle new"], ["done"], [line("Release"), "done"],
            [line("vSetVideoPTS"), "done"], [line("vSetWebvttEventNty"), "done"],
            [line("vGetParseResult"), "done"], [line("rsltParse"), "ret 2"],
            ['out "[WEBVTT] ERR:: Invalid input, buffer size -1294967296\\n"', "ret 1"],
        ], report)

    def test_delivery(self):
        track = b"WEBVTT\n\n" + TIMES + b"\nHi\n\n"
        report = Module().play([
            call("create", "a"), call("callback", "a", number=7),
            call("callback_null", "a", number=8), call("result", "a"),
            call("parse", "a", data=track), call("result", "a"), call("result", "a")])
        self.assertEqual(["event 0 tag 7 cues 0 reserved 0", "done"], report[3])
        self.assertEqual([
            "event 0 tag 7 cues 1 reserved 0",
            'cue aux null start 3ff0000000000000 end 4000000000000000 text "Hi\\n" line 100'
            " reserved 0 snap 1 position 50 size 100 align 1 vertical 0", "done"], report[5])
        self.assertEqual(report[3], report[6])


class DriverTest(Table):
    HI = b"WEBVTT\n\n" + TIMES + b"\nHi\n\n"
    CUE = (1.0, 2.0, b"Hi\n")

    def test_first_line(self):
        good, rejected = ([EXHAUSTED], [1], []), [NOT_A_TRACK]
        bom = b"\xef\xbb\xbf"
        self.check((
            (b"WEBVTT\n", good), (b"WEBVTT\r\n", good), (b"WEBVTT\r", good),
            (b"WEBVTT - title\n", good), (b"WEBVTT\ttitle\n", good), (b"WEBVTT \n", good),
            (bom + b"WEBVTT\tWEBVTT\n", good),
            (bom + b"WEBVTT " + bom + b"WEBVTT\tWEBVTT\n", good),
            (b"WEBVTT \0x\n", good),
            (bom + b"WEBVTT\n", ([EXHAUSTED, BAD_MAGIC] + rejected, [2], [])),
            (bom + b"WEBVTT x\n", ([EXHAUSTED, BAD_MAGIC] + rejected, [2], [])),
            (b"WEBVTTX\n", ([EXHAUSTED, BAD_MAGIC] + rejected, [2], [])),
            (b"webvtt\n", ([EXHAUSTED, BAD_MAGIC] + rejected, [2], [])),
            (b"WEBVTT\0\n", ([EXHAUSTED, BAD_MAGIC] + rejected, [2], [])),
            (b"WEBVT\n", ([EXHAUSTED, BAD_MAGIC] + rejected, [2], [])),
            (b"WEBV\n", ([EXHAUSTED] + rejected, [2], [])),
            (b"WEB\0VTT\n", ([EXHAUSTED] + rejected, [2], [])),
            (b"\n", ([EXHAUSTED] + rejected, [2], [])),
            (b"WEBV", (rejected, [2], [])),
            (b"WEBVTT", (rejected, [2], [])),
        ), play_track)

    def test_rejected_for_good(self):
        self.assertEqual(([NOT_A_TRACK], [2, 0, 0], []), play_track(b"WEBV", b"TT\n", self.HI))

    def test_rejected_or_not_an_empty_chunk_is_refused(self):
        host = Host()
        host.feed(b"x")
        self.assertEqual((["ERR Invalid input, buffer size 0"], [1]), host.feed(b""))

    def test_whole_track(self):
        self.assertEqual(([EXHAUSTED, FINISHED], [0], [self.CUE]), play_track(self.HI))

    def test_every_split_behind_the_first_line(self):
        for at in range(len(b"WEBVTT\n"), len(self.HI)):
            _, results, cues = play_track(self.HI[:at], self.HI[at:])
            first = 1 if at < len(b"WEBVTT\n\n") else 0
            self.assertEqual(([first, 0], [self.CUE]), (results, cues), at)

    def test_byte_by_byte(self):
        chunks = [self.HI[i:i + 1] for i in range(7, len(self.HI))]
        _, results, cues = play_track(self.HI[:7], *chunks)
        self.assertEqual([1] + [0] * len(chunks), results)
        self.assertEqual([self.CUE], cues)

    def test_blocks(self):
        lines = [b"%d" % i for i in range(11)]
        twelve = TIMES + b"\n" + b"\n".join(lines) + b"\n\n"
        bad_start = b"xx --> 00:02.000\ny\n\n"
        lost = ["ERR Invalid Start Time Stamp <xx>", "ERR Error occured at LINE 5"]
        cue, start = TIMES + b"\nHi\n\n", b"WEBVTT\n\n"
        self.check((
            ((start + twelve,),
             ([EXHAUSTED, "ERR Parse Cue Time and Settings Failed", FAILED, FINISHED], [0],
              [(1.0, 2.0, b"\n".join(lines[:9]) + b"\n")])),
            ((start + b"\n\n" + cue + b"\n\n\n" + cue,),
             ([EXHAUSTED, FINISHED], [0], [self.CUE] * 2)),
            # The last cue waits for a blank line.
            ((start + cue[:-1],), ([EXHAUSTED, FINISHED], [0], [])),
            ((start + cue[:-1], b"\n"),
             ([EXHAUSTED, FINISHED, EXHAUSTED, FINISHED], [0, 0], [self.CUE])),
            # A bad start time in the first block of a call loses the rest of the chunk ...
            ((start + bad_start + cue, cue),
             (lost + [FINISHED, EXHAUSTED, FINISHED], [0, 0], [self.CUE])),
            # ... but not in a later one.
            ((start + cue + bad_start + cue,),
             (lost[:1] + ["ERR Error occured at LINE 8", EXHAUSTED, FINISHED], [0],
              [self.CUE] * 2)),
            # An unknown start tag loses it in any case.
            ((start + cue + TIMES + b"\n<foo>x\n\n" + cue, cue),
             (["ERR unexcepted start tag <foo> detected. Ignored", "ERR out of memory",
               EXHAUSTED, FINISHED], [2, 0], [self.CUE] * 2)),
            # So does a line setting without a number, and nobody catches it.
            ((start + TIMES + b" line:-\nx\n\n" + cue, cue),
             ([EXHAUSTED, FINISHED], ["basic_string::at", 0], [self.CUE])),
        ), lambda chunks: play_track(*chunks))

    def test_carried_text(self):
        start = b"WEBVTT\n\n"
        nine = TIMES + b"\n" + b"y\n" * 8
        self.check((
            # Cue text is kept over any number of chunks; a line feed may end a carried line.
            ((start + TIMES + b"\nH", b"i", b"\n", b"\n"), [self.CUE]),
            ((start + TIMES + b"\r", b"\nHi\r", b"\n\r"), [self.CUE]),
            # The ten-line limit counts carried lines and the one that is completed.
            ((start + nine, b"z\n1\n\n"), [(1.0, 2.0, b"y\n" * 8 + b"z\n")]),
            ((start + nine + b"z", b"\n1\n\n"), [(1.0, 2.0, b"y\n" * 8 + b"z\n")]),
            # A carriage return can swallow a line feed chunks later: here that of "Hi".
            ((start + TIMES + b"\r", b"Hi", b"\n", b"\n\n"), [self.CUE]),
            ((start + TIMES + b"\r", b"Hi", b"\n", b"\n", b"x"), []),
        ), lambda chunks: play_track(*chunks)[2])

    def test_zero_bytes(self):
        start = b"WEBVTT\n\n"
        first = "ERR Invalid Input String of 1st Line, return FALSE"

        def quiet(chunks):
            printed, _, cues = play_track(*chunks)
            return without_noise(printed), cues
        self.check((
            # A zero byte takes the rest of its line along, line feed included.
            ((start + TIMES + b"\naa\0b\nc\n\n",), ([], [(1.0, 2.0, b"aac\n")])),
            # What is left may be blank.
            ((start + TIMES + b"\nHi\n\0x\n",), ([], [self.CUE])),
            ((start + TIMES + b"\nHi\nx\0\n",), ([], [self.CUE])),
            # A carried text of no bytes is content all the same.
            ((start + b"\0", b"\n" + TIMES + b"\nHi\n\n"), ([first, FAILED], [])),
            # An empty line is completed by the first bytes behind the border.
            ((start + TIMES + b"\nH\0x", b"i\n\n"), ([], [self.CUE])),
            ((start + TIMES + b"\nHi\n\0", b"\n\n"), ([], [(1.0, 2.0, b"Hi\n")])),
            # A header line of one byte ends the headers, whatever the byte.
            ((b"WEBVTT\nx\0y\n" + TIMES + b"\nHi\n\n",), ([], [self.CUE])),
            ((b"WEBVTT\n\0y\n" + TIMES + b"\nHi\n\n",), ([], [])),
        ), quiet)


if __name__ == "__main__":
    unittest.main()
