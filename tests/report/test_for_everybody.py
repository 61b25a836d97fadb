"""The page of quill report for all who look at it: by keys, by ear, in the dark, small, on paper; and
that it is fast."""

import os
import unittest

from browser import SAMPLES, PageTest
from selenium.webdriver.common.keys import Keys

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


class Everybody(PageTest):
    def nodes(self):
        """What a screen reader gets: role, name and properties of each node."""
        self.command("Accessibility.enable")
        return [(node["role"]["value"], node.get("name", {}).get("value", ""),
                 {property["name"]: property["value"].get("value") for property in node["properties"]})
                for node in self.command("Accessibility.getFullAXTree")["nodes"]
                if not node["ignored"]]

    def test_everything_that_is_used_has_a_role_and_a_name(self):
        self.open(SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt", address="#L17")
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
        self.open(SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt", address="#L17")
        backs = set()
        for scheme in ("light", "dark"):
            self.command("Emulation.setEmulatedMedia",
                         features=[{"name": "prefers-color-scheme", "value": scheme}])
            self.frame()
            backs.add(self.js("return getComputedStyle(document.body).backgroundColor"))
            self.assertEqual(self.js(CONTRAST), [], scheme)
        self.assertEqual(len(backs), 2)

    def test_the_tab_key_gets_everywhere(self):
        self.open(SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt")
        reached = []
        for _ in range(100):
            self.one("body")
            self.browser.switch_to.active_element.send_keys(Keys.TAB)
            reached.append(self.js("""
                const at = document.activeElement;
                return at.closest('section')?.id + ' ' + (at.getAttribute('role') ?? at.tagName)"""))
            if reached[-1].startswith("source A"):
                break
        for place in ("overview BUTTON", "timeline slider", "timeline BUTTON", "stage BUTTON",
                      "stage INPUT", "list INPUT", "list SELECT", "list listbox", "source group"):
            self.assertIn(place, reached)
        self.assertEqual(reached[0], "undefined A")  # skips to the list

    def test_on_a_small_screen(self):
        self.size(320, 700)
        for address in ("", "#L17"):
            self.open(SAMPLES / "damaged.vtt", SAMPLES / "dialogue.vtt", "--chunk", "100",
                      address=address)
            self.assertLessEqual(self.js("return document.documentElement.scrollWidth"), 320)
        rows = self.all("#list .row .reason")
        self.assertGreater(len(rows), 2)
        self.assertGreater(rows[1].size["width"], 150)

    def test_on_paper(self):
        self.open(SAMPLES / "damaged.vtt")
        self.command("Emulation.setEmulatedMedia", media="print")
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

    def test_ten_thousand_cues(self):
        def clock(second):
            return f"{second // 3600:02}:{second // 60 % 60:02}:{second % 60:02}"
        track = self.file("t.vtt", "WEBVTT\n\n" + "".join(
            f"{clock(number)}.000 --> {clock(number)}.900\nThis is cue {number} of many.\n\n"
            for number in range(10000)))
        paints = []
        for _ in range(3):
            self.open(track)
            paints.append(self.js(
                "return performance.getEntriesByName('first-contentful-paint')[0].startTime"))
        steps = self.browser.execute_async_script("""
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
        print(f"10000 cues: first paint after {min(paints) / 1000:.2f} s, 60 steps of zoom in {steps:.2f} s")
        self.assertLess(min(paints) / 1000, 1 * self.patience)
        self.assertLess(steps, 2 * self.patience)


if __name__ == "__main__":
    unittest.main()
