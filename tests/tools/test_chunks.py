"""How quill cues reads a track and cuts it into chunks."""

import os
import re
import threading
import time
import unittest

from quill_runner import QuillTest, fixture

CUE = b"00:00:01.000 --> 00:00:02.000\n"
CUE_AS_TEXT = CUE + b"  %s\n\n"


def chunk_sizes(result):
    """As the scripted module saw them, without the line feeds at the end."""
    sizes = [int(size) for size in re.findall(rb"^chunk of (\d+)$", result.err, re.MULTILINE)]
    return sizes[:-1] if sizes[-1:] == [3] else self.fail("no line feeds at the end")


class Chunks(QuillTest):
    def test_every_chunk_size_gives_the_same_cues(self):
        lines = [b"WEBVTT a title", b""]
        for number in range(60):
            lines += [b"id %d" % number, b"00:%02d.000 --> 00:59.000 line:%d" % (number, number),
                      b"text <i>%d</i>" % number, "zweite Zeile – ü".encode(), b""]
        for line_end in (b"\n", b"\r\n", b"\r"):
            track = line_end.join(lines)
            whole = self.cues(track)
            self.assertEqual(whole.out.count(b"-->"), 60)
            for size in (1, 7, 188, 1460, 100000):
                with self.subTest(line_end, size=size):
                    chunked = self.cues(track, "--chunk", size)
                    self.assertEqual((chunked.code, chunked.out), (0, whole.out))
            with self.subTest(line_end, size="standard input"):
                self.assertEqual(self.quill("cues", "-", stdin=track).out, whole.out)

    def test_chunks_are_as_large_as_asked_for(self):
        for arguments, size, expected in (  # the first line has four bytes
                ((), 200000, [65536, 65536, 65536, 3392]),
                (("--chunk", 1), 10, [4] + [1] * 6),
                (("--chunk", 3), 11, [4, 3, 3, 1]),
                (("--chunk", 4), 12, [4, 4, 4]),
                (("--chunk", 5), 12, [5, 5, 2]),
                (("--chunk", 100000), 200001, [100000, 100000, 1]),
                (("--chunk", 268435456), 200000, [200000])):
            for line_end in (b"\n", b"\r"):
                with self.subTest(line_end, arguments=arguments):
                    track = b"one" + line_end + b"x" * (size - 4)
                    self.assertEqual(chunk_sizes(self.scripted(track, *arguments)), expected)

    def test_the_first_chunk_holds_the_whole_first_line(self):
        for first_line in (b"WEBVTT\n", b"WEBVTT\r\r", b"WEBVTT\r\n",
                           b"WEBVTT " + b"x" * 500000 + b"\n"):
            for arguments in ((), ("--chunk", 1), ("--chunk", 7)):
                with self.subTest(first_line[:20], arguments=arguments):
                    result = self.cues(first_line + b"\n" + CUE + b"hi", *arguments)
                    self.assertEqual((result.code, result.out), (0, CUE_AS_TEXT % b"hi"))

    def test_the_first_line_may_arrive_in_pieces(self):
        for line_end in (b"\n", b"\r", b"\r\n"):
            with self.subTest(line_end):
                process = self.start("cues", "--quiet", "-")
                rest = (b"\n\n" + CUE + b"hi\n\n").replace(b"\n", line_end)
                for piece in (b"WEB", b"VTT", rest):
                    process.stdin.write(piece)
                    time.sleep(0.1)
                self.read_until(process.stdout, CUE_AS_TEXT % b"hi")
                process.stdin.close()
                self.assertEqual(self.finish(process).code, 0)

    def test_a_first_line_without_end_is_fed_after_a_mebibyte(self):
        for arguments, rest in (((), [65536, 65536]), (("--chunk", 65536), [65536, 65536])):
            with self.subTest(arguments):
                track = b"x" * ((1 << 20) + 131072)
                self.assertEqual(chunk_sizes(self.scripted(track, *arguments)), [1 << 20] + rest)

    def test_a_first_line_that_the_track_ends_in_gets_its_line_feed(self):
        for arguments in ((), ("--chunk", 1)):
            result = self.scripted(b"throw own", *arguments)
            self.assertEqual(chunk_sizes(result), [10])
            self.assertIn("bytes 0 to 8 (a chunk of 9): ", self.messages(result)[0])

    def test_huge_lines(self):
        for arguments in ((), ("--chunk", 1460)):
            text = b"y" * (1 << 20)
            result = self.cues(b"WEBVTT\n\n" + CUE + text + b"\n", "--quiet", *arguments)
            self.assertEqual((result.code, result.out), (0, CUE_AS_TEXT % text))


class LastCue(QuillTest):
    def test_every_ending_releases_it(self):
        for line_end in (b"\n", b"\r\n", b"\r"):
            track = (b"WEBVTT\n\n" + CUE + b"last").replace(b"\n", line_end)
            for ending in (b"", line_end, line_end * 2, line_end * 5):
                for arguments in ((), ("--chunk", 1)):
                    with self.subTest(ending, line_end=line_end, arguments=arguments):
                        result = self.cues(track + ending, *arguments)
                        self.assertEqual((result.code, result.out), (0, CUE_AS_TEXT % b"last"))


class Streams(QuillTest):
    def test_a_slow_pipe_shows_cues_as_they_come(self):
        for arguments in ((), ("--chunk", "1")):
            with self.subTest(arguments):
                process = self.start("cues", "--quiet", *arguments, "-")
                process.stdin.write(b"WEBVTT\n\n")
                for number in (b"1", b"2", b"3"):
                    process.stdin.write(CUE + number + b"\n\n")
                    self.read_until(process.stdout, CUE_AS_TEXT % number)
                process.stdin.write(CUE + b"last")
                process.stdin.close()
                self.assertEqual(self.finish(process).out, CUE_AS_TEXT % b"last")

    def test_a_chunk_is_what_a_read_returns(self):
        process = self.start("cues", "--module", fixture("scripted"), "-")
        for piece in (b"print a\n", b"print bc\n", b"d"):
            process.stdin.write(piece)
            self.read_until(process.stderr, b"chunk of %d\n%s" %
                            (len(piece), piece.replace(b"print ", b"") if len(piece) > 1 else b""))
        process.stdin.close()
        self.assertEqual(self.finish(process).code, 0)

    def test_pipes_that_do_not_block_are_waited_for(self):
        source, into = os.pipe()
        outcome, out = os.pipe()
        os.set_blocking(source, False)
        os.set_blocking(out, False)
        process = self.start("cues", "--quiet", "-", stdin=source, stdout=out)
        os.close(source)
        os.close(out)
        track = b"WEBVTT\n\n" + (CUE + b"x" * 1000 + b"\n\n") * 200


        def write_late():
            time.sleep(0.2)
            with open(into, "wb") as pipe:
                pipe.write(track)

        writer = threading.Thread(target=write_late)
        writer.start()
        with open(outcome, "rb") as result:
            time.sleep(0.4)
            self.assertEqual(result.read(), (CUE_AS_TEXT % (b"x" * 1000)) * 200)
        writer.join()
        self.assertEqual(self.finish(process).code, 0)


if __name__ == "__main__":
    unittest.main()
