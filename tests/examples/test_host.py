"""The example host: what it prints and how it ends, for tracks and files that are good and bad.

EXAMPLE_HOST is the program, EXAMPLE_WITHOUT_MEMORY the same with a malloc that fails,
EXAMPLE_SOURCE the top folder, EXAMPLE_EMULATOR what runs programs of the target, if anything.
"""

import os
import pathlib
import subprocess
import tempfile
import unittest

HOST = os.environ["EXAMPLE_HOST"]
WITHOUT_MEMORY = os.environ["EXAMPLE_WITHOUT_MEMORY"]
SOURCE = pathlib.Path(os.environ["EXAMPLE_SOURCE"])
EMULATOR = os.environ["EXAMPLE_EMULATOR"].split()
MODULE = os.environ["QUILLCAPTION_MODULE"]

CUE = b"00:01.000 --> 00:02.000\nOne\n\n"
CUE_SHOWN = "1.000 to 2.000\nOne\n"
REFUSED = "host: result 2, the rest of a chunk is lost\nhost: not a WebVTT track\n"
LOST = "host: result {}, the rest of a chunk is lost\n"

# Name, track, exit code, captions, what is said on standard error.
TRACKS = [
    ("one cue", b"WEBVTT\n\n" + CUE, 0, CUE_SHOWN, ""),
    ("no blank line at the end", b"WEBVTT\n\n" + CUE[:-2], 0, CUE_SHOWN, ""),
    ("carriage returns", b"WEBVTT\r\n\r\n" + CUE.replace(b"\n", b"\r\n"), 0, CUE_SHOWN, ""),
    ("first line only", b"WEBVTT\n", 0, "", ""),
    ("empty", b"", 1, "", "host: not a WebVTT track\n"),
    ("no first line", b"WEBVTT", 1, "", REFUSED),
    ("a byte order mark", b"\xef\xbb\xbfWEBVTT\n\n" + CUE, 1, "", REFUSED),
    ("an unknown tag", b"WEBVTT\n\n" + CUE + b"00:03.000 --> 00:04.000\n<x>\n\n" + CUE, 0,
     CUE_SHOWN, LOST.format(2)),
    ("a line setting without a number", b"WEBVTT\n\n00:01.000 --> 00:02.000 line:-\nx\n\n" + CUE, 0,
     "", LOST.format(-1)),
    ("a map without its second item", b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:1\n\n" + CUE, 0,
     "", LOST.format(-1)),
    ("an end before the start", b"WEBVTT\n\n00:02.000 --> 00:01.000\nx\n\n" + CUE, 0, CUE_SHOWN, ""),
    ("control bytes", "WEBVTT\n\n00:01.000 --> 00:02.000\né\x1b[1m\tx\x7f\n\n".encode(), 0,
     "1.000 to 2.000\né?[1m?x?\n", ""),
    ("many chunks", b"WEBVTT\n\n" + CUE * 1000, 0, CUE_SHOWN * 1000, ""),
    ("a chunk to the byte", b"WEBVTT\n\n" + b"\n" * (4096 - 8 - len(CUE)) + CUE, 0, CUE_SHOWN, ""),
]


class HostTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_host(self, *arguments, program=HOST):
        """Exit code, captions without the module's diagnostics, standard error."""
        done = subprocess.run([*EMULATOR, program, *map(str, arguments)], check=False, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        lines = done.stdout.decode().splitlines(keepends=True)
        shown = [line for line in lines if not line.startswith(("[WEBVTT", "data is", "MPEGTS",
                                                                "fgParse"))]
        return done.returncode, "".join(shown), done.stderr.decode()

    def test_tracks(self):
        for name, track, code, shown, said in TRACKS:
            with self.subTest(name):
                path = self.folder / "track.vtt"
                path.write_bytes(track)
                self.assertEqual(self.run_host(MODULE, path), (code, shown, said))

    def test_dialogue(self):
        code, shown, said = self.run_host(MODULE, SOURCE / "samples/dialogue.vtt")
        self.assertEqual((code, said), (0, ""))
        self.assertIn("4.000 to 7.250\nIt is never late, Åse.\nIt waits for the fog to decide.\n",
                      shown)

    def test_a_track_that_does_not_end(self):
        path = self.folder / "track.vtt"
        with open(path, "wb") as file:
            file.write(b"WEBVTT\n\n")
            file.truncate((16 << 20) + 8192)
        self.assertEqual(self.run_host(MODULE, path), (2, "", "host: too long\n"))

    def test_files_at_fault(self):
        missing = self.folder / "none.vtt"
        self.assertEqual(self.run_host(MODULE, missing),
                         (2, "", f"{missing}: No such file or directory\n"))
        self.assertEqual(self.run_host(MODULE, self.folder),
                         (2, "", "host: the track cannot be read\n"))

    def test_modules_at_fault(self):
        track = SOURCE / "samples/dialogue.vtt"
        code, shown, said = self.run_host(self.folder / "none.so", track)
        self.assertEqual((code, shown), (3, ""))
        self.assertIn("none.so: cannot open shared object file", said)
        code, shown, said = self.run_host("libm.so.6", track)
        self.assertEqual((code, shown), (3, ""))
        self.assertIn("undefined symbol: WEBVTT_MODULE_INFO", said)

    def test_wrong_usage(self):
        for arguments in ((), (MODULE,), (MODULE, "a", "b")):
            self.assertEqual(self.run_host(*arguments), (2, "", "usage: host MODULE TRACK\n"))

    def test_no_memory(self):
        path = self.folder / "track.vtt"
        path.write_bytes(b"WEBVTT\n\n" + CUE)
        self.assertEqual(self.run_host(MODULE, path, program=WITHOUT_MEMORY),
                         (1, "", "host: out of memory\n"))

    def test_is_as_short_as_promised(self):
        lines = (SOURCE / "examples/host.c").read_text().splitlines()
        self.assertLessEqual(len(lines), 150)


if __name__ == "__main__":
    unittest.main()
