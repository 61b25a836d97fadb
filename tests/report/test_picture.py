"""The picture of the README can be drawn again, and is small."""

import pathlib
import struct
import subprocess
import tempfile
import unittest

from browser import TREE

HERE = pathlib.Path(__file__).resolve().parent
PICTURE = TREE / "docs" / "report.png"


def size_of(path):
    head = path.read_bytes()[:24]
    return head[:8] == b"\x89PNG\r\n\x1a\n" and struct.unpack(">II", head[16:])


class Picture(unittest.TestCase):
    def test_it_can_be_drawn_again(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "report.png"
            subprocess.run([HERE / "picture", path], check=True, timeout=60)
            self.assertEqual(size_of(path), size_of(PICTURE))
            self.assertLessEqual(path.stat().st_size, 200 << 10)
        self.assertLessEqual(PICTURE.stat().st_size, 200 << 10)


if __name__ == "__main__":
    unittest.main()
