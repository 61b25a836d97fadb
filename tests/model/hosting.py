"""What the hand-written tables share: a host of the model, and the lines that recur.

In the tables "ERR " stands for the prefix of an error line.
"""

import unittest

from model.failures import OutOfRange
from model.module import Module
from model.output import PREFIX
from script import call

TIMES = b"00:01.000 --> 00:02.000"
FINISHED = "ERR FINISHED"
EXHAUSTED = "ERR Buffer Exhausted"
FAILED = "ERR Cue Parse Failed" + "!" * 29


class Host:
    """A host with one parser, which looks at the model's parser as its callback would."""

    def __init__(self):
        self.module = Module()
        self.module.play([call("create", "a"), call("callback", "a", number=1)])
        self.parser = self.module.parsers["a"]

    def feed(self, *chunks):
        """(printed lines, results) of all chunks together; an exception is its text."""
        results = []
        for chunk in chunks:
            try:
                results.append(self.parser.parse(chunk, len(chunk)))
            except OutOfRange as error:
                results.append(error.what)
        return self.printed(), results

    def printed(self):
        text = self.module.out.take().replace(PREFIX, b"ERR ").decode("latin-1")
        return text.split("\n")[:-1]

    def cues(self):
        return self.parser.take_result()[1]


def play_track(*chunks):
    """(printed lines, results, [(start, end, text)])"""
    host = Host()
    printed, results = host.feed(*chunks)
    return printed, results, [(c.start, c.end, c.text) for c in host.cues()]


def without_noise(printed):
    """The printed lines but those two that end nearly every chunk."""
    return [line for line in printed if line not in (EXHAUSTED, FINISHED)]


def play_cue(block):
    """The same for one block in a track of its own, without the two lines every chunk ends with."""
    printed, results, cues = play_track(b"WEBVTT\n\n" + block + b"\n\n")
    return without_noise(printed), results, cues


class Table(unittest.TestCase):
    """A test case that compares row by row."""

    def check(self, rows, function):
        for arguments, expected in rows:
            with self.subTest(arguments=arguments):
                self.assertEqual(expected, function(arguments))
