"""What quill cues prints, to the byte."""

import json
import unittest

from quill_runner import QuillTest

TRACK = b"""WEBVTT

first
00:00:01.000 --> 00:00:04.000
Hello <b>world</b>
and the rest

00:05.250 --> 00:06.500 align:start line:-1 size:40% vertical:rl
Tom &amp; Jerry

123:00:00.001 --> 123:00:01.999 line:50% position:30% align:end vertical:lr
late
"""

AS_TEXT = b"""00:00:01.000 --> 00:00:04.000
  Hello world
  and the rest

00:00:05.250 --> 00:00:06.500  align:start position:0% line:-1 size:40% vertical:rl
  Tom & Jerry

123:00:00.001 --> 123:00:01.999  align:end position:30% line:50% vertical:lr
  late

"""

AS_SRT = b"""1
00:00:01,000 --> 00:00:04,000
Hello world
and the rest

2
00:00:05,250 --> 00:00:06,500
Tom & Jerry

3
123:00:00,001 --> 123:00:01,999
late

"""

FIELDS = ["pcAuxText", "dStartTime", "dEndTime", "pcText", "i4Line", "fgReserved",
          "fgSnapToLines", "u1Position", "u1Size", "eTextAlign", "eVertical"]

AS_JSON = (
    b'{"pcAuxText":null,"dStartTime":1.0,"dEndTime":4.0,"pcText":"Hello world\\nand the rest\\n",'
    b'"i4Line":100,"fgReserved":0,"fgSnapToLines":1,"u1Position":50,"u1Size":100,'
    b'"eTextAlign":1,"eVertical":0}\n'
    b'{"pcAuxText":null,"dStartTime":5.25,"dEndTime":6.5,"pcText":"Tom & Jerry\\n",'
    b'"i4Line":-1,"fgReserved":0,"fgSnapToLines":1,"u1Position":0,"u1Size":40,'
    b'"eTextAlign":0,"eVertical":2}\n'
    b'{"pcAuxText":null,"dStartTime":442800.001,"dEndTime":442801.999,"pcText":"late\\n",'
    b'"i4Line":50,"fgReserved":0,"fgSnapToLines":0,"u1Position":30,"u1Size":100,'
    b'"eTextAlign":2,"eVertical":1}\n')


def track(*cues):
    """A track of cues given as (timing line, payload)."""
    return b"WEBVTT\n\n" + b"".join(b"%s\n%s\n\n" % cue for cue in cues)


class Formats(QuillTest):
    def test_each_format_byte_for_byte(self):
        for arguments, expected in (((), AS_TEXT), (("--format", "text"), AS_TEXT),
                                    (("--format", "json"), AS_JSON),
                                    (("--format=srt",), AS_SRT)):
            with self.subTest(arguments):
                result = self.cues(TRACK, *arguments)
                self.assertEqual(result.out, expected)
                self.assertEqual(result.code, 0)

    def test_settings_are_shown_when_they_differ_from_the_defaults(self):
        for settings, shown in ((b"", b""),
                                (b"align:middle position:50% size:100% line:100", b""),
                                (b"align:end", b"  align:end position:100%"),
                                (b"align:left", b"  align:left position:0%"),
                                (b"align:right", b"  align:right position:100%"),
                                (b"line:0", b"  line:0"),
                                (b"line:100%", b"  line:100%"),
                                (b"line:0%", b"  line:0%"),
                                (b"position:10%", b"  position:10%"),
                                (b"size:0%", b"  size:0%"),
                                (b"vertical:lr", b"  vertical:lr")):
            with self.subTest(settings):
                result = self.cues(track((b"00:01.000 --> 00:02.000 " + settings, b"x")))
                self.assertEqual(result.out,
                                 b"00:00:01.000 --> 00:00:02.000" + shown + b"\n  x\n\n")

    def test_times_in_each_format(self):
        # (timing line, video time in ticks, text, srt, json)
        for timing, pts, text, srt, numbers in (
                (b"00:01.500 --> 00:03.000", 180000, b"-00:00:00.500 --> 00:00:01.000",
                 b"00:00:00,000 --> 00:00:01,000", (-0.5, 1.0)),
                (b"00:00.000 --> 01:01:01.001", 90000 * 7200, b"-02:00:00.000 --> -00:58:58.999",
                 b"00:00:00,000 --> 00:00:00,000", (-7200.0, -3538.999)),
                (b"00:01.000 --> 00:02.000", 89999, b"00:00:01.000 --> 00:00:02.000",
                 b"00:00:01,000 --> 00:00:02,000", (1.0, 2.0)),
                (b"00:03.300 --> 00:02.000", 0, b"00:00:03.300 --> 00:00:02.000",
                 b"00:00:03,300 --> 00:00:02,000", (3.3, 2.0)),
                (b"99999:59:59.999 --> 99999:59:59.999", 4294967295,
                 b"99986:44:38.999 --> 99986:44:38.999", b"99986:44:38,999 --> 99986:44:38,999",
                 (359952278.999, 359952278.999))):
            with self.subTest(timing):
                source = track((timing, b"x"))
                more = ("--pts", str(pts))
                self.assertEqual(self.cues(source, *more).out, text + b"\n  x\n\n")
                self.assertEqual(self.cues(source, *more, "--format", "srt").out,
                                 b"1\n" + srt + b"\nx\n\n")
                record = json.loads(self.cues(source, *more, "--format", "json").out)
                self.assertEqual((record["dStartTime"], record["dEndTime"]), numbers)

    def test_times_are_rounded_to_the_nearest_millisecond(self):
        # The map adds a whole second and takes away 0.4 or 0.5 ms.
        for local, timing, shown in (
                (b"00:0.0004", b"00:58.999 --> 59:58.999",
                 b"00:00:59.999 --> 00:59:59.999"),
                (b"00:0.0004", b"00:59.000 --> 59:59.000",
                 b"00:01:00.000 --> 01:00:00.000"),
                (b"00:1.0004", b"00:00.000 --> 00:00.001",
                 b"00:00:00.000 --> 00:00:00.001"),
                (b"00:1.0006", b"00:00.000 --> 00:00.001",
                 b"-00:00:00.001 --> 00:00:00.000")):
            with self.subTest(local=local, timing=timing):
                source = (b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:90000,LOCAL:%s\n\n%s\nx\n" %
                          (local, timing))
                self.assertEqual(self.cues(source).out, shown + b"\n  x\n\n")

    def test_json_has_every_field_in_order_on_one_line_of_ascii(self):
        out = self.cues(track((b"00:01.000 --> 00:02.000", "é\t\"\\ 😀\nb".encode())),
                        "--format", "json").out
        self.assertTrue(out.isascii())
        self.assertEqual(out.count(b"\n"), 1)
        record = json.loads(out)
        self.assertEqual(list(record), FIELDS)
        self.assertEqual(record["pcText"], "é\t\"\\ 😀\nb\n")

    def test_blank_lines_of_a_text(self):
        # Lines that hold nothing but a tag are blank in the cue's text.
        source = track((b"00:01.000 --> 00:02.000", b"<b>\nmiddle\n \t\n</b>\nend"))
        self.assertEqual(self.cues(source).out,
                         b"00:00:01.000 --> 00:00:02.000\n  \n  middle\n   \t\n  \n  end\n\n")
        self.assertEqual(self.cues(source, "--format", "srt").out,
                         b"1\n00:00:01,000 --> 00:00:02,000\nmiddle\nend\n\n")

    def test_a_track_without_cues_prints_nothing(self):
        for source in (b"WEBVTT", b"WEBVTT\n", b"WEBVTT\r", b"WEBVTT - a title\n\n",
                       b"WEBVTT\nRegion: id=a\n", b"WEBVTT\n\nNOTE nothing\n"):
            for form in ("text", "json", "srt"):
                with self.subTest(source, form=form):
                    result = self.cues(source, "--format", form)
                    self.assertEqual((result.code, result.out), (0, b""))


class OddRecords(QuillTest):
    """Records that the real module never makes, but that another build might."""

    def test_each_format(self):
        plain = b"00:00:01.000 --> 00:00:02.000"
        for name, text, srt_times in (
                ("null-text", plain + b"\n\n", b"00:00:01,000 --> 00:00:02,000\n\n"),
                ("unknown-words", plain + b"  align:9 vertical:-3\n  one\n  two\n\n", None),
                ("infinite", b"-inf --> inf\n  one\n  two\n\n",
                 b"00:00:00,000 --> 00:00:00,000\none\ntwo\n\n"),
                ("nan", b"nan --> 277777777777:46:40.000\n  one\n  two\n\n", None)):
            source = b"cue %s\n" % name.encode()
            with self.subTest(name):
                self.assertEqual(self.scripted(source).out, text)
                if srt_times:
                    self.assertEqual(self.scripted(source, "--format", "srt").out,
                                     b"1\n" + srt_times)
                self.assertEqual(list(json.loads(self.scripted(source, "--format", "json").out)),
                                 FIELDS)

    def test_json_of_each(self):
        for name, field, value in (("null-text", "pcText", None), ("aux", "pcAuxText", "aux"),
                                   ("unknown-words", "fgReserved", 7),
                                   ("unknown-words", "eVertical", -3), ("nan", "dStartTime", None),
                                   ("infinite", "dEndTime", None)):
            with self.subTest(name, field=field):
                out = self.scripted(b"cue %s\n" % name.encode(), "--format", "json").out
                self.assertEqual(json.loads(out)[field], value)


if __name__ == "__main__":
    unittest.main()
