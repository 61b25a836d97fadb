"""Header lines and the numbers in them, with the outcome written by hand."""

import math
import unittest

from hosting import Host, Table, without_noise
from model.output import Output
from model.values import (get_anchorpoint, get_percentage, get_timestamp, str_to_double,
                          str_to_uint, str_to_ulong)

BAD_VALUE = "ERR Invalid X-TIMESTAMP-MAP Meta Header Value!"


class HeaderTest(Table):
    MAP = b"X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000"
    TRACES = ["MPEGTS:900000", "MPEGTS:900000fgParseMpegPts", "fgParseMpegPts900000",
              "data is 900000"]

    @staticmethod
    def mapped(*chunks, video_ticks=0):
        """(printed lines, results, start of a cue at 1.5 s that follows the headers)"""
        host = Host()
        host.parser.video_ticks = video_ticks
        printed, results = host.feed(*chunks)
        host.feed(b"\n00:01.500 --> 00:03.000\nHi\n\n")
        return without_noise(printed), results, [cue.start for cue in host.cues()]

    def test_maps(self):
        header = b"X-TIMESTAMP-MAP"

        def mpeg(digits, value=None):
            item = f"MPEGTS:{digits}"
            return [item, item + "fgParseMpegPts", "fgParseMpegPts" + digits,
                    f"data is {digits if value is None else value}"]
        self.check((
            (b"=MPEGTS:900000,LOCAL:00:00:00.000", (self.TRACES, [1], [11.5])),
            (b"=MPEGTS:135000,LOCAL:00:00:00.000", (mpeg("135000"), [1], [2.5])),
            (b"=LOCAL:00:00:01.000,MPEGTS:90000",
             (["LOCAL:00:00:01.000"] + mpeg("90000")[1:], [1], [1.5])),
            (b"=MPEGTS:4294967296,LOCAL:00:00:00.000",
             (mpeg("4294967296", 0), [1], [1.5])),
            (b"=MPEGTS:4294967295,LOCAL:00:00:01.000", (mpeg("4294967295"), [1], [1.5])),
            (b" = MPEGTS:1,LOCAL:00:00:00.000",
             (["= MPEGTS:1", "= MPEGTS:1fgParseMpegPts", "fgParseMpegPtsS:1", "data is 0",
               BAD_VALUE], [1], [1.5])),
            (b":MPEGTS:1,LOCAL:00:00.000",
             ([":MPEGTS:1", ":MPEGTS:1fgParseMpegPts", "fgParseMpegPts:1", "data is 0",
               BAD_VALUE], [1], [1.5])),
            (b"=MPEGTS:abc,LOCAL:00:00:00.000", (mpeg("abc", 0) + [BAD_VALUE], [1], [1.5])),
            (b"=MPEGTS:900000, LOCAL:00:00:00.000", (self.TRACES + [BAD_VALUE], [1], [1.5])),
            (b"=MPEGTS:1,LOCAL:00:xx.000,x",
             (mpeg("1") + [BAD_VALUE], [1], [1.5])),
            (b"=FOO:1,BAR:2",
             (["FOO:1", "ERR Invalid X-TIMESTAMP-MAP Meta Header 1!"], [1], [1.5])),
            (b"=", (["", "ERR Invalid X-TIMESTAMP-MAP Meta Header 1!"], [1], [1.5])),
            (b"=MPEGTS:900000,", (self.TRACES + ["ERR Invalid X-TIMESTAMP-MAP Meta Header 2!"],
                                  [1], [1.5])),
            (b"=MPEGTS:1,MPEGTS:2", (mpeg("1") + mpeg("2")[1:], [1], [1.5])),
            (b"=MPEGTS:,LOCAL:00:00.000",
             (["MPEGTS:", "MPEGTS:fgParseMpegPts", "fgParseMpegPts", BAD_VALUE], [1], [1.5])),
            (b"=MPEGTS:900000", (self.TRACES, ["basic_string::substr"], [1.5])),
            (b"", ([], ["basic_string::at"], [1.5])),
        ), lambda tail: self.mapped(b"WEBVTT\n" + header + tail + b"\n"))

    def test_second_map(self):
        other = b"X-TIMESTAMP-MAP=LOCAL:00:00:01.000,MPEGTS:0\n"
        first = self.MAP + b"\n"
        self.assertEqual((self.TRACES, [1], [11.5]), self.mapped(b"WEBVTT\n" + first + other))
        traces = ["LOCAL:00:00:01.000", "MPEGTS:0fgParseMpegPts", "fgParseMpegPts0", "data is 0"]
        self.assertEqual((self.TRACES + traces, [1, 1], [0.5]),
                         self.mapped(b"WEBVTT\n" + first, other))
        # A map that threw is the current one too.
        self.assertEqual((self.TRACES, [1, "basic_string::at"], [1.5]),
                         self.mapped(b"WEBVTT\n" + first, b"X-TIMESTAMP-MAP\nlost\n"))

    def test_video_time(self):
        self.assertEqual([-0.5], self.mapped(b"WEBVTT\n", video_ticks=180000)[2])
        self.assertEqual([1.5], self.mapped(b"WEBVTT\n", video_ticks=89999)[2])

    def test_header_over_chunks(self):
        half, rest = self.MAP[:20], self.MAP[20:] + b"\n"
        self.assertEqual([11.5], self.mapped(b"WEBVTT\n" + half, rest)[2])
        self.assertEqual([1.5], self.mapped(b"WEBVTT\n" + half, rest[:5], rest[5:])[2])

    def test_region_traces(self):
        def trace(text):
            return ["input is " + text, "Not a valid data string"]
        self.check((
            (b" id=fred width=40% lines=3 regionanchor=0%,100% viewportanchor=10%,90% scroll=up",
             []),
            (b"", []), (b" width=40", []), (b" width=abc%", trace("abc")),
            (b" lines=-1", trace("-1")), (b" lines=2.9  ", []), (b" lines=", []),
            (b" regionanchor=50%", []), (b" regionanchor=a,b", []),
            (b" regionanchor=a%,b%", trace("a") + trace("b")),
            (b" viewportanchor=1%,2%,3%", trace("2%,3")),
            (b" regionanchor=x%,", []), (b" regionanchor=,x%", []),
            (b" id=a\twidth=x%", []), (b" WIDTH=x%", []), (b"width=x%", trace("x")),
            (b" =width=x%", []), (b" width=1=2%", trace("1=2")),
        ), lambda items: self.mapped(b"WEBVTT\nRegion:" + items + b"\n")[0])


class ValueTest(Table):
    @staticmethod
    def traced(function):
        """(value, printed lines) of a value parser for a text."""
        def run(text):
            out = Output()
            value = function(text, out)
            return value, out.take().decode().split("\n")[:-1]
        return run

    def test_double(self):
        def bad(text):
            return None, ["input is " + text, "Not a valid data string"]
        self.check((
            (b"12.5", (12.5, [])), (b"-1", bad("-1")), (b"1.2.3", bad("1.2.3")), (b"", (None, [])),
            (b".", (0.0, [])), (b"5.", (5.0, [])), (b".5", (0.5, [])),
            (b"4294967296", (0.0, [])), (b"3000000000", (-1294967296.0, [])),
            (b"0.0000000001", (1 / 1410065408, [])),
            (b"0.000000000001", (1 / -727379968, [])),
            (b"0." + b"0" * 31 + b"7", (math.inf, [])), (b"1e2", bad("1e2")),
        ), self.traced(str_to_double))
        self.assertTrue(math.isnan(str_to_double(b"0." + b"0" * 32, Output())))

    def test_percentage(self):
        self.check((
            (b"%", (None, [])), (b"50%", (50.0, [])), (b"50", (None, [])), (b"150%", (150.0, [])),
            (b"1e2%", (None, ["input is 1e2", "Not a valid data string"])),
        ), self.traced(get_percentage))

    def test_integers(self):
        self.check(((b"007", 7), (b"4294967297", 1), (b"12a", None), (b"", None)), str_to_uint)
        self.check(((b"42", (42, ["data is 42"])), (b"x", (None, ["data is 0"])),
                    (b"", (None, []))), self.traced(str_to_ulong))

    def test_anchor(self):
        self.check((
            (b"10%,90%", (None, [])), (b"1%,2%,3%", (None, ["input is 2%,3",
                                                            "Not a valid data string"])),
        ), self.traced(get_anchorpoint))

    def test_timestamp(self):
        trace = ["Not a valid data string"]
        self.check((
            (b"00:01.000", (1.0, [])), (b"01:02:03.004", (3723.004, [])),
            (b"1:02:03.004", (3723.004, [])), (b"100:00:00.000", (360000.0, [])),
            (b"00:60.000", (None, [])), (b"00:00:60.000", (None, [])), (b"60:00.000", (None, [])),
            (b"00:00:00:00.000", (None, [])), (b"12::34.567", (754.567, [])),
            (b"00:00.0000", (None, [])), (b"0:00.000", (None, [])), (b"00:05.123", (5.123, [])),
            (b"00:5.1234", (5.1234, [])), (b"00:.12345", (0.12345, [])), (b"00:000005", (5.0, [])),
            (b"00:123456", (None, [])), (b"00:01,000", (None, ["input is 01,000"] + trace)),
            (b"000000000:01.000", (1.0, [])), (b"4294967296:01.000", (1.0, [])),
            (b"1:1:01.000", (None, [])), (b":00:01.000", (None, [])), (b"xx:01.000", (None, [])),
            (b"1193046:29:16.000", (60.0, [])), (b"00:xx:01.000", (None, [])),
        ), self.traced(get_timestamp))


if __name__ == "__main__":
    unittest.main()
