"""What quill check says of small tracks: tables of a track and the lines that it gives."""

import json
import re
import unittest

from quill_runner import QuillTest, fixture, place

TIMES = b"00:01.000 --> 00:02.000"
GOOD = b"\n00:03.000 --> 00:04.000\nThis cue is in order.\n"

# Blocks behind "WEBVTT" and a blank line, and the findings without their hints.
OWN_FAULTS = (
    (b"00:01 --> 00:02.000\nx\n",
     '3:1: lost: invalid start time "00:01": it has no milliseconds [Q101]'),
    (b"00:01.00 --> 00:02.000\nx\n",
     '3:1: lost: invalid start time "00:01.00": it has 2 digits behind the point, not three [Q101]'),
    (b"--> 00:02.000\nx\n", '3:1: lost: invalid start time "": there is none [Q101]'),
    (b"id\n00:61.000 --> 00:02.000\nx\n", '4:1: lost: invalid start time "00:61.000": its seconds are 61, and go up to 59 [Q101]'),
    (b"00:01.000\t--> 00:02.000\nx\n",
     '3:1: lost: invalid start time "00:01.000\\x09": U+0009 (tab) stands in it [Q101]'),
    (b"00:00:01,000 --> 00:00:02,000\nx\n",
     '3:1: lost: start time "00:00:01,000" with a decimal comma [Q102]'),
    (b"id\n00:01.000 --> 1\nx\n",
     '4:15: lost: invalid end time "1": it has no milliseconds [Q103]'),
    (b"00:01.000 -->\nx\n", '3:14: lost: invalid end time "": there is none [Q103]'),
    (b"00:01.000 --> 00:02,000\nx\n", '3:15: lost: end time "00:02,000" with a decimal comma [Q104]'),
    (b"one\ntwo\n", '3: lost: no timing line in the block "one" [Q105]'),
    (b"one\n", '3: lost: a line on its own, "one" [Q106]'),
    (b"one\ntwo\n" + TIMES + b"\nx\n", "5: lost: the timing line is line 3 of its block [Q107]"),
    (b"id\n" + TIMES + b"\n", "4: lost: no text below the timing line [Q108]"),
    (TIMES + b"\none\n<font size=1>x\n", '5:1: lost: unknown start tag "<font>" [Q109]'),
    (TIMES + b"\none\ntwo <> three\n", '5:5: lost: a "<" that begins no tag [Q110]'),
    (TIMES + b" line:, size:50%\nx\n", '3:25: lost: no number in the setting "line:," [Q111]'),
    (TIMES + b" One text\n", "3:25: lost: the text stands on the timing line [Q108]"),
    (b"id\x00\n", "3: lost: a zero byte hides a line end [Q112]"),
    (b"X-TIMESTAMP-MAP=LOCAL:00:00.000,MPEGTS:0\n",
     "3: lost: a map header behind the header [Q114]"),
    (b"id\n00:01.000 -> 00:02.000\nx\n",
     '4:11: lost: "->" stands between the times [Q115]'),
    ("00:01.000 –> 00:02.000\nx\n".encode(),
     '3:11: lost: "–>" stands between the times [Q115]'),
)

# Delivered cues: the settings, the text, and the findings.
REMARKS = (
    (b"", b"x", ()),
    (b" align:start  position:10%,end line:-1 size:50% vertical:rl", b"x &amp; <b>y</b>", ()),
    (b" align:middle position:50% size:100% line:100", b"x", ()),
    (b" align:center", b"x", ['3:25: changed: "align:center" is taken for start [Q408]']),
    (b" align:START", b"x", ['3:25: changed: "align:START" is taken for start [Q408]']),
    (b" line:85%,center", b"x",
     ['3:25: remark: "center" in "line:85%,center" is taken for start [Q409]']),
    (b" position:10%,", b"x", ['3:25: remark: "" in "position:10%," is taken for start [Q409]']),
    (b" vertical:LR", b"x", ['3:25: changed: "vertical:LR" is dropped [Q410]']),
    (b" size:50", b"x", ['3:25: changed: "size:50" is dropped [Q406]']),
    (b" line:101%", b"x", ['3:25: changed: "line:101%" is dropped [Q407]']),
    (b" position:101%", b"x", ['3:25: changed: "position:101%" is dropped [Q407]']),
    (b" position:ten", b"x", ['3:25: changed: "position:ten" is dropped [Q406]']),
    (b" size:256%", b"x", ['3:25: changed: "size:256%" is delivered as 0 [Q305]']),
    (b" line:-2.50", b"x", ['3:25: changed: "line:-2.50" is delivered as -2 [Q411]']),
    (b" line:2.0", b"x", ()),
    (b" line:2147483647", b"x", ()),
    (b" line:2147483648", b"x",
     ['3:25: changed: "line:2147483648" is delivered as -2147483648 [Q305]']),
    (b" line:-2147483648", b"x",
     ['3:25: changed: "line:-2147483648" is delivered as 2147483647 [Q305]']),
    (b" region:a", b"x", ['3:25: changed: "region:a" is not delivered [Q412]']),
    (b" a:", b"x", ['3:25: changed: "a:" is dropped [Q403]']),
    (b" size:", b"x", ['3:25: changed: "size:" is dropped [Q404]']),
    (b" size", b"x", ['3:25: changed: "size" is no setting [Q405]']),
    (b"", b"one\nAT&T & you", ['5:3: changed: "&T" is lost [Q303]', '5:6: changed: "&" is lost [Q303]']),
    (b"", b"&copy; &lt;&amp", ['4:1: remark: "&copy;" is shown as it is [Q413]',
                               '4:12: changed: "&amp" is lost [Q303]']),
    (b"", b"one<i", ['4:4: changed: the tag "<i\\x0a" is not closed [Q304]']),
    (b"", b"</x>x\n</b >", ['4:1: remark: unknown end tag "</x>" [Q414]',
                          '5:1: remark: unknown end tag "</b >" [Q414]']),
    (b"", b"<1>one<00:01.500>", ['4:1: remark: invalid time tag "<1>" [Q415]']),
    (b"", b"<c.a\nb>x</c>", ['4:1: changed: a line ends inside the tag "<c.a\\x0ab>" [Q416]']),
    (b"", b"one\ncaf\xe9", ['5:4: remark: not UTF-8: "caf\\xe9" [Q417]']),
    (b"", b"one\x00two\n", ['4:4: changed: a zero byte hides the line\'s rest, "two" [Q302]']),
)

REJECTED = (
    (b"", "the file is empty [Q137]"),
    (b"\xef\xbb\xbfWEBVTT\n", "the track begins with a byte order mark [Q131]"),
    (b"\xef\xbb\xbf\xef\xbb\xbfWEBVTT\n", "the track begins with two byte order marks [Q132]"),
    (b"\xff\xfeW\0E\0", "the file looks like UTF-16, little-endian [Q133]"),
    (b"\xfe\xff\0W\0E", "the file looks like UTF-16, big-endian [Q133]"),
    (b"W\0E\0B\0V\0T\0T\0\n\0", "the file looks like UTF-16, little-endian [Q133]"),
    (b"\r\n1\r\n00:00:01,000 --> 00:00:02,000\r\nx\r\n", "the file looks like SubRip [Q134]"),
    (b"\xef\xbb\xbf1\n00:00:01,000 --> 00:00:02,000\nx\n",
     "the file looks like SubRip, with a byte order mark [Q134]"),
    (b"<HTML>\n", "the file looks like an HTML page [Q135]"),
    (b"\n <!DocType html>", "the file looks like an HTML page [Q135]"),
    (b"\x1f\x8b\x08\0\0", "the file looks like gzip [Q136]"),
    (b"PK\x03\x04", "the file looks like a zip archive [Q136]"),
    (b"G" + bytes(187) + b"G" + bytes(187), "the file looks like an MPEG transport stream [Q138]"),
    (b"[Script Info]\r\n", "the file looks like SubStation Alpha [Q139]"),
    (b"<tt xml:lang='en'>", "the file looks like TTML [Q140]"),
    (b"webvtt\n", 'the first line is "webvtt" [Q141]'),
    (b"WEBVTT: title\n", 'the first line is "WEBVTT: title" [Q141]'),
    (b" WEBVTT\n", "the signature is not at the beginning [Q142]"),
    (b"hello\x1b[2J\n" + b"x" * 99, 'the first line is "hello\\x1b[2J" [Q149]'),
    (b"12", 'the first line is "12" [Q149]'),
    (b"G" + bytes(187) + b"g\n", 'the first line is "G' + "\\x00" * 39 + '..." [Q149]'),
)


class Check(QuillTest):
    def check(self, track, *arguments):
        """The findings without the track's name and their hints, and the sums as json has them."""
        return self.check_all([track], *arguments)[0]

    def check_all(self, tracks, *arguments):
        """The same for many tracks in one run."""
        paths = [self.file(f"{number}.vtt", track) for number, track in enumerate(tracks)]
        text = self.quill("check", "--quiet", "--all", *arguments, *paths).out.decode()
        result = self.quill("check", "--format", "json", *arguments, *paths)
        self.assertEqual(result.err, b"")
        found = {path: [] for path in paths}
        sums = {}
        for line in map(json.loads, result.out.splitlines()):
            if "total" in line:
                continue
            if "sums" in line:
                sums[line["track"]] = line["sums"]
            else:
                found[line["track"]].append(f"{place(line)}: {line['severity']}: "
                                            f"{line['message']} [{line['code']}]")
        in_text = [re.fullmatch(r"(.* \[Q\d+\]); .*", line).group(1) for line in text.splitlines()]
        self.assertEqual([f"{path}:{line}" for path in paths for line in found[path]], in_text)
        for path, track in zip(paths, tracks):
            self.assertEqual(sum(sums[path]["bytes"].values()), len(track))
            self.assertEqual(sums[path]["size"], len(track))
        return [(found[path], sums[path]) for path in paths]

    def test_own_faults(self):
        results = self.check_all([b"WEBVTT\n\n" + block + b"\n" for block, _ in OWN_FAULTS])
        for (block, expected), (lines, sums) in zip(OWN_FAULTS, results):
            with self.subTest(block):
                self.assertEqual(lines, [expected])
                self.assertEqual((sums["cues_delivered"], sums["findings"]["lost"]), (0, 1))
                self.assertEqual(sums["bytes"]["lost"], len(block))

    def test_an_own_fault_stays_one_behind_another_block(self):
        results = self.check_all([b"WEBVTT\n" + GOOD + b"\n" + block + b"\n"
                                  for block, _ in OWN_FAULTS])
        for (block, expected), (lines, sums) in zip(OWN_FAULTS, results):
            with self.subTest(block):
                number, rest = re.fullmatch(r"(\d+)(.*)", expected).groups()
                self.assertEqual(lines, [f"{int(number) + 3}{rest}"])
                self.assertEqual(sums["cues_delivered"], 1)

    def test_remarks(self):
        results = self.check_all([b"WEBVTT\n\n" + TIMES + settings + b"\n" + text + b"\n\n"
                                  for settings, text, _ in REMARKS])
        for (settings, text, expected), (lines, sums) in zip(REMARKS, results):
            with self.subTest(settings + b" / " + text):
                self.assertEqual(lines, list(expected))
                self.assertEqual(sums["cues_delivered"], 1)
                self.assertEqual(sums["findings"]["lost"], 0)

    def test_rejected_tracks(self):
        results = self.check_all([track for track, _ in REJECTED])
        for (track, expected), (lines, sums) in zip(REJECTED, results):
            with self.subTest(track[:40]):
                self.assertEqual(lines, ["1: lost: " + expected])
                self.assertEqual(sums["bytes"]["rejected"], len(track))

    def test_neighbours(self):
        for first, code in ((b"soon --> 00:01.000\nx\n", "Q201"), (TIMES + b"\n", "Q201"),
                            (TIMES + b"\n<x>\n", "Q202"), (TIMES + b" line:,\nx\n", "Q203")):
            track = b"WEBVTT\n\n" + first + GOOD + b"\n"
            with self.subTest(first):
                lines, sums = self.check(track)
                line = 4 + first.count(b"\n")
                at = 4 if code == "Q202" else 3
                self.assertEqual(lines[1:], [f"{line}: lost: the cue at 00:00:03.000 is lost with "
                                             f"its chunk, which line {at} ended [{code}]"])
                self.assertEqual(sums["bytes"]["lost_with_chunk"], len(GOOD) - 1)
                # The border lies between the blocks: only the first one is lost.
                lines, sums = self.check(track, "--chunk", len(b"WEBVTT\n\n" + first + b"\n"))
                self.assertEqual(len(lines), 1)
                self.assertEqual(sums["cues_delivered"], 1)

    def test_the_first_block_of_that_kind_is_the_one_to_blame(self):
        lines, _ = self.check(b"WEBVTT\n\nsoon -->\nx\n\nlater -->\nx\n" + GOOD + b"\n")
        self.assertEqual(lines[2], "9: lost: the cue at 00:00:03.000 is lost with its chunk, which "
                                   "line 3 ended [Q201]")

    def test_a_block_that_ended_no_chunk_is_not_to_blame(self):
        lines, _ = self.check(b"WEBVTT\n" + GOOD + b"\nsoon -->\nx\n\n" + TIMES + b"\n<x>\n" + GOOD +
                              b"\n")
        self.assertEqual(lines[2], "12: lost: the cue at 00:00:03.000 is lost with its chunk, which "
                                   "line 10 ended [Q202]")

    def test_remains_are_named_by_the_line_that_their_chunk_begins_in(self):
        before = b"WEBVTT\n\nsoon -->\nx\n\nan identifier\nof two lines\n"
        for start, line in ((before, 8), (before[:-1], 7), (before + b"00:", 8)):
            lines, _ = self.check(before + b"00:00:03.000 --> 00:00:04.000\nx\n\n",
                                  "--chunk", len(start))
            with self.subTest(start):
                self.assertEqual([one for one in lines if "Q307" in one],
                                 [f"{line}: changed: the cue at 00:00:03.000 is made of remains of "
                                  "the chunk that line 3 ended; its chunk begins here [Q307]"])

    def test_odd_times_that_are_in_order(self):
        lines, sums = self.check(b"WEBVTT\n\n12::34.567 --> 13:00.000\nx\n\n100:00:00.000 --> 100:00:01.000\nx\n\n")
        self.assertEqual((lines, sums["cues_delivered"]), ([], 2))

    def test_an_error_behind_another_block_ends_no_chunk(self):
        hidden = TIMES + b"\0009\n align:end\nThis cue comes whole only.\n\n"
        start = b"WEBVTT\n\nalone\n\nsoon -->\nx\n\n"
        lines, _ = self.check(start + hidden, "--chunk", len(start) + hidden.index(b"\0") + 1)
        self.assertEqual(lines[2], "8: lost: the cue at 00:00:01.000 does not come out of its chunk "
                                   "[Q209]")

    def test_a_map_that_throws_takes_its_chunk(self):
        track = b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:9\n" + GOOD + b"\n"
        lines, sums = self.check(track)
        self.assertEqual(lines, [
            '2: lost: "X-TIMESTAMP-MAP=MPEGTS:9" made the module throw [Q121]',
            "4: lost: the cue at 00:00:03.000 is lost with its chunk, which line 2 ended [Q204]"])
        self.assertEqual(sums["header_lines"], {"used": 0, "ignored": 1})
        lines, sums = self.check(track, "--chunk", 32)  # the blank line begins the next chunk
        self.assertEqual((len(lines), sums["cues_delivered"]), (1, 1))

    def test_mapped_cues_are_found_again(self):
        in_turn = b"".join(GOOD.replace(b"00:0", b"0%d:0" % minute) for minute in range(3))
        for offset in (b"900000", b"123456789"):
            for video in (b"00:00:00.000", b"00:00:07.123"):
                lines, sums = self.check(b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:" + offset + b",LOCAL:" +
                                         video + b"\n" + in_turn + b"\n", "--chunk", 50)
                self.assertEqual((lines, sums["cues_delivered"]), ([], 3))

    def test_header_lines(self):
        map_line = b"X-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n"
        for header, expected, used, ignored in (
                (b"Region: id=a\nKind: captions\n" + map_line, [], 2, 1),
                (map_line + map_line, ["3: remark: a second map header is ignored [Q423]"], 1, 1),
                (b"X-TIMESTAMP-MAP=A:1,B:2\n",
                 ['2:17: changed: no time is mapped: unknown item "A:1" [Q421]'], 0, 1),
                (b"X-TIMESTAMP-MAP=MPEGTS:x,LOCAL:0\n",
                 ['2:24: changed: no time is mapped: "x" is no number [Q422]'], 0, 1)):
            with self.subTest(header):
                lines, sums = self.check(b"WEBVTT\n" + header + GOOD + b"\n")
                self.assertEqual(lines, expected)
                self.assertEqual(sums["header_lines"], {"used": used, "ignored": ignored})

    def test_a_map_of_a_later_chunk_counts(self):
        track = (b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:0,LOCAL:00:00.000\n"
                 b"X-TIMESTAMP-MAP=MPEGTS:90000,LOCAL:00:00.000\n" + GOOD + b"\n")
        lines, sums = self.check(track, "--chunk", 48)
        self.assertEqual((lines, sums["header_lines"]["used"]), ([], 2))

    def test_a_cue_in_the_header(self):
        lines, sums = self.check(b"WEBVTT\nKind: x\n" + TIMES + b"\nlost\n" + GOOD + b"\n")
        self.assertEqual(lines, ['3: lost: the timing line "00:01.000 --> 00:02.000" is in the '
                                 "header [Q113]"])
        self.assertEqual(sums["bytes"]["lost"], len(TIMES) + 6)

    def test_comments_are_no_loss(self):
        lines, sums = self.check(b"WEBVTT\n\nNOTE\nof two\nlines\n\nNOTE more\n" + GOOD + b"\n")
        self.assertEqual(lines, [])
        self.assertEqual((sums["comments"], sums["bytes"]["comments"]), (2, 28))

    def test_comments_with_arrows(self):
        lines, _ = self.check(b"WEBVTT\n" + GOOD + b"\nNOTE a --> b\n\nNOTE\n" +
                              TIMES.replace(b"00:", b"01:") + b"\nx\n\n")
        self.assertEqual(lines, ["6: remark: a comment holds an arrow [Q419]",
                                 "8: changed: a comment is shown as a cue [Q306]"])

    def test_more_than_ten_lines(self):
        block = TIMES + b"\n" + b"".join(b"line %d\n" % number for number in range(1, 12))
        lines, sums = self.check(b"WEBVTT\n\n" + block + b"\n")
        self.assertEqual(lines, ['13: changed: the block is cut off before "line 10" [Q301]'])
        self.assertEqual((sums["cues_delivered"], sums["bytes"]["cut_off"]), (1, 16))

    def test_the_last_blank_line(self):
        for end, expected in ((b"", 1), (b"\n", 1), (b"\n\n", 0), (b"\r\r", 0), (b"\n\r\n", 0)):
            with self.subTest(end):
                lines, sums = self.check(b"WEBVTT\n\n" + TIMES + b"\none\ntwo" + end)
                self.assertEqual(
                    lines, ["5: remark: no blank line ends the last cue [Q418]"] * expected)
                self.assertEqual(sums["cues_delivered"], 1)

    def test_long_texts_are_shortened(self):
        texts = (("ä" * 20, "ä" * 20), ("ä" * 21, "ä" * 20 + "..."),
                 ("x" + "ä" * 30, "x" + "ä" * 19 + "..."), ("x" * 41, "x" * 40 + "..."))
        results = self.check_all([b"WEBVTT\n\n" + text.encode() + b"\n\n" for text, _ in texts])
        for (_, shown), (lines, _) in zip(texts, results):
            self.assertEqual(lines, [f'3: lost: a line on its own, "{shown}" [Q106]'])

    def test_line_numbers_with_every_line_end(self):
        track = b"WEBVTT\n\nNOTE\n" + GOOD + b"\nalone\n\n\n" + TIMES + b"\n<x>\n\n"
        expected = self.check(track)[0]
        self.assertEqual([line.split(":")[0] for line in expected], ["8", "12"])
        for line_end in (b"\r\n", b"\r"):
            self.assertEqual(self.check(track.replace(b"\n", line_end))[0], expected)

    def test_a_module_that_delivers_nothing(self):
        result = self.quill("check", "--module", fixture("scripted"),
                            self.file("track.vtt", b"WEBVTT\n\n"))
        self.assert_fails(result, 1, "does not deliver an ordinary cue")


if __name__ == "__main__":
    unittest.main()
