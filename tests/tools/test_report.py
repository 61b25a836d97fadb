"""The page of quill report, as far as that needs no browser: what it holds, and what cannot get out.
tests/report looks at it in one."""

import base64
import hashlib
import html.parser
import json
import os
import pathlib
import re

import unittest

from quill_runner import MODULE, SLOW, QuillTest, fixture
import session_log
from session_log import HEADER, Log, cue

TREE = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = sorted((TREE / "samples").glob("*.vtt"))
GOOD = b"WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"

# What a track, its name or a message may hold to get out of the page's data.
HOSTILE = ("</script><script>alert(1)</script>", "<!--<script>", "]]>", "\u2028\u2029", "&quot;&lt;",
           "javascript:alert(1)", "@DATA@ @MEDIA@ @SCRIPT@", "\\u003c/script>", "\0\x01\x7f")

PNG = b"\x89PNG\r\n\x1a\n and so on"


def ordinary(second):
    """A cue of an ordinary track."""
    time = f"{second // 3600:02}:{second // 60 % 60:02}:{second % 60:02}"
    return f"{time}.000 --> {time}.900\nShe said it was late, and went home {second}.\n\n"


class Page(html.parser.HTMLParser):
    """What a browser would make of the page, as far as it is about scripts and files."""

    def __init__(self, text):
        super().__init__()
        self.scripts, self.styles, self.attributes, self.policy = [], [], [], ""
        self.inside = None
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.attributes += [(tag, *pair) for pair in attrs]
        if attributes.get("http-equiv") == "Content-Security-Policy":
            self.policy = attributes["content"]
        self.inside = {"script": self.scripts, "style": self.styles}.get(tag)
        if self.inside is not None:
            self.inside.append([attributes, ""])

    def handle_endtag(self, tag):
        self.inside = None

    def handle_data(self, data):
        if self.inside is not None:
            self.inside[-1][1] += data

    def data(self):
        return json.loads(self.scripts[0][1])


def unpack(packed):
    """The objects that columns hold, as the page's own script unpacks them."""
    rows = [{} for _ in range(packed["count"])]
    for key, column in packed["columns"].items():
        for number, row in enumerate(rows):
            held = column["same"] if "same" in column else column["rows"][number]
            row[key] = column["values"][held] if "values" in column else held
    return [{key: value for key, value in row.items() if value is not None} for row in rows]


def without(line, key):
    return {name: value for name, value in json.loads(line).items()
            if name != key and value is not None}


def hash_of(text):
    return "sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode()


class ReportTest(QuillTest):
    def report(self, *arguments, code=0, **how):
        """The page that is written to standard output."""
        result = self.quill("report", *arguments, **how)
        self.assertEqual((result.code, result.err), (code, b""))
        return Page(result.out.decode())


class Report(ReportTest):
    def assert_shows(self, track, path, *options):
        """What the page holds of a track is what the commands say of it."""
        checked = self.quill("check", "--format", "json", "--blocks", "--chunk", "65536", *options,
                             path).out.splitlines()
        lines = [without(line, "track") for line in checked]
        self.assertEqual(unpack(track["findings"]), [line for line in lines if "code" in line])
        self.assertEqual(unpack(track["blocks"]), [line for line in lines if "block" in line])
        self.assertEqual([track["sums"]], [line["sums"] for line in lines if "sums" in line])
        played = self.quill("cues", "--quiet", "--format", "json", *options, path).out.splitlines()
        self.assertEqual(unpack(track["cues"]), [without(line, "") for line in played])
        self.assertEqual(base64.b64decode(track["source"]), pathlib.Path(path).read_bytes())
        codes = self.quill("check", "--codes", "--format", "json").out.splitlines()
        found = {line["code"] for line in lines if "code" in line}
        self.assertEqual(track["codes"], [json.loads(line) for line in codes
                                          if json.loads(line)["code"] in found])

    def test_the_page_holds_what_the_commands_say(self):
        for path in SAMPLES[:3] if SLOW else SAMPLES:
            with self.subTest(path.name):
                data = self.report(path).data()
                self.assertEqual((data["quill"], data["against"], len(data["tracks"])),
                                 (os.environ["QUILL_VERSION"], False, 1))
                self.assert_shows(data["tracks"][0], path)
                track = data["tracks"][0]
                self.assertEqual((track["name"], track["module"], track["module_size"]),
                                 (str(path), MODULE, os.path.getsize(MODULE)))

    def test_video_time(self):
        path = TREE / "samples/live-segment.vtt"
        self.assert_shows(self.report("--pts", "324000000", path).data()["tracks"][0], path,
                          "--pts", "324000000")

    def test_nothing_but_its_own_script_and_style_can_run(self):
        page = self.report(SAMPLES[0])
        (data, _), (script, code) = page.scripts
        self.assertEqual((data, script),
                         ({"type": "application/json", "id": "data"}, {"type": "module"}))
        policy = dict(part.strip().split(" ", 1) for part in page.policy.split(";"))
        self.assertEqual(policy, {
            "default-src": "'none'", "script-src": f"'{hash_of(code)}'", "img-src": "data:",
            "style-src": f"'{hash_of(page.styles[0][1])}'", "media-src": "'none'",
            "base-uri": "'none'", "form-action": "'none'"})
        self.assertEqual(len(page.styles), 1)
        for tag, name, value in page.attributes:
            self.assertFalse(name.startswith("on") or name == "style", (tag, name))
            if name in ("src", "href"):
                self.assertRegex(value, "^(#|data:,$)")
        self.assertIsNone(re.search(r"\b(innerHTML|outerHTML|insertAdjacentHTML|document\.write|eval|"
                                    r"new Function|import)\b", code))
        self.assertIsNone(re.search("https?://|url\\(", code + page.styles[0][1]))

    def test_hostile_tracks(self):
        for text in HOSTILE:
            with self.subTest(text):
                hostile = text.encode()
                path = self.file("t.vtt", b"WEBVTT " + hostile + b"\n" + hostile + b"\n\n" + hostile +
                                 b"\n00:01.000 --> 00:02.000 " + hostile + b"\n" + hostile + b"\n\n" +
                                 hostile + b"\n\n")
                page = self.report(path)
                self.assertEqual(len(page.scripts), 2)
                self.assertNotRegex(page.scripts[0][1], "[<>&\u2028\u2029]")
                self.assert_shows(page.data()["tracks"][0], path)

    def test_hostile_names(self):
        for number, text in enumerate(HOSTILE):
            name = text.replace("/", "\u2215").split("\0")[0]
            if name:
                self.file(name + f"{number}.vtt", GOOD)
        page = self.report(".", cwd=self.folder)
        self.assertEqual(len(page.scripts), 2)
        self.assertEqual(len(page.data()["tracks"]), len(HOSTILE) - 1)
        self.assertEqual(sorted(track["name"] for track in page.data()["tracks"]),
                         sorted("./" + path for path in os.listdir(self.folder)))

    def test_bytes_that_are_no_text(self):
        path = self.file("t.vtt", GOOD + bytes(range(256)) + b"\n\n" + GOOD)
        self.assert_shows(self.report(path).data()["tracks"][0], path)

    def test_sizes(self):
        """A page is never large; an ordinary track fits into it whole."""
        part = 10 if SLOW else 1
        tracks = (("".join(ordinary(number) for number in range(14000)), 1000000 // part),
                  ("00:01.000 --> 00:02.000\nx\n\n" * 37000, 500000 // part),
                  ("x\n\n" * 99999, 200000 // part),
                  ("00:01.000 --> 00:02.000\n" + "\1<&" * 99999, 200000 // part))
        for number, (text, size) in enumerate(tracks):
            with self.subTest(number):
                path = self.file("t.vtt", b"WEBVTT\n\n" + text.encode()[:size] + b"\n\n")
                out = self.file("r.html", self.quill("report", path).out)
                self.assertLessEqual(os.path.getsize(out), 3 * max(size, 200_000))
                block = re.search('id="data">(.*)</script>', pathlib.Path(out).read_text("utf-8"))
                track = json.loads(block[1])["tracks"][0]
                self.assertEqual(base64.b64decode(track["source"]), pathlib.Path(path).read_bytes())
                self.assertEqual(track["cues"]["count"] + track["cues"]["left_out"],
                                 track["sums"]["cues_delivered"])
                self.assertEqual(track["findings"]["count"] + track["findings"]["left_out"],
                                 sum(track["sums"]["findings"].values()))
                kept_whole = (["cues", "blocks", "findings"], ["cues", "blocks"], [], [])[number]
                self.assertEqual([key for key in kept_whole if track[key]["left_out"]], [])

    def test_no_larger_track(self):
        path = self.file("t.vtt", b"")
        os.truncate(path, (16 << 20) + 1)
        self.assert_fails(self.quill("report", path), 2, path, "up to 16777216 bytes")

    def test_standard_input_and_output(self):
        page = self.report("-", "-o", "-", stdin=GOOD)
        self.assertEqual(page.data()["tracks"][0]["name"], "standard input")
        self.assertEqual(base64.b64decode(page.data()["tracks"][0]["source"]), GOOD)
        data = self.report("--against-module", MODULE, "-", stdin=GOOD).data()
        self.assertEqual(data["tracks"][0], data["tracks"][1])

    def test_writes_a_file(self):
        path, out = self.file("t.vtt", GOOD), os.path.join(self.folder, "r.html")
        for _ in range(2):
            self.assertEqual(self.quill("report", path, "-o", out), (0, b"", b""))
            self.assertEqual(len(Page(pathlib.Path(out).read_text("utf-8")).data()["tracks"]), 1)
        self.assert_fails(self.quill("report", path, "--output", self.folder + "/no/r.html"), 2,
                          "r.html", "No such file")

    def test_several_tracks(self):
        good, bad = self.file("a.vtt", GOOD), self.file("b.vtt", b"no track\n")
        result = self.quill("report", good, self.folder + "/missing", bad)
        self.assertEqual(result.code, 2)
        self.assertEqual(self.messages(result),
                         [f"{self.folder}/missing: No such file or directory"])
        tracks = Page(result.out.decode()).data()["tracks"]
        self.assertEqual([track["name"] for track in tracks], [good, bad])
        self.assertEqual([row["block"] for row in unpack(tracks[1]["blocks"])], ["rejected"])
        self.assert_fails(self.quill("report", self.folder + "/missing"), 2, "No such file")

    def test_against(self):
        one, other = self.file("a.vtt", GOOD), self.file("b.vtt", GOOD * 2)
        data = self.report(one, "--against", other).data()
        self.assertTrue(data["against"])
        self.assertEqual([track["name"] for track in data["tracks"]], [one, other])
        scripted = fixture("scripted")
        data = self.report(one, "--against", other, "--against-module", MODULE).data()
        self.assertEqual([track["module"] for track in data["tracks"]], [MODULE, MODULE])
        self.assert_fails(self.quill("report", one, "--against-module", scripted + "x"), 3, "scripted.sox")
        self.assert_fails(self.quill("report", one, "--against", other + "x"), 2, "No such file")
        for several in ((one, other), (self.folder,), (one, "--files-from", one)):
            self.assert_fails(self.quill("report", *several, "--against", other), 2, "one TRACK")

    def test_video_is_linked(self):
        path = self.file("t.vtt", GOOD)
        os.mkdir(self.folder + "/out")
        name = "javascript:a b%#?.mp4"
        self.file(name, b"")
        out = self.folder + "/out/r.html"
        self.assertEqual(self.quill("report", "--video", name, path, "-o", "out/r.html",
                                    cwd=self.folder).code, 0)
        page = Page(pathlib.Path(out).read_text("utf-8"))
        self.assertEqual(page.data()["video"], "./../javascript%3Aa%20b%25%23%3F.mp4")
        self.assertIn("media-src 'self' file:;", page.policy)
        page = self.report("--video", name, path, cwd=self.folder)
        self.assertEqual(page.data()["video"], "./javascript%3Aa%20b%25%23%3F.mp4")
        self.assert_fails(self.quill("report", "--video", "none.mp4", path, cwd=self.folder), 2,
                          "none.mp4", "No such file")
        self.assert_fails(self.quill("report", "--video", self.folder, path), 2, "directory")

    def test_background_is_put_into_the_page(self):
        path = self.file("t.vtt", GOOD)
        for content, kind in ((PNG, "png"), (b"\xff\xd8\xff\xe0", "jpeg"), (b"GIF89a", "gif"),
                              (b"RIFF\0\0\0\0WEBPVP8 ", "webp")):
            picture = self.file("p", content)
            self.assertEqual(self.report("--background", picture, path).data()["background"],
                             f"data:image/{kind};base64," + base64.b64encode(content).decode())
        self.assert_fails(self.quill("report", "--background", path, path), 2, "PNG, JPEG, GIF or WebP")
        large = self.file("p", PNG.ljust((2 << 20) + 1))
        self.assert_fails(self.quill("report", "--background", large, path), 2, "2097152 bytes")

    def test_wrong_usage(self):
        for arguments, words in (((), "TRACK, --files-from or --log is required"),
                                 (("--chunk", "0", "x"), "--chunk takes a whole number of bytes"),
                                 (("--pts", "x", "x"), "--pts takes a whole number of 90 kHz ticks"),
                                 (("--module", "none.so", "x"), "none.so")):
            code = 3 if "--module" in arguments else 2
            self.assert_fails(self.quill("report", *arguments), code, words)


HELLO = "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
THERE = "00:03.000 --> 00:04.000\nThere\n\n"


class Sessions(ReportTest):
    """quill report --log."""

    def session(self, log, *arguments):
        """The page's data of a log: lines, or text."""
        path = self.file("session.log", log.bytes() if isinstance(log, Log) else log)
        return self.report("--log", path, *arguments).data()

    def blocks(self, track, *fields):
        return [tuple(block.get(field) for field in ("block", *fields)) for block in
                unpack(track["blocks"]) if block["block"] != "header"]

    def test_the_page_holds_what_replay_shows(self):
        for path in (TREE / "samples/three-mistakes.log", self.file("s.log", session_log.ordinary().bytes())):
            data = self.report("--log", path).data()
            shown = [json.loads(line) for line in
                     self.quill("replay", "--show", "--format", "json", path).out.splitlines()]
            calls = unpack(data["session"]["calls"])
            self.assertEqual(len(calls), shown[-1]["calls"])
            number, us = 0, 0
            for call, line in zip(calls, shown):
                number, us = call["call"] + number, call["us"] + us
                call.update(call=number, us=us)
                self.assertEqual(call["us"] + call["took"], line["ended_us"])
                self.assertEqual([call["us"] + call["delivered_after"]] if "cues" in call else [],
                                 [delivery["us"] for delivery in line["deliveries"]])
                self.assertEqual([call["cues"]] if "cues" in call else [],
                                 [delivery["cues"] for delivery in line["deliveries"]])
                self.assertEqual(call["outcome"].split("\n") if call["outcome"] else [],
                                 [one for one in line["outcome"] if not one.startswith("cue ")])
                for key in ("call", "us", "thread", "function", "parser", "size", "ticks", "within",
                            "passed"):
                    self.assertEqual(call.get(key), line.get(key), key)
            self.assertEqual(unpack(data["session"]["mistakes"]),
                             [{"call": line["call"], **mistake} for line in shown[:-1]
                              for mistake in line["mistakes"]])

    def test_what_is_said_of_the_log(self):
        whole = session_log.ordinary()
        said = self.session(whole)["session"]
        self.assertEqual({key: said[key] for key in said if key not in ("calls", "mistakes")},
                         {"name": self.folder + "/session.log", "recorder": "guard 0.1.0",
                          "module": HEADER["module"], "started": HEADER["started"], "hidden": False,
                          "cut_off": False, "stopped": False})
        self.assertTrue(self.session(whole.bytes()[:-5])["session"]["cut_off"])
        self.assertTrue(self.session(whole.bytes() + b'{"stopped": "limit"}\n')["session"]["stopped"])
        hidden = whole.bytes().replace(b'"shown"', b'"hidden"')
        self.assertTrue(self.session(hidden)["session"]["hidden"])
        bare = re.sub(b'"guard".*?}', b'"quill": "9.8"}', whole.bytes(), count=1)
        said = self.session(bare)["session"]
        self.assertEqual((said["recorder"], said["module"], said["started"]), ("quill 9.8", "", ""))

    def test_a_cue_has_the_call_that_delivered_it(self):
        data = self.session(session_log.ordinary())
        (track,) = data["tracks"]
        self.assertEqual((track["name"], track["parser"], track["strays"]),
                         (f"{self.folder}/session.log (parser 1)", 1, 0))
        self.assertEqual([(one["call"], one["pcText"], one["dStartTime"])
                          for one in unpack(track["cues"])],
                         [(4, "One\n", 1), (4, "Two\n", 2), (7, "Dr\u00e9i\n", 2)])
        self.assertEqual(self.blocks(track, "chunk", "cue"),
                         [("delivered", 0, 1), ("delivered", 0, 2), ("delivered", 1, 3)])
        self.assertEqual(base64.b64decode(track["source"]).count(b"-->"), 3)

    def test_cues_that_did_not_come(self):
        log = Log()
        parser = log.open()
        log.parse(parser, HELLO)
        log.parse(parser, THERE)
        log.take(parser, cue(3.0, 4.0, "There\n"))  # as if the first had been lost in a callback
        log.parse(parser, "00:05.000 --> 00:06.000\nUnended\n")
        log.release(parser)
        (track,) = self.session(log)["tracks"]
        self.assertEqual(self.blocks(track, "chunk", "cue", "start", "end"), [
            ("not_taken", 0, None, 1, 2), ("delivered", 1, 1, None, None),
            ("not_taken", 3, None, 5, 6)])
        self.assertEqual(track["sums"]["cues_delivered"], 3)

    def test_cues_that_the_module_does_not_deliver_now(self):
        log = Log()
        parser = log.open()
        log.parse(parser, HELLO)
        log.take(parser, cue(1.0, 2.0, "Hello\n"), cue(1.0, 2.0, "Another\n"),
                 cue(None, None, None, pcAuxText="x"))
        log.release(parser)
        (track,) = self.session(log)["tracks"]
        self.assertEqual((track["strays"], self.blocks(track, "cue")), (2, [("delivered", 1)]))

    def test_a_chunk_that_throws(self):
        log = Log()
        parser = log.open()
        for text in ("WEBVTT\n\n00:01.000 --> 00:02.000 line:-\nx\n\n", THERE):
            log.do("parse", parser, bytes=text, returns={"exception": {"type": "x"}})
        log.take(parser, cue(3.0, 4.0, "There\n"))
        data = self.session(log)
        self.assertEqual(self.blocks(data["tracks"][0], "cue"), [("lost", None), ("delivered", 1)])
        self.assertEqual(unpack(data["session"]["calls"])[2]["outcome"].split("\n")[-1], "throws x")

    def test_several_parsers(self):
        log = session_log.ordinary(session_log.ordinary())
        log.create()  # and fed nothing
        tracks = self.session(log)["tracks"]
        self.assertEqual([(track["parser"], track["name"][-10:]) for track in tracks],
                         [(1, "(parser 1)"), (2, "(parser 2)")])
        self.assertEqual([one["call"] for one in unpack(tracks[1]["cues"])], [12, 12, 15])

    def test_nothing_was_fed(self):
        log = Log()
        log.do("get_parse_result", log.create(), returns={"passed": False})
        log.mistake("H101", 2)
        log.mistake("H118", 3)
        data = self.session(log)
        (track,) = data["tracks"]
        self.assertEqual((track["parser"], track["sums"]["size"], track["source"]), (0, 0, ""))
        self.assertEqual([one["code"] for one in unpack(data["session"]["mistakes"])], ["H101", "H118"])
        self.assertEqual([call["passed"] for call in unpack(data["session"]["calls"])], [True, False])

    def test_hidden_text_is_that_of_a_track(self):
        (track,) = self.session(session_log.ordinary().bytes().replace(b"One", b"Xxx"))["tracks"]
        self.assertEqual(unpack(track["cues"])[0]["pcText"], "Xxx\n")
        self.assertEqual(len(self.blocks(track)), 3)

    def test_hostile_logs(self):
        for text in HOSTILE:
            with self.subTest(text):
                log = session_log.ordinary()
                log.lines[0] = {**HEADER, "module": text, "started": text, "guard": text}
                log.mistake("H105", 3, text)
                log.mistake(text, 3, text)
                log.lines.append({"mistake": "H118", "call": 99, "text": text})
                # A return, whose printed lines quote the track.
                log.lines[4]["printed"] = "[WEBVTT] ERR:: " + text.encode().decode("latin-1") + "\n"
                path = self.file("session.log", log.bytes())
                page = self.report("--log", path)
                self.assertEqual(len(page.scripts), 2)
                self.assertNotRegex(page.scripts[0][1], "[<>&\u2028\u2029]")
                session = page.data()["session"]
                self.assertEqual((session["module"], session["recorder"]), (text, "guard " + text))
                self.assertEqual(unpack(session["mistakes"])[2]["text"], text)

    def test_sizes(self):
        log = Log()
        parser = log.open()
        count = 100 if SLOW else 3000
        for number in range(count):
            log.parse(parser, ("WEBVTT\n\n" if number == 0 else "") + ordinary(number))
            log.take(parser)
        text = log.bytes()
        data = self.session(text)
        self.assertEqual((data["session"]["calls"]["count"], data["session"]["calls"]["left_out"]),
                         (2 * count + 2, 0))
        self.assertLessEqual(len(json.dumps(data["session"], separators=(",", ":"))), 30 * 2 * count + 2000)

    def test_a_log_from_standard_input(self):
        data = self.report("--log", "-", stdin=session_log.ordinary().bytes()).data()
        self.assertEqual(data["session"]["name"], "standard input")

    def test_wrong_logs(self):
        log, track = self.file("s.log", session_log.ordinary().bytes()), self.file("t.vtt", GOOD)
        for arguments, words in (
                ((track,), "takes no TRACK"), (("--files-from", track), "takes no TRACK"),
                (("--against", track), "takes no TRACK"), (("--against-module", MODULE), "takes no TRACK"),
                (("--chunk", "100"), "those of the session"), (("--pts", "1"), "those of the session")):
            self.assert_fails(self.quill("report", "--log", log, *arguments), 2, words)
        self.assert_fails(self.quill("report", "--log", log + "x"), 2, "No such file")
        self.assert_fails(self.quill("report", "--log", track), 2, "t.vtt:1: this is no session log")
        damaged = self.file("d.log", session_log.ordinary().bytes().replace(b'{"call": 2,', b'{"call" 2,'))
        self.assert_fails(self.quill("report", "--log", damaged), 2, "d.log:4: this line is damaged")
        named = self.file("n.log", session_log.ordinary().bytes().replace(b'"quillcaption.so"', b"7"))
        self.assert_fails(self.quill("report", "--log", named), 2, '"module" must be a text')
        self.assert_fails(self.quill("report", "--log", log, "--module", "none.so"), 3, "none.so")

    @unittest.skipIf(SLOW, "so many bytes take long")
    def test_no_longer_track(self):
        log = Log()
        log.parse(log.open(), "x" * ((16 << 20) + 1))
        path = self.file("s.log", log.bytes())
        self.assert_fails(self.quill("report", "--log", path), 2, "(parser 1)", "up to 16777216 bytes")


class Blocks(QuillTest):
    """quill check --blocks."""

    def blocks(self, track, *arguments):
        path = self.file("t.vtt", track)
        result = self.quill("check", "--format", "json", "--blocks", *arguments, path)
        return [without(line, "track") for line in result.out.splitlines() if b'"block"' in line]

    def test_every_fate(self):
        track = (b"WEBVTT\nX: y\n\n00:01.000 --> 00:02.000\nOne.\n\n00:03 --> 00:04.000\nTwo.\n\n"
                 b"NOTE x\n\n" + b"00:05.000 --> 00:06.000\n" + b"line\n" * 11 + b"\nalone\n\n"
                 b"00:07.000 --> 00:08.000\n<x>\n\n00:09.000 --> 00:10.000\nNine.")
        self.assertEqual(self.blocks(track), [
            {"line": 1, "lines": 3, "block": "header", "chunk": 0},
            {"line": 4, "lines": 2, "block": "delivered", "chunk": 0, "cue": 1},
            {"line": 7, "lines": 2, "block": "lost", "chunk": 0, "start": 3.0, "end": 4.0},
            {"line": 10, "lines": 1, "block": "comments", "chunk": 0},
            {"line": 12, "lines": 10, "block": "delivered", "chunk": 0, "cue": 2},
            {"line": 22, "lines": 2, "block": "cut_off", "chunk": 0},
            {"line": 25, "lines": 1, "block": "lost", "chunk": 0},
            {"line": 27, "lines": 2, "block": "lost", "chunk": 0, "start": 7.0, "end": 8.0},
            {"line": 30, "lines": 2, "block": "lost_with_chunk", "chunk": 1, "start": 9.0,
             "end": 10.0}])

    def test_times_are_those_of_a_player(self):
        track = (b"WEBVTT\nX-TIMESTAMP-MAP=MPEGTS:900000,LOCAL:00:00:00.000\n\n"
                 b"00:01 --> 00:02.000\nOne.\n\n")
        self.assertEqual(self.blocks(track, "--pts", "180000")[1:], [
            {"line": 4, "lines": 2, "block": "lost", "chunk": 0, "start": 9.0, "end": 10.0}])

    def test_a_rejected_track(self):
        self.assertEqual(self.blocks(b"no\ntrack\n"),
                         [{"line": 1, "lines": 2, "block": "rejected", "chunk": 0}])

    def test_every_cue_has_its_block(self):
        for path in SAMPLES:
            for chunk in ("65536", "50"):
                with self.subTest((path.name, chunk)):
                    found = self.blocks(path.read_bytes(), "--chunk", chunk)
                    played = self.quill("cues", "--quiet", "--format", "json", "--chunk", chunk, path)
                    numbers = sorted(block["cue"] for block in found if "cue" in block)
                    self.assertEqual(numbers, list(range(1, played.out.count(b"\n") + 1)))

    def test_in_json_only(self):
        self.assert_fails(self.quill("check", "--blocks", self.file("t.vtt", GOOD)), 2,
                          "--blocks has the format json")


if __name__ == "__main__":
    unittest.main()
