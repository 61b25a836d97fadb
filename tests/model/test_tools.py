"""The tools around the model: scripts, generator, shrinker, and whole runs that must fail."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest
from unittest import mock

import failing
import generate
import run
import script
from model import cue, parser, settings, values
from model.lines import LineCollector
from model.module import Module
from model.text import saturate
from model.tokenizer import Tokenizer
from player import Player
from reach import Reach
from script import ScriptError, call, format_call, format_script, parse_script
from shrink import shrink

HERE = pathlib.Path(__file__).parent


class ScriptTest(unittest.TestCase):
    def test_round_trip(self):
        for index in range(100):
            calls = generate.generate(5, index)
            self.assertEqual(calls, parse_script(format_script(calls)))

    def test_every_byte(self):
        calls = [call("create", "a"), call("parse", "a", data=bytes(range(256)))]
        self.assertEqual(calls, parse_script("# all of them\n\n" + format_script(calls)))

    def test_what_a_host_may_not_do(self):
        for text, complaint in (
                ("parse a \"x\"", "a is not created"), ("create a\nresult a", "no callback"),
                ("create a\ncreate a", "created twice"), ("create 0x1", "no name"),
                ("create a\nrelease a\ncreate b\npts a 1", "another parser"),
                ("create", "not a call"), ("create a\nparse a \"\"", "not a call"),
                ("create a\nparse a x", "not a call"), ("sing a", "not a call")):
            with self.subTest(text), self.assertRaisesRegex(ScriptError, complaint):
                parse_script(text)


class GeneratorTest(unittest.TestCase):
    def test_lawful_and_the_same_again(self):
        for index in range(100):
            calls = generate.generate(6, index)
            self.assertIsNone(script.breach(calls))
            self.assertEqual(calls, generate.generate(6, index))

    def test_reaches_enough(self):
        reach, feeding = Reach(), 0
        for index in range(500):
            reach.add(Module().play(generate.generate(1, index)))
            feeding += sum(one.verb == "result_feeding" for one in generate.generate(1, index))
        self.assertGreater(feeding, 10)
        self.assertGreater(reach.counts["record: any"], 300)
        for rare in ("throw std::out_of_range \"basic_string::at\"",
                     "throw std::out_of_range \"basic_string::substr\"",
                     "printed: [WEBVTT] ERR:: Invalid X-TIMESTAMP-MAP Meta Header 2!",
                     "printed: [WEBVTT] ERR:: Invalid Input String of 1st Line, return FALSE",
                     "printed: [WEBVTT] ERR:: dPos inf out of range [0.0, 100.0]",
                     "record: line at a limit of 32 bits", "record: size or position above 100"):
            self.assertGreater(reach.counts[rare], 0, rare)


def always_forget_the_cr(lines, chunk):
    lines.unread = chunk[1:] if lines.pending_cr and chunk.startswith(b"\n") else chunk
    lines.pending_cr = False


def keep_everything_carried(lines, prefix):
    text = (lines.carried or b"") + prefix + lines.unread
    lines.carried = text or None


def end_tag_trimmed(tokenizer):
    tokenizer.read_name()
    tokenizer.result = tokenizer.result.strip()
    tokenizer.kind = "end"


# Faults as they are easily made, and the size of the smallest script that shows each.
MUTANTS = (
    ("the pending CR does not survive", LineCollector, "take_chunk", always_forget_the_cr, 5, 40),
    ("carried header pieces are kept", LineCollector, "carry", keep_everything_carried, 5, 60),
    ("eleven lines in a block", parser, "LINES_PER_BLOCK", 11, 3, 70),
    ("end tags are trimmed", Tokenizer, "end_tag", end_tag_trimmed, 3, 60),
    ("10^k does not wrap", values, "signed32", lambda number: number, 4, 70),
    ("a size stops at 255", parser, "double_to_byte", lambda d: saturate(d, 0, 255), 4, 60),
    ("center is known", settings, "ALIGNMENTS", {**settings.ALIGNMENTS, b"center": 1}, 4, 60),
    ("the start text is stripped of tabs", cue, "trim", bytes.strip, 4, 60),
)


class ShrinkTest(unittest.TestCase):
    def test_mutants_are_found_and_shrink(self):
        for name, place, attribute, fault, most_calls, most_bytes in MUTANTS:
            with self.subTest(name):
                def fails(calls, place=place, attribute=attribute, fault=fault):
                    with mock.patch.object(place, attribute, fault):
                        faulty = Module().play(calls)
                    return faulty != Module().play(calls)
                scripts = (generate.generate(1, index) for index in range(2000))
                found = next(filter(fails, scripts))
                small = shrink(found, fails)
                self.assertTrue(fails(small))
                self.assertIsNone(script.breach(small))
                self.assertLessEqual(len(small), most_calls, format_script(small))
                size = sum(len(one.data or b"") for one in small)
                self.assertLessEqual(size, most_bytes, format_script(small))


def carry_in_spite_of_it(lines, prefix):
    text = prefix + lines.unread
    lines.memory.fails()
    lines.carried = text or None


def forget_the_carried_block(reader):
    try:
        return READ_BLOCK(reader)
    finally:
        if reader.memory.passed == reader.memory.failing:
            reader.lines.carried = None


READ_BLOCK = parser.Parser.read_block
FORGETFUL = (
    ("a text for which there is no memory is carried", LineCollector, "carry",
     carry_in_spite_of_it),
    ("a line for which there is no memory takes what was carried", parser.Parser, "read_block",
     forget_the_carried_block),
)


class FailingModelPlayer(Player):
    """Plays the model as if each of its places were an allocation, in this process."""

    def __init__(self, *fault):
        self.fault = fault

    def play(self, scripts):
        with mock.patch.object(*self.fault):
            return [list(self.play_script(calls)) for calls in scripts]

    @staticmethod
    def play_script(calls):
        module, plan = Module(), None
        for one in calls:
            module.memory.start(plan or 0)
            lines = module.play_call(one)
            if plan is not None:
                lines.insert(-1, f"allocations {module.memory.passed} failed ?")
            plan = one.number if one.verb == "fail" else None
            yield lines


class FailingTest(unittest.TestCase):
    SCRIPT = [call("create", "a"), call("callback", "a", number=1),
              call("parse", "a", data=b"WEBVTT\n\n00:01.000 --> 00:02.000\nx"),
              call("parse", "a", data=b"\ny\nhalf"), call("parse", "a", data=b"\n\n"),
              call("result", "a")]

    def test_the_model_agrees_with_itself(self):
        sound = FailingModelPlayer(parser, "DONE", parser.DONE)
        self.assertGreater(failing.check(self.SCRIPT, sound, Module), 20)

    def test_faults_are_found_and_explained(self):
        for name, *fault in FORGETFUL:
            with self.subTest(name), self.assertRaises(failing.Disagreement) as found:
                failing.check(self.SCRIPT, FailingModelPlayer(*fault), Module)
            self.assertRegex(found.exception.explain(format_call), "explains all but|and the model")


# Speaks as the player program does, but plays the model, and crashes where a chunk begins with
# "crash".
STAND_IN = f"""
import os, sys
sys.path.insert(0, {str(HERE)!r})
from model.module import Module
from script import parse_call
for line in sys.stdin.read().splitlines():
    if line.startswith("script "):
        module = Module()
    if line.startswith("script ") or line == "end":
        print(line)
        continue
    call = parse_call(line)
    if (call.data or b"").startswith(b"crash"):
        sys.stdout.flush()
        os.abort()
    print(*module.play_call(call), sep="\\n")
sys.exit(23 if sys.argv[1] == "leaky" else 0)
"""


class FaultyPlayer(Player):
    """Plays a model that takes "rl" for "lr", in this process."""

    def play(self, scripts):
        with mock.patch.object(settings, "VERTICALS", {b"lr": 1, b"rl": 1}):
            return [Module().play(calls) for calls in scripts]


class RunTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.player = self.folder / "stand_in.py"
        self.player.write_text(STAND_IN)

    def run_tool(self, module, *arguments):
        """(exit code, what was printed)"""
        command = ["run.py", "--player", str(self.player), "--module", module,
                   "--emulator", sys.executable, *arguments]
        printed = io.StringIO()
        with mock.patch.object(sys, "argv", command), contextlib.redirect_stdout(printed):
            return run.main(), printed.getvalue()

    def test_agreement(self):
        code, printed = self.run_tool("good", "--count", "60", "--reached")
        self.assertEqual(0, code)
        self.assertIn("60 scripts agree", printed)
        self.assertIn("record: any", printed)

    def test_failure_is_shrunk_kept_and_explained(self):
        failures, long = self.folder / "failures", self.folder / "long"
        long.write_text(format_script([
            call("create", "a"), call("callback", "a", number=1), call("pts", "a", number=90000),
            call("parse", "a", data=b"WEBVTT\n"), call("parse_size0", "a"),
            call("parse", "a", data=b"\nid\n00:01.000 --> 00:02.000 align:end vertical:rl\n"),
            call("parse", "a", data=b"Hello\nworld\n\n"), call("result", "a"),
            call("release", "a")]))
        with mock.patch.object(run, "Player", FaultyPlayer):
            code, printed = self.run_tool("bad", "--script", str(long), "--failures", str(failures))
        self.assertEqual(1, code)
        self.assertIn("vertical:rl", printed)
        self.assertRegex(printed, r"expected  cue .* vertical 2 ")
        self.assertRegex(printed, r"actual    cue .* vertical 1 ")
        kept, = failures.iterdir()
        self.assertLess(len(kept.read_text()), 150)
        self.assertIn(kept.read_text(), printed)
        self.assertEqual(0, self.run_tool("good", "--script", str(kept))[0])

    def test_crash(self):
        calls = [call("create", "a"), call("parse", "a", data=b"crash"), call("release", "a")]
        other = [call("create_null")]
        player = Player(str(self.player), "good", sys.executable)
        first, crashed, last = player.play([other, calls, other])
        self.assertEqual(Module().play(other), first)
        self.assertEqual(first, last)
        self.assertEqual(["ret 0 handle new"], crashed[0])
        self.assertRegex(crashed[1][0], "the player ended with -6")

    def test_failure_at_the_end_of_the_process(self):
        code, printed = self.run_tool("leaky", "--count", "3")
        self.assertEqual(1, code)
        self.assertIn("at the end: the player ended with 23", printed)


if __name__ == "__main__":
    unittest.main()
