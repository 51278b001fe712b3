#!/usr/bin/env python3
"""The page of a station in a real browser.

page_test.py APPLETCTL VENV PICTURES

Makes a virtual environment in the folder VENV with the package playwright, unless it is there, and drives Debian's
chromium. Where one of them cannot be had it says so and answers 77: skipped. Pictures of the page go to PICTURES;
PAGE_RENEW=1 also writes docs/images/page.png. PAGE_UNDER_TEST=FOLDER takes the page's files from there instead of
those in the program."""
import hashlib
import json
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import unittest
import urllib.parse

PACKAGE = "playwright>=1.40,<2"
SKIPPED = 77
APPLETCTL = pathlib.Path(sys.argv[1]).resolve()
SOURCES = pathlib.Path(__file__).resolve().parent.parent.parent
BROWSER = shutil.which("chromium") or shutil.which("chromium-browser")


def run_in_environment():
    if not BROWSER:
        print("skipped: there is no chromium (Debian: the package chromium)")
        sys.exit(SKIPPED)
    folder = pathlib.Path(sys.argv[2])
    python = folder / "bin" / "python"
    if not python.exists() or subprocess.run([python, "-c", "import playwright"], capture_output=True).returncode != 0:
        for what, command in (
                ("no virtual environment can be made (Debian: python3-venv)",
                 [sys.executable, "-m", "venv", "--clear", folder]),
                ("the package playwright cannot be had from the package index",
                 [python, "-m", "pip", "install", "--quiet", "--disable-pip-version-check", "--timeout", "20",
                  "--retries", "1", PACKAGE])):
            done = subprocess.run(command, capture_output=True, text=True)
            if done.returncode != 0:
                print(f"skipped: {what}:\n{done.stderr}")
                sys.exit(SKIPPED)
    os.execve(python, [str(python), __file__, *sys.argv[1:]], {**os.environ, "PAGE_CLIENT": "1"})


if "PAGE_CLIENT" not in os.environ:
    if "--port" not in subprocess.run([APPLETCTL, "serve", "--help"], capture_output=True, text=True).stdout:
        print("skipped: this appletctl was built without the page")
        sys.exit(SKIPPED)
    run_in_environment()

from playwright.sync_api import expect, sync_playwright  # noqa: E402

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


def number(text):
    """The first number of a text; groups of digits have narrow spaces between them."""
    return float(re.search(r"-?\d+(\.\d+)?", text.replace("\u202f", ""))[0])


def components(raw, width, x, y, bits=10):
    """Red, green and blue of a pixel in the bytes of a picture, in which blue comes first."""
    begin = 3 * bits * (y * width + x)
    value = int.from_bytes(raw[begin // 8:begin // 8 + 9], "little") >> begin % 8
    return [value >> bits * i & (1 << bits) - 1 for i in (2, 1, 0)]


class Journeys(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.playwright = sync_playwright().start()
        cls.browser = cls.playwright.chromium.launch(executable_path=BROWSER, args=["--no-sandbox"])
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
        kind = {"js": "text/javascript", "css": "text/css", "html": "text/html"}[name.rsplit(".", 1)[1]]
        policy = "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' blob:; connect-src 'self'"
        route.fulfill(body=(pathlib.Path(os.environ["PAGE_UNDER_TEST"]) / name).read_bytes(),
                      headers={"Content-Type": kind, "Content-Security-Policy": policy})

    def freeze(self, page):
        """Holds the picture, and returns its number."""
        page.click("#freeze")
        expect(page.locator("#frozen")).to_be_visible()
        return int(number(page.inner_text("#frozen").split("picture")[1]))

    def saved(self, page, button):
        page.click("#files-open")
        with page.expect_download() as download:
            page.click(button)
        data = pathlib.Path(download.value.path()).read_bytes()
        page.click("#files-close")
        return data

    def probe(self, page, x, y):
        """Values of a pixel that is reached with the keys."""
        page.focus("#view")
        page.click("#view-fit")
        expect(page.locator("#view-fit")).to_have_attribute("aria-pressed", "true")
        box = page.locator("#view").bounding_box()
        page.keyboard.press("Escape")
        page.mouse.click(box["x"] + box["width"] / 2, box["y"] + box["height"] / 2)
        page.focus("#view")
        place = page.locator("#probe-place")
        expect(place).to_have_text(re.compile(r"x \d+  y \d+"))
        while True:
            at_x, at_y = map(int, re.findall(r"\d+", place.inner_text()))
            key = "ArrowRight" if at_x < x else "ArrowLeft" if at_x > x else "ArrowDown" if at_y < y else "ArrowUp"
            distance = abs(at_x - x) or abs(at_y - y)
            if not distance:
                break
            page.keyboard.press(("Shift+" if distance >= 16 else "") + key)
            expect(place).not_to_have_text(f"x {at_x}  y {at_y}")
        expect(page.locator("#probe-values")).to_have_text(re.compile(r"R \d+"))
        return [int(value) for value in re.findall(r"\d+", page.inner_text("#probe-values"))]

    def lines(self, page, scale):
        """Numbers of the lines on the canvas, from the chart's bars: 20 bits of 8 pixels after 16 others."""
        rows = page.evaluate("""(scale) => {
          const canvas = document.getElementById('view');
          const data = canvas.getContext('2d').getImageData(0, 0, Math.min(canvas.width, 176 * scale), canvas.height);
          return Array.from({length: canvas.height}, (_, y) => Array.from({length: 20}, (_, bit) =>
            data.data[4 * (y * data.width + Math.floor((16 + 8 * bit + 2.5) * scale))]));
        }""", scale)
        return [int("".join("1" if value > 127 else "0" for value in row), 2) for row in rows]

    def test_the_ruler_of_the_shown_picture(self):
        page = self.open(self.belt)
        self.freeze(page)
        box = page.locator("#view").bounding_box()
        middle = box["y"] + box["height"] / 2
        for magnification, clicks in ((1, ["#view-full"]), (4, ["#view-in", "#view-in"])):
            for button in clicks:
                page.click(button)
            for _ in range(magnification):  # to the left edge
                page.mouse.move(box["x"] + 5, middle)
                page.mouse.down()
                page.mouse.move(box["x"] + 800, middle, steps=3)
                page.mouse.up()
            expect(page.locator("#view-scale")).to_have_text(f"{magnification * 100} %")
            page.focus("#view")
            page.keyboard.press("Escape")  # the cross is in the way
            steps = lambda lines: {b - a for a, b in zip(lines, lines[magnification:])}  # noqa: E731
            until(page, lambda: steps(self.lines(page, magnification)) == {1})
            shown = self.lines(page, magnification)
            self.assertEqual(steps(shown), {1})
            # The probe reads the last bit of the same line.
            place = page.locator("#probe-place")
            offsets = set()
            for row in (40, 40 + magnification, 240):
                page.mouse.click(box["x"] + 172 * magnification, box["y"] + row)
                expect(place).to_have_text(re.compile(r"x 172  y \d+"))
                offsets.add(shown[row] - int(place.inner_text().split("y")[1]))
                expect(page.locator("#probe-values")).to_have_text(re.compile("R 255" if shown[row] % 2 else "R 0 "))
                page.keyboard.press("Escape")
            self.assertEqual(len(offsets), 1)

    def test_probe_and_files_agree_with_grab(self):
        page = self.open(self.still)
        self.freeze(page)
        raw = self.saved(page, "#save-raw")
        self.assertIn(hashlib.sha256(raw).hexdigest(), self.still.run("grab", "40", "--hash").split()[::2])
        self.assertEqual(self.saved(page, "#save-png")[16:24], (480).to_bytes(4, "big") + (32).to_bytes(4, "big"))
        self.assertIn("of 1023 (10 bit)", self.reached(page, 7, 3, raw))
        self.reached(page, 479, 31, raw)

    def reached(self, page, x, y, raw):
        values = self.probe(page, x, y)
        self.assertEqual(values, components(raw, 480, x, y))
        self.assertEqual(len(set(values)), 3)
        return page.inner_text("#probe-format")

    def test_histogram_counts_each_pixel(self):
        page = self.open(self.still)
        for region, expected in ((None, 480 * 32), (True, None)):
            if region:
                page.click("#region")
                box = page.locator("#view").bounding_box()
                page.mouse.move(box["x"] + box["width"] / 2, box["y"] + box["height"] / 2)
                page.mouse.down()
                page.mouse.move(box["x"] + box["width"] / 2 + 40, box["y"] + box["height"] / 2 + 30, steps=4)
                page.mouse.up()
                width, height = map(int, re.search(r"(\d+) × (\d+)", page.inner_text("#probe-region")).groups())
                expected = width * height
            with page.expect_response(lambda answer: "/api/histogram" in answer.url and
                                      ("region" in answer.url) == bool(region)) as answer:
                pass
            histogram = answer.value.json()
            self.assertEqual([sum(bins) for bins in histogram["bins"]], [expected] * 3)
            shown = f"{expected:,}".replace(",", "\u202f")
            expect(page.locator("#histogram-note")).to_contain_text(f"{shown} pixels of picture")
        # Grey times the factors: balanced, they are all the same.
        page.click("#balance")
        page.click("#balance-dialog .primary")
        expect(page.locator("#balance-dialog")).not_to_be_visible()
        self.addCleanup(self.still.run, "set", *STILL[-3:])
        factors = [self.still.value(f"FG_SCALINGFACTOR_{colour}") for colour in ("RED", "GREEN", "BLUE")]
        # The means are of values that were rounded, each by up to half a step of some hundred.
        self.assertLess(max(abs(factor - 1) for factor in factors), 0.01)

    def test_refusals_offer_a_remedy(self):
        page = self.open(self.still)
        page.fill("#search", "FG_LINEEXPOSURE")
        page.fill("#p-FG_LINEEXPOSURE", "300")
        page.press("#p-FG_LINEEXPOSURE", "Enter")
        error = page.locator(".row .error")
        expect(error).to_contain_text("FG_LINEEXPOSURE=300 was refused")
        expect(error).to_contain_text("Accepted now: 0.512 to 200 in steps of 0.008, set by")
        expect(page.locator("#p-FG_LINEEXPOSURE")).to_have_value("19")
        self.addCleanup(self.still.run, "set", "FG_LINEEXPOSURE=19", "FG_LINEPERIODE=200")
        error.get_by_role("button", name="FG_LINEPERIODE=300").click()
        expect(error).to_have_count(0)
        expect(page.locator("#p-FG_LINEEXPOSURE")).to_have_value("300")
        self.assertEqual([self.still.value(name) for name in ("FG_LINEEXPOSURE", "FG_LINEPERIODE")], [300, 300])

    def test_a_draft_stays_until_it_is_sent(self):
        page = self.open(self.belt)
        self.addCleanup(self.belt.run, "set", "FG_HEIGHT=512")
        page.evaluate("""() => {
          const send = window.fetch;
          window.sent = [];
          window.fetch = async (url, options) => {
            if (options.method !== 'PUT') return send(url, options);
            window.sent.push(JSON.parse(options.body).value);
            await new Promise((resolve) => setTimeout(resolve, 400));
            return send(url, options);
          };
        }""")
        field, limits, keys = page.locator("#p-FG_HEIGHT"), page.locator("#p-FG_HEIGHT-limits"), page.keyboard
        field.focus()
        for text in ("300", "500", "640"):  # 300 is on its way while the others come
            keys.press("Control+A")
            keys.type(text, delay=15)
            keys.press("Enter")
        keys.press("Control+A")
        keys.type("1", delay=15)
        self.assertTrue(until(page, lambda: self.belt.value("FG_HEIGHT") == 640))
        page.click("#search")
        expect(limits).to_have_text("not sent: Enter sends it")
        page.wait_for_timeout(600)
        expect(field).to_have_value("1")
        field.press("Escape")
        expect(field).to_have_value("640")
        expect(limits).to_contain_text("1 to ")
        for _ in range(10):
            keys.press("ArrowUp")
            keys.press("Enter")
        self.assertTrue(until(page, lambda: self.belt.value("FG_HEIGHT") == 650))
        expect(field).to_have_value("650")
        self.assertEqual(page.evaluate("window.sent"), [300, 640, 641, 650])

        running = subprocess.Popen([APPLETCTL, "--station", "page", "grab", "120"], env=self.belt.environment,
                                   stdout=subprocess.DEVNULL)
        expect(page.locator("#no-signal")).to_contain_text("grab 120")
        self.assertEqual(page.locator("#no-signal p").first.evaluate(
            "(text) => getComputedStyle(text, '::first-letter').textTransform"), "none")  # it is quoted
        field.fill("600")
        field.press("Enter")
        error = page.locator(".row .error")
        expect(error).to_contain_text("FG_HEIGHT=600 is not set: the station was busy with '")
        expect(field).to_have_value("600")
        self.assertEqual(running.wait(), 0)
        self.assertEqual(self.belt.value("FG_HEIGHT"), 650)
        error.get_by_role("button", name="Send again").click()
        self.assertTrue(until(page, lambda: self.belt.value("FG_HEIGHT") == 600))
        expect(error).to_have_count(0)

    def test_no_signal_shows_reason_and_remedy(self):
        station = Station("--allow-set")
        self.addCleanup(station.kill)
        page = self.open(station, state="no signal")
        expect(page.locator("#no-signal")).to_contain_text("no camera")
        page.get_by_role("button", name="Set FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR").click()
        expect(page.locator("#state")).to_have_text("running")
        expect(page.locator("#no-signal")).to_be_hidden()
        page.click("#run")
        expect(page.locator("#no-signal")).to_contain_text("stopped")
        page.locator("#no-signal button").click()
        expect(page.locator("#state")).to_have_text("running")

    def test_search_limits_and_changes_of_others(self):
        page = self.open(self.belt)
        for words, found in (("fg_xoffset", ["FG_XOFFSET"]), ("encoder leading", ["FG_SHAFTENCODERLEADING"]),
                             ("no such thing", [])):
            page.fill("#search", words)
            rows = page.locator("#tree .row:visible")
            expect(rows).to_have_count(len(found))
            self.assertEqual([row.get_attribute("data-name") for row in rows.all()], found)
        page.fill("#search", "fg_xoffset")
        limits = page.locator("[data-name=FG_XOFFSET] .limits")
        expect(limits).to_have_text("0 to 14336 in steps of 4")
        self.addCleanup(self.belt.run, "set", "FG_WIDTH=2048")
        self.belt.run("set", "FG_WIDTH=1024")
        expect(limits).to_have_text("0 to 15360 in steps of 4")
        page.fill("#search", "")
        page.check("#changed-only")
        expect(page.locator("[data-name=FG_SENSORWIDTH]")).to_be_visible()
        expect(page.locator("[data-name=FG_WIDTH]")).to_be_hidden()

    def test_probe_and_region_in_a_narrower_picture(self):
        page = self.open(self.belt)
        self.addCleanup(self.belt.run, "set", "FG_WIDTH=2048")
        page.click("#region")
        box = page.locator("#view").bounding_box()
        middle = box["y"] + box["height"] / 2
        page.mouse.move(box["x"] + box["width"] / 4, middle - 20)
        page.mouse.down()
        page.mouse.move(box["x"] + box["width"] * 3 / 4, middle + 20, steps=3)
        page.mouse.up()
        x, y, _, height = re.search(r"(\d+), (\d+), (\d+) × (\d+)", page.inner_text("#probe-region")).groups()
        page.mouse.click(box["x"] + box["width"] * 0.9, middle)
        for width, region in ((1024, f"region {x}, {y}, {1024 - int(x)} × {height}"), (256, "")):
            self.belt.run("set", f"FG_WIDTH={width}")
            expect(page.locator("#probe-format")).to_have_text(f"outside the picture of {width} × 512 pixels")
            expect(page.locator("#notice-region")).to_contain_text("is cut to" if region else "is removed")
            expect(page.locator("#probe-region")).to_have_text(region)

    def test_events_count_up(self):
        page = self.open(self.still)
        page.click("#tab-losses")
        count = page.locator("#events-table tr", has_text="FrameStart").locator("td").first
        expect(count).to_have_text(re.compile(r"\d"))
        before = number(count.inner_text())
        self.assertTrue(until(page, lambda: number(count.inner_text()) > before + 1000))  # some 300 a second

    def test_timeline_shows_the_period(self):
        page = self.open(self.still)
        page.click("#tab-timeline")
        lane = page.locator("#timeline-lanes li", has=page.get_by_text("ExSync", exact=True))
        expect(lane).to_contain_text("200 µs")
        self.addCleanup(self.still.run, "set", "FG_LINEPERIODE=200")
        self.still.run("set", "FG_LINEPERIODE=125")
        expect(lane).to_contain_text("125 µs")
        expect(page.locator("#timeline-lanes li[data-kind=event]", has_text="Cam0LineStart")).to_have_count(1)
        page.click("#timeline-hold")
        note = page.inner_text("#timeline-note")
        page.wait_for_timeout(2000)  # the station's own record has gone on
        self.assertEqual(page.inner_text("#timeline-note"), note)
        page.locator("#timeline-canvas").hover()
        page.mouse.wheel(0, -400)
        expect(page.locator("#timeline-note")).not_to_contain_text(note.split(" from")[0])
        expect(lane).to_contain_text("125 µs")

    def test_a_dragged_lookup_table(self):
        page = self.open(self.still)
        page.click("#tab-lut")
        handles = page.locator("#lut-curve circle")
        expect(handles).to_have_count(9)
        self.addCleanup(self.still.run, "set", "FG_LUT_ENABLE=FG_OFF")
        page.click("#lut-enable")
        expect(page.locator("#lut-state")).to_contain_text("The table is in use")
        page.get_by_role("button", name="Green", exact=True).click()
        box = handles.nth(4).bounding_box()
        page.mouse.move(box["x"] + 5, box["y"] + 5)
        page.mouse.down()
        with page.expect_response(lambda answer: "/api/lut/green" in answer.url and answer.request.method == "PUT"):
            page.mouse.move(box["x"] + 5, box["y"] - 45, steps=4)
            page.mouse.up()
        handle = handles.nth(4)
        expect(handle).to_have_attribute("aria-valuenow", re.compile("^[4-6][0-9]{4}$"))
        entry, value = int(number(handle.get_attribute("aria-label"))), int(handle.get_attribute("aria-valuenow"))
        entries = [self.still.value(f"FG_LUT_VALUE_{colour}[{entry}]") for colour in ("RED", "GREEN")]
        self.assertLess(entries[0], 33000)
        self.assertEqual(entries[1], value)
        handle.focus()
        with page.expect_response(lambda answer: "/api/lut/green" in answer.url and answer.request.method == "PUT"):
            page.keyboard.press("Shift+ArrowDown")
        expect(handle).not_to_have_attribute("aria-valuenow", str(value))
        self.assertEqual(self.still.value(f"FG_LUT_VALUE_GREEN[{entry}]"), value - 4096)

    def test_a_handle_changes_the_entries_beside_it(self):
        page = self.open(self.still)
        page.click("#tab-lut")
        handles = page.locator("#lut-curve circle")
        expect(handles).to_have_count(9)
        self.addCleanup(lambda: self.wait_for_table(page, lambda: page.click("#lut-straight")))
        page.fill("#lut-gamma", "2.2")
        self.wait_for_table(page, lambda: page.click("#lut-apply-gamma"))
        # An entry that leaves the line is seen wherever it is.
        highest = """() => Math.min(...document.querySelector('.course.green').getAttribute('d').match(/ [0-9.]+/g)
          .filter((_, i, all) => i < all.length / 2).map(Number))"""
        top = page.evaluate(highest)
        self.still.run("set", "FG_LUT_VALUE_GREEN[5000]=65535")
        page.hover("#lut-curve")
        self.assertTrue(until(page, lambda: page.evaluate(highest) < top - 10))
        before = {name: self.table(name) for name in ("FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN")}
        before["FG_LUT_VALUE_RED"][9000] = 1  # by another client, unseen by the page
        self.still.run("set", "FG_LUT_VALUE_RED[9000]=1")
        handles.nth(1).focus()
        self.wait_for_table(page, lambda: page.keyboard.press("Shift+ArrowUp"))
        for name, entries in before.items():
            now = self.table(name)
            self.assertEqual(now[4095:], entries[4095:])
            self.assertEqual(now[2047], entries[2047] + 4096)
            rises = [b - a for a, b in zip(entries[:2048], now)]
            self.assertTrue(all(0 <= b - a <= 4 for a, b in zip(rises, rises[1:])))
        # Sideways, only between the neighbours.
        at, other = handles.nth(5).bounding_box(), handles.nth(6).bounding_box()
        page.mouse.move(at["x"] + 6, at["y"] + 6)
        page.mouse.down()
        page.mouse.move((at["x"] + other["x"]) / 2, at["y"] + 40, steps=3)
        self.wait_for_table(page, page.mouse.up)
        moved = [i for i, (a, b) in enumerate(zip(now, self.table(name))) if a != b]
        self.assertTrue(8191 < moved[0] < 8300 and 12100 < moved[-1] < 12287, (moved[0], moved[-1]))

    def table(self, name):
        return [int(value) for value in self.still.run("get", "--raw", f"{name}[..]").split()]

    def wait_for_table(self, page, act):
        """Until the tables that the act writes are read again."""
        with page.expect_response(lambda answer: "/api/lut/blue" in answer.url and answer.request.method == "PUT"):
            act()
        with page.expect_response(lambda answer: "/api/lut/blue?" in answer.url):
            pass

    def test_files_and_belt(self):
        page = self.open(self.belt)
        page.click("#tab-belt")
        expect(page.locator("#belt-speed")).to_have_value("1000")
        page.fill("#belt-speed", "500")
        page.click("#search")
        expect(page.locator(".belt .hint")).to_be_visible()
        page.wait_for_timeout(1500)
        expect(page.locator("#reading-rate")).to_have_text(re.compile("^(9.99|10|10.01) kHz"))
        page.press("#belt-speed", "Enter")
        expect(page.locator(".belt .hint")).to_be_hidden()
        expect(page.locator("#reading-rate")).to_have_text(re.compile(r"^(4\.99|5|5\.01) kHz$"))
        for percent, noise in (("10", 6554), ("0", 0)):
            page.fill("#belt-noise", percent)
            with page.expect_response(lambda answer: answer.request.method == "PUT") as put:
                page.press("#belt-noise", "Enter")
            self.assertEqual(put.value.json()["noise"], noise)
            expect(page.locator("#belt-noise")).to_have_value(percent)
        page.click("#files-open")
        for button, name, begin in (("#configuration-save", "page.mcf", b""), ("#record", "page.tiff", b"II*")):
            page.fill("#record-count", "3")
            with page.expect_download() as download:
                page.click(button)
            data = pathlib.Path(download.value.path()).read_bytes()
            self.assertEqual((download.value.suggested_filename, data[:len(begin)]), (name, begin))
            if button == "#configuration-save":
                text = data.decode()
        pages, at = 0, int.from_bytes(data[4:8], "little")
        while at:  # each directory ends with the place of the next one
            pages, end = pages + 1, at + 2 + 12 * int.from_bytes(data[at:at + 2], "little")
            at = int.from_bytes(data[end:end + 4], "little")
        self.assertEqual(pages, 3)
        self.addCleanup(self.belt.run, "set", "FG_HEIGHT=512")
        changed = re.sub("(?m)^FG_HEIGHT=.*$", "FG_HEIGHT=400;", text) + "FG_NONSENSE=1;\n"
        file = {"name": "line.mcf", "mimeType": "text/plain", "buffer": changed.encode()}
        page.set_input_files("#configuration-file", file)
        page.click("#configuration-load")
        result = page.locator("#configuration-result")
        expect(result).to_contain_text(re.compile(r"line\.mcf: \d settings? changed, 1 of the file lost"))
        expect(result).to_contain_text("FG_NONSENSE")
        self.assertEqual(self.belt.value("FG_HEIGHT"), 400)

    def test_nothing_is_set_without_permission(self):
        station = Station("--demo")
        self.addCleanup(station.kill)
        page = self.open(station)
        expect(page.locator("#locked")).to_be_visible()
        for control in ("#lut-enable", "#lut-straight", "#lut-gamma"):
            expect(page.locator(control)).to_be_disabled()
        for control in ("#tree input", "#tree select", "#tree .value button"):
            expect(page.locator(control)).to_have_count(0)
        expect(page.locator("#run")).to_be_disabled()
        answers = page.evaluate("""async (headers) => Promise.all([
          fetch('/api/parameters/FG_WIDTH', {method: 'PUT', headers, body: '{"value": 512}'}),
          fetch('/api/settings', {method: 'POST', headers, body: '{"settings": [{"name": "FG_WIDTH", "value": 512}]}'}),
          fetch('/api/acquisition', {method: 'POST', headers, body: '{"isRunning": false}'}),
          fetch('/api/station')]).then((all) => all.map(({status}) => status))""", {"Authorization": f"Bearer {TOKEN}"})
        self.assertEqual(answers, [403, 403, 403, 401])
        self.assertEqual(station.value("FG_WIDTH"), 2048)
        self.assertNotIn(TOKEN, page.url)

    def test_reconnects_to_a_restarted_server(self):
        station = Station("--demo", "--allow-set")
        self.addCleanup(station.kill)
        page = self.open(station)
        station.kill(signal.SIGKILL)
        expect(page.locator("#state")).to_have_text("not reachable, trying again")
        for reading in ("#reading-rate", "#reading-shown"):
            expect(page.locator(reading)).to_have_text("–")
        draft = page.locator("#p-FG_XOFFSET")
        draft.fill("44")
        draft.press("Enter")
        expect(page.locator(".row .error")).to_contain_text("FG_XOFFSET=44 is not set: the station did not answer")
        expect(page.locator("#no-signal")).to_contain_text("does not answer")
        station.words = (*station.words, "FG_HEIGHT=300")
        station.start(station.port)
        expect(page.locator("#state")).to_have_text("running")
        expect(page.locator("#no-signal")).to_be_hidden()
        expect(page.locator("#p-FG_HEIGHT")).to_have_value("300")
        expect(draft).to_have_value("44")
        self.assertEqual(station.value("FG_XOFFSET"), 0)
        expect(page.locator("#column-note")).to_contain_text("300 pixels")

    def test_keyboard_only(self):
        page = self.open(self.still)
        self.addCleanup(self.still.run, "set", "FG_LINEEXPOSURE=19")
        keys = page.keyboard
        keys.press("/")
        keys.type("fg_lineexp")
        keys.press("ArrowDown")
        keys.press("Tab")
        self.assertEqual(page.evaluate("document.activeElement.id"), "p-FG_LINEEXPOSURE")
        self.assertNotEqual(page.evaluate("getComputedStyle(document.activeElement).outlineStyle"), "none")
        keys.press("ArrowUp")
        keys.press("Shift+ArrowUp")
        keys.press("Enter")
        expect(page.locator("[data-name=FG_LINEEXPOSURE]")).to_have_class(re.compile("changed"))
        expect(page.locator("#p-FG_LINEEXPOSURE")).to_have_value("19.088")
        self.assertEqual(self.still.value("FG_LINEEXPOSURE"), 19.088)
        page.focus("#view")
        for key, button in ((" ", "#freeze"), ("1", "#view-full"), ("r", "#region")):
            keys.press(key)
            expect(page.locator(button)).to_have_attribute("aria-pressed", "true")
        keys.press("Enter")
        keys.press("Shift+ArrowRight")
        keys.press("ArrowDown")
        keys.press("Enter")
        expect(page.locator("#probe-region")).to_have_text(re.compile("17 × 2$"))
        keys.press("Alt+2")
        expect(page.locator("#panel-timeline")).to_be_visible()
        keys.press("ArrowRight")
        expect(page.locator("#panel-lut")).to_be_visible()
        keys.press("?")
        expect(page.locator("#keys")).to_be_visible()
        keys.press("Escape")
        expect(page.locator("#keys")).not_to_be_visible()

    def test_freeze_compare_and_waterfall(self):
        page = self.open(self.belt)
        held = self.freeze(page)
        page.click("#compare")  # the reference stays, and live pictures go on beside it
        expect(page.locator("#compare-left")).to_contain_text(str(held))
        expect(page.locator("#compare-right")).to_contain_text("live")
        live = page.locator("#compare-right")
        self.assertTrue(until(page, lambda: number(live.inner_text()) > held))
        stage = page.locator("#view").bounding_box()
        self.assertGreaterEqual(page.locator("#compare-at").bounding_box()["y"], stage["y"] + stage["height"])
        page.click("#compare")
        expect(page.locator("#compare-bar")).to_be_hidden()

    def test_waterfall_has_each_line(self):
        station = Station("--demo", "--allow-set", "FG_SENSORWIDTH=256", "FG_WIDTH=256")  # so lines are not scaled
        self.addCleanup(station.kill)
        page = self.open(station)
        page.click("#tab-belt")
        page.fill("#belt-speed", "50")
        page.keyboard.press("Enter")
        expect(page.locator("#reading-rate")).to_have_text("500 Hz")
        page.click("#view-waterfall")

        def pieces():
            """First and last line of each piece that goes on line by line; marks between pictures hide two lines."""
            found = []
            for line in self.lines(page, 1):
                if found and line == found[-1][1] + 1:
                    found[-1][1] = line
                else:
                    found.append([line, line])
            return [piece for piece in found if piece[1] - piece[0] > 20]

        def is_continuous():
            found = pieces()
            return len(found) > 1 and [b[0] - a[1] for a, b in zip(found, found[1:])] == [3] * (len(found) - 1)

        self.assertTrue(until(page, is_continuous), pieces())

    def test_one_picture_at_a_time_and_none_while_hidden(self):
        page = self.open(self.belt)
        page.evaluate("""() => {
          const send = window.fetch;
          Object.assign(window, {asked: 0, running: 0, most: 0});
          window.fetch = (url, options) => {
            if (!String(url).includes('/api/frame')) return send(url, options);
            window.asked += 1;
            window.running += 1;
            window.most = Math.max(window.most, window.running);
            return send(url, options).finally(() => { window.running -= 1; });
          };
        }""")
        for button in ["#view-full", "#view-in", "#view-in", "#view-out", "#view-fit"] * 3:
            page.click(button)
        self.assertTrue(until(page, lambda: page.evaluate("window.asked") > 15))
        self.assertEqual(page.evaluate("window.most"), 1)
        page.evaluate("""() => {
          Object.defineProperty(document, 'hidden', {get: () => window.isAway, configurable: true});
          window.isAway = true;
          document.dispatchEvent(new Event('visibilitychange'));
        }""")
        page.wait_for_timeout(2500)  # the last question may wait for two seconds
        asked = page.evaluate("window.asked")
        page.wait_for_timeout(1500)
        self.assertEqual(page.evaluate("window.asked"), asked)
        page.evaluate("() => { window.isAway = false; document.dispatchEvent(new Event('visibilitychange')); }")
        with page.expect_request(lambda request: "/api/frame" in request.url):
            pass

    def test_windows(self):
        """No part sticks out at any width, and pictures to look at."""
        PICTURES.mkdir(parents=True, exist_ok=True)
        for width, height in ((1280, 800), (400, 850)):
            for scheme in ("light", "dark"):
                page = self.open(self.belt, width, height, scheme)
                for tab in ("levels", "timeline", "lut", "losses", "belt"):
                    page.click(f"#tab-{tab}")
                    expect(page.locator(f"#panel-{tab}")).to_be_visible()
                    page.wait_for_timeout(900)
                    self.assertLessEqual(page.evaluate("document.documentElement.scrollWidth"), width, tab)
                    page.screenshot(path=PICTURES / f"{scheme}-{width}-{tab}.png", full_page=width < 900)
                page.fill("#search", "line period")
                expect(page.locator("#p-FG_LINEPERIODE")).to_be_visible()
                box = page.locator("#p-FG_LINEPERIODE").bounding_box()
                self.assertTrue(0 <= box["x"] and box["x"] + box["width"] <= width)

    @unittest.skipUnless("PAGE_RENEW" in os.environ, "PAGE_RENEW is not set")
    def test_screenshot_for_the_docs(self):
        station = Station("--demo", "--allow-set", "FG_HEIGHT=1024", name="line2")
        self.addCleanup(station.kill)
        page = self.open(station)
        box = page.locator("#view").bounding_box()
        page.mouse.click(box["x"] + 475, box["y"] + 140)
        page.fill("#p-FG_XOFFSET", "20000")
        page.press("#p-FG_XOFFSET", "Enter")
        expect(page.locator(".row .error")).to_be_visible()
        page.wait_for_timeout(1500)
        page.screenshot(path=SOURCES / "docs" / "images" / "page.png")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
