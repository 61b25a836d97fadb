"""The element in pipelines of gst-launch-1.0, held to what quill cues prints.

Environment: BUILD, the build's folder; PATH with gst-launch-1.0, GST_PLUGIN_PATH with the element."""

import glob
import json
import os
import random
import re
import socket
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

BUILD = os.environ["BUILD"]
QUILL = os.path.join(BUILD, "quill")
ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, os.pardir)
sys.path[1:1] = [os.path.join(ROOT, "tests", folder) for folder in ("model", "docs")]
import pages  # pylint: disable=wrong-import-position
from generate import Generator  # pylint: disable=wrong-import-position

TRACKS = 1000
BLOCKS = (1, 2, 3, 7, 100, 1460, 4096, 65536)
# As the element feeds them: a line feed behind a carriage return stands in front of the next line.
LINE = re.compile(rb"(?<=\r)\n[^\r\n]*[\r\n]?|[^\r\n]*[\r\n]|[^\r\n]+\Z")
CHAIN = re.compile(r"\((\d+) bytes, .*?pts: (\d+):(\d+):([\d.]+), duration: (\d+):(\d+):([\d.]+)")
PATIENCE = 60
DIFFERING = 150  # pixels of a picture, where another version of a library draws letters; one word is 400
WORKERS = 8  # a short pipeline waits for its threads more than it computes


def launch(pipeline, **options):
    return subprocess.run(["gst-launch-1.0", "-q", *pipeline.split()], check=True, timeout=PATIENCE,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)


def text_of(path, block):
    """What the element makes of a file that is read in blocks."""
    with tempfile.NamedTemporaryFile() as out:
        launch(f"filesrc location={path} blocksize={block} ! quillcaption quiet=true ! "
               f"filesink location={out.name}")
        return out.read().decode("utf-8")


def times_of(path):
    """Start and end of each buffer, in nanoseconds."""
    def nanoseconds(hours, minutes, seconds):
        return round((int(hours) * 60 + int(minutes)) * 60 * 10**9 + float(seconds) * 10**9)

    pipeline = (f"-v filesrc location={path} ! quillcaption quiet=true ! identity silent=false ! "
                "fakesink").split()
    said = subprocess.run(["gst-launch-1.0", *pipeline], check=True, stdout=subprocess.PIPE,
                          timeout=PATIENCE).stdout.decode()
    found = []
    for match in CHAIN.finditer(said):
        start = nanoseconds(*match.groups()[1:4])
        found.append((start, start + nanoseconds(*match.groups()[4:7])))
    return found


def cues_of(track):
    """What quill cues delivers of a track when each read gives it one line, and of that what is to be
    shown: that ends behind its start and behind the start of all."""
    # Packets: each read returns one.
    ours, theirs = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
    with ours, subprocess.Popen([QUILL, "cues", "--quiet", "--format", "json", "-"],
                                stdin=theirs, stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL) as quill:
        theirs.close()
        try:
            for line in LINE.findall(track):
                ours.sendall(line)
        except ConnectionError:
            pass  # quill reads no more of a track that is refused
        ours.close()
        cues = [json.loads(line) for line in quill.stdout.read().splitlines()]
    return [cue for cue in cues if cue["dStartTime"] < cue["dEndTime"] and cue["dEndTime"] > 0]


def gray(path):
    """The brightness of each pixel of the page's picture, but of the noise at the right."""
    with tempfile.NamedTemporaryFile() as out:
        launch(f"filesrc location={path} ! pngdec ! videoconvert ! video/x-raw,format=GRAY8 "
               f"! videocrop right=160 ! filesink location={out.name}")
        return out.read()


def comparable(text):
    """How many U+FFFD stand for bytes that are not UTF-8 is a matter of taste."""
    return re.sub("\ufffd+", "\ufffd", text)


class Launch(unittest.TestCase):
    def assert_agrees(self, path, blocks):
        with open(path, "rb") as file:
            expected = comparable("".join(cue["pcText"] for cue in cues_of(file.read())))
        for block in blocks:
            self.assertEqual(comparable(text_of(path, block)), expected, f"{path}, blocks of {block}")

    def test_samples_in_blocks_of_any_size(self):
        samples = glob.glob(os.path.join(ROOT, "samples", "*.vtt"))
        self.assertGreater(len(samples), 10)
        with ThreadPoolExecutor(WORKERS) as pool:
            list(pool.map(lambda sample: self.assert_agrees(sample, BLOCKS), samples))

    def test_times_of_the_samples(self):
        for sample in glob.glob(os.path.join(ROOT, "samples", "*.vtt")):
            with open(sample, "rb") as file:
                expected = [(round(max(cue["dStartTime"], 0) * 10**9), round(cue["dEndTime"] * 10**9))
                            for cue in cues_of(file.read())]
            times = times_of(sample)
            self.assertEqual(len(times), len(expected), sample)
            for one, other in zip(times, expected):
                self.assertAlmostEqual(one[0], other[0], delta=1000, msg=sample)
                self.assertAlmostEqual(one[1], other[1], delta=1000, msg=sample)

    def test_generated_tracks(self):
        with tempfile.TemporaryDirectory() as folder, ThreadPoolExecutor(WORKERS) as pool:
            def play(index):
                rng = random.Random(f"gstreamer/{index}")
                path = os.path.join(folder, f"{index}.vtt")
                with open(path, "wb") as file:
                    # filesrc refuses an empty file
                    file.write(Generator(rng).track() or b"\n")
                self.assert_agrees(path, [rng.choice(BLOCKS)])
                os.remove(path)

            self.assertEqual(len(list(pool.map(play, range(TRACKS)))), TRACKS)

    def test_an_undamaged_track_is_what_quill_prints_of_the_file(self):
        path = os.path.join(ROOT, "samples", "dialogue.vtt")
        said = subprocess.run([QUILL, "cues", "--quiet", "--format", "json", path],
                              check=True, stdout=subprocess.PIPE).stdout
        self.assertEqual(text_of(path, 4096),
                         "".join(json.loads(line)["pcText"] for line in said.splitlines()))

    def test_a_live_pipe_shows_cues_as_they_come(self):
        command = "gst-launch-1.0 -q fdsrc ! quillcaption quiet=true ! fdsink"
        with subprocess.Popen(command.split(), stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE) as process:
            process.stdin.write(b"WEBVTT\n\n")
            for number in range(1, 6):
                cue = f"00:0{number}.000 --> 00:0{number}.500\nNumber {number}\n\n"
                process.stdin.write(cue.encode())
                process.stdin.flush()
                # Nothing else is written before this has come out.
                self.assertEqual(process.stdout.readline(), f"Number {number}\n".encode())
            process.stdin.close()
            self.assertEqual(process.stdout.read(), b"")
            self.assertEqual(process.wait(PATIENCE), 0)

    def test_a_caption_on_a_picture_while_it_lasts(self):
        width, height, path = 640, 480, os.path.join(ROOT, "samples", "dialogue.vtt")
        with tempfile.NamedTemporaryFile() as out:
            launch(f"filesrc location={path} ! quillcaption quiet=true ! caption.text_sink "
                   "videotestsrc pattern=black num-buffers=2 "
                   f"! video/x-raw,format=GRAY8,width={width},height={height},framerate=1/1 "
                   f"! textoverlay name=caption ! filesink location={out.name}")
            pictures = out.read()
        self.assertEqual(len(pictures), 2 * width * height)
        before, during = pictures[:width * height], pictures[width * height:]
        self.assertLess(max(before), 32)  # the first caption comes after a second
        self.assertLess(max(during[:width * height // 2]), 32)
        self.assertGreater(sum(byte > 128 for byte in during[width * height // 2:]), 100)

    def test_the_picture_of_the_page(self):
        """The page's command draws it, but for what letters of another version's may differ in."""
        with open(os.path.join(ROOT, "docs", "gstreamer.md"), encoding="utf-8") as file:
            command, = (command.text for block in pages.blocks(file.read()) if block.language == "console"
                        for command in pages.commands(block) if "pngenc" in command.text)
        with open(os.path.join(ROOT, "samples", "dialogue.vtt"), "rb") as file:
            track = file.read()
        drawn = gray(os.path.join(ROOT, "docs", "gstreamer.png"))
        for old, new, is_the_same in ((b"", b"", True), (b"ferry", b"train", False), (b"ferry", b"fern", False),
                                      (b"00:00:01.000 -->", b"00:00:02.500 -->", False)):
            with tempfile.TemporaryDirectory() as folder:
                for name in ("build", "samples"):
                    os.mkdir(os.path.join(folder, name))
                with open(os.path.join(folder, "samples", "dialogue.vtt"), "wb") as file:
                    file.write(track.replace(old, new, 1))
                subprocess.run(["bash", "-c", command], cwd=folder, check=True, timeout=PATIENCE)
                differing = sum(abs(one - other) > 64 for one, other in
                                zip(gray(os.path.join(folder, "build", "caption-1.png")), drawn))
                self.assertEqual(differing < DIFFERING, is_the_same, f"{differing} pixels")

    def test_what_the_module_prints_goes_to_standard_output_unless_quiet(self):
        path = os.path.join(ROOT, "samples", "dialogue.vtt")
        for quiet in ("true", "false"):
            said = launch(f"filesrc location={path} ! quillcaption quiet={quiet} ! fakesink").stdout
            self.assertEqual(b"[WEBVTT] ERR:: FINISHED" in said, quiet == "false")


    def test_elements_of_a_process_keep_their_calls_apart(self):
        """Eight tracks at once, one line a buffer, and the guard looks for calls that overlap."""
        path = os.path.join(ROOT, "samples", "dialogue.vtt")
        branch = f"filesrc location={path} blocksize=20 ! quillcaption guard=true ! fakesink "
        for _ in range(10):
            said = launch(branch * 8, env={**os.environ, "QUILLCAPTION_GUARD_SUMMARY": "always"})
            self.assertIn(" 8 parsers, 120 cues, 0 mistakes", said.stderr.decode())

    def test_installed(self):
        """The plug-in finds the module in its folder, from wherever the two are moved to."""
        with tempfile.TemporaryDirectory() as prefix:
            for component in ("module", "gstreamer"):
                subprocess.run(["cmake", "--install", BUILD, "--prefix", prefix, "--component",
                                component], check=True, stdout=subprocess.DEVNULL)
            plugin, = glob.glob(f"{prefix}/lib/**/libgstquillcaption.so", recursive=True)
            path = os.path.join(ROOT, "samples", "dialogue.vtt")
            said = launch(f"filesrc location={path} ! quillcaption quiet=true ! fdsink", env={
                **os.environ, "GST_REGISTRY": f"{prefix}/registry",
                "GST_PLUGIN_PATH": os.path.dirname(plugin)})
            self.assertTrue(said.stdout.startswith(b"The ferry is late again.\n"))


class Harness(unittest.TestCase):
    def test_in_the_harness(self):
        """The tests in C++, and that nothing of theirs is left."""
        environment = {**os.environ, "GST_TRACERS": "leaks", "GST_DEBUG": "GST_TRACER:7"}
        result = subprocess.run([f"{BUILD}/gstreamer/tests/gstreamer_test"], env=environment, check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
        said = result.stdout.decode("utf-8", "replace")
        self.assertEqual(result.returncode, 0, said)
        self.assertIn("object-alive.class", said)  # the tracer was there
        self.assertNotIn("object-alive, type-name=(string)Gst", said)


if __name__ == "__main__":
    unittest.main()
