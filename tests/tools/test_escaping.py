"""Nothing that quill prints can send control bytes to a terminal."""

import json
import random
import unittest

from quill_runner import QuillTest

# (bytes in a cue's text, as shown in text and srt, as in JSON)
CHARACTERS = (
    (b"plain ~ text", b"plain ~ text", "plain ~ text"),
    (b"tab\there", b"tab\there", "tab\there"),
    (rb"back\slash \x1b", rb"back\slash \x1b", r"back\slash \x1b"),
    (b"\x1b]0;title\x07", rb"\x1b]0;title\x07", "\x1b]0;title\x07"),
    (b"\x01\x08\x0b\x0c\x0e\x1f", rb"\x01\x08\x0b\x0c\x0e\x1f", "\x01\x08\x0b\x0c\x0e\x1f"),
    (b"del\x7f", rb"del\x7f", "del\x7f"),
    ("\u0080\u009b31m\u009f".encode(), rb"\xc2\x80\xc2\x9b31m\xc2\x9f", "\u0080\u009b31m\u009f"),
    (b"\x9b31m", rb"\x9b31m", "\ufffd31m"),
    ("\u00a0é€😀\ufffd\U0010ffff".encode(), "\u00a0é€😀\ufffd\U0010ffff".encode(),
     "\u00a0é€😀\ufffd\U0010ffff"),
    ("\u07ff\u0800\ud7ff\ue000\uffff\U00010000".encode(),
     "\u07ff\u0800\ud7ff\ue000\uffff\U00010000".encode(),
     "\u07ff\u0800\ud7ff\ue000\uffff\U00010000"),
    (b"overlong \xc0\x8a\xc1\xbf\xe0\x9f\xbf\xf0\x8f\xbf\xbf.",
     rb"overlong \xc0\x8a\xc1\xbf\xe0\x9f\xbf\xf0\x8f\xbf\xbf.", None),
    (b"surrogate \xed\xa0\x80\xed\xbf\xbf.", rb"surrogate \xed\xa0\x80\xed\xbf\xbf.", None),
    (b"too high \xf4\x90\x80\x80\xf5\x80.", rb"too high \xf4\x90\x80\x80\xf5\x80.", None),
    (b"cut \xc3 \xe2\x82 \xf0\x9f\x98 \xe2\x82", rb"cut \xc3 \xe2\x82 \xf0\x9f\x98 \xe2\x82", None),
    (b"stray \x80\xbf\xfe\xff.", rb"stray \x80\xbf\xfe\xff.", None),
)

TIMES = b"00:00:01.000 --> 00:00:02.000\n"


def forbidden(output):
    """The characters of valid UTF-8 output that a terminal could obey."""
    return [character for character in output.decode()
            if (ord(character) < 0x20 and character not in "\t\n") or 0x7F <= ord(character) <= 0x9F]


class CueText(QuillTest):
    def test_each_kind_of_character(self):
        for source, shown, in_json in CHARACTERS:
            with self.subTest(source):
                track = b"WEBVTT\n\n" + TIMES + source + b"\n\n"
                self.assertEqual(self.cues(track).out, TIMES + b"  " + shown + b"\n\n")
                self.assertEqual(self.cues(track, "--format", "srt").out,
                                 b"1\n" + TIMES.replace(b".", b",") + shown + b"\n\n")
                out = self.cues(track, "--format", "json").out
                self.assertTrue(out[:-1].decode().isprintable(), out)
                self.assertTrue(out.isascii())
                text = json.loads(out)["pcText"]
                if in_json is None:
                    self.assertIn("\ufffd", text)
                else:
                    self.assertEqual(text, in_json + "\n")

    def test_any_bytes(self):
        dice = random.Random(20240229)
        for form in ("text", "json", "srt"):
            for _ in range(4):
                track = b"WEBVTT\n\n"
                for _ in range(300):
                    # No ampersands, tags or line ends, which would not reach the text.
                    text = bytes(dice.choice([byte for byte in range(1, 256)
                                              if byte not in b"\n\r&<"]) for _ in range(30))
                    track += TIMES + b"x" + text + b"\n\n"
                result = self.cues(track, "--format", form)
                self.assertEqual(forbidden(result.out), [])
                self.assertEqual(forbidden(result.err), [])
                one_a_cue = {"text": b" --> ", "srt": b" --> ", "json": b"\n"}[form]
                self.assertEqual(result.out.count(one_a_cue), 300)


class StandardError(QuillTest):
    def test_diagnostics_of_the_real_module(self):
        # A diagnostic quotes the bad number, another one the whole of a name.
        result = self.cues(b"WEBVTT\n\n" + TIMES[:-1] + b" line:1\x1b[2J size:\x9b\x7f\nx\n\n")
        self.assertIn(b"input is 1\\x1b[2J\n", result.err)
        self.assertIn(b"Invalid SIZE value string \\x9b\\x7f\n", result.err)
        self.assertEqual(forbidden(result.err), [])

    def test_each_kind_of_character(self):
        for source, shown, _ in CHARACTERS:
            with self.subTest(source):
                script = b"".join(b"\\x%02x" % byte for byte in source)
                self.assertIn(b"\n" + shown + b"\n", self.scripted(b"print " + script + b"\n").err)

    def test_long_lines_are_not_taken_apart(self):
        for before in range(2):
            text = ("x" * before + "é" * 40000).encode()
            self.assertIn(text + b"\n", self.scripted(b"print " + text + b"\nprint y\n").err)


class Diagnostics(QuillTest):
    def test_all_of_them_are_shown_and_none_on_standard_output(self):
        result = self.scripted(b"print a\ncue plain\nprint b\n")
        self.assertEqual(result.out, TIMES + b"  one\n  two\n\n")
        self.assertEqual(result.err, b"loaded\npts 0\nchunk of 26\na\nb\nchunk of 3\nreleased 1\n"
                                     b"unloaded\n")

    def test_printf_and_stream_stay_in_order(self):
        self.assertIn(b"\na\xc3\xa9b\xc3\xa9c\n",
                      self.scripted(rb"print a\xc3\xa9b\xc3\xa9c" + b"\n").err)

    def test_there_may_be_any_number_of_them(self):
        # More than fits into a pipe: nobody may wait for a reader that is quill itself.
        result = self.scripted(b"flood 200000\ncue plain\n")
        self.assertEqual(result.err.count(b"which is only here to be long\n"), 200000)
        self.assertIn(b"line 199999,", result.err)
        self.assertEqual(result.out, TIMES + b"  one\n  two\n\n")

    def test_quiet_drops_them(self):
        self.assertEqual(self.scripted(b"flood 9\ncue plain\n", "--quiet").err, b"")
        self.assertEqual(self.cues(b"WEBVTT\n\n" + TIMES + b"x\n\n", "--quiet").err, b"")
        self.assertNotEqual(self.cues(b"WEBVTT\n\n" + TIMES + b"x\n\n").err, b"")

    def test_they_come_before_what_quill_says_of_the_same_call(self):
        err = self.scripted(b"print first\nthrow own\n").err
        self.assertLess(err.index(b"first\n"), err.index(b"quill: "))


if __name__ == "__main__":
    unittest.main()
