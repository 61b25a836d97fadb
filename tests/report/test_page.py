"""What the page of quill report does when it is looked at, clicked and typed at."""

import pathlib
import re
import unittest

from browser import QUILL, SAMPLES, PageTest
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.actions.wheel_input import ScrollOrigin
from selenium.webdriver.common.keys import Keys

DAMAGED = SAMPLES / "damaged.vtt"
GOOD = "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n\n"
HOSTILE = ("</script><script>alert(1)</script>", "<img src=x onerror=alert(1)>", "<!--<script>",
           "\u2028alert(1)", "javascript:alert(1)", "${alert(1)}", "'\"><svg onload=alert(1)>")


class Hostile(PageTest):
    """tearDown sees what a policy blocks, too; an alert would make the next command fail."""

    def assert_inert(self):
        self.assertEqual(self.js("return document.scripts.length"), 2)
        self.assertEqual(self.all("img, svg, iframe, object, embed, link[rel=stylesheet]"), [])
        self.assertEqual(self.js("return performance.getEntriesByType('resource').length"), 0)

    def test_tracks(self):
        for text in HOSTILE:
            with self.subTest(text):
                escaped = text.replace("<", "&lt;")
                track = (f"WEBVTT {text}\n{text}\n\n{text}\n00:01.000 --> 00:02.000\n{escaped}\n\n"
                         f"{text}\n\n{text}\n00:03 --> 00:04.000 {text}\n{text}\n\n")
                self.open(self.file("t.vtt", track))
                self.assertIn(text.strip(), self.text("#stage .cue"))
                for row in range(len(self.all("#list .row"))):
                    self.all("#list .row")[row].click()
                    self.assert_inert()

    def test_names(self):
        names = [f"{number}{text.replace('/', chr(0x2215))}.vtt" for number, text in enumerate(HOSTILE)]
        for name in names:
            self.file(name, GOOD)
        self.open(".", cwd=self.folder)
        shown = [link.get_attribute("textContent") for link in self.all("#overview th a")]
        self.assertEqual(sorted(shown), sorted("./" + name for name in names))
        for number in range(len(names)):
            self.follow(self.all("#overview th a")[number])
            self.assertIn(shown[number], self.one("h1").get_attribute("textContent"))
            self.assert_inert()


class Addresses(PageTest):
    def test_a_line_has_an_address(self):
        self.open(DAMAGED, address="#L17")
        self.assertEqual(self.chosen(), "line 16, chunk 1")
        self.assertIn("Q103", self.text("#details .findings .code"))
        self.assertEqual(len(self.all(".source-line.chosen")), 3)

    def test_a_choice_is_written_into_the_location(self):
        self.open(DAMAGED)
        self.all("#list .row")[2].click()
        self.assertEqual(self.js("return location.hash"), "#L8")
        self.js("location.hash = '#L13'")
        self.frame()
        self.assertEqual(self.chosen(), "line 12, chunk 1")
        self.js("location.hash = '#nonsense'")
        self.frame()
        self.assertEqual(self.chosen(), "line 12, chunk 1")

    def test_of_another_track(self):
        self.open(SAMPLES / "dialogue.vtt", DAMAGED, address="#T2L17")
        self.assertEqual(self.chosen(), "line 16, chunk 1")
        self.assertEqual(self.js("return location.hash"), "#T2L17")
        self.assertIn("Track 2: ", self.text("h1"))


class Blocks(PageTest):
    def shown(self):
        return [row.text for row in self.all("#list .row .line")]

    def test_every_block_with_what_became_of_it(self):
        self.open(DAMAGED)
        self.assertEqual(self.text("#list .status"), "25 of 25 blocks")
        row = self.all("#list .row")[2]
        said = {part.get_attribute("class").split()[0]: part.text for part in row.find_elements("css selector",
                                                                                    ":scope > span")}
        self.assertEqual((said["line"], said["times"], said["verdict"], said["code"]),
                         ("L8", "00:00:02.000 → 00:00:03.000", "lost", "Q101"))
        self.assertIn('invalid start time "00:02"', said["reason"])
        self.assertIn("Nobody sees this.", said["text"])

    def test_filters(self):
        self.open(DAMAGED)
        for value in ("lost", "none", "remark"):
            self.one(f"#list input[value={value}]").click()
        self.assertEqual(self.text("#list .status"), "2 of 25 blocks")
        for value in ("lost", "none", "remark"):
            self.one(f"#list input[value={value}]").click()
        self.one("#list select option[value=Q109]").click()
        self.assertEqual(self.text("#list .status"), "1 of 25 blocks")
        self.one("#list select option[value='']").click()
        self.one("#list input[type=search]").send_keys("BLINK")
        self.assertEqual(self.text("#list .status"), "1 of 25 blocks")

    def test_keys(self):
        self.open(DAMAGED)
        rows = self.one("#list [role=listbox]")
        self.press(rows, Keys.ARROW_DOWN, Keys.ARROW_DOWN)
        self.assertEqual(self.chosen(), "line 4, chunk 1")
        active = rows.get_attribute("aria-activedescendant")
        self.assertEqual(self.one(f"#{active}").get_attribute("aria-selected"), "true")
        self.press(rows, Keys.END)
        self.assertIn("lost with its chunk", self.text("#details .live > p:first-child"))
        self.press(rows, Keys.HOME)
        self.assertEqual(self.chosen(), "line 1, chunk 1")

    def test_source_shows_blanks(self):
        self.open(self.file("t.vtt", b"WEBVTT\n\n00:01.000 -->\t00:02.000\r\na\xc2\xa0\xe2\x80\x8bb\x01\xff\n"))
        lines = [line.get_attribute("textContent") for line in self.all(".source-line code")]
        self.assertEqual(lines, ["WEBVTT↵", "↵", "00:01.000·-->→00:02.000\\r↵", "a⍽[U+200B]b\\x01�↵"])

    def test_long_tracks_have_few_rows_in_the_page(self):
        self.open(self.file("t.vtt", "WEBVTT\n\n" + "00:01.000 --> 00:02.000\nx\n\n" * 3000))
        self.assertLess(len(self.all("#list .row")), 100)
        self.assertLess(len(self.all(".source-line")), 100)
        self.press(self.one("#list [role=listbox]"), Keys.END)
        self.assertEqual(self.chosen(), "line 9000, chunk 2")
        self.assertIn("L9000", [row.text for row in self.all("#list .row .line")])
        self.assertIn("9000", [link.text for link in self.all(".source-line.chosen a")])


class Timeline(PageTest):
    def span(self):
        self.frame()
        return float(self.one(".slider").get_attribute("data-span"))

    def test_says_what_it_shows(self):
        self.open(self.file("t.vtt", "WEBVTT\n\n00:01.000 --> 00:04.000\nOne\n\n00:02.000 --> 00:03.000\n"
                            "Two\n\n00:05 --> 00:06.000\nLost\n\n00:10.000 --> 00:11.000\nLast\n\n"))
        self.assertEqual(self.text("#timeline .status"),
                         "3 cues, 1 lost block, 2 lanes, 1 gap, the longest 6 s")
        self.assertTrue(self.one(".slider").get_attribute("aria-valuetext").endswith(", One"))
        # From 0.5 s to 11.5 s. The second cue lies below the first, and the lost one in its place.
        for seconds, y, line in ((1.2, 30, 3), (2.5, 52, 6), (5.5, 30, 9), (10.5, 30, 12)):
            self.click_at((seconds - 0.5) / 11, y)
            self.assertEqual(self.chosen(), f"line {line}, chunk 1")

    def test_lost_cues_have_a_pattern(self):
        self.open_track(("", "one"), ("line:,end", "lost"))
        self.assertEqual(self.colours(0.3, 30), 1)
        self.assertGreater(self.colours(0.7, 30), 2)

    def test_zooms_by_keys_buttons_and_wheel(self):
        self.open(SAMPLES / "dialogue.vtt")
        whole = self.span()
        slider = self.one(".slider")
        self.press(slider, "+", "+")
        self.assertAlmostEqual(self.span(), whole / 1.25 ** 2, 1)
        self.press(slider, "-")
        self.assertAlmostEqual(self.span(), whole / 1.25, 1)
        self.press(slider, "0")
        self.assertAlmostEqual(self.span(), whole, 1)
        self.one("button[aria-label='Zoom in']").click()
        self.assertLess(self.span(), whole)
        self.one("button[aria-label='Show everything']").click()
        ActionChains(self.browser).scroll_from_origin(
            ScrollOrigin.from_element(slider), 0, -100).perform()
        self.assertLess(self.span(), whole)

    def touch(self, kind, *fingers):
        """Fingers on the timeline, at these parts of its width."""
        box = self.one(".slider").rect
        self.command("Input.dispatchTouchEvent", type=kind, touchPoints=[
            {"x": box["x"] + part * box["width"], "y": box["y"] + 30, "id": number}
            for number, part in enumerate(fingers)])

    def swipe(self, *steps):
        """The fingers of each step, from the first step to the last; then they are lifted."""
        self.touch("touchStart", *steps[0])
        for fingers in steps[1:]:
            self.touch("touchMove", *fingers)
        self.touch("touchEnd")
        self.frame()

    def first_time(self):
        """The time at the left rim of the timeline, found by choosing it."""
        self.swipe([0.001])
        return float(self.one(".slider").get_attribute("aria-valuenow"))

    def test_moves_and_zooms_by_touch(self):
        self.command("Emulation.setTouchEmulationEnabled", enabled=True, maxTouchPoints=2)
        self.addCleanup(self.command, "Emulation.setTouchEmulationEnabled", enabled=False)
        self.open(SAMPLES / "dialogue.vtt")
        whole = self.span()
        self.swipe([0.45, 0.55], [0.4, 0.6], [0.35, 0.65], [0.25, 0.75])
        stretched = self.span()
        self.assertAlmostEqual(stretched, whole / 5, delta=whole / 50)
        before = self.first_time()
        self.swipe([0.8], [0.6], [0.4], [0.3])
        self.assertAlmostEqual(self.first_time() - before, stretched / 2, delta=stretched / 50)
        self.assertAlmostEqual(self.span(), stretched, 2)
        self.swipe([0.25, 0.75], [0.35, 0.65], [0.45, 0.55])
        self.assertAlmostEqual(self.span(), whole, delta=whole / 50)
        self.assertEqual(self.js("return [scrollX, scrollY, visualViewport.scale]"), [0, 0, 1])

    def test_a_finger_chooses_a_cue(self):
        self.command("Emulation.setTouchEmulationEnabled", enabled=True, maxTouchPoints=2)
        self.addCleanup(self.command, "Emulation.setTouchEmulationEnabled", enabled=False)
        self.open_track(("", "one"), ("", "two"))
        self.swipe([0.7])
        self.assertEqual(self.chosen(), "line 6, chunk 1")

    def test_steps_by_keys(self):
        self.open(DAMAGED)
        slider = self.one(".slider")
        self.press(slider, "l")
        self.assertEqual(self.chosen(), "line 8, chunk 1")
        self.press(slider, "n")
        self.assertEqual(self.chosen(), "line 12, chunk 1")
        self.press(slider, "k", "p")
        self.assertEqual(self.chosen(), "line 4, chunk 1")
        before = float(slider.get_attribute("aria-valuenow"))
        self.press(slider, Keys.ARROW_RIGHT)
        self.assertGreater(float(slider.get_attribute("aria-valuenow")), before)


class Head(PageTest):
    def test_what_is_known_of_the_module(self):
        self.open(DAMAGED)
        module = pathlib.Path(QUILL).with_name("quillcaption.so")
        self.assertRegex(self.text(".made"), r"^quill \d+[.]\d+[.]\d+, module "
                         + re.escape(f"{module}, {module.stat().st_size:,} bytes") + "$")


class Several(PageTest):
    def names(self):
        return [link.text for link in self.all("#overview th a")]

    def test_a_table_that_sorts(self):
        self.file("a.vtt", GOOD)
        self.file("b.vtt", GOOD + GOOD[8:] * 2)
        self.file("c.vtt", GOOD + "x\n\n")
        self.open("a.vtt", "b.vtt", "c.vtt", cwd=self.folder)
        self.assertEqual(self.names(), ["a.vtt", "b.vtt", "c.vtt"])
        headings = {button.text: button for button in self.all("#overview thead button")}
        headings["Cues"].click()
        self.assertEqual(self.names()[0], "b.vtt")
        headings["Lost"].click()
        self.assertEqual(self.names()[0], "c.vtt")
        self.assertEqual([heading.text for heading in self.all("th[aria-sort=descending]")], ["Lost"])
        headings["Track"].click()
        headings["Track"].click()
        self.assertEqual(self.names(), ["c.vtt", "b.vtt", "a.vtt"])
        self.follow(self.one("#overview a[href='#T2']"))
        self.assertEqual(self.text("h1"), "Track 2: b.vtt")

    def test_side_by_side(self):
        cue = "00:{0:02}.000 --> 00:{0:02}.900{2}\n{1}\n\n".format
        one = self.file("a.vtt", "WEBVTT\n\n" + cue(1, "same", "") + cue(2, "moves", "") + cue(4, "goes", "")
                        + cue(6, "turns", "") + cue(8, "is set", ""))
        other = self.file("b.vtt", "WEBVTT\n\n" + cue(1, "same", "") + cue(3, "moves", "")
                          + cue(6, "turned", "") + cue(7, "comes", "") + cue(8, "is set", " line:1"))
        self.open("--against", other, one)
        self.assertEqual(self.text("#comparison .status"),
                         "1 cue the same, 1 moved, 2 changed, 1 went, 1 came")
        kinds = [row.text for row in self.all("#comparison tbody th")]
        self.assertEqual(kinds, ["moved by +00:00:01.000", "went", "changed text", "came",
                                 "changed settings"])
        self.follow(self.one("#comparison tr.came a"))
        self.assertEqual(self.text("h1"), f"Track 2: {other}")
        self.assertEqual(self.chosen(), "line 12, chunk 1")


if __name__ == "__main__":
    unittest.main()
