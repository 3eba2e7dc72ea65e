"""The page of the live wall in a real browser: what a person sees of what the device holds."""

import json
import os
import struct
import unittest

from selenium.webdriver import ActionChains

from browser import Browser
from harness import ROOT, Board, Wall, until

# The colours of the picture in a quarter of a cabinet, where neither cable nor seam nor badge lies.
COLOUR = """
const wall = document.getElementById("wall"), view = liveWall.view, c = arguments[0];
const x = view.x + (c.x + c.width * 0.25) * view.scale;
const y = view.y + (c.y + c.height * 0.75) * view.scale;
const copy = new OffscreenCanvas(5, 5).getContext("2d", { willReadFrequently: true });
copy.drawImage(wall, Math.round(x), Math.round(y), 5, 5, 0, 0, 5, 5);
return [...copy.getImageData(0, 0, 5, 5).data];
"""

KEYS = """
const wall = document.getElementById("wall");
for (const key of arguments) wall.dispatchEvent(new KeyboardEvent("keydown", { key }));
"""

# Keeps every brightness of the first card that the page has shown from now on.
WATCH_LEVELS = """
window.levels = [];
const look = () => levels.push(liveWall.state.cards.ports[0][0][1]);
document.addEventListener("wall-shown", look);
"""


class PageCase(unittest.TestCase):
    settings = ("port.0.cards=8", "port.1.cards=8", "trace=bus")
    options = ()

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()

    def setUp(self):
        self.board = Board(*self.settings).start()
        self.addCleanup(self.board.remove)
        self.wall = Wall(self.board.folder, *self.options)
        self.addCleanup(self.wall.stop)
        self.browser.open(self.wall.url)

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])

    def await_drawn(self, holds):
        """Waits until this expression is true of the page and all of it is drawn."""
        self.browser.until(f"({holds}) && !liveWall.moving")

    def await_text(self, identifier, text):
        self.browser.until(f"document.getElementById({identifier!r}).innerText.includes({text!r})")

    def configure(self, rows, columns, cables, per_cable):
        self.board.ctl("wall", "configure", "--rows", str(rows), "--columns", str(columns),
                       "--cables", cables, "--per-cable", str(per_cable), "--wait")
        self.board.ctl("output", "open")
        cabinets = f"liveWall.scene.cabinets.length === {rows * columns}"
        self.await_drawn(f"{cabinets} && liveWall.state.screen.open")

    def cabinets(self):
        return self.browser.run("return liveWall.scene.cabinets")

    def brightness(self, cabinet):
        """How bright a cabinet is drawn: the brightest of the colours there, 0 to 255."""
        pixels = self.browser.run(COLOUR, cabinet)
        return max(value for i, value in enumerate(pixels) if i % 4 != 3)

    def text(self, identifier):
        return self.browser.run("return document.getElementById(arguments[0]).innerText", identifier)

    def set_card(self, card, offset, data):
        """Changes bytes of a record in the list of cards."""
        with open(self.board.folder / "cards", "r+b") as file:
            file.seek(16 + 32 * card + offset)
            file.write(data)


class Page(PageCase):
    def table_of(self, port, cards):
        """The position table of a port, as the device answers it."""
        answer = self.board.ctl("--json", "read", hex(0x03000000 + 0x1000 * port), str(4 * cards))
        return list(struct.iter_unpack("<HH", bytes.fromhex(json.loads(answer)["data"])))

    def test_the_wall_is_that_of_the_device(self):
        self.configure(4, 4, "bottom-right-columns", 8)
        told = json.loads(self.board.ctl("--json", "wall", "show"))
        ports = {port["port"]: port for port in told["ports"] if port["repeats"] is None}
        scene = self.browser.run("return liveWall.scene")
        self.assertEqual({port["number"] for port in scene["ports"]}, set(ports))
        for port in scene["ports"]:
            number, cards = port["number"], len(port["cabinets"])
            window = ports[number]["window"]
            x, y = window["x"], window["y"]
            self.assertEqual(port["window"], [x, y, window["width"], window["height"]])
            self.assertEqual(cards, ports[number]["cards"])
            path = [[x + at_x, y + at_y] for at_x, at_y in self.table_of(number, cards)]
            self.assertEqual([[c["x"], c["y"]] for c in port["cabinets"]], path)
        self.assertEqual(self.text("caption"), "512 × 512 px, 16 cabinets of 128 × 128")
        self.assertIn("256 × 512 at 256, 0", self.text("ports"))
        self.assertIn("as port 0", self.text("ports"))

    def test_a_closed_output_is_dark_and_says_how_to_open_it(self):
        self.configure(1, 2, "top-left-rows", 2)
        self.assertGreater(self.brightness(self.cabinets()[0]), 150)
        self.board.ctl("output", "close")
        self.await_drawn("!liveWall.state.screen.open")
        self.assertLess(self.brightness(self.cabinets()[0]), 40)
        self.assertIn("quivordctl output open", self.text("banner"))
        self.board.ctl("output", "open")
        self.browser.until("document.getElementById('banner').hidden")

    def test_brighter_cards_are_drawn_brighter(self):
        self.configure(1, 8, "top-left-rows", 8)
        levels = [0, 3, 12, 40, 90, 150, 200, 255]
        for card, level in enumerate(levels):
            self.set_card(card, 8, bytes([level]))
        self.await_drawn(f"liveWall.scene.cabinets.every((c, i) => c.card.brightness === {levels}[i])")
        drawn = [self.brightness(cabinet) for cabinet in self.cabinets()]
        self.assertEqual(drawn, sorted(set(drawn)), "each is brighter than the one before it")

    def test_what_makes_a_cabinet_dark(self):
        self.configure(2, 4, "top-left-rows", 4)
        first, second = self.cabinets()[0], self.cabinets()[4]
        self.board.tool("link", "0", "down")
        self.await_drawn("liveWall.scene.cabinets[0].dark === 'the port has no link'")
        self.assertLess(self.brightness(first), 40)
        self.assertGreater(self.brightness(second), 150)
        self.board.tool("fiber", "2", "0", "up")
        self.await_drawn("liveWall.scene.cabinets[0].dark === ''")
        self.assertGreater(self.brightness(first), 150)
        port_1 = 8  # the record of its first card
        self.set_card(port_1, 15, b"\x00")
        self.await_drawn("liveWall.scene.cabinets[4].dark.includes('take part')")
        self.assertLess(self.brightness(second), 40)
        self.set_card(port_1, 13, b"\xff\x00\x01")
        self.await_drawn("liveWall.scene.cabinets[4].dark.includes('watchdog')")
        self.assertLess(self.brightness(second), 40)
        self.set_card(port_1, 13, b"\x00")
        self.await_drawn("liveWall.scene.cabinets[4].dark === ''")
        self.assertGreater(self.brightness(second), 150)

    def test_picture_inputs_and_requests_in_words(self):
        self.configure(1, 2, "top-left-rows", 2)
        self.board.ctl("hdr", "hdr10", "--peak", "1200", "--ambient", "50")
        self.board.ctl("pattern", "block", "--width", "64", "--height", "32", "--first-x", "16")
        self.await_text("hdr-text", "HDR10, 1200 cd/m², 50 lux")
        self.await_text("pattern-text", "blocks of 64 by 32, the first at 16, 0")
        self.assertIn("isn't known", self.text("pattern-text"))
        self.browser.until("liveWall.state.picture.curves.text !== 'dark'")
        self.assertIn("HDMI14 0x0010", self.text("inputs"))
        self.await_text("log-rows", "writes output = open")
        self.board.tool("link", "3", "up")
        self.await_text("log-rows", "ports with a copper link, of 0 to 3: 0 1 3")
        self.await_text("announcer", "Port 3 has a link")

    def test_keys_and_mouse_pick_a_cabinet(self):
        self.configure(2, 4, "top-left-rows", 4)
        self.browser.run(KEYS, "ArrowRight", "ArrowRight", "ArrowDown")
        facts = self.browser.until("document.getElementById('cabinet-facts').innerText")
        for words in ("1, link copper", "number 1 on the cable", "128, 128", "128 × 128 px",
                      "255 of 255 (100 %)"):
            self.assertIn(words, facts)
        before = self.browser.run("return liveWall.view.scale")
        self.browser.run("document.getElementById('zoom-in').click()")
        self.assertGreater(self.browser.run("return liveWall.view.scale"), before)
        self.browser.run(KEYS, "0")
        self.assertAlmostEqual(self.browser.run("return liveWall.view.scale"), before)
        x, y = self.browser.run("""
          const c = liveWall.scene.cabinets[3], v = liveWall.view;
          return [v.x + (c.x + 10) * v.scale - v.width / 2, v.y + (c.y + 10) * v.scale - v.height / 2];""")
        canvas = self.browser.driver.find_element("id", "wall")
        mouse = ActionChains(self.browser.driver)
        mouse.move_to_element_with_offset(canvas, x, y).click().perform()
        self.await_text("cabinet-facts", "number 3 on the cable")

    def test_it_recovers_when_daemon_and_server_start_again(self):
        self.configure(2, 4, "top-left-rows", 4)
        self.board.stop()
        self.browser.until("!liveWall.state.board.daemon.running")
        self.assertEqual(self.text("chip-daemon"), "no daemon")
        self.board.start()
        self.browser.until("liveWall.state.board.daemon.running && !liveWall.state.screen.open")
        self.board.ctl("output", "open")
        self.await_drawn("liveWall.state.screen.open && liveWall.scene.cabinets.length === 8")
        port = self.wall.port
        self.wall.stop()
        until(lambda: "doesn't answer" in self.text("chip-page"), "the page says that the server is gone")
        self.wall = Wall(self.board.folder, port=port)
        self.addCleanup(self.wall.stop)
        until(lambda: self.text("chip-page") == "", "the page is back")

    def test_it_says_when_the_trace_is_off_and_when_there_is_no_board(self):
        (self.board.folder / "board.conf").write_text("trace = none\n")
        self.await_text("log-note", "trace = bus")
        self.board.stop()
        os.rename(self.board.folder, f"{self.board.folder}.away")
        self.await_text("banner", "There is no board")
        os.rename(f"{self.board.folder}.away", self.board.folder)
        self.browser.until("liveWall.state.board.exists")


class Ramp(PageCase):
    settings = ("port.0.cards=8", "speed=2")

    def test_a_ramp_of_brightness_is_seen(self):
        self.configure(1, 2, "top-left-rows", 2)
        nodes = [{"time": "06:00", "percent": 90}, {"time": "12:00", "percent": 10}]
        plan = self.board.folder / "plan.json"
        plan.write_text(json.dumps({"kind": "mix", "gradual": True, "nodes": nodes}))
        self.board.ctl("time", "set", "2026-05-01T11:59:52")
        self.board.ctl("brightness", "plan", str(plan))
        self.await_drawn("liveWall.state.cards.ports[0][0][1] === 229")
        before = self.brightness(self.cabinets()[0])
        self.assertIn("229 of 255 (90 %)", self.text("level-text"))
        self.assertIn("Next: 12:00", self.text("plan-next"))
        self.browser.run(WATCH_LEVELS)
        self.await_drawn("liveWall.state.cards.ports[0][0][1] === 25")
        levels = self.browser.run("return levels")
        self.assertEqual(levels, sorted(levels, reverse=True), "the light falls and never rises")
        self.assertGreater(len(set(levels)), 20, "in many steps")
        self.assertLess(self.brightness(self.cabinets()[0]), before / 2)


class Control(PageCase):
    options = ("--control",)

    def test_the_page_changes_the_board(self):
        self.configure(2, 4, "top-left-rows", 4)
        pull = "document.querySelector('#ports [data-link=\"1\"]').click()"
        self.browser.run(pull)
        self.browser.until("liveWall.scene.cabinets[4].dark === 'the port has no link'")
        self.browser.run(pull)
        self.browser.until("liveWall.scene.cabinets[4].dark === ''")
        self.browser.run("""
          document.getElementById("lux").value = 4321;
          document.getElementById("lux-form").requestSubmit();""")
        self.browser.until("liveWall.state.outside.lux === '4321'")
        self.board.stop()  # who would use a fault up
        self.browser.run("""
          document.getElementById("fault").value = "card-write";
          document.getElementById("fault-form").requestSubmit();""")
        self.browser.until("liveWall.state.outside.faults['card-write'] === 1")


class LargeWall(PageCase):
    settings = tuple(f"port.{port}.cards=256" for port in range(8))

    # Zooms at each frame that the browser offers; how long they took, the shortest first.
    FRAMES = """
    const done = arguments[arguments.length - 1], times = [];
    const begin = performance.now();
    let last = begin, turn = 0;
    const frame = (now) => {
      times.push(now - last);
      last = now;
      liveWall.zoom(turn++ % 60 < 30 ? 1.03 : 1 / 1.03, 300, 200);
      if (now - begin < 3000) requestAnimationFrame(frame);
      else done(times.slice(1).sort((a, b) => a - b));
    };
    requestAnimationFrame(frame);
    """

    def test_2048_cabinets_stay_smooth(self):
        self.configure(32, 64, "top-left-rows", 256)
        best = (1e9, 1e9)
        for _ in range(3):  # other work on the machine may spoil one
            times = self.browser.driver.execute_async_script(self.FRAMES)
            best = min(best, (times[len(times) // 2], times[len(times) * 95 // 100]))
            if best[0] <= 34 and best[1] <= 50:
                break
        print(f"2048 cabinets at 1280 px: a frame takes {best[0]:.1f} ms, "
              f"one in twenty more than {best[1]:.1f} ms")
        self.assertLessEqual(best[0], 34)
        self.assertLessEqual(best[1], 50)


class Picture(PageCase):
    """Takes the picture of the documents, into the folder that QUIVORD_PICTURES names."""

    settings = (*(f"port.{port}.cards=24" for port in range(4)), "trace=bus")
    options = ("--control",)

    # The smallest text, texts that run out of the window, and parts that are wider than their place.
    READABLE = """
    const seen = [...document.querySelectorAll("main *, header *")]
      .filter((e) => e.checkVisibility() && !e.classList.contains("hidden"));
    const texts = seen.filter((e) => [...e.childNodes].some((n) => n.nodeType === 3 && n.data.trim()));
    const runsOut = (e) => e.getBoundingClientRect().right > innerWidth + 1;
    const wide = [document.documentElement, document.querySelector("aside")];
    return [Math.min(...texts.map((e) => parseFloat(getComputedStyle(e).fontSize))),
      texts.filter(runsOut).map((e) => e.innerText),
      wide.filter((e) => e.scrollWidth > e.clientWidth).map((e) => e.tagName)];
    """

    def set_the_scene(self):
        self.configure(8, 12, "top-left-rows", 24)
        self.board.ctl("gamma", "upload", "--exponent", "2.2")
        self.board.ctl("brightness", "plan", str(ROOT / "examples/brightness-list.json"))
        self.board.ctl("brightness", "set", "80%")
        self.board.tool("lux", "420")
        self.board.tool("link", "5", "up")
        self.await_text("log-rows", "of 4 to 7: 5")
        self.await_text("level-text", "204 of 255")
        self.browser.run(KEYS, "PageDown", "PageDown", "ArrowRight", "ArrowRight")

    def test_it_is_readable_on_a_laptop_and_on_a_large_monitor(self):
        self.set_the_scene()
        self.addCleanup(self.browser.size, 1280, 800)
        folder = os.environ.get("QUIVORD_PICTURES", str(self.board.folder))
        for name, width, height, least in (("live-wall", 1280, 800, 11), ("large", 3840, 2160, 20)):
            self.browser.size(width, height)
            self.await_drawn(f"liveWall.view.width > {width} * 0.6")
            self.assertTrue(self.browser.driver.save_screenshot(f"{folder}/{name}.png"))
            with open(f"{folder}/{name}.png", "rb") as png:
                self.assertEqual(struct.unpack(">II", png.read(24)[16:]), (width, height))
            smallest, out, spilt = self.browser.run(self.READABLE)
            self.assertGreaterEqual(smallest, least)
            self.assertEqual((out, spilt), ([], []), f"all has room at {width} pixels")


if __name__ == "__main__":
    unittest.main(verbosity=2)
