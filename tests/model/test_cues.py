"""Cue blocks, settings and payloads, with the outcome written by hand."""

import unittest

from hosting import FAILED, TIMES, Host, Table, play_cue, without_noise


class CueTest(Table):
    def test_blocks(self):
        good = [(1.0, 2.0, b"x\n")]
        second = "ERR Invalid Input String of 2nd Line, return FALSE"
        failed = ["ERR Parse Cue Time and Settings Failed", FAILED]
        self.check((
            (TIMES + b"\nx", ([], [0], good)),
            (b"id\n" + TIMES + b"\nx", ([], [0], good)),
            (b"00:01.000-->00:02.000\nx", ([], [0], good)),
            (b"  00:01.000   -->   00:02.000  \nx", ([], [0], good)),
            (TIMES, (["ERR Error occured at LINE 4"], [0], [])),
            (b"id only", ([second, FAILED], [0], [])),
            (b"id\nno arrow here\nx", (failed, [0], [])),
            (b"abc --> 00:02.000\nx",
             (["ERR Invalid Start Time Stamp <abc>", "ERR Error occured at LINE 5"], [0], [])),
            (b"00:01.000\t--> 00:02.000\nx",
             (["ERR Invalid Start Time Stamp <00:01.000\t>", "ERR Error occured at LINE 5"], [0],
              [])),
            (b"00:01.000 --> zz\nx", (["ERR Invalid End Time Stamp <zz>"] + failed, [0], [])),
            (b"00:01.000 -->\nx", (["ERR Invalid End Time Stamp <>"] + failed, [0], [])),
            (b"00:05.000 --> 00:01.000\nx", ([], [0], [(5.0, 1.0, b"x\n")])),
            (TIMES + b"   align:end    size:50%\nx", ([], [0], good)),
        ), play_cue)

    def test_settings(self):
        """line, snap, position, size, alignment, vertical"""
        def settings(text):
            host = Host()
            printed, results = host.feed(b"WEBVTT\n\n" + TIMES + b" " + text + b"\nx\n\n")
            cues = [(c.line, c.snap, c.position, c.size, c.align, c.vertical) for c in host.cues()]
            return without_noise(printed), (cues + results)[0]
        out_of_range = "ERR dPos %s out of range [0.0, 100.0]"
        self.check((
            (b"", ([], (100, 1, 50, 100, 1, 0))),
            (b"vertical:lr", ([], (100, 1, 50, 100, 1, 1))),
            (b"vertical:rl", ([], (100, 1, 50, 100, 1, 2))),
            (b"vertical:rl vertical:LR", ([], (100, 1, 50, 100, 1, 2))),
            (b"line:-1", ([], (-1, 1, 50, 100, 1, 0))),
            (b"line:50%,end", ([], (50, 0, 50, 100, 1, 0))),
            (b"line:50% line:x", (["input is x", "Not a valid data string"],
                                  (50, 1, 50, 100, 1, 0))),
            (b"line:-5%", ([out_of_range % "-5.000000", ""], (100, 1, 50, 100, 1, 0))),
            (b"line:-0%", ([], (0, 0, 50, 100, 1, 0))),
            (b"line:100.5%", ([out_of_range % "100.500000", ""], (100, 1, 50, 100, 1, 0))),
            (b"line:0." + b"0" * 31 + b"1%", ([out_of_range % "inf", ""],
                                             (100, 1, 50, 100, 1, 0))),
            (b"line:0." + b"0" * 32 + b"%", ([], (0, 0, 50, 100, 1, 0))),
            (b"line:-0." + b"0" * 31 + b"1", ([], (-2147483648, 1, 50, 100, 1, 0))),
            (b"line:1.9", ([], (1, 1, 50, 100, 1, 0))),
            (b"line:-1.9", ([], (-1, 1, 50, 100, 1, 0))),
            (b"line:3000000000", ([], (-1294967296, 1, 50, 100, 1, 0))),
            (b"line:,end", ([], "basic_string::at")),
            (b"line:-", ([], "basic_string::at")),
            (b"line:-,end", ([], "basic_string::at")),
            (b"line:-%", ([], (100, 1, 50, 100, 1, 0))),
            (b"size:150%", ([], (100, 1, 50, 150, 1, 0))),
            (b"size:300%", ([], (100, 1, 50, 44, 1, 0))),
            (b"size:3000000000%", ([], (100, 1, 50, 0, 1, 0))),
            (b"size:0." + b"0" * 31 + b"1%", ([], (100, 1, 50, 255, 1, 0))),
            (b"size:abc", (["ERR Invalid SIZE value string abc"], (100, 1, 50, 100, 1, 0))),
            (b"size:a%", (["input is a", "Not a valid data string",
                           "ERR Invalid SIZE value string a%"], (100, 1, 50, 100, 1, 0))),
            (b"position:30.7%", ([], (100, 1, 30, 100, 1, 0))),
            (b"position:30%,end align:end", ([], (100, 1, 30, 100, 2, 0))),
            (b"position:120%", ([], (100, 1, 50, 100, 1, 0))),
            (b"position:120% align:right", ([], (100, 1, 100, 100, 4, 0))),
            (b"position:0." + b"0" * 32 + b"%", ([], (100, 1, 0, 100, 1, 0))),
            (b"align:start", ([], (100, 1, 0, 100, 0, 0))),
            (b"align:end", ([], (100, 1, 100, 100, 2, 0))),
            (b"align:left", ([], (100, 1, 0, 100, 3, 0))),
            (b"align:middle", ([], (100, 1, 50, 100, 1, 0))),
            (b"align:center", ([], (100, 1, 0, 100, 0, 0))),
            (b"region:abcdefghijklmnopqrst line:5%", ([], (5, 0, 50, 100, 1, 0))),
            (b"a:", ([], (100, 1, 50, 100, 1, 0))),
            (b"ab:", (["ERR Item ab value is empty!"], (100, 1, 50, 100, 1, 0))),
            (b":abc", (["ERR Item is Empty"], (100, 1, 50, 100, 1, 0))),
            (b"abc", (["ERR Item is Empty"], (100, 1, 50, 100, 1, 0))),
            (b"foo:bar", ([], (100, 1, 50, 100, 1, 0))),
        ), settings)


class PayloadTest(Table):
    @staticmethod
    def text(payload):
        """(printed lines, text of the cue or None). The payload ends without a line feed."""
        # The zero byte takes the last line's line feed away.
        printed, _, cues = play_cue(TIMES + b"\n" + payload + b"\0")
        return printed, cues[0][2] if cues else None

    def test_references(self):
        self.check((
            (b"a&amp;b", ([], b"a&b")), (b"&lt;&gt;", ([], b"<>")),
            (b"&lrm;&rlm;&nbsp;", ([], b"\xe2\x80\x8e\xe2\x80\x8f\xc2\xa0")),
            (b"&AMP;&foo;&;", ([], b"&AMP;&foo;&;")), (b"x &amp y", ([], b"x  y")),
            (b"a & b", ([], b"a  b")), (b"&x y", ([], b" y")), (b"&amp&lt;", ([], b"&amp<")),
            (b"x&amp", ([], b"x&amp")), (b"&amp<b>x", ([], b"&ampx")), (b"x&", ([], b"x&")),
            (b"&amp\xe9x", ([], b"\xe9x")), (b"&#65;", ([], b"#65;")),
        ), self.text)

    def test_markup(self):
        self.check((
            (b"Hello", ([], b"Hello")), (b"a<b>c</b>d", ([], b"acd")),
            (b"<ruby>ab<rt>cd</rt></ruby>", ([], b"abcd")), (b"<v Bob>Hi</v>", ([], b"Hi")),
            (b"<v   Bob  >Hi", ([], b"Hi")), (b"<c.red.big>x</c>", ([], b"x")),
            (b"<c.a.b>x", ([], b"x")), (b"<v.loud Bob>x", ([], b"x")),
            (b"<lang en>x</lang>", ([], b"x")), (b"<b>x</i>y", ([], b"xy")),
            (b"a<00:00:01.000>b", ([], b"ab")), (b"x\nyz", ([], b"x\nyz")),
            (b"<c.x\nyz", ([], b"yz")), (b"<v\nBob>x", ([], b"x")),
        ), self.text)

    def test_bad_tags(self):
        def end(name):
            return f"ERR unexcepted end tag <{name}> detected. Ignored"

        def start(name):
            return [f"ERR unexcepted start tag <{name}> detected. Ignored", "ERR out of memory"]

        def time(text):
            return f"ERR Invalid time stamp tag <{text}> detected. Ignored"
        self.check((
            (b"x</foo>y", ([end("foo")], b"xy")), (b"x</b >y", ([end("b ")], b"xy")),
            (b"x</>y", ([end("")], b"xy")), (b"a<1x>b", ([time("1x")], b"ab")),
            (b"a<00:61.000>b", ([time("00:61.000")], b"ab")),
            (b"<foo>x", (start("foo"), None)), (b"x<>y", (start(""), None)),
            (b"< b>x", (start(""), None)), (b"<.x>y", (start(""), None)),
            (b"<B>x", (start("B"), None)), (b"<b/>x", (start("b/"), None)),
        ), self.text)

    def test_last_character(self):
        """Where a tag meets the end of the payload."""
        def start(name):
            return [f"ERR unexcepted start tag <{name}> detected. Ignored", "ERR out of memory"]
        self.check((
            (b"x<b>", ([], b"x>")), (b"x<b>\n", ([], b"x\n")), (b"<b", ([], b"")),
            (b"<b ", ([], b" ")), (b"<bx", ([], b"x")), (b"<b.", ([], b".")),
            (b"<c.x", ([], b"x")), (b"<c.xy", ([], b"")), (b"<c..", ([], b".")),
            (b"<v x", ([], b"x")), (b"<v Bo", ([], b"")), (b"<v Bob>", ([], b"")),
            (b"<rub", (start("ru"), None)), (b"x<", (start(""), None)), (b"x<>", (start(""), None)),
            (b"x<.", (start(""), None)), (b"x< ", (start(""), None)), (b"x<z", (start("z"), None)),
            (b"x</", (["ERR unexcepted end tag <> detected. Ignored"], b"x/")),
            (b"x<b>y</b", ([], b"xy")), (b"x<b>y</b>", ([], b"xy")),
            (b"x<1", (["ERR Invalid time stamp tag <1> detected. Ignored"], b"x1")),
            (b"x<12", (["ERR Invalid time stamp tag <12> detected. Ignored"], b"x")),
            (b"x<00:01.000", ([], b"x")),
        ), self.text)


if __name__ == "__main__":
    unittest.main()
