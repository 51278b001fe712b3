"""What all tests of the page share: a browser, and stations with a page. The arguments are those of page_test.py."""
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

from playwright.sync_api import expect, sync_playwright

APPLETCTL = pathlib.Path(sys.argv[1]).resolve()
PICTURES = pathlib.Path(sys.argv[3])
TOKEN = "0123456789abcdef-test"
WAIT = 30_000  # milliseconds, for a slow machine
expect.set_options(timeout=WAIT)

# Small pictures without noise, with another factor for each colour and with 10 bits. Each begins one line further in
# the simulator's frame, so of 33 pictures in a row each has been before.
STILL = ["FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR", "FG_CAMERASIMULATOR_ROLL=FG_OFF", "FG_SENSORWIDTH=480",
         "FG_WIDTH=480", "FG_HEIGHT=32", "FG_CAMERASIMULATOR_WIDTH=480", "FG_CAMERASIMULATOR_HEIGHT=33",
         "FG_FORMAT=FG_COL30", "FG_SCALINGFACTOR_RED=0.5", "FG_SCALINGFACTOR_GREEN=0.8125",
         "FG_SCALINGFACTOR_BLUE=0.75"]


class Station:
    """A station with a page, in a folder of its own."""

    def __init__(self, *words, name="page", port=0):
        self.folder = tempfile.TemporaryDirectory()
        self.environment = {**os.environ, "XDG_RUNTIME_DIR": self.folder.name}
        self.name, self.words = name, words
        self.token = pathlib.Path(self.folder.name) / "token"
        self.token.write_text(TOKEN)
        self.start(port)

    def start(self, port):
        self.process = subprocess.Popen([APPLETCTL, "serve", self.name, "--port", str(port), "--token-file", self.token,
                                         *self.words], stdout=subprocess.PIPE, text=True, env=self.environment)
        for line in self.process.stdout:
            if found := re.search(r"http://127\.0\.0\.1:(\d+)/\S*", line):
                self.address, self.port = found[0], int(found[1])
                return
        raise AssertionError(f"serve ended with {self.process.wait()}")

    def run(self, *words):
        done = subprocess.run([APPLETCTL, "--station", self.name, *words], env=self.environment, check=True,
                              capture_output=True)
        return done.stdout.decode()

    def value(self, name):
        return json.loads(self.run("get", "--json", name))["parameters"][0]["value"]

    def kill(self, how=signal.SIGTERM):
        self.process.send_signal(how)
        self.process.wait()
        self.process.stdout.close()
        if how == signal.SIGTERM:
            self.folder.cleanup()


def until(page, holds):
    """Whether a condition holds, within the time that a slow machine may need."""
    for _ in range(WAIT // 100):
        if holds():
            return True
        page.wait_for_timeout(100)
    return False


def box_of(page, locator):
    """The box of an element. There is none while the page draws it again."""
    boxes = []
    assert until(page, lambda: boxes.append(locator.bounding_box()) or boxes[-1] is not None), "it is not shown"
    return boxes[-1]


def number(text):
    """The first number of a text; groups of digits have narrow spaces between them."""
    return float(re.search(r"-?\d+(\.\d+)?", text.replace("\u202f", ""))[0])


class Journey(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.playwright = sync_playwright().start()
        cls.browser = cls.playwright.chromium.launch(executable_path=os.environ["PAGE_BROWSER"], args=["--no-sandbox"])
        cls.belt = Station("--demo", "--allow-set")
        cls.still = Station("--allow-set", *STILL)

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.playwright.stop()
        for station in (cls.belt, cls.still):
            station.kill()

    def open(self, station, width=1280, height=800, scheme="light", state="running"):
        context = self.browser.new_context(viewport={"width": width, "height": height}, color_scheme=scheme)
        self.addCleanup(context.close)
        context.set_default_timeout(WAIT)
        if "PAGE_UNDER_TEST" in os.environ:
            context.route(re.compile(r"/(assets/.*|\?.*)?$"), self.from_sources)
        page = context.new_page()
        self.faults = []
        page.on("pageerror", lambda error: self.faults.append(str(error)))
        page.on("console", lambda message: self.faults.extend([message.text] * ("Content Security" in message.text)))
        self.addCleanup(lambda: self.assertEqual(self.faults, []))
        page.goto(station.address)
        expect(page.locator("#state")).to_have_text(state)
        expect(page.locator("#tree .row")).not_to_have_count(0)
        return page

    def from_sources(self, route):
        name = urllib.parse.urlsplit(route.request.url).path.removeprefix("/").removeprefix("assets/") or "index.html"
        kind = {"js": "text/javascript", "css": "text/css", "html": "text/html", "svg": "image/svg+xml"}[name.rsplit(".", 1)[1]]
        policy = "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob:; connect-src 'self'"
        route.fulfill(body=(pathlib.Path(os.environ["PAGE_UNDER_TEST"]) / name).read_bytes(),
                      headers={"Content-Type": kind, "Content-Security-Policy": policy})

    def freeze(self, page):
        """Holds the picture, and returns its number."""
        page.click("#freeze")
        expect(page.locator("#frozen")).to_be_visible()
        return int(number(page.inner_text("#frozen").split("picture")[1]))
