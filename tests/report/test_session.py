"""What the page of quill report shows of a recorded session."""

import unittest

from browser import SAMPLES, PageTest
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.select import Select
import session_log
from session_log import HEADER, Log, cue
from test_page import HOSTILE

MISTAKES = SAMPLES / "three-mistakes.log"
HELLO = "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"


def played():
    """A host that plays: a cue of two seconds every two seconds, two of four of them fed when they are
    half a second old."""
    log = Log()
    log.now = 10
    parser = log.open()
    log.parse(parser, "WEBVTT\n\n", result=1)
    for number in range(4):
        start = 2 * number
        log.now = max(10 + start + (0.5 if number % 2 else -0.1), log.now)
        log.parse(parser, f"00:0{start}.000 --> 00:0{start + 2}.000\nCue {number}\n\n")
        log.take(parser, cue(float(start), float(start + 2), f"Cue {number}\n"))
    log.release(parser)
    return log


class SessionTest(PageTest):
    def call(self):
        """The chosen call, in words."""
        found = self.all("#call .live > p:first-child > a")
        return found[0].text if found else None

    def location(self):
        return self.js("return location.hash")

    def go(self, address):
        self.js("location.hash = arguments[0]", address)
        self.frame()

    def status(self):
        return self.text("#timeline .status")


class Timeline(SessionTest):
    # Pixels from the timeline's top to the middle of the lanes, for one lane of cues.
    FED, DELIVERED, OTHER = 89, 119, 149

    def test_says_what_it_shows(self):
        self.open("--log", MISTAKES)
        self.assertEqual(self.status(), "1 cue, 1 lost block, 1 lane, 0 gaps, 11 calls, 3 mistakes, 0 late cues")
        self.assertEqual(self.one("input[value=cues]").get_property("checked"), True)

    def test_calls_stand_at_their_cues(self):
        """From 9.5 to 15.5 s, where the cue is from 10 to 12 and the one that was lost from 13 to 15."""
        self.open("--log", MISTAKES)
        for seconds, y, number in ((11, self.FED, 4), (11, self.DELIVERED, 6), (14, self.FED, 7)):
            self.click_at((seconds - 9.1) / 6.8, y)
            self.assertTrue(self.call().startswith(f"call {number},"), (self.call(), number))
            self.assertEqual(self.location(), f"#C{number}")

    def test_calls_stand_where_they_were_made(self):
        self.open_log(played())
        self.assertEqual(self.one("input[value=clock]").get_property("checked"), True)
        self.assertIn("12 calls, 0 mistakes, 2 late cues", self.status())
        self.go("#C7")
        self.assertEqual(float(self.one(".slider").get_attribute("aria-valuenow")), 2.5)
        self.one("input[value=cues]").click()
        self.go("#C9")
        self.assertEqual(float(self.one(".slider").get_attribute("aria-valuenow")), 4)

    def test_where_the_film_stands_can_be_said(self):
        self.open_log(played())
        place = self.one(".clock-input")
        place.clear()
        self.press(place, "-0.6", Keys.ENTER)
        self.assertIn("0 late cues", self.status())
        self.go("#L6")
        self.assertIn("delivered by call 7, 0.0999 s before its start", self.text("#details .calls-of"))

    def test_a_late_cue_is_striped_until_it_came(self):
        self.open_log(played())
        start, span = -0.5, 9
        colours = [self.colours((time - start) / span, 38) for time in (1.5, 2.2, 3.5)]
        self.assertEqual((colours[0], colours[2]), (1, 1))
        self.assertGreater(colours[1], 2)

    def test_keys(self):
        self.open("--log", MISTAKES)
        slider = self.one(".slider")
        for keys, address in (("m", "#H116-5"), ("m", "#H110-9"), ("j", "#H116-5"), ("c", "#C6"),
                              ("xx", "#C4")):
            self.press(slider, *keys)
            self.assertEqual(self.location(), address)
        self.assertTrue(slider.get_attribute("aria-valuetext").endswith(
            "; call 4, pfnParse, parser 1, 50 bytes"))
        for name, address in (("Next mistake", "#H116-5"), ("Next call", "#C6"),
                              ("Previous mistake", "#H116-5"), ("Previous call", "#C4")):
            self.one(f"button[aria-label='{name}']").click()
            self.assertEqual(self.location(), address)

    def test_zooms_to_milliseconds(self):
        self.open_log(session_log.ordinary())
        self.one("input[value=clock]").click()
        self.press(self.one(".slider"), *"+" * 40)
        self.assertLess(float(self.one(".slider").get_attribute("data-span")), 0.02)


class Mistakes(SessionTest):
    def chosen_mistakes(self):
        return [item.get_attribute("id") for item in self.all("#session li.chosen")]

    def test_each_has_an_address(self):
        for address, words in (("#H116-5", "pfnSetVideoPTS, parser 1, 900000 ticks"),
                               ("#H110-9", "pfnParse, parser 1, 0 bytes"),
                               ("#H115-11", "pfnRelease, parser 1")):
            self.open("--log", MISTAKES, address=address)
            self.assertEqual(self.chosen_mistakes(), [address[1:]])
            self.assertEqual(self.call(), f"call {address.split('-')[1]}, {words}")
            self.assertEqual(self.location(), address)
        self.assertEqual([link.get_attribute("href").split("#")[1] for link in
                          self.all("#session .findings a")], ["H116-5", "H110-9", "H115-11"])
        item = self.one("#H115-11")
        self.assertIn("released with a block unfinished", item.text)
        self.assertIn('What to do: feed "\\n\\n\\n" at the end of the track', item.text)
        self.assertEqual(item.find_element("css selector", "a").get_attribute("aria-current"), "true")

    def test_several_at_one_call_and_of_none(self):
        log = session_log.ordinary()
        for _ in range(2):
            log.mistake("H118", 9, "parser 1 was never released. What to do: release it.")
        log.mistake("H105", 4)
        log.mistake("H105", 4)
        self.open_log(log, address="#H118-9-2")
        self.assertEqual((self.chosen_mistakes(), self.call()), (["H118-9-2"], None))
        self.go("#H105-4-2")
        self.assertEqual(self.chosen_mistakes(), ["H105-4-2"])
        self.assertIn("call 4, pfnGetParseResult", self.call())
        for wrong in ("#H105-77", "#H1-1", "#C99"):
            self.go(wrong)
            self.assertEqual(self.chosen_mistakes(), ["H105-4-2"])

    def test_none(self):
        self.open_log(session_log.ordinary())
        self.assertIn("No mistake of the host was found.", self.text("#session"))


class Calls(SessionTest):
    def shown(self):
        return [row.text for row in self.all("#calls .row .line")]

    def want(self, words):
        Select(self.one("#calls select")).select_by_visible_text(words)
        self.frame()
        return self.shown()

    def test_every_call_with_what_came_of_it(self):
        self.open("--log", MISTAKES)
        self.assertEqual(self.text("#calls .status"), "11 of 11 calls")
        rows = [row.text.split("\n") for row in self.all("#calls .row")]
        self.assertEqual(rows[3], ["C4", "0.000305 s", "= 0", "pfnParse, parser 1, 50 bytes",
                                   "chunk 2, L3 The ferry is late again."])
        self.assertEqual(rows[5], ["C6", "0.000341 s", "1 cue", "pfnGetParseResult, parser 1",
                                   "L3 The ferry is late again."])
        self.assertEqual(rows[6][-1], "chunk 3, no cue")
        self.assertEqual(rows[4][3:], ["⚑ H116", "the video time comes after cues that it was meant for: "
                                                "they keep their times (cues wait to be taken)."])

    def test_filters(self):
        self.open("--log", MISTAKES)
        self.assertEqual(self.want("with a mistake"), ["C5", "C9", "C11"])
        self.assertEqual(self.want("that fed a chunk"), ["C3", "C4", "C7", "C8"])
        self.assertEqual(self.want("that delivered a cue"), ["C6"])
        self.want("all calls")
        self.one("#calls input[type=search]").send_keys("pfnSetVideoPTS")
        self.assertEqual(self.shown(), ["C5"])
        self.open_log(played())
        self.assertEqual(len(self.want("that delivered a cue late")), 2)
        self.assertIn("1 cue, late", self.text("#calls .row:first-child"))

    def test_keys(self):
        self.open("--log", MISTAKES)
        rows = self.one("#calls [role=listbox]")
        self.press(rows, Keys.END)
        self.assertEqual(self.location(), "#H115-11")
        self.press(rows, Keys.ARROW_UP)
        self.assertEqual(self.location(), "#C10")
        active = rows.get_attribute("aria-activedescendant")
        self.assertEqual(self.one(f"#{active}").get_attribute("aria-selected"), "true")

    def test_a_chunk_and_its_cues(self):
        self.open("--log", MISTAKES, address="#C4")
        said = self.text("#call")
        self.assertIn("It fed chunk 2, bytes 9 to 58: lines 3 to 5, which completed", said)
        self.assertIn("0.000305 s, thread 1, took 0.000014 s", said)
        self.follow(self.one("#call .notes a"))
        self.assertEqual((self.location(), self.chosen()), ("#L3", "line 3, chunk 2"))

    def test_a_delivery(self):
        self.open_log(played(), address="#C7")
        said = self.text("#call")
        self.assertIn("It delivered 1 cue, 12.500100 s after the session began:", said)
        self.assertIn("L6 00:00:02.000 → 00:00:04.000 Cue 1 – 0.5 s after its start", said)

    def test_a_call_in_a_callback(self):
        log = Log()
        parser = log.open()
        log.parse(parser, HELLO)
        log.take(parser, cue(1.0, 2.0, "Hello\n"), released=True,
                 within=lambda: log.release(parser, returns={"passed": False}))
        self.open_log(log, address="#C5")
        self.assertIn("put off", self.text("#call"))
        self.assertIn("in the callback of call 4", self.text("#call"))

    def test_other_parsers(self):
        self.open_log(session_log.ordinary(session_log.ordinary()))
        self.assertTrue(self.text("h1").endswith("(parser 1)"))
        self.go("#C11")
        self.assertTrue(self.text("h1").endswith("(parser 2)"))
        self.assertIn("call 11, pfnParse, parser 2", self.call())
        self.assertIn("lines 1 to 8", self.text("#call"))
        self.assertIn("8 calls", self.status())


class Blocks(SessionTest):
    def test_a_block_names_its_calls(self):
        self.open("--log", MISTAKES, address="#L3")
        self.assertRegex(self.text("#details .calls-of"),
                         "^Completed by the chunk of call 4; delivered by call 6, .* before its start[.]$")
        self.follow(self.all("#details .calls-of a")[1])
        self.assertIn("call 6, pfnGetParseResult", self.call())

    def test_a_cue_that_did_not_come(self):
        self.open("--log", MISTAKES, address="#L6")
        self.assertIn("not delivered", self.text("#details .live > p:first-child"))
        self.assertEqual(self.text("#details .calls-of"),
                         "No chunk completes it: it lacks the line feeds that end a track; no call delivered it.")
        self.assertIn("line 6 is missing here", self.text(".missing"))
        row = self.all("#list .row")[2]
        self.assertIn("lost", row.get_attribute("class").split())
        sums = self.text("#sums dl").split("\n")
        self.assertEqual(sums[:4], ["Cues delivered", "1", "Cues not delivered", "1"])

    def test_the_times_are_those_that_the_host_got(self):
        """The video time that came late: recorded as delivered 10 s earlier."""
        log = MISTAKES.read_bytes().replace(b'"dStartTime":10,"dEndTime":12', b'"dStartTime":0,"dEndTime":2')
        self.open_log(log, address="#L3")
        self.assertIn("00:00:00.000 → 00:00:02.000", self.text("#details .live > p:first-child"))


class Logs(SessionTest):
    def notes(self):
        return [note.text for note in self.all("#session .note")]

    def test_what_has_to_be_known(self):
        whole = session_log.ordinary().bytes()
        for log, words in ((whole.replace(b'"shown"', b'"hidden"'), "recorded with the text hidden"),
                           (whole[:-5], "cut off in its last line"),
                           (whole + b'{"stopped": "limit"}\n', "stopped at the limit of its size"),
                           (whole, "Found nowhere in the track, as this module reads it: 1 cue"),
                           (whole, None)):
            # The text that is delivered, and not that which is fed.
            if words and "Found" in words:
                log = whole.replace(b'"pcText": "One', b'"pcText": "Uno')
            self.open_log(log)
            self.assertEqual(len(self.notes()), 1 if words else 0, words)
            if words:
                self.assertIn(words, self.notes()[0])
            if words and "Found" in words:
                self.go("#C4")
                self.assertIn("Found nowhere in the track: 1 cue.", self.text("#call"))
        self.assertIn("guard 0.1.0", self.text("#session dl"))

    def test_nothing_was_fed(self):
        log = Log()
        log.do("get_parse_result", log.create(), returns={"passed": False})
        log.mistake("H101", 2)
        self.open_log(log, address="#H101-2")
        self.assertIn("No parser was fed anything", self.notes()[0])
        self.assertEqual(self.call(), "call 2, pfnGetParseResult, parser 1")
        self.assertIn("0 cues, 0 lost blocks", self.status())

    def test_segments_go_on_with_the_film(self):
        """A parser a segment, each fed when the film has come to it."""
        log = Log()
        for number, made in ((0, 1), (1, 6.5), (2, 12.9)):
            log.now = made
            parser = log.open()
            log.parse(parser, f"WEBVTT\n\n00:{6 * number:02}.000 --> 00:{6 * number + 5:02}.000\nx\n\n")
            log.take(parser, cue(6.0 * number, 6.0 * number + 5, "x\n"))
        self.open_log(log)
        late = []
        for number in range(3):
            self.go(f"#T{number + 1}")
            late.append(self.status().split(", ")[-1])
        self.assertEqual(late, ["0 late cues", "0 late cues", "0 late cues"])
        self.go("#T2")
        self.assertEqual(self.one(".clock-input").get_property("value"), "5.5")

    def test_hostile_logs(self):
        for text in HOSTILE:
            with self.subTest(text):
                log = session_log.ordinary()
                log.lines[0] = {**HEADER, "module": text, "started": text, "guard": text}
                log.mistake("H105", 3, text + " What to do: " + text)
                log.mistake(text, 3, text)
                log.lines[4]["printed"] = "[WEBVTT] ERR:: " + text.encode().decode("latin-1") + "\n"
                self.open_log(log, address="#H105-3")
                self.assertIn(text.strip(), self.text("#session"))
                self.one("#call summary").click()
                for row in range(len(self.all("#calls .row"))):
                    self.all("#calls .row")[row].click()
                    self.assertEqual(self.all("img, svg, iframe, object, embed, link[rel=stylesheet]"), [])
                self.assertEqual(self.js("return document.scripts.length"), 2)


if __name__ == "__main__":
    unittest.main()
