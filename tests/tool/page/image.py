"""The live image, its tools and its files."""
import hashlib
import pathlib
import re

from playwright.sync_api import expect

from page.journey import Journey, STILL, Station, number, until


def components(raw, width, x, y, bits=10):
    """Red, green and blue of a pixel in the bytes of a picture, in which blue comes first."""
    begin = 3 * bits * (y * width + x)
    value = int.from_bytes(raw[begin // 8:begin // 8 + 9], "little") >> begin % 8
    return [value >> bits * i & (1 << bits) - 1 for i in (2, 1, 0)]


class Image(Journey):
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
        position = page.locator("#probe-position")
        expect(position).to_have_text(re.compile(r"x \d+  y \d+"))
        while True:
            at_x, at_y = map(int, re.findall(r"\d+", position.inner_text()))
            key = "ArrowRight" if at_x < x else "ArrowLeft" if at_x > x else "ArrowDown" if at_y < y else "ArrowUp"
            distance = abs(at_x - x) or abs(at_y - y)
            if not distance:
                break
            page.keyboard.press(("Shift+" if distance >= 16 else "") + key)
            expect(position).not_to_have_text(f"x {at_x}  y {at_y}")
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
            position = page.locator("#probe-position")
            offsets = set()
            for row in (40, 40 + magnification, 240):
                page.mouse.click(box["x"] + 172 * magnification, box["y"] + row)
                expect(position).to_have_text(re.compile(r"x 172  y \d+"))
                offsets.add(shown[row] - int(position.inner_text().split("y")[1]))
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
        # Lines are not scaled, the end of a picture is always in view, and no picture comes before the last one was fetched.
        station = Station("--demo", "--allow-set", "FG_SENSORWIDTH=256", "FG_WIDTH=256", "FG_HEIGHT=256")
        self.addCleanup(station.kill)
        page = self.open(station)
        page.click("#tab-belt")
        page.fill("#belt-speed", "20")
        page.keyboard.press("Enter")
        expect(page.locator("#reading-rate")).to_have_text("200 Hz")
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
