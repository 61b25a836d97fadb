"""Where the page of quill report draws a cue, and how it plays."""

import time
import unittest
import wave

from browser import SAMPLES, PageTest

# The settings of a cue, and its box in percent of the picture: left, top, right, bottom; None for what
# the text decides.
PLACES = (
    ("", (0, None, 100, 100)),
    ("line:0", (0, 0, 100, None)),
    ("line:3", (0, 20, 100, None)),
    ("line:-1", (0, None, 100, 100)),
    ("line:-4", (0, None, 100, 80)),
    ("line:15", (0, None, 100, 100)),
    ("line:50%", (0, 50, 100, None)),
    ("size:40%", (30, None, 70, 100)),
    ("position:30% size:40%", (10, None, 50, 100)),
    ("position:20% size:80%", (0, None, 40, 100)),
    ("align:start size:40%", (0, None, 40, 100)),
    ("align:left position:25% size:50%", (25, None, 75, 100)),
    ("align:end size:30%", (70, None, 100, 100)),
    ("align:right position:80% size:30%", (50, None, 80, 100)),
    ("vertical:lr line:0", (0, 0, None, 100)),
    ("vertical:rl line:0", (None, 0, 100, 100)),
    ("vertical:rl line:3 size:50%", (None, 25, 80, 75)),
    ("vertical:lr", (None, 0, 100, 100)),
)


class Stage(PageTest):
    def box(self):
        """The box of the cue in percent of the picture."""
        return self.js("""
            const all = document.querySelector('.picture').getBoundingClientRect();
            const box = document.querySelector('.cue').getBoundingClientRect();
            return [(box.left - all.left) / all.width, (box.top - all.top) / all.height,
                    (box.right - all.left) / all.width, (box.bottom - all.top) / all.height]
                   .map((part) => part * 100);""")

    def test_places(self):
        self.open_track(*((settings, "text") for settings, _ in PLACES))
        for number, (settings, expected) in enumerate(PLACES):
            with self.subTest(settings):
                self.js("location.hash = arguments[0]", f"#L{3 + 3 * number}")
                self.frame()
                for got, wanted in zip(self.box(), expected):
                    if wanted is not None:
                        self.assertAlmostEqual(got, wanted, delta=0.7)

    def test_it_has_the_form_of_a_film(self):
        self.open_track(("", "text"))
        size = self.one(".picture").size
        self.assertAlmostEqual(size["width"] / size["height"], 16 / 9, 1)

    def test_what_the_record_leaves_open_is_said(self):
        self.open_track(("", "text"), ("line:1 position:10%", "text"))
        self.assertIn("line 3: no line is set (100)", self.text("#stage .notes"))
        self.js("location.hash = '#L6'")
        self.frame()
        self.assertIn("size of 100 % is made 20 %", self.text("#stage .notes"))

    def test_directions(self):
        self.open_track(("vertical:rl", "縦書きの字幕"), ("", "שלום עולם"), ("", "hello"),
                        ("vertical:lr", "ᠮᠣᠩᠭᠣᠯ"))
        for line, mode, direction in ((3, "vertical-rl", "ltr"), (6, "horizontal-tb", "rtl"),
                                      (9, "horizontal-tb", "ltr"), (12, "vertical-lr", "ltr")):
            self.js("location.hash = arguments[0]", f"#L{line}")
            self.frame()
            got = self.js("""
                const style = getComputedStyle(document.querySelector('.cue > div'));
                return [style.writingMode, style.direction];""")
            self.assertEqual(got, [mode, direction])
        self.js("location.hash = '#L3'")
        self.frame()
        width, height = self.js("""
            const box = document.querySelector('.cue span').getBoundingClientRect();
            return [box.width, box.height];""")
        self.assertGreater(height, 3 * width)

    def test_cues_of_one_moment_stand_above_each_other(self):
        self.open(self.file("t.vtt", "WEBVTT\n\n00:01.000 --> 00:05.000\nLower\n\n"
                                     "00:02.000 --> 00:05.000\nUpper\nof two\n\n"), address="#L6")
        tops = {cue.text.split()[0]: cue.rect for cue in self.all(".cue")}
        self.assertLessEqual(tops["Upper"]["y"] + tops["Upper"]["height"], tops["Lower"]["y"] + 1)

    def test_a_lost_cue_is_said_to_be_missing(self):
        self.open(SAMPLES / "damaged.vtt")
        self.one("button[aria-label='Next lost block']").click()
        self.assertIn("line 8 is missing here", self.text(".missing"))
        self.one("button[aria-label='Previous cue']").click()
        self.assertEqual(self.all(".missing"), [])
        self.assertEqual(self.text(".cue"), "First of the cues that arrive.")

    def test_plays(self):
        self.open_track(("", "one"), ("", "two"))
        self.one("button[aria-label=Play]").click()
        time.sleep(0.7)
        self.one("button[aria-label=Pause]").click()
        shown = self.text(".clock")
        self.assertGreater(shown, "00:00:00.300")
        time.sleep(0.2)
        self.assertEqual(self.text(".clock"), shown)
        self.js("""const scrub = document.querySelector('input[type=range]');
                   scrub.value = 1.5; scrub.dispatchEvent(new Event('input'));""")
        self.assertEqual(self.text(".cue"), "two")

    def test_a_film_is_played_in_step(self):
        with wave.open(str(self.folder / "a film.wav"), "wb") as film:
            film.setparams((1, 1, 8000, 0, "NONE", ""))
            film.writeframes(b"\x80" * 8000 * 3)
        self.open("--video", self.folder / "a film.wav", self.file(
            "t.vtt", "WEBVTT\n\n00:00.000 --> 00:01.000\none\n\n00:01.500 --> 00:02.500\ntwo\n\n"))
        video = "document.querySelector('video')"
        self.js(f"return {video}.duration")
        self.one("button[aria-label=Play]").click()
        time.sleep(0.7)
        self.assertFalse(self.js(f"return {video}.paused"))
        self.assertGreater(self.js(f"return {video}.currentTime"), 0)
        self.one("button[aria-label=Pause]").click()
        self.assertTrue(self.js(f"return {video}.paused"))
        self.one("button[aria-label='Next cue']").click()
        self.assertEqual(self.text(".cue"), "two")
        self.assertAlmostEqual(self.js(f"return {video}.currentTime"), 1.5, 1)

    def test_a_background(self):
        picture = self.folder / "p.png"
        self.browser.save_screenshot(str(picture))
        self.open("--background", picture, SAMPLES / "dialogue.vtt")
        self.assertGreater(self.js("return document.querySelector('.picture img').naturalWidth"), 100)


if __name__ == "__main__":
    unittest.main()
