"""The page of quill report for all who look at it: by keys, by ear, in the dark, small, on paper; and
that it is fast."""

import json
import os
import pathlib
import unittest

from browser import SAMPLES, PageTest
from selenium.webdriver.common.keys import Keys
from session_log import Log, cue

# The rules of axe-core, which scripts/check-report fetches.
AXE = os.environ.get("AXE")
BROKEN_RULES = """
    const done = arguments[0];
    axe.run(document).then(({passes, violations}) => done(JSON.stringify({
        passed: passes.length,
        broken: violations.flatMap(({id, help, nodes}) => nodes.map(
            ({html, failureSummary}) => [id, help, html.slice(0, 200), failureSummary]))})));"""

# Names and roles of everything that the Tab key gets to, or that is told to those who see nothing.
CONTRAST = """
    const luminance = (colour) => {
        const parts = colour.match(/[\\d.]+/g).slice(0, 3).map((part) => part / 255)
            .map((part) => part <= 0.03928 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
        return 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2];
    };
    const backOf = (element) => {
        for (; element; element = element.parentElement) {
            const back = getComputedStyle(element).backgroundColor;
            if (!/, 0\\)$/.test(back)) { return back; }
        }
        return 'rgb(255, 255, 255)';
    };
    const low = [];
    const texts = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    while (texts.nextNode()) {
        const element = texts.currentNode.parentElement;
        if (!texts.currentNode.data.trim() || !element.checkVisibility() ||
            element.closest('script, .picture, option')) { continue; }
        const [one, other] = [getComputedStyle(element).color, backOf(element)].map(luminance);
        const ratio = (Math.max(one, other) + 0.05) / (Math.min(one, other) + 0.05);
        if (ratio < 4.5) { low.push([element.className, texts.currentNode.data.slice(0, 20), ratio]); }
    }
    return low;"""


# What is looked at, and where: tracks, and a session with a chosen mistake.
PAGES = (((SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt"), "#L17"),
         (("--log", SAMPLES / "three-mistakes.log"), "#H116-5"))


class Everybody(PageTest):
    def nodes(self):
        """What a screen reader gets: role, name and properties of each node."""
        self.command("Accessibility.enable")
        return [(node["role"]["value"], node.get("name", {}).get("value", ""),
                 {property["name"]: property["value"].get("value") for property in node["properties"]})
                for node in self.command("Accessibility.getFullAXTree")["nodes"]
                if not node["ignored"]]

    def test_everything_that_is_used_has_a_role_and_a_name(self):
        for pages, address in reversed(PAGES):
            self.open(*pages, address=address)
            nodes = self.nodes()
            for role, name, properties in nodes:
                if properties.get("focusable") and role != "RootWebArea":
                    self.assertTrue(name.strip(), (role, properties))
                    self.assertNotIn(role, ("generic", "none"), name)
        found = {(role, name) for role, name, _ in nodes}
        for role, name in (("slider", "Playhead on the timeline"), ("slider", "Time in the track"),
                           ("listbox", "Blocks of the track"), ("group", "Source of the track"),
                           ("region", "Timeline"), ("region", "Stage"), ("region", "Blocks"),
                           ("heading", "Track 1: " + str(SAMPLES / "damaged.vtt")), ("button", "Play"),
                           ("main", ""), ("columnheader", "Lost"), ("status", "")):
            self.assertIn(role, {there for there, _ in found})
            if name:
                self.assertIn((role, name), found)
        options = [properties for role, _, properties in nodes if role == "option"]
        self.assertTrue(any(properties.get("selected") for properties in options))
        levels = [properties["level"] for role, _, properties in nodes if role == "heading"]
        self.assertEqual((levels[0], set(levels[1:])), (1, {2}))
        self.assertEqual(self.js("return document.documentElement.lang"), "en")
        ids = self.js("return Array.from(document.querySelectorAll('[id]'), (one) => one.id)")
        self.assertEqual(len(ids), len(set(ids)))

    def test_contrast_in_light_and_dark(self):
        for pages, address in PAGES:
            self.open(*pages, address=address)
            backs = set()
            for scheme in ("light", "dark"):
                self.command("Emulation.setEmulatedMedia",
                             features=[{"name": "prefers-color-scheme", "value": scheme}])
                self.frame()
                backs.add(self.js("return getComputedStyle(document.body).backgroundColor"))
                self.assertEqual(self.js(CONTRAST), [], scheme)
            self.assertEqual(len(backs), 2)

    @unittest.skipUnless(AXE, "AXE names no axe.min.js")
    def test_rules_of_accessibility(self):
        rules = pathlib.Path(AXE).read_text("utf-8")
        comparison = ("--against", SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt")
        for pages, address in (*PAGES, (comparison, "#L17")):
            for scheme in ("light", "dark"):
                for width in (1280, 320):
                    with self.subTest(pages=pages, scheme=scheme, width=width):
                        self.command("Emulation.setEmulatedMedia", features=[
                            {"name": "prefers-color-scheme", "value": scheme}])
                        self.size(width, 1000)
                        self.open(*pages, address=address)
                        self.js(rules)
                        found = json.loads(self.browser.execute_async_script(BROKEN_RULES))
                        self.assertEqual(found["broken"], [])
                        self.assertGreater(found["passed"], 25)

    def reached_by_tab(self):
        """Section, and role or tag, of all that the Tab key gets to."""
        reached = []
        for _ in range(100):
            self.one("body")
            self.browser.switch_to.active_element.send_keys(Keys.TAB)
            reached.append(self.js("""
                const at = document.activeElement;
                return at.closest('section')?.id + ' ' + (at.getAttribute('role') ?? at.tagName)"""))
            if reached[-1].startswith("source A"):
                break
        return reached

    def test_the_tab_key_gets_everywhere(self):
        self.open("--log", SAMPLES / "three-mistakes.log", address="#C5")
        reached = self.reached_by_tab()
        for place in ("timeline INPUT", "session A", "calls SELECT", "calls INPUT", "calls listbox",
                      "call A"):
            self.assertIn(place, reached)
        self.open(SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt")
        reached = self.reached_by_tab()
        for place in ("overview BUTTON", "timeline slider", "timeline BUTTON", "stage BUTTON",
                      "stage INPUT", "list INPUT", "list SELECT", "list listbox", "source group"):
            self.assertIn(place, reached)
        self.assertEqual(reached[0], "undefined A")  # skips to the list

    def test_on_a_small_screen(self):
        self.size(320, 700)
        tracks = (SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt", "--chunk", "100")
        for pages, address in (PAGES[1], (tracks, ""), (tracks, "#L17")):
            self.open(*pages, address=address)
            self.assertLessEqual(self.js("return document.documentElement.scrollWidth"), 320)
        rows = self.all("#list .row .reason")
        self.assertGreater(len(rows), 2)
        self.assertGreater(rows[1].size["width"], 150)

    def test_on_paper(self):
        self.open("--log", SAMPLES / "three-mistakes.log")
        self.command("Emulation.setEmulatedMedia", media="print")
        self.js("dispatchEvent(new Event('beforeprint'))")
        self.assertEqual((len(self.all("#calls .row")), len(self.all("#session .findings li"))), (11, 3))
        self.open(SAMPLES / "damaged.vtt")
        self.js("dispatchEvent(new Event('beforeprint'))")
        self.assertEqual(len(self.all("#list .row")), 25)
        self.assertEqual(len(self.all(".source-line")),
                         (SAMPLES / "damaged.vtt").read_bytes().count(b"\n"))
        frame = self.one("#list .frame")
        self.assertEqual(frame.get_property("scrollHeight"), frame.get_property("clientHeight"))
        self.js("dispatchEvent(new Event('afterprint'))")
        self.command("Emulation.setEmulatedMedia", media="")
        self.assertGreater(len(self.command("Page.printToPDF")["data"]), 10000)

    def test_all_samples_without_a_word_on_the_console(self):
        self.open(SAMPLES)
        for number in range(len(list(SAMPLES.glob("*.vtt")))):
            self.js("location.hash = arguments[0]", f"#T{number + 1}L3")
            self.frame()
            self.assertTrue(self.text("h1").startswith(f"Track {number + 1}: "))


class Speed(PageTest):
    """Limits are for an idle machine; REPORT_PATIENCE multiplies them."""

    patience = float(os.environ.get("REPORT_PATIENCE", "1"))

    def first_paint(self, *pages):
        """In seconds, the best of three."""
        paints = []
        for _ in range(3):
            self.open(*pages)
            paints.append(self.js(
                "return performance.getEntriesByName('first-contentful-paint')[0].startTime"))
        return min(paints) / 1000

    def sixty_steps(self):
        """Seconds that 60 steps of zoom take, in and out again."""
        return self.browser.execute_async_script("""
            const done = arguments[0];
            const slider = document.querySelector('.slider');
            const began = performance.now();
            let left = 60;
            const step = () => {
                if (left-- === 0) { done((performance.now() - began) / 1000); return; }
                const box = slider.getBoundingClientRect();
                slider.dispatchEvent(new WheelEvent('wheel', {deltaY: left < 30 ? 100 : -100,
                    clientX: box.left + box.width / 2, clientY: box.top + 20, cancelable: true}));
                requestAnimationFrame(step);
            };
            step();""")

    def assert_fast(self, what, *pages):
        paint, steps = self.first_paint(*pages), self.sixty_steps()
        print(f"{what}: first paint after {paint:.2f} s, 60 steps of zoom in {steps:.2f} s")
        self.assertLess(paint, 1 * self.patience)
        self.assertLess(steps, 2 * self.patience)

    def cue(self, number):
        """Its timing line and its text."""
        clock = f"{number // 3600:02}:{number // 60 % 60:02}:{number % 60:02}"
        return f"{clock}.000 --> {clock}.900\n", f"This is cue {number} of many.\n"

    def test_ten_thousand_cues(self):
        self.assert_fast("10000 cues", self.file("t.vtt", "WEBVTT\n\n" + "".join(
            "".join(self.cue(number)) + "\n" for number in range(10000))))

    def test_a_session_of_ten_thousand_chunks(self):
        log = Log()
        parser = log.open()
        log.parse(parser, "WEBVTT\n\n", result=1)
        for number in range(10000):
            timing, text = self.cue(number)
            log.now = number
            log.parse(parser, timing + text + "\n")
            log.take(parser, cue(float(number), number + 0.9, text))
        self.assert_fast("10000 chunks", "--log", self.file("session.log", log.bytes()))
        self.assertIn("10,000 cues, 0 lost blocks, 1 lane, 9,999 gaps, the longest 0.1 s, 20,003 calls",
                      self.text("#timeline .status"))


if __name__ == "__main__":
    unittest.main()
