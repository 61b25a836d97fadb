"""How bench/figures puts what it measured into a page, and when a figure has moved."""

import pathlib
import sys
import tempfile
import unittest
from unittest import mock

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(1, str(TREE / "bench"))
import measuring  # pylint: disable=wrong-import-position
import shown  # pylint: disable=wrong-import-position

PRINTED = ["what          bytes  a byte", "a line, 64 KB    10    1.50", "a line, 8 KB     11    1.60",
           "b                12    1.70", "", "what           cues", "b                13"]

# What the page shows, and what it shall show.
FILLED = (
    (["anything"], PRINTED),
    (["...", "b                99    9.90", "..."], ["...", PRINTED[3], "..."]),
    # A row that stands twice, of which the first is left out; a label with a number in it.
    (["what          bytes  a byte", "...", "a line, 8 KB      9    9.90", "...", "b                 9", "..."],
     [PRINTED[0], "...", PRINTED[2], "...", PRINTED[3], "..."]),
    (["...", "", "what           cues", "b                 9"], ["...", *PRINTED[4:]]),
    (["...", "b                99    9.90", "...", "b                 9"],
     ["...", PRINTED[3], "...", PRINTED[6]]),
    # The number in a label may be a figure itself.
    (["...", "a line, 7 KB     11    1.60", "..."], ["...", PRINTED[1], "..."]),
)
NOT_FILLED = (
    (["...", "c                12    1.70", "..."], "not printed any more.*: c  "),
    (["...", "a line, 64 KB     9    1.50", "b                12    1.70", "..."], "rows are left out"),
)
# What the page shows, what is measured now, how many columns count, and whether that has moved.
MOVED = (
    ("a    1.50", "a    1.50", 1, False), ("a    1.50", "a    1.51", 1, False),
    ("a    1.50", "a    1.52", 1, True), ("a    1.50  2.0", "a    1.50  9.0", 1, False),
    ("a    1.50  2.0", "a    1.50  9.0", 2, True), ("a    1492", "a    1494", 1, True),
    ("a    1492", "b    1492", 1, True),
)


class Shown(unittest.TestCase):
    def test_rows_are_filled(self):
        for page, expected in FILLED:
            with self.subTest(page):
                self.assertEqual(shown.fill(page, PRINTED), expected)

    def test_rows_that_cannot_be_filled(self):
        for page, message in NOT_FILLED:
            with self.subTest(page), self.assertRaisesRegex(measuring.Failure, message):
                shown.fill(page, PRINTED)

    def test_moved(self):
        for page, printed, columns, expected in MOVED:
            with self.subTest(page=page, printed=printed):
                self.assertEqual(bool(shown.moved([page], [printed], columns)), expected)

    def test_the_digest_is_of_the_sources(self):
        with tempfile.TemporaryDirectory() as folder, mock.patch.object(measuring, "TREE", pathlib.Path(folder)):
            source = pathlib.Path(folder, "src", "a.cpp")
            source.parent.mkdir()
            digests = []
            for text in ("one", "two", "one"):
                source.write_text(text, "utf-8")
                digests.append(shown.digest())
            (source.parent / "notes.md").write_text("beside", "utf-8")
            source.with_name("b.cpp").write_text("", "utf-8")
            digests.append(shown.digest())
        self.assertEqual(digests[0], digests[2])
        self.assertEqual(len(set(digests)), 3)

    def test_the_page_has_a_place_for_the_commit(self):
        text = shown.PAGE.read_text("utf-8")
        self.assertEqual(len(shown.MARK.findall(text)), 1)
        self.assertGreaterEqual(len(list(shown.measured_blocks(text))), 9)


if __name__ == "__main__":
    unittest.main()
