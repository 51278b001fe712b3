"""Parameters, measurements, files and belt."""
import pathlib
import re
import subprocess

from playwright.sync_api import expect

from page.journey import APPLETCTL, Journey, box_of, number, until


class Panels(Journey):
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
        # A comma is decimal, unless it may as well separate thousands.
        for text, value in (("10,4", "10.4"), ("1,024", "10.4")):
            page.fill("#p-FG_LINEEXPOSURE", text)
            page.press("#p-FG_LINEEXPOSURE", "Enter")
            expect(page.locator("#p-FG_LINEEXPOSURE")).to_have_value(value)
        expect(error).to_contain_text("'1,024' is not a floating point number")

    def test_a_chosen_entry_is_set(self):
        page = self.open(self.still)
        self.addCleanup(self.still.run, "set", "FG_BITALIGNMENT=FG_LEFT_ALIGNED")
        page.fill("#search", "FG_BITALIGNMENT")
        page.select_option("#p-FG_BITALIGNMENT", label="Right Aligned")
        self.assertTrue(until(page, lambda: self.still.value("FG_BITALIGNMENT") == 0))

    def test_a_draft_stays_until_it_is_sent(self):
        page = self.open(self.belt)
        self.addCleanup(self.belt.run, "set", "FG_HEIGHT=512")
        page.evaluate("""() => {
          const send = window.fetch;
          window.sent = [];
          window.hold = () => { window.held = new Promise((resolve) => { window.release = resolve; }); };
          window.fetch = async (url, options) => {
            if (options.method !== 'PUT') return send(url, options);
            window.sent.push(JSON.parse(options.body).value);
            await window.held;
            return send(url, options);
          };
          window.hold();
        }""")
        field, limits, keys = page.locator("#p-FG_HEIGHT"), page.locator("#p-FG_HEIGHT-limits"), page.keyboard
        field.focus()
        for text in ("300", "500", "640"):  # 300 is on its way while the others come
            keys.press("Control+A")
            keys.type(text, delay=15)
            keys.press("Enter")
        keys.press("Control+A")
        keys.type("1", delay=15)
        page.evaluate("window.release()")
        self.assertTrue(until(page, lambda: self.belt.value("FG_HEIGHT") == 640))
        page.click("#search")
        expect(limits).to_have_text("not sent: press Enter to send")
        page.wait_for_timeout(600)
        expect(field).to_have_value("1")
        field.press("Escape")
        expect(field).to_have_value("640")
        expect(limits).to_contain_text("1 to ")
        page.evaluate("window.hold()")
        for _ in range(10):
            keys.press("ArrowUp")
            keys.press("Enter")
        page.evaluate("window.release()")
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

    def test_search_limits_and_changes_of_others(self):
        page = self.open(self.belt)
        for words, found in (("fg_xoffset", ["FG_XOFFSET"]), ("encoder leading", ["FG_SHAFTENCODERLEADING"]),
                             ("no such thing", [])):
            page.fill("#search", words)
            rows = page.locator("#tree .row:visible")
            expect(rows).to_have_count(len(found))
            for row, name in zip(rows.all(), found):
                expect(row).to_have_attribute("data-name", name)
        page.fill("#search", "fg_xoffset")
        expect(page.locator("#tree summary:visible .count").last).to_have_text("1")  # FG_WIDTH is changed, but hidden
        limits = page.locator("[data-name=FG_XOFFSET] .limits")
        expect(limits).to_have_text("0 to 14336 in steps of 4")
        self.addCleanup(self.belt.run, "set", "FG_WIDTH=2048")
        self.belt.run("set", "FG_WIDTH=1024")
        expect(limits).to_have_text("0 to 15360 in steps of 4")
        page.fill("#search", "")
        page.check("#changed-only")
        expect(page.locator("[data-name=FG_SENSORWIDTH]")).to_be_visible()
        expect(page.locator("[data-name=FG_WIDTH]")).to_be_hidden()

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
        box = box_of(page, handles.nth(4))
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
        for gamma in ("50", ""):
            page.fill("#lut-gamma", gamma)
            page.click("#lut-apply-gamma")
            expect(page.locator(".lut .error")).to_contain_text("a gamma from 0.1 to 10 is expected")
            page.locator(".lut .error button").click()
        self.assertEqual(self.still.value(f"FG_LUT_VALUE_GREEN[{entry}]"), value - 4096)
        # A change that does not reach the station is dropped.
        page.route("**/api/lut/green", lambda route: route.abort())
        page.click("#lut-inverted")
        expect(page.locator(".lut .error")).to_contain_text("The table is not set: the station did not answer")
        page.unroute("**/api/lut/green")
        expect(handle).not_to_have_attribute("aria-valuenow", str(value - 4096))
        page.locator(".lut .error").get_by_role("button", name="Dismiss").click()
        expect(handle).to_have_attribute("aria-valuenow", str(value - 4096))

    def test_a_handle_changes_the_entries_beside_it(self):
        page = self.open(self.still)
        page.click("#tab-lut")
        handles = page.locator("#lut-curve circle")
        expect(handles).to_have_count(9)
        self.addCleanup(lambda: self.wait_for_table(page, lambda: page.click("#lut-straight")))
        page.fill("#lut-gamma", "2.2")
        self.wait_for_table(page, lambda: page.click("#lut-apply-gamma"))
        # An entry that leaves the line is seen wherever it is.
        highest = """() => Math.min(...document.querySelector('.curve-line.green').getAttribute('d').match(/ [0-9.]+/g)
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
        at, other = (box_of(page, handles.nth(index)) for index in (5, 6))
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
        written = []

        def is_read_after_write(answer):
            if "/api/lut/blue" in answer.url and answer.request.method == "PUT":
                written.append(answer)
            return bool(written) and "/api/lut/blue?" in answer.url

        with page.expect_response(is_read_after_write):
            act()

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
        # The second one is entered while the page still reads what the first one has become.
        page.evaluate("""() => {
          const send = window.fetch;
          window.fetch = async (url, options) => {
            if (String(url).endsWith('/api/scene') && options?.method !== 'PUT')
              await new Promise((resolve) => { setTimeout(resolve, 300); });
            return send(url, options);
          };
        }""")
        for percent in ("10", "0"):
            page.fill("#belt-noise", percent)
            with page.expect_response(lambda answer: answer.request.method == "PUT") as put:
                page.press("#belt-noise", "Enter")
            self.assertAlmostEqual(put.value.json()["noise"], float(percent), delta=0.01)
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
        while at:  # each directory ends with the offset of the next one
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
