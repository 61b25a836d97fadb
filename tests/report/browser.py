"""Pages of quill report in a browser without a window: Debian's chromium, driven by its chromium-driver.

QUILL names the quill that makes them."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

QUILL = os.path.abspath(os.environ["QUILL"])
TREE = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = TREE / "samples"
# Session logs are written by hand as for the tests of quill.
sys.path.append(str(TREE / "tests" / "tools"))
# The page's own sandbox is what is tested; chromium's needs rights that a container lacks.
OPTIONS = ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
           "--force-device-scale-factor=1", "--autoplay-policy=no-user-gesture-required")


def start_browser():
    options = Options()
    options.binary_location = "/usr/bin/chromium"
    for option in OPTIONS:
        options.add_argument(option)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def make_report(out, *arguments, **how):
    subprocess.run([QUILL, "report", "-o", out, *arguments], check=True, timeout=60, **how)


class PageTest(unittest.TestCase):
    """One browser for all tests of a class; a folder for each, and after each a look at the console."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.browser = start_browser()
        cls.addClassCleanup(cls.browser.quit)

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.size(1280, 1000)
        self.browser.get_log("browser")

    def tearDown(self):
        self.assertEqual(self.browser.get_log("browser"), [])

    def size(self, width, height):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height,
                     deviceScaleFactor=1, mobile=False)

    def command(self, name, **arguments):
        return self.browser.execute_cdp_cmd(name, arguments)

    def file(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def open(self, *tracks, address="", **how):
        """Opens the report of the tracks, and waits until it is drawn."""
        out = self.folder / "report.html"
        make_report(out, *tracks, **how)
        self.browser.get("about:blank")
        self.browser.get(out.as_uri() + address)
        self.assertEqual(self.js("return document.documentElement.dataset.ready"), "true")
        self.frame()

    def open_log(self, log, **how):
        """The same for a session log."""
        self.open("--log", self.file("session.log", log if isinstance(log, bytes) else log.bytes()), **how)

    def open_track(self, *cues, header="WEBVTT", **how):
        """The same for a track of these cues, each (what follows the times, text), a second each."""
        text = header + "\n\n" + "".join(
            f"00:{number:02}.000 --> 00:{number + 1:02}.000 {settings}\n{words}\n\n"
            for number, (settings, words) in enumerate(cues))
        self.open(self.file("track.vtt", text), **how)

    def js(self, script, *arguments):
        return self.browser.execute_script(script, *arguments)

    def frame(self):
        """Waits until what is due has been painted."""
        self.browser.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(done))")

    def all(self, selector):
        return self.browser.find_elements("css selector", selector)

    def one(self, selector):
        found = self.all(selector)
        self.assertEqual(len(found), 1, selector)
        return found[0]

    def text(self, selector):
        return self.one(selector).text

    def chosen(self):
        """The first line of the chosen block."""
        found = self.all("#details .live > p:first-child > a")
        return found[0].text if found else None

    def click_at(self, part, y):
        """Clicks on the timeline, at that part of its width and so many pixels from its top."""
        slider = self.one(".slider")
        x = round(slider.size["width"] * (part - 0.5))
        ActionChains(self.browser).move_to_element_with_offset(
            slider, x, round(y - slider.size["height"] / 2)).click().perform()
        self.frame()

    def colours(self, part, y):
        """How many different columns of a pixel the timeline has from that part of its width on, so
        many pixels from its top: one where it is plain, more where it has a pattern."""
        return self.js("""
            const canvas = document.querySelector('canvas');
            const copy = Object.assign(document.createElement('canvas'),
                                       {width: canvas.width, height: canvas.height});
            const context = copy.getContext('2d', {willReadFrequently: true});
            context.drawImage(canvas, 0, 0);
            const [part, y] = arguments;
            return new Set(Array.from({length: 15}, (_, at) => Array.from(context.getImageData(
                Math.round(part * canvas.width) + at, y, 1, 1).data).join())).size;""", part, y)

    def follow(self, link):
        """Clicks a link to another place in the page, and waits until the page has heard of it."""
        self.js("window.gone = new Promise(done => addEventListener('hashchange', done, {once: true}))")
        link.click()
        self.browser.execute_async_script("const done = arguments[0]; window.gone.then(() => done())")
        self.frame()

    def press(self, element, *keys):
        for key in keys:
            element.send_keys(key)
        self.frame()
