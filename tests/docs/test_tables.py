"""Tables of the documents whose rows can be played: what they say must be what the module does.

QUILL is the quill that plays them, QUILL_EMULATOR what runs it, if anything.
"""

import json
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

QUILL = os.environ["QUILL"]
EMULATOR = os.environ.get("QUILL_EMULATOR", "").split()
TREE = pathlib.Path(__file__).resolve().parents[2]
TRACK_FORMAT = (TREE / "docs/track-format.md").read_text()
HOST_GUIDE = (TREE / "docs/host-guide.md").read_text()

ESCAPES = {"\\n": b"\n", "\\t": b"\t", "\\r": b"\r"}
CUE = b"00:01.000 --> 00:02.000\nText\n\n"


def rows(page, *headings):
    """The cells of all rows of the table with these headings."""
    head = "| " + " | ".join(headings) + " |\n|" + "---|" * len(headings) + "\n"
    if page.count(head) != 1:
        raise AssertionError(f"there is not one table with the headings {headings}")
    lines = page.split(head)[1].split("\n\n")[0].splitlines()
    return [[cell.strip() for cell in line.strip("|").split(" | ")] + [""] for line in lines]


def unescape(code):
    """The bytes that a cell's code stands for; what follows the code is a remark."""
    text = re.match(r"`(.*?)`", code)[1]
    pieces = re.split(r"(\\[ntr]|\\x[0-9A-F]{2})", text)
    return b"".join(ESCAPES.get(piece) or (bytes([int(piece[2:], 16)]) if piece[:2] == "\\x"
                                           else piece.encode()) for piece in pieces)


def diagnostics(cell):
    """The lines that a cell says are printed."""
    lines = re.findall(r"`(.*?)`(?: and )?", cell)
    return [line[1:] if line.startswith("*") else "[WEBVTT] ERR:: " + line for line in lines]


class Played:
    """What became of a track: the cues, and the lines that the module printed about it."""

    def __init__(self, track):
        with tempfile.NamedTemporaryFile(suffix=".vtt") as file:
            file.write(track)
            file.flush()
            done = subprocess.run([*EMULATOR, QUILL, "cues", "--format", "json", file.name],
                                  check=False, timeout=60, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE)
        self.cues = [json.loads(line) for line in done.stdout.splitlines()]
        said = done.stderr.decode(errors="backslashreplace").replace("\t", "\\t").splitlines()
        thrown = re.search(r"threw std::out_of_range: ([\w:]+)", "\n".join(said))
        self.thrown = thrown[1] if thrown else None
        self.printed = [line for line in said if line and not line.startswith("quill: ")
                        and line not in ("[WEBVTT] ERR:: FINISHED",
                                         "[WEBVTT] ERR:: Buffer Exhausted")]


class TrackFormat(unittest.TestCase):
    maxDiff = None

    def assert_printed(self, played, cell):
        self.assertEqual(played.printed, diagnostics(cell))

    def check_rows(self, headings, least, check):
        table = rows(TRACK_FORMAT, *headings)
        self.assertGreaterEqual(len(table), least)
        for row in table:
            with self.subTest(row[0]):
                check(*row[:3])

    def test_first_lines(self):
        def check(line, accepted, printed):
            played = Played(unescape(line) + b"\n\n" + CUE)
            self.assertEqual(["no", "yes"][len(played.cues)], accepted)
            self.assert_printed(played, printed)
        self.check_rows(("First line", "Accepted", "Printed"), 10, check)

    def test_header_lines(self):
        def check(line, shift, printed):
            played = Played(b"WEBVTT\n" + unescape(line) + b"\n\n" + CUE)
            if shift.startswith("thrown"):
                self.assertEqual(f"thrown: `{played.thrown}`", shift)
            else:
                self.assertEqual([str(cue["dStartTime"] - 1) for cue in played.cues], [shift])
            self.assert_printed(played, printed)
        self.check_rows(("Header line", "Shift", "Printed"), 14, check)

    def assert_delivered(self, played, cell):
        texts = [cue["pcText"].encode() for cue in played.cues]
        self.assertEqual(texts, [] if cell == "nothing" else [unescape(cell)])

    def test_blocks(self):
        def check(block, delivered, printed):
            played = Played(b"WEBVTT\n\n" + unescape(block) + b"\n\n")
            self.assert_delivered(played, delivered)
            self.assert_printed(played, printed)
        self.check_rows(("Block", "Delivered", "Printed"), 16, check)

    def test_texts(self):
        def check(text, delivered, printed):
            played = Played(b"WEBVTT\n\n00:01.000 --> 00:02.000\n" + unescape(text) + b"\n\n")
            self.assert_delivered(played, delivered)
            self.assert_printed(played, printed)
        self.check_rows(("Text", "Delivered", "Printed"), 15, check)

    def test_times(self):
        def check(time, seconds, printed):
            played = Played(b"WEBVTT\n\n" + unescape(time) + b" --> 00:02.000\nx\n\n")
            starts = [str(cue["dStartTime"]) for cue in played.cues]
            self.assertEqual(starts, [] if seconds == "refused" else [seconds])
            self.assert_printed(played, printed)
        self.check_rows(("Time", "Seconds", "Printed"), 14, check)

    def test_settings(self):
        def check(setting, record, printed):
            played = Played(b"WEBVTT\n\n00:01.000 --> 00:02.000 " + unescape(setting) + b"\nx\n\n")
            if record.startswith("thrown"):
                self.assertEqual(f"thrown: `{played.thrown}`", record)
            else:
                self.assertEqual(len(played.cues), 1)
                fields = re.findall(r"`(\w+)` (-?\d+)", record)
                self.assertGreaterEqual(len(fields), 1)
                self.assertEqual([(name, str(played.cues[0][name])) for name, _ in fields], fields)
            self.assert_printed(played, printed)
        self.check_rows(("Setting", "In the record", "Printed"), 25, check)


class HostGuide(unittest.TestCase):
    def test_offsets_are_those_of_the_header(self):
        cue = rows(HOST_GUIDE, "Offset", "Bytes", "Field", "What it holds", "Without a setting")
        delivery = rows(HOST_GUIDE, "Offset", "Bytes", "Field", "What it holds")
        header = (TREE / "include/quillcaption/quillcaption.h").read_text()
        for record, table in (("WebvttCueNode", cue), ("WebvttDataInfo", delivery)):
            asserted = re.findall(rf"ASSERT_AT\({record}, (\w+), (\d+)\);", header)
            size = int(re.search(rf"sizeof\({record}\) == (\d+)", header)[1])
            self.assertEqual([(row[2].strip("`"), row[0]) for row in table], asserted)
            ends = [int(row[0]) + int(row[1]) for row in table]
            self.assertEqual(ends[-1], size)
            # Nothing overlaps; the one gap is before the first time.
            gaps = [int(row[0]) - end for row, end in zip(table[1:], ends)]
            self.assertEqual([gap for gap in gaps if gap], [4] if size == 48 else [])


if __name__ == "__main__":
    unittest.main()
