"""What quill check shows of tracks with many findings, and of many tracks."""

import json
import unittest

from quill_runner import QuillTest

KIB_64 = 65536
GOOD = b"00:01.000 --> 00:02.000\nHello\n\n"
REMARK = b"00:01.000 --> 00:02.000 align:center\nHello\n\n"
LOST = b"soon --> 00:02.000\nHello\n\n"
TAKEN = 'is taken for start [Q408]; write "align:middle"'


def in_turn(cues, count):
    """The cues so many times, each time a minute later, so that none is the same as another."""
    return b"".join(cues.replace(b"00:0", b"%02d:%02d:0" % divmod(minute, 60))
                    for minute in range(count))


class Screen(QuillTest):
    def printed(self, *arguments, code=None, **how):
        result = self.quill("check", *arguments, cwd=self.folder, **how)
        self.assertEqual(result.err, b"")
        if code is not None:
            self.assertEqual(result.code, code)
        return result.out.decode().splitlines()

    def of(self, track, *arguments):
        """What is printed of one track, without its name."""
        self.file("t.vtt", b"WEBVTT\n\n" + track)
        return [line.removeprefix("t.vtt:") for line in self.printed(*arguments, "t.vtt")]

    def sums(self, track, *arguments):
        self.file("t.vtt", track)
        return json.loads(self.printed("--format", "json", *arguments, "t.vtt")[-1])["sums"]

    def test_a_track_without_a_finding_prints_nothing(self):
        self.assertEqual(self.of(GOOD), [])

    def test_its_sums_when_they_are_asked_for(self):
        self.assertEqual(self.of(GOOD, "--sums"), [
            " 1 cue delivered in chunks of 65536 bytes, 0 lost, 0 changed, 0 remarks",
            "  header lines: 0 used, 0 ignored; comments: 0",
            "  bytes: 39 = 7 signature + 2 blank lines + 30 delivered"])

    def test_the_sums_of_a_track_with_findings(self):
        sums = " 1 cue delivered in chunks of 99 bytes, 1 lost, 1 changed, 0 remarks: 1 Q101, 1 Q408"
        found = self.of(REMARK + LOST, "--chunk", "99")
        self.assertEqual(found[2:], [sums])
        self.assertEqual(self.of(REMARK + LOST, "--chunk", "99", "--sums")[2:], [
            sums, "  header lines: 0 used, 0 ignored; comments: 0",
            "  bytes: 78 = 7 signature + 3 blank lines + 43 delivered + 25 lost"])
        self.assertEqual(self.of(REMARK + LOST, "--chunk", "99", "--quiet"), found[:2])

    def test_findings_of_one_code_fold(self):
        one = '{}:31: changed: "align:center" ' + TAKEN
        three = [one.format(3), one.format(6), one.format(9)]
        for count, rest in ((3, []), (4, ["1 more like these, line 12"]),
                            (800, ["797 more like these, lines 12 to 2400"])):
            with self.subTest(count):
                self.assertEqual(self.of(in_turn(REMARK, count), "--quiet"), three + [
                    f"12: changed: and {more} [Q408]; --all shows each" for more in rest])
        self.assertEqual(self.of(in_turn(REMARK, 5), "--quiet", "--all"),
                         three + [one.format(12), one.format(15)])

    def test_each_code_folds_by_itself_and_all_stand_by_line(self):
        unknown = b"00:03.000 --> 00:04.000\n&copy;\n\n"
        lines = self.of(in_turn(REMARK + unknown, 4), "--quiet")
        self.assertEqual([line.split(":")[0] for line in lines],
                         ["3", "7", "9", "13", "15", "19", "21", "25"])
        self.assertIn("and 1 more like these, line 21 [Q408]", lines[6])
        self.assertIn("and 1 more like these, line 25 [Q413]", lines[7])

    def test_cues_lost_with_one_chunk_are_one(self):
        lines = self.of(LOST + GOOD * 1000, "--quiet")
        self.assertEqual(lines[1:], [
            "6: lost: the cue at 00:00:01.000 is lost with its chunk, which line 3 ended, and 999 "
            "more behind it, lines 9 to 3003 [Q201]; correct that block, or feed other chunks"])
        lines = self.of(LOST + GOOD * 2, "--quiet")
        self.assertIn("which line 3 ended, and 1 more behind it, line 9 [Q201]", lines[1])
        self.assertEqual(len(self.of(LOST + GOOD * 1000, "--quiet", "--all")), 1001)

    def test_four_chunks_that_were_lost(self):
        chunk = LOST + GOOD * 2
        first = b"NOTE " + b"x" * (len(chunk) - 15) + b"\n\n"
        lost = [line for line in self.of(first + chunk * 5, "--quiet", "--chunk", len(chunk))
                if "Q201" in line]
        self.assertEqual(len(lost), 4)
        for number, line in enumerate(lost[:3]):
            self.assertIn(f"which line {9 * number + 5} ended, and 1 more behind it, ", line)
        self.assertTrue(lost[3].startswith("35: lost: and 4 more like these, lines 35 to 47 ["))

    def test_cues_and_lines_and_tracks_are_counted_apart(self):
        stray = b"alone\n\n"
        self.assertEqual(self.of(GOOD + LOST + stray * 2)[-1],
                         " 1 cue delivered in chunks of 65536 bytes, 1 lost, 2 other lines lost, "
                         "0 changed, 0 remarks: 1 Q101, 2 Q106")
        self.assertEqual(self.sums(b"WEBVTT\n\n" + GOOD + LOST + stray * 2)["lost"],
                         {"cues": 1, "lines": 2, "tracks": 0})
        self.assertEqual(self.sums(b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:9\n\n")["lost"],
                         {"cues": 0, "lines": 1, "tracks": 0})
        self.file("t.vtt", b"{}\n")
        self.assertEqual(self.printed("t.vtt")[-1],
                         "t.vtt: 0 cues delivered in chunks of 65536 bytes, 0 lost, 1 track "
                         "rejected, 0 changed, 0 remarks: 1 Q144")
        self.assertEqual(self.sums(b"{}\n")["lost"], {"cues": 0, "lines": 0, "tracks": 1})

    def test_no_program_gets_fewer_findings(self):
        self.file("t.vtt", b"WEBVTT\n\n" + LOST + REMARK * 800)
        lines = list(map(json.loads, self.printed("--format", "json", "t.vtt")))
        self.assertEqual(len(lines), 802)
        self.assertEqual({line["cause_line"] for line in lines if line.get("code") == "Q201"}, {3})
        self.assertEqual(lines[-1]["sums"]["codes"], {"Q101": 1, "Q201": 800})

    def test_the_total_of_several_tracks(self):
        self.file("a.vtt", b"WEBVTT\n\n" + GOOD)
        self.file("b.vtt", b"WEBVTT\n\n" + REMARK + LOST)
        self.file("c.vtt", b"WEBVTT\n\n" + REMARK)
        total = "total: 3 tracks, 2 with findings: 3 cues delivered in chunks of 65536 bytes, " \
                "1 lost, 2 changed, 0 remarks: 1 Q101, 2 Q408"
        self.assertEqual(self.printed(".", code=1)[-1], total)
        self.assertEqual(self.printed(".", "--sums", code=1)[-3:], [
            total, "  header lines: 0 used, 0 ignored; comments: 0",
            "  bytes: 169 = 21 signature + 7 blank lines + 116 delivered + 25 lost"])
        self.assertNotIn("total", "".join(self.printed(".", "--quiet", code=1)))
        self.assertEqual(self.printed("a.vtt", "a.vtt", code=0), [])
        self.assertTrue(self.printed("a.vtt", "a.vtt", "--sums")[-3].startswith(
            "total: 2 tracks, 0 with findings: 2 cues delivered"))
        last = json.loads(self.printed(".", "--format", "json", code=1)[-1])
        self.assertEqual(last["total"], {"tracks": 3, "with_findings": 2, "failed": 0})
        self.assertEqual(last["sums"]["codes"], {"Q101": 1, "Q408": 2})

    def test_the_default_plays_what_quill_cues_plays(self):
        filler = GOOD * (KIB_64 // len(GOOD) + 1)
        header = b"WEBVTT " + b"x" * 70000 + b"\n\n"
        for name, track in (("behind the chunk", b"WEBVTT\n\n" + LOST + filler * 2),
                            ("in the last chunk", b"WEBVTT\n\n" + filler * 2 + LOST + GOOD),
                            ("a long first line", header + LOST + filler * 2),
                            ("a longer first line", b"WEBVTT " + b"x" * 1500000),
                            ("to the byte", b"WEBVTT " + b"x" * (KIB_64 - 7)),
                            ("first line to the byte", b"WEBVTT " + b"x" * (KIB_64 - 8) + b"\n\n" +
                             LOST + filler)):
            with self.subTest(name):
                sums = self.sums(track)
                cues = self.quill("cues", "--quiet", "--format", "json", "t.vtt", cwd=self.folder)
                self.assertEqual(sums["cues_delivered"], cues.out.count(b"\n"))
                self.assertEqual(sums["chunk_size"], KIB_64)
        # Which is not what comes of another size.
        whole = self.sums(header + LOST + filler * 2, "--chunk", "268435456")
        self.assertEqual((whole["cues_delivered"], whole["chunk_size"]), (0, 268435456))


if __name__ == "__main__":
    unittest.main()
