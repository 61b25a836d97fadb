"""quill replay on logs that are written by hand: what comes out as recorded, what differs, and what
is said of a damaged log. tests/guard/test_replay.py replays what the guard records."""

import json
import os
import re
import time
import unittest

from quill_runner import MODULE, SANITIZED, QuillTest, broken, fixture
from session_log import HEADER, READ_TO_ITS_END, STRAY, Log, cue, ordinary

HELLO = "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
HELLO_CUE = cue(1.0, 2.0, "Hello\n")
THROWS = "WEBVTT\n\n00:01.000 --> 00:02.000 line:-\nx\n\n"


def release_in_callback(log):
    """As the guard records it: put off until the callback has returned."""
    parser = log.open()
    log.parse(parser, HELLO)
    log.take(parser, HELLO_CUE, released=True,
             within=lambda: log.release(parser, returns={"passed": False}))


def feed_in_callback(log):
    parser = log.open()
    log.parse(parser, HELLO)
    log.take(parser, HELLO_CUE, within=lambda: log.parse(parser, "00:02.000 --> 00:03.000\nx\n\n"))
    log.take(parser)
    log.release(parser)


def other_parser_in_callback(log):
    """On another thread, which the callback waits for."""
    parser = log.open()
    log.parse(parser, HELLO)

    def within():
        other = log.open(thread=2)
        log.parse(other, HELLO, thread=2)
        log.take(other, HELLO_CUE, thread=2)
        log.do("set_video_pts", parser, thread=2, ticks=90000)
        log.release(other, thread=2)
    log.take(parser, HELLO_CUE, within=within)
    log.parse(parser, "00:02.000 --> 00:03.000\nx\n\n")
    log.take(parser, cue(1.0, 2.0, "x\n"))
    log.release(parser)


def stale_handles(log):
    """Handles that are not live reach the module as 0."""
    log.release(log.open())
    log.create()  # which may have got the number of the first one
    for verb, function, fields, result in (
            ("parse", "Parse", {"bytes": None, "length": 12}, {"result": 2}),
            ("get_parse_result", "GetParseResult", {}, {}),
            ("set_video_pts", "SetVideoPTS", {"ticks": 5}, {}),
            ("set_event_nty", "SetEventNty", {"callback": False}, {}),
            ("release", "Release", {}, {})):
        log.do(verb, -1, returns={"printed": printed_for(function), **result}, **fields)
    log.release(2)


def printed_for(function):
    """What the module prints of a handle that is not live."""
    return STRAY % {"Parse": "IZorWebVtt_Parser_rsltParse",
                    "GetParseResult": "IZorWebVtt_Parser_vGetParseResult",
                    "SetVideoPTS": "IZorWebVtt_Parser_vSetVideoPTS",
                    "SetEventNty": "IZorWebVtt_Parser_vSetWebvttEventNty",
                    "Release": "IZorWebVtt_Parser_Release"}[function]


def odd_arguments(log):
    log.end(log.begin("create", pointer=False), result=2,
            printed="[WEBVTT API:IZorWebVtt_Parser_Create] handle MUST not be NULL\n")
    parser = log.open()
    log.do("set_event_nty", parser, callback=False)
    for fields, size in (({"bytes": None, "length": 5}, 5), ({"bytes": ""}, 0)):
        log.do("parse", parser, **fields, returns={
            "printed": f"[WEBVTT] ERR:: Invalid input, buffer size {size}\n", "result": 1})


def exception(log):
    parser = log.open()
    log.do("parse", parser, bytes=THROWS, returns={
        "printed": "[WEBVTT] ERR:: Buffer Exhausted\n",
        "exception": {"type": "std::out_of_range", "what": "basic_string::at"}})
    log.take(parser)


def no_callback(log):
    """A recorder passes no such call on; a log that says otherwise crashes nothing."""
    log.do("get_parse_result", log.create())


# Sessions, how many of their calls are made, and whether a case can make the same ones.
SESSIONS = [
    (ordinary, 8, True),
    (release_in_callback, 4, True),
    (feed_in_callback, 7, False),
    (other_parser_in_callback, 13, True),
    (stale_handles, 10, True),
    (odd_arguments, 6, True),
    (exception, 4, True),
]


class ReplayTest(QuillTest):
    def log(self, content, name="session.log"):
        """A log of that content: lines, a Log, or what makes one."""
        if callable(content):
            log = Log()
            content(log)
            content = log
        if isinstance(content, Log):
            content = content.bytes()
        return self.file(name, content)

    def replay(self, *arguments, code=0, **how):
        result = self.quill("replay", *arguments, **how)
        self.assertEqual((result.code, result.err), (code, b""), result.out)
        return result.out.decode().splitlines()


class Playing(ReplayTest):
    def test_sessions_come_out_as_recorded(self):
        for session, calls, _ in SESSIONS:
            with self.subTest(session.__name__):
                log = self.log(session)
                lines = self.replay(log)
                self.assertEqual(len(lines), 1, lines)
                self.assertIn(f"session.log: all {calls} calls came out as recorded", lines[0])
                same = json.loads(self.replay("--format", "json", log)[0])
                self.assertEqual((same["same"], same["agreed"], same["difference"]),
                                 (True, calls, None))

    def test_differences(self):
        # What of the ordinary session's log is changed, the place, and what is said of it.
        parse = 'call 3, pfnParse, parser 1, 76 bytes "WEBVTT\\n\\n00:01.000 --> 00:02.000\\nOne\\n\\n00:"...'
        for old, new, place, expected, got in (
                ('"Two\\n"', '"Two"', "8: call 4, pfnGetParseResult, parser 1",
                 ['cue 2 3 "Two" position=100 align=2'], ['cue 2 3 "Two\\n" position=100 align=2']),
                ('"u1Size": 100', '"u1Size": 99', "8: call 4, pfnGetParseResult, parser 1",
                 ['cue 1 2 "One\\n" size=99', 'cue 2 3 "Two\\n" position=100 align=2'],
                 ['cue 1 2 "One\\n"', 'cue 2 3 "Two\\n" position=100 align=2']),
                ('"pcText": "One\\n"', '"pcText": null', "8: call 4, pfnGetParseResult, parser 1",
                 ["cue 1 2 no text", 'cue 2 3 "Two\\n" position=100 align=2'],
                 ['cue 1 2 "One\\n"', 'cue 2 3 "Two\\n" position=100 align=2']),
                ('"parser": 1, "cues"', '"parser": 1, "u4CueCount": 3, "cues"',
                 "8: call 4, pfnGetParseResult, parser 1", ["count 3, reserved 0"], ["nothing"]),
                ('"result": 0}', '"result": 1}', "6: " + parse, ["= 1"], ["= 0"]),
                ("FINISHED", "FINISH", "6: " + parse, ["! FINISH", "= 0"], ["! FINISHED", "= 0"]),
                ('FINISHED\\n"', 'FINISHED\\n", "exception": {"type": "int"}', "6: " + parse,
                 ["throws int"], ["= 0"]),
                ("90000", "180000", "15: call 7, pfnGetParseResult, parser 1",
                 ['cue 2 3 "Dr\\xC3\\xA9i\\n"'], ['cue 1 2 "Dr\\xC3\\xA9i\\n"'])):
            with self.subTest(new):
                text = ordinary().text()
                self.assertIn(old, text)
                path = self.log(text.replace(old, new, 1).encode())
                lines = self.replay(path, code=1)
                self.assertEqual(lines[0], f"{path}:{place}")
                self.assertEqual(lines[1:-1], [f"  expected  {line}" for line in expected] +
                                 [f"  got       {line}" for line in got])
                self.assertRegex(lines[-1], r"session.log: \d of 8 calls came out as recorded$")
                verdict = json.loads(self.replay("--format", "json", path, code=1)[0])
                self.assertEqual(verdict["difference"]["expected"], expected)
                self.assertEqual(verdict["difference"]["line"], int(place.split(":")[0]))

    def test_a_long_difference_is_cut(self):
        log = Log()
        log.take(log.open(), *[cue(1.0, 2.0, "x" * 300)] * 9)
        lines = self.replay(self.log(log), code=1)
        self.assertEqual(len(lines), 1 + 6 + 1 + 1)
        self.assertRegex(lines[1], '^  expected  cue 1 2 "x{100,200}[.][.][.]$')
        self.assertEqual(lines[6:8], ["  expected  ...", "  got       no cue"])

    def test_what_is_not_known_is_not_compared(self):
        text = re.sub(r', "printed": "[^"]*"', "", ordinary().text())
        self.assertIn("all 8 calls", self.replay(self.log(text.encode()))[0])

    def test_a_time_that_is_no_number(self):
        """Nothing delivers one; but a log can hold one, which differs from any number."""
        text = ordinary().text().replace('"dEndTime": 2.0', '"dEndTime": null')
        self.assertIn("  expected  cue 1 nan", self.replay(self.log(text.encode()), code=1)[1])

    def test_calls_that_do_not_reach_the_module(self):
        log = Log()
        log.do("get_parse_result", log.create(), returns={"passed": False})
        self.assertIn("all 1 call came out as recorded, 1 more did not reach the module",
                      self.replay(self.log(log))[0])

    def test_what_would_crash_any_module_is_not_called(self):
        self.assertIn("1 of 2 calls came out as recorded", self.replay(self.log(no_callback))[0])

    def test_a_log_that_ends_within_a_call(self):
        whole = ordinary().bytes().splitlines(keepends=True)
        for count, words in ((2, "all 0 calls came out as recorded, 1 more did not return"),
                             (8, "all 3 calls came out as recorded, 1 more did not return"),
                             (9, "all 3 calls came out as recorded, 1 more did not return")):
            with self.subTest(count):
                self.assertTrue(self.replay(self.log(b"".join(whole[:count])))[0].endswith(words))

    def test_a_cut_off_log_is_read_up_to_its_cut(self):
        whole = ordinary().bytes()
        for cut in (whole[:-30], whole[:-1], whole[:-30] + b"\n"):
            with self.subTest(cut[-30:]):
                line = self.replay(self.log(cut))[0]
                self.assertIn("all 7 calls came out as recorded, 1 more did not return", line)
                self.assertTrue(line.endswith("; the log is cut off in its last line"), line)

    def test_a_log_that_was_stopped(self):
        log = ordinary()
        log.lines.append({"stopped": "limit"})
        self.assertTrue(self.replay(self.log(log))[0].endswith("; the log was stopped at its limit"))

    def test_overlapping_calls_come_one_after_the_other(self):
        log = Log()
        one, two = log.open(), log.open()
        first = log.begin("parse", one, bytes=HELLO)
        second = log.begin("parse", two, thread=2, bytes=HELLO)
        log.end(second, result=0, printed=READ_TO_ITS_END)
        log.end(first, result=0, printed=READ_TO_ITS_END)
        log.take(one, HELLO_CUE)
        log.take(two, HELLO_CUE)
        self.assertTrue(self.replay(self.log(log))[0].endswith(
            "all 8 calls came out as recorded; 1 call began within another thread's, "
            "and came behind it here"))

    def test_nested_calls_that_differ(self):
        log = Log()
        parser = log.open()
        log.parse(parser, HELLO)
        log.take(parser, HELLO_CUE, within=lambda: log.parse(parser, "x\n", result=1))
        lines = self.replay(self.log(log), code=1)
        self.assertRegex(lines[0], r'call 5, pfnParse, parser 1, 2 bytes "x\\n"$')
        self.assertRegex(lines[-1], "3 of 5 calls")

    def test_standard_input(self):
        self.assertEqual(self.replay("-", stdin=ordinary().bytes()),
                         ["standard input: all 8 calls came out as recorded"])

    def test_pace(self):
        log = self.log(ordinary().text().replace('"us": 8000', '"us": 701000').encode())
        for arguments, is_slow in ((["--pace"], True), ([], False)):
            started = time.monotonic()
            self.assertIn("all 8 calls", self.replay(*arguments, log)[0])
            if is_slow:
                self.assertGreaterEqual(time.monotonic() - started, 0.7)
        self.assertIn("all 8 calls", self.replay("--pace", "--timeout", "1", log)[0])

    @unittest.skipIf(SANITIZED, "the sanitizer turns the crash into an exit")
    def test_a_module_that_crashes_or_hangs(self):
        log = Log()
        parser = log.open()
        log.parse(parser, HELLO)
        text = "00:01.000 --> 00:02.000\na&nbsp;b&lrm;\n\n"
        log.parse(parser, text)
        for fault, arguments, words in (("crash", (), "crashed by SIGSEGV"),
                                        ("hang", ("--timeout", "1"), "did not end in time"),
                                        ("crash-at-unload", (), "crashed by SIGSEGV")):
            with self.subTest(fault):
                path = self.log(log)
                lines = self.replay("--module", fixture("broken"), *arguments, path, code=1,
                                    env=broken(fault))
                self.assertEqual(len(lines), 2)
                self.assertTrue(lines[0].startswith(f"{path}:8: call 4, pfnParse, parser 1, "), lines)
                self.assertTrue(lines[0].endswith(": the module " + words), lines)
                verdict = json.loads(self.replay(
                    "--module", fixture("broken"), *arguments, "--format", "json", path, code=1,
                    env=broken(fault))[0])
                self.assertEqual(verdict["difference"]["end"], words)

    def test_modules_that_cannot_be_loaded(self):
        for action in ((), ("--check",)):
            result = self.quill("replay", *action, "--module", fixture("without_table"),
                                self.log(ordinary))
            self.assert_fails(result, 3, "descriptor has no table")


class Logs(ReplayTest):
    def test_damaged_logs(self):
        # What is changed in the ordinary session's log, the line, and what is said.
        deep = "[" * 20 + "]" * 20
        for old, new, line, words in (
                ('"log": "quillcaption"', '"log": "other"', 1, "this is no session log"),
                ('"log": ', '"lag": ', 1, "this is no session log"),
                ('{"log": ', '[{"log": ', 1, "this is no session log"),
                ('"version": 1', '"version": 2', 1, "this log has version 2, this quill reads 1"),
                ('"version": 1', '"version": -1', 1, '"version" must be a whole number'),
                ('"call": 2, ', '"call": 2 ', 4, "this line is damaged: it is no JSON object"),
                ('{"call": 2,', '5\n{"call": 2,', 4, "this line is damaged"),
                ('{"call": 2,', '\n{"call": 2,', 4, "this line is damaged"),
                ('{"call": 2,', '{"end": {}}\n{"call": 2,', 5, "the log goes on behind its end"),
                ('{"call": 2,', '{"call": 1,', 4, "there is a call 1 already"),
                ('{"call": 2,', '{"call": 4294967296,', 4, '"call" must be a whole number'),
                ('{"call": 2,', '{"call": "2",', 4, '"call" must be a whole number'),
                ('{"call": 2, "us": 2000', '{"call": 2, "us": 1e99', 4, '"us" must be a whole number'),
                ('{"call": 2, "us": 2000', '{"call": 2', 4, 'there is no "us"'),
                ('set_event_nty', 'set_event', 4, 'there is no call "set_event"'),
                ('"do": "set_event_nty"', '"do": 3', 4, '"do" must be a text'),
                ('"do": "set_event_nty"', '"do": "set_event_nty", "callback": 0', 4,
                 '"callback" must be true or false'),
                ('"bytes": "W', '"bytes": "\u0100', 6, "it has a character beyond U+00FF"),
                ('"bytes": "W', '"bytes": "\\ud800', 6, "this line is damaged"),
                ('{"return": 2,', '{"return": 1,', 5, "no call 1 is in progress"),
                ('{"return": 2,', '{"return": 9,', 5, "no call 9 is in progress"),
                ('"delivery": 1, "call": 4', '"delivery": 1, "call": 3', 9, "no call 3 is in progress"),
                ('"cues": [{', '"cues": [3, {', 9, "something else where an object must be"),
                ('"cues": [', '"cues": 3, "nuts": [', 9, '"cues" must be a list'),
                ('"dStartTime": 1.0', '"dStartTime": "1"', 9, '"dStartTime" must be a number'),
                ('"i4Line": 100', '"i4Line": 2147483648', 9, '"i4Line" must be a whole number of 32'),
                ('"pcText": "One', f'"pcText": {deep}, "x": "', 9, "this is nested too deeply"),
                ('"result": 0, "handle"', '"result": 0.5, "handle"', 3, '"result" must be a whole'),
                ('"parser": 1}', '"parser": 0}', 3, "there is a parser 0 already")):
            with self.subTest(new):
                text = ordinary().text()
                self.assertIn(old, text)
                path = self.log(text.replace(old, new, 1).encode())
                self.assert_fails(self.quill("replay", path), 2, f"{path}:{line}: ", words)

    def test_a_parser_that_was_created_before(self):
        log = Log()
        log.create()
        log.parsers = 0
        log.create()
        self.assert_fails(self.quill("replay", self.log(log)), 2, ":5: there is a parser 1 already")

    def test_too_much(self):
        in_progress = Log()
        for thread in range(257):
            in_progress.begin("create", thread=thread)
        self.assert_fails(self.quill("replay", self.log(in_progress)), 2,
                          ":258: more than 256 calls are in progress")
        many_cues = Log()
        many_cues.take(many_cues.open(), *[{}] * 50001)
        self.assert_fails(self.quill("replay", self.log(many_cues)), 2,
                          ":7: a delivery may have up to 50000 cues")
        path = self.log(ordinary)
        os.truncate(path, (128 << 20) + 1)
        self.assert_fails(self.quill("replay", path), 2, "a log may have up to 134217728 bytes")

    def test_no_log(self):
        for content, words in ((b"", "it has no whole line"), (b"{}", "it has no whole line"),
                               (b"\n", "this is no session log"), (b"WEBVTT\n\n", "no session log"),
                               (b"\x7fELF\n\0\xff", "this is no session log")):
            with self.subTest(content):
                self.assert_fails(self.quill("replay", self.log(content)), 2, ":1: ", words)
        self.assert_fails(self.quill("replay", "none.log"), 2, "none.log: No such file")
        self.assert_fails(self.quill("replay", self.folder), 2, "Is a directory")

    def test_what_other_readers_read_is_no_mistake(self):
        text = ordinary().text().replace('"thread": 1', '"thread": 1, "colour": [1]').replace(
            '{"call": 2,', '{"note": "a line of another kind"}\n{"call": 2,')
        self.assertIn("all 8 calls", self.replay(self.log(text.encode()))[0])
        self.assertEqual(self.replay(self.log(json.dumps(HEADER).encode() + b"\n")),
                         [f"{self.folder}/session.log: all 0 calls came out as recorded"])


class Showing(ReplayTest):
    def mistaken(self):
        log = Log()
        release_in_callback(log)
        log.mistake("H105", 5)
        log.begin("parse", 1, bytes="x" * 50)
        log.mistake("H118", 7)
        return self.log(log)

    def test_text(self):
        self.assertEqual(self.replay("--show", self.mistaken()), [
            "    1    0.001000  thread 1  pfnCreate, parser 1  = 0",
            "    2    0.002000  thread 1  pfnSetEventNty, parser 1",
            '    3    0.003000  thread 1  pfnParse, parser 1, 39 bytes "WEBVTT\\n\\n00:01.000 --> '
            '00:02.000\\nHello\\n\\n"  = 0',
            "    4    0.004000  thread 1  pfnGetParseResult, parser 1  1 cue",
            "    5    0.005000  thread 1    pfnRelease, parser 1  put off",
            "      H105: what is wrong. What to do: the right thing.",
            '    6    0.006000  thread 1  pfnParse, parser 1, 50 bytes "' + "x" * 40 + '"...  no return',
            "      H118 at call 7: what is wrong. What to do: the right thing.",
            "6 calls, 2 mistakes"])

    def test_all_kinds_of_calls(self):
        for session, expected in (
                (odd_arguments, ["pfnCreate, null  = 2", "pfnCreate, parser 1  = 0",
                                 "pfnSetEventNty, parser 1", "pfnSetEventNty, parser 1, null",
                                 "pfnParse, parser 1, null, 5 bytes  = 1",
                                 "pfnParse, parser 1, 0 bytes  = 1"]),
                (stale_handles, ["pfnCreate, parser 1  = 0", "pfnSetEventNty, parser 1",
                                 "pfnRelease, parser 1", "pfnCreate, parser 2  = 0",
                                 "pfnParse, handle 0x47000010, 12 bytes  = 2",
                                 "pfnGetParseResult, handle 0x47000010",
                                 "pfnSetVideoPTS, handle 0x47000010, 5 ticks",
                                 "pfnSetEventNty, handle 0x47000010, null",
                                 "pfnRelease, handle 0x47000010", "pfnRelease, parser 2"]),
                (exception, ["pfnCreate, parser 1  = 0", "pfnSetEventNty, parser 1",
                             'pfnParse, parser 1, 42 bytes "WEBVTT\\n\\n00:01.000 --> 00:02.000 '
                             'line:-\\nx"...  throws std::out_of_range: basic_string::at',
                             "pfnGetParseResult, parser 1  0 cues"])):
            with self.subTest(session.__name__):
                lines = self.replay("--show", self.log(session))
                self.assertEqual([line.split("thread 1  ")[1] for line in lines[:-1]], expected)
        log = Log()
        log.end(log.begin("create"), result=2)
        log.do("get_parse_result", log.create(), returns={"passed": False})
        lines = self.replay("--show", self.log(log))
        self.assertTrue(lines[0].endswith("pfnCreate, no parser  = 2"), lines)
        self.assertTrue(lines[2].endswith("pfnGetParseResult, parser 1  not passed on"), lines)

    def test_json(self):
        lines = [json.loads(line) for line in
                 self.replay("--show", "--format", "json", self.mistaken())]
        self.assertEqual(lines[2], {
            "call": 3, "line": 6, "us": 3000, "ended_us": 3500, "thread": 1, "function": "pfnParse", "parser": 1,
            "size": 39, "bytes": '"WEBVTT\\n\\n00:01.000 --> 00:02.000\\nHello\\n\\n"', "within": None,
            "passed": True, "outcome": ["! Buffer Exhausted", "! FINISHED", "= 0"], "deliveries": [],
            "mistakes": []})
        self.assertEqual((lines[3]["deliveries"], lines[5]["ended_us"]),
                         ([{"us": 4100, "cues": 1}], None))
        self.assertEqual((lines[4]["within"], lines[4]["passed"], lines[4]["outcome"]), (4, False, []))
        self.assertEqual([one["code"] for one in lines[4]["mistakes"]], ["H105"])
        self.assertIsNone(lines[5]["outcome"])
        self.assertEqual(lines[6]["mistake"], "H118")
        self.assertEqual(lines[7], {"calls": 6, "mistakes": 2, "cut_off": False, "stopped": False})
        ticks, null = (json.loads(self.replay("--show", "--format", "json", self.log(session))[place])
                       for session, place in ((ordinary, 4), (odd_arguments, 4)))
        self.assertEqual((ticks["ticks"], null["bytes"], null["size"]), (90000, None, 5))

    def test_nothing_in_a_log_reaches_the_terminal(self):
        log = Log()
        log.open()
        log.mistake("H101", 1, "\x1b[31m\n")
        for arguments in (("--show",), ("--show", "--format", "json")):
            self.assertNotIn("\x1b", "".join(self.replay(*arguments, self.log(log))))
        text = log.text().replace("set_event_nty", "\\u001b[31m")
        self.assert_fails(self.quill("replay", self.log(text.encode())), 2, 'no call "\\x1b[31m"')


class Cases(ReplayTest):
    def test_a_case_does_the_same(self):
        for session, _, can_be_said in SESSIONS:
            with self.subTest(session.__name__):
                path = self.log(session)
                if not can_be_said:
                    self.assert_fails(self.quill("replay", "--case", path), 2,
                                      ":10: call 5, pfnParse, parser 1", "within its own callback")
                    continue
                cases = self.file("session.cases", "\n".join(self.replay("--case", path)).encode())
                result = self.quill("conform", "--cases", cases, MODULE)
                self.assertEqual(result.out, b"passed  session/session\n1 case: 1 passed\n")

    def test_the_words_of_a_case(self):
        lines = self.replay("--case", self.log(other_parser_in_callback))
        self.assertEqual([line for line in lines[2:] if line[0] != " "], [
            "create p1", "register 0", 'feed "WEBVTT\\n\\n00:01.000 --> 00:02.000\\nHello\\n\\n"', "take",
            "create p2", "register 0", 'feed "WEBVTT\\n\\n00:01.000 --> 00:02.000\\nHello\\n\\n"', "take",
            "use p1", "pts 90000", "use p2", "release",
            "use p1", 'feed "00:02.000 --> 00:03.000\\nx\\n\\n"', "take", "release"])

    def test_what_no_case_can_say(self):
        refused = Log()
        refused.end(refused.begin("create"), result=2)
        silent = re.sub(r', "printed": "[^"]*"', "", ordinary().text()).encode()
        nothing = Log()
        nothing.begin("create")
        for content, words in ((refused, ":2: call 1, pfnCreate, no parser: no case can"),
                               (silent, "what it printed was not recorded"),
                               (nothing, "no call reached the module and returned")):
            self.assert_fails(self.quill("replay", "--case", self.log(content)), 2, words)


class Tracks(ReplayTest):
    def two_parsers(self):
        log = ordinary()
        return self.log(ordinary(log))

    def test_track(self):
        path = os.path.join(self.folder, "fed.vtt")
        fed = ("WEBVTT\n\n00:01.000 --> 00:02.000\nOne\n\n00:02.000 --> 00:03.000 align:end\nTwo\n\n"
               "00:03.000 --> 00:04.000\nDréi\n\n").encode()
        for arguments in ((self.log(ordinary, "one.log"),),
                          ("--parser", "2", self.two_parsers())):
            self.assertEqual(self.replay("--track", path, *arguments), [])
            with open(path, "rb") as file:
                self.assertEqual(file.read(), fed)

    def test_which_parser(self):
        two = self.two_parsers()
        for arguments, words in (((two,), "2 parsers were fed; choose one with --parser, such as 1"),
                                 (("--parser", "3", two), "no parser 3 was fed anything"),
                                 ((self.log(no_callback, "no.log"),), "no parser was fed anything")):
            for action in ("--track", "--check"):
                if (action, arguments) == ("--check", (two,)):
                    continue  # which checks both
                values = (action, os.path.join(self.folder, "x")) if action == "--track" else (action,)
                self.assert_fails(self.quill("replay", *values, *arguments), 2, words)
        self.assert_fails(self.quill("replay", "--track", "/none/x.vtt", self.log(ordinary)), 2,
                          "/none/x.vtt: ")

    def test_check_in_the_chunks_that_were_fed(self):
        first = "00:00.x --> 00:01.000\nlost\n\n"
        second = "00:01.000 --> 00:02.000\nlost with it or not\n\n"
        whole, apart = ("WEBVTT\n\n", first + second), ("WEBVTT\n\n", first, second)
        for chunks, codes in ((whole, ["Q101", "Q201"]), (apart, ["Q101"])):
            log = Log()
            parser = log.open()
            for chunk in chunks:
                log.parse(parser, chunk)
            lines = self.replay("--check", self.log(log), code=1)
            self.assertEqual(re.findall(r"\[(Q\d+)\]", "\n".join(lines)), codes)
            self.assertTrue(lines[0].startswith(f"{self.folder}/session.log (parser 1):3:"), lines)
            self.assertIn("delivered in the chunks that were fed", lines[-1])
            sums = [json.loads(line) for line in
                    self.replay("--check", "--format", "json", self.log(log), code=1)][-1]["sums"]
            self.assertIsNone(sums["chunk_size"])

    def test_check_of_a_cut_first_line(self):
        for chunks in (("WEB", "VTT\n\n"), ("WEBVTT",)):
            log = Log()
            parser = log.open()
            for chunk in chunks:
                log.parse(parser, chunk)
            self.assertIn("the first chunk ends within the first line [Q",
                          self.replay("--check", self.log(log), code=1)[0])
        log = Log()
        log.parse(log.open(), "PLAIN\n")
        self.assertIn('the first line is "PLAIN" [Q', self.replay("--check", self.log(log), code=1)[0])

    def test_check_of_what_is_right(self):
        self.assertEqual(self.replay("--check", self.two_parsers()), [])

    @unittest.skipIf(SANITIZED, "the sanitizer turns the crash into an exit")
    def test_a_crash_while_it_is_checked(self):
        log = Log()
        log.parse(log.open(), "WEBVTT\n\n00:01.000 --> 00:02.000\na&nbsp;b\n\n")
        self.assert_fails(self.quill("replay", "--check", "--module", fixture("broken"),
                                     self.log(log), env=broken("crash")), 1,
                          "session.log (parser 1): the process that checked it crashed by SIGSEGV")


class Usage(ReplayTest):
    def test_wrong_usage(self):
        log = self.log(ordinary)
        for arguments, words in (
                ((), "LOG is required"), ((log, "other"), "other"),
                (("--show", "--check", log), "only one of --show, --track, --case and --check"),
                (("--case", "--track", "x", log), "only one of"),
                (("--parser", "1", log), "--parser is for --track and --check"),
                (("--parser", "0", "--check", log), 'from 1 to 4294967295, not "0"'),
                (("--pace", "--show", log), "--pace is for a play"),
                (("--timeout", "0", log), "--timeout takes a whole number of seconds from 1 to 3600"),
                (("--format", "xml", log), 'text or json, not "xml"')):
            with self.subTest(arguments):
                self.assert_fails(self.quill("replay", *arguments), 2, words)

    def test_the_examples_of_the_help_work(self):
        self.log(ordinary)
        os.makedirs(os.path.join(self.folder, "some"))
        os.symlink(os.path.dirname(MODULE), os.path.join(self.folder, "some/folder"))
        lines = re.findall("^  quill (replay.*)$", self.quill("replay", "--help").out.decode(), re.M)
        self.assertEqual(len(lines), 5)
        for line in lines:
            result = self.quill(*line.split(" > ")[0].split(), cwd=self.folder)
            self.assertEqual((result.code, result.err), (0, b""), line)


if __name__ == "__main__":
    unittest.main()
