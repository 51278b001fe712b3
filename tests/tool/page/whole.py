"""The page as a whole: access, connection, keyboard, windows."""
import os
import pathlib
import re
import signal
import unittest

from playwright.sync_api import expect

from page.journey import Journey, PICTURES, Station, TOKEN

SOURCES = pathlib.Path(__file__).resolve().parents[3]


class Whole(Journey):
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

    def test_a_station_without_pictures_asks_for_none(self):
        station = Station("--offline", "--allow-set")
        self.addCleanup(station.kill)
        page = self.open(station, state="no pictures")
        expect(page.locator("#no-signal")).to_contain_text("Start it without --offline")
        for tab, reason in (("levels", "no pictures"), ("timeline", "recorded by a virtual board"),
                            ("losses", "counted by a virtual board")):
            page.click(f"#tab-{tab}")
            panel = page.locator(f"#panel-{tab}")
            self.assertIn(reason, panel.evaluate("(panel) => getComputedStyle(panel, '::before').content"))
            expect(panel.locator("> *").first).to_be_hidden()
        for button in ("#freeze", "#compare", "#view-waterfall", "#save-image"):
            expect(page.locator(button)).to_be_disabled()
        page.wait_for_timeout(2000)  # as long as a request for a picture would wait
        asked = page.evaluate("performance.getEntriesByType('resource').map(({name}) => new URL(name).pathname)")
        self.assertFalse({"/api/frame", "/api/acquisition", "/api/losses", "/api/timeline"} & set(asked))

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
        expect(page.locator("#state")).to_have_text("not reachable, reconnecting")
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
