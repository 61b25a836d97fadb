"""The command line of quill fix: where it writes, what it says, and how it ends."""

import os
import stat
import subprocess
import unittest

from quill_runner import EMULATOR, QuillTest, broken, fixture

GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHi\n\n"
COMMA = GOOD.replace(b"00:01.", b"00:01,")
LEFT = GOOD + b"soon --> 00:03.000\nNobody sees this.\n\n"

SAID = b': fixed: "00:01,000" is "00:01.000" now [Q102]\n'


class Command(QuillTest):
    def setUp(self):
        super().setUp()
        self.track = self.file("track.vtt", COMMA)

    def content(self, path):
        with open(path, "rb") as file:
            return file.read()

    def test_without_an_option_the_track_goes_to_standard_output(self):
        result = self.quill("fix", self.track)
        self.assertEqual((result.code, result.out), (0, GOOD))
        self.assertEqual(result.err, self.track.encode() + b":3" + SAID)
        result = self.quill("fix", "-", stdin=COMMA)
        self.assertEqual((result.out, result.err), (GOOD, b"standard input:3" + SAID))
        self.assertEqual(self.quill("fix", "--quiet", self.track).err, b"")
        self.assertEqual(self.content(self.track), COMMA)

    def test_exit_codes(self):
        for track, plain, dry in ((GOOD, 0, 0), (COMMA, 0, 1), (LEFT, 1, 1)):
            path = self.file("one.vtt", track)
            for arguments, code in (((), plain), (("-o", path + ".out"), plain),
                                    (("--dry-run",), dry), (("--diff",), dry),
                                    (("--in-place",), plain)):
                with self.subTest(track=track, arguments=arguments):
                    self.assertEqual(self.quill("fix", *arguments, path).code, code)

    def test_what_is_left_is_said(self):
        result = self.quill("fix", self.file("left.vtt", LEFT))
        self.assertEqual(result.out, LEFT)
        self.assertIn(b'left.vtt:6: left: lost: invalid start time "soon" [Q101]; the time can be read '
                      b"as more than one, or as none: write MM:SS.mmm or HH:MM:SS.mmm", result.err)
        result = self.quill("fix", "--skip", "Q102", self.track)
        self.assertIn(b"with a decimal comma [Q102]; it was not to be fixed: write ", result.err)

    def test_an_output_file(self):
        out = os.path.join(self.folder, "out.vtt")
        self.assertEqual(self.quill("fix", self.track, "-o", out).out, b"")
        self.assertEqual(self.content(out), GOOD)
        self.assertEqual(stat.S_IMODE(os.stat(out).st_mode), 0o666 & ~self.umask())
        self.assertEqual(self.quill("fix", self.track, "-o", "-").out, GOOD)
        self.assertEqual(self.content(self.track), COMMA)
        with open("/dev/null", "wb") as nowhere:
            self.assertEqual(self.quill("fix", self.track, "-o", "/dev/stderr",
                                        stdout=nowhere, stderr=subprocess.PIPE).err[:len(GOOD)],
                             GOOD)

    @staticmethod
    def umask():
        mask = os.umask(0)
        os.umask(mask)
        return mask

    def test_in_place(self):
        os.chmod(self.track, 0o640)
        link = os.path.join(self.folder, "link.vtt")
        os.symlink("track.vtt", link)
        hard = os.path.join(self.folder, "hard.vtt")
        os.link(self.track, hard)
        before = os.stat(self.track)
        self.assertEqual(self.quill("fix", "--in-place", link).code, 0)
        self.assertTrue(os.path.islink(link))
        self.assertEqual(self.content(hard), COMMA)
        self.assertEqual(self.content(self.track), GOOD)
        after = os.stat(self.track)
        self.assertEqual(stat.S_IMODE(after.st_mode), 0o640)
        self.assertNotEqual(after.st_ino, before.st_ino)  # another file took its place
        self.assertEqual(sorted(os.listdir(self.folder)), ["hard.vtt", "link.vtt", "track.vtt"])

    def test_what_is_in_order_is_not_written_in_place(self):
        path = self.file("good.vtt", GOOD)
        before = os.stat(path)
        self.assertEqual(self.quill("fix", "--in-place", path).code, 0)
        self.assertEqual((os.stat(path).st_ino, os.stat(path).st_mtime_ns),
                         (before.st_ino, before.st_mtime_ns))

    def test_a_file_that_cannot_be_written(self):
        missing = os.path.join(self.folder, "no folder", "out.vtt")
        self.assert_fails(self.quill("fix", "--quiet", self.track, "-o", missing), 2, missing,
                          "No such file or directory")
        self.assert_fails(self.quill("fix", "--quiet", self.track, "-o", "/dev/full"), 2,
                          "/dev/full: No space left on device")

    def test_folders(self):
        os.mkdir(os.path.join(self.folder, "below"))
        below = self.file("below/other.vtt", COMMA)
        self.assertEqual(self.quill("fix", "--in-place", "--quiet", self.folder).code, 0)
        self.assertEqual((self.content(self.track), self.content(below)), (GOOD, GOOD))

    def test_a_track_that_cannot_be_fixed_keeps_no_other_from_it(self):
        page = self.file("page.vtt", b"<!DOCTYPE html>\n")
        missing = os.path.join(self.folder, "missing.vtt")
        result = self.quill("fix", "--in-place", "--quiet", page, missing, self.track)
        self.assertEqual((result.code, result.out), (2, b""))
        self.assertEqual(self.messages(result), [
            page + ": nothing was written: the file looks like an HTML page [Q135]; a server may "
            "have sent it; look at it and fetch the track again",
            missing + ": No such file or directory"])
        self.assertEqual((self.content(page), self.content(self.track)),
                         (b"<!DOCTYPE html>\n", GOOD))

    def test_line_ends_that_are_written_out_among_other_things_are_left(self):
        path = self.file("one.vtt", GOOD.replace(b"Hi", b"a\\tb").replace(b"\n", b"\\n"))
        self.assert_fails(self.quill("fix", "--in-place", path), 1, "nothing was written",
                          "write each \\n as a line end")

    def test_a_diff(self):
        for end in (b"\n", b"\r\n"):
            for before in (COMMA, b"\xef\xbb\xbf" + COMMA, COMMA[:-1], COMMA[:-2],
                           GOOD + COMMA[8:] * 30 + b"1\n\n" + GOOD[8:], b"\n\n" + GOOD, GOOD):
                path = self.file("one.vtt", before.replace(b"\n", end))
                diff = self.quill("fix", "--diff", path)
                self.assertEqual(self.content(path), before.replace(b"\n", end))
                self.assertEqual(diff.out == b"", before == GOOD)
                after = self.quill("fix", "--quiet", path).out
                with self.subTest(diff.out):
                    self.assertEqual(self.patched(path, diff.out), after)

    def patched(self, path, diff):
        """What the diff makes of the file, by another reading of what diffs mean."""
        left = self.content(path).splitlines(keepends=True)
        right, at = [], 0
        rows = diff.split(b"\n")[2:-1]
        rows = [row + b"\n" * (not following.startswith(b"\\"))
                for row, following in zip(rows, rows[1:] + [b""]) if not row.startswith(b"\\")]
        for row in rows:
            if row.startswith(b"@@"):
                begin, count = row.split()[1][1:].split(b",")
                begin = int(begin) - (count != b"0")
                right += left[at:begin]
                at = begin
            elif row.startswith(b"+"):
                right.append(row[1:])
            else:
                self.assertEqual(row[1:], left[at])
                right += [row[1:]] if row.startswith(b" ") else []
                at += 1
        return b"".join(right + left[at:])

    def test_only_and_skip(self):
        both = COMMA.replace(b"00:02.", b"00:02,")
        path = self.file("both.vtt", both + GOOD[8:-1])
        for arguments, wanted in (
                ((), {"Q102", "Q104", "Q418"}), (("--only", "Q418"), {"Q418"}),
                (("--skip", "Q418"), {"Q102", "Q104"}),
                (("--only", "Q1", "--only", "Q4"), {"Q102", "Q104", "Q418"}),
                (("--only", "Q1,Q418", "--skip", "Q10"), {"Q418"}),
                # One half of a fix makes no cue.
                (("--skip", "Q104"), {"Q418"})):
            with self.subTest(arguments):
                said = self.quill("fix", "--dry-run", *arguments, path).out.decode()
                self.assertEqual({line[-5:-1] for line in said.splitlines() if ": fixed:" in line},
                                 wanted)

    def test_much_of_a_kind_is_folded(self):
        path = self.file("many.vtt", COMMA + COMMA[8:] * 9)
        said = self.quill("fix", "--dry-run", path).out.decode().splitlines()
        self.assertEqual((len(said), said[-1]), (4, path + ": and 7 more fixed: [Q102]"))
        said = self.quill("fix", "--dry-run", "--all", path).out.decode().splitlines()
        self.assertEqual(len(said), 10)

    def test_other_encodings(self):
        path = self.file("latin.vtt", GOOD.replace(b"Hi", b"caf\xe9"))
        result = self.quill("fix", path)
        self.assertEqual(result.out, GOOD.replace(b"Hi", b"caf\xe9"))
        result = self.quill("fix", "--from", "ISO-8859-1", path)
        if EMULATOR and b"is not known here" in result.err:
            self.skipTest("the C library of this target has no other encodings installed")
        self.assertEqual(result.out, GOOD.replace(b"Hi", "café".encode()))
        self.assertIn(b":1: fixed: converted from ISO-8859-1 [Q417]\n", result.err)
        self.assert_fails(self.quill("fix", "--from", "UTF-8", path), 2, path,
                          "it is not in the encoding UTF-8")
        self.assert_fails(self.quill("fix", "--from", "nonsense", path), 2, path,
                          'the encoding "nonsense" is not known here')
        odd = self.file("odd.vtt", b"\xff\xfe" + GOOD.decode().encode("utf-16-le") + b"\n")
        self.assert_fails(self.quill("fix", odd), 2, odd, "it is not in the encoding UTF-16LE")

    def test_what_is_packed_badly(self):
        path = self.file("bad.vtt", b"\x1f\x8b\x08 nothing more")
        self.assert_fails(self.quill("fix", path), 2, path, "gzip cannot unpack it")
        if not EMULATOR:
            self.assert_fails(self.quill("fix", path, env=dict(os.environ, PATH="/nowhere")), 2,
                              path, "the program gzip is not here")

    def test_wrong_usage(self):
        for arguments, words in (
                (("fix",), "TRACK or --files-from is required"),
                (("fix", self.track, self.track), "several tracks or a folder need --in-place"),
                (("fix", self.folder), "several tracks or a folder need --in-place"),
                (("fix", "--in-place", "--diff", self.track),
                 "only one of -o, --in-place, --diff and --dry-run"),
                (("fix", "--in-place", "-"), "standard input cannot be written in place"),
                (("fix", "--only", "Q9", self.track), "--only takes codes and beginnings of codes"),
                (("fix", "--skip", "Q1,,", self.track), "--skip takes codes and beginnings of")):
            with self.subTest(arguments):
                self.assert_fails(self.quill(*arguments), 2, words)
        self.assert_fails(self.quill("fix", "--module", self.track, self.track), 3, self.track)

    def test_what_does_not_come_as_stated_is_not_written(self):
        """The module has the last word, whatever module that is."""
        for before, words in ((b"align:RIGHT", "the settings would come otherwise"),
                              (b"line:-3,END", "the settings would come otherwise")):
            path = self.file("one.vtt", GOOD.replace(b"\nHi", b" " + before + b"\nHi"))
            self.assertEqual(self.quill("fix", "--dry-run", path).code, 1)
            fault = "right-is-left" if before.startswith(b"align") else "negative-lines"
            result = self.quill("fix", "--in-place", "--module", fixture("broken"), path,
                                env=broken(fault))
            self.assert_fails(result, 1, path + ": nothing was written, as the fixes could not be "
                              "verified: line 3: " + words)
            self.assertIn(before, self.content(path))


if __name__ == "__main__":
    unittest.main()
