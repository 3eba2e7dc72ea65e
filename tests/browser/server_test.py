"""The live wall's server without a browser: its events and orders, and what must do it no harm."""

import json
import os
import socket
import struct
import threading
import time
import unittest

from harness import LIMIT, Board, Stream, Wall, merged, until

MIB = 1 << 20
# The report that of ports 0 to 3 port 0 alone has a link.
BUS_LINE = "1 bus < 0x000a3900 21 aa55000000000000000000001f0000020100017855\n"


class ServerCase(unittest.TestCase):
    settings = ()
    options = ()

    def setUp(self):
        self.board = Board(*self.settings)
        self.addCleanup(self.board.remove)
        self.wall = Wall(self.board.folder, *self.options)
        self.addCleanup(self.stop_wall)

    def stop_wall(self):
        self.assertEqual(self.wall.stop(), 0, "it ended by itself, or not as it was told")

    def assert_little_memory(self, grown_kib):
        if os.environ.get("QUIVORD_SANITIZE", "") == "":  # sanitizers keep what was freed
            self.assertLess(grown_kib, 64 * 1024)

    def stream(self):
        stream = Stream(self.wall)
        self.addCleanup(stream.close)
        return stream

    def flicker(self, seconds, between=lambda: None):
        """Changes every card at once, again and again, each to a brightness of its own."""
        path = self.board.folder / "cards"
        records = bytearray(path.read_bytes())
        end, round_ = time.monotonic() + seconds, 0
        while time.monotonic() < end:
            round_ += 1
            for at in range(16 + 8, len(records), 32):
                records[at] = (at // 32 * 7 + round_) % 256
            with open(path, "r+b") as file:
                file.write(records)
            if between():
                return
            time.sleep(0.02)


class Events(ServerCase):
    settings = ("port.0.cards=3", "port.1.cards=0", "trace=bus")

    def test_the_state_comes_first_and_then_only_what_changes(self):
        stream = self.stream()
        name, state, _ = stream.next()
        self.assertEqual(name, "state")
        self.assertEqual(state["control"], {"on": False})
        self.board.tool("lux", "1234")
        stream.until(lambda s: s["outside"]["lux"] == "1234", "the light arrives")
        before = stream.state
        self.board.tool("poke", "0x30", "1")  # a cell that the page doesn't show
        self.board.tool("link", "2", "up")
        while stream.state["links"]["copper"] != [0, 2]:
            name, patch, _ = stream.next()
            self.assertEqual(name, "patch")
            self.assertTrue(patch)
            self.assertLessEqual(set(patch), {"time", "plan", "links"}, "nothing else has changed")
            before = merged(before, patch)
        self.assertEqual(before, stream.state)
        whole = self.wall.state()
        for section in ("links", "cards", "wall", "outside", "picture", "board"):
            self.assertEqual(whole[section], stream.state[section])

    def test_no_more_than_ten_events_a_second(self):
        stream = self.stream()
        writer = threading.Thread(target=self.flicker, args=(3,))
        writer.start()
        came = []
        while writer.is_alive():
            came.append(stream.next()[2])
        writer.join()
        self.assertGreater(len(came), 5)
        for first, eleventh in zip(came, came[10:]):
            self.assertGreater(eleventh - first, 0.9)


class Orders(ServerCase):
    options = ("--control",)

    def setUp(self):
        super().setUp()
        stream = self.stream()
        stream.next()
        self.token = stream.state["control"]["token"]

    def order(self, order, **headers):
        sent = {"Content-Type": "application/json", "X-Quivord-Token": self.token, **headers}
        body = order if isinstance(order, str) else json.dumps(order)
        return self.wall.ask("POST", "/order", body, {k: v for k, v in sent.items() if v is not None})

    def test_orders_change_what_they_name(self):
        def number(name, layout, at):
            with open(self.board.folder / name, "rb") as file:
                file.seek(at)
                return struct.unpack(layout, file.read(struct.calcsize(layout)))[0]

        def lux():
            return (self.board.folder / "sensors/lux").read_text()

        cells = ("fpga/1.mem", "B")
        for order, ask, expected in (
            ({"order": "link", "port": 6, "up": True}, lambda: number(*cells, 0x9F), 0x4),
            ({"order": "link", "port": 6, "up": True}, lambda: number(*cells, 0xF05101), 0x4),
            ({"order": "link", "port": 0, "up": False}, lambda: number(*cells, 0x1F), 0x2),
            ({"order": "lux", "lux": 77}, lux, "77\n"),
            ({"order": "lux", "lux": "fail"}, lux, "fail\n"),
            ({"order": "jump", "seconds": -60}, lambda: number("clock", "<q", 0), -60 * 10**6),
            ({"order": "fault", "name": "card-read", "count": -1},
             lambda: number("faults", "<i", 16), -1),
        ):
            with self.subTest(order=order):
                self.assertEqual(self.order(order), (200, "done\n"))
                self.assertEqual(ask(), expected)

    def test_orders_that_are_none_change_nothing(self):
        for order in (
            "", "[]", "{", "null", "[" * 1000,
            '{"order": 1}',
            '{"order": "burn"}',
            '{"order": "link", "port": 16, "up": true}',
            '{"order": "link", "port": 3}',
            '{"order": "lux", "lux": "bright"}',
            '{"order": "lux", "lux": -1}',
            '{"order": "lux", "lux": 1, "x": 2}',
            '{"order": "jump", "seconds": 1e300}',
            '{"order": "fault", "name": "sync", "count": 1}',
            '{"order": "fault", "name": "net", "count": -2}',
        ):
            with self.subTest(order=order[:60]):
                self.assertEqual(self.order(order)[0], 400)
        self.assertEqual((self.board.folder / "faults").read_bytes(), bytes(64))

    def test_only_our_own_page_may_order(self):
        order = {"order": "lux", "lux": 5}
        own = f"127.0.0.1:{self.wall.port}"
        for headers in (
            {"X-Quivord-Token": None},
            {"X-Quivord-Token": ""},
            {"X-Quivord-Token": "0" * 32},
            {"Origin": "http://elsewhere.example"},
            {"Origin": "null"},
            {"Origin": f"https://{own}"},
            {"Content-Type": "text/plain"},
            {"Host": f"elsewhere.example:{self.wall.port}"},
        ):
            with self.subTest(headers=headers):
                self.assertEqual(self.order(order, **headers)[0], 403)
        self.assertFalse((self.board.folder / "sensors/lux").exists())
        self.assertEqual(self.order(order, Origin=f"http://{own}")[0], 200)

    def test_a_board_that_cannot_be_changed_says_so(self):
        os.truncate(self.board.folder / "fpga/1.mem", 0x20)
        os.truncate(self.board.folder / "clock", 3)
        for order, file in (({"order": "link", "port": 0, "up": False}, "1.mem"),
                            ({"order": "jump", "seconds": 1}, "clock")):
            self.assertEqual(self.order(order), (409, f"{file} is cut short\n"))


class BadInput(ServerCase):
    def test_without_control_nothing_can_be_ordered(self):
        headers = {"Content-Type": "application/json"}
        status, _ = self.wall.ask("POST", "/order", '{"order": "lux", "lux": 1}', headers)
        self.assertEqual(status, 404)

    def test_requests_of_all_kinds(self):
        host = b"Host: 127.0.0.1\r\n"
        for data, allowed in (
            (b"GET /nothing HTTP/1.1\r\n" + host + b"\r\n", (404,)),
            (b"GET /../../../etc/passwd HTTP/1.1\r\n" + host + b"\r\n", (404, 400)),
            (b"GET /%2e%2e/%2e%2e/etc/passwd HTTP/1.1\r\n" + host + b"\r\n", (404, 400)),
            (b"GET /main.js%00 HTTP/1.1\r\n" + host + b"\r\n", (404, 400)),
            (b"GET /mainXjs HTTP/1.1\r\n" + host + b"\r\n", (404,)),
            (b"GET /" + b"a" * 100000 + b" HTTP/1.1\r\n" + host + b"\r\n", (400, 414, None)),
            (b"GET / HTTP/1.1\r\n" + host + b"X: " + b"a" * 100000 + b"\r\n\r\n", (400, 431, None)),
            (b"GET / HTTP/1.1\r\n\r\n", (403,)),
            (b"GET / HTTP/1.1\r\nHost: elsewhere.example\r\n\r\n", (403,)),
            (b"DELETE / HTTP/1.1\r\n" + host + b"\r\n", (404, 405)),
            (b"POST /events HTTP/1.1\r\n" + host + b"Content-Length: 1000000\r\n\r\n" + b"x" * 1000000,
             (404, 413, None)),
            (b"POST /order HTTP/1.1\r\n" + host + b"Content-Length: -1\r\n\r\n", (400, 404, 413, None)),
            (b"GET / HTTP/9.9\r\n\r\n", (400, 403, 505, None)),
            (b"\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03" * 50, (400, None)),
            (b"\r\n" * 5000, (400, None)),
            (b"", (400, None)),
        ):
            with self.subTest(data=data[:50]):
                answer = self.wall.raw(data)
                status = int(answer.split()[1]) if answer.startswith(b"HTTP/") else None
                self.assertIn(status, allowed)
        self.assertEqual(self.wall.ask("GET", "/main.js")[0], 200)

    def test_fifty_pages_and_one_more(self):
        pages = [self.stream() for _ in range(50)]
        self.assertEqual([page.status for page in pages], [200] * 50)
        self.assertEqual(self.stream().status, 503, "the fifty-first page")
        for path in ("/", "/state"):
            status, text = self.wall.ask("GET", path)
            self.assertEqual(status, 503)
            self.assertIn("50 pages are watching", text)
        for page in pages:
            self.assertEqual(page.next()[0], "state")
        pages[7].close()
        until(lambda: self.wall.ask("GET", "/")[0] == 200, "a closed page makes room")

    def test_a_port_that_is_taken_is_told(self):
        with self.assertRaisesRegex(AssertionError, f"can't listen on 127.0.0.1, port {self.wall.port}"):
            Wall(self.board.folder, port=self.wall.port)

    def test_silent_connections_hold_no_thread_for_long(self):
        """More silent connections than there are threads: they end, and others are served."""
        silent = [socket.create_connection(("127.0.0.1", self.wall.port)) for _ in range(100)]
        self.assertEqual(self.wall.ask("GET", "/style.css")[0], 200)
        for peer in silent:
            peer.close()


class ManyCards(ServerCase):
    settings = tuple(f"port.{port}.cards=512" for port in range(4))

    def test_pages_that_never_read_cost_no_memory_and_lose_their_seats(self):
        before = self.wall.rss_kib()
        for _ in range(50):
            peer = socket.socket()
            peer.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
            peer.connect(("127.0.0.1", self.wall.port))
            peer.sendall(b"GET /events HTTP/1.1\r\nHost: localhost\r\n\r\n")
            self.addCleanup(peer.close)
        until(lambda: self.wall.ask("GET", "/")[0] == 503, "all seats are taken")
        freed = lambda: self.wall.ask("GET", "/")[0] == 200
        self.flicker(LIMIT * 2, between=freed)
        self.assertTrue(freed(), "a page that doesn't read keeps its seat")
        grown = self.wall.rss_kib() - before
        print(f"50 pages that never read: {grown} KiB more")
        self.assert_little_memory(grown)


class Folder(ServerCase):
    settings = ("trace=bus",)

    def test_a_folder_that_is_not_there_is_waited_for(self):
        folder = self.board.folder
        wall = Wall(folder / "later")
        try:
            state = wall.state()
            self.assertFalse(state["board"]["exists"])
            self.assertEqual(state["board"]["troubles"], [f"there is no board in {folder}/later"])
            os.rename(folder, f"{folder}.moved")
            os.mkdir(folder)
            os.rename(f"{folder}.moved", folder / "later")
            self.assertEqual(wall.state()["board"]["troubles"], [])
        finally:
            wall.stop()

    def test_files_that_are_cut_short_or_something_else_are_named(self):
        cells, store = "fpga/1.mem", "usr/zeph/etc/envcfg/brmpara"
        stream = self.stream()
        stream.next()
        for name, spoil, trouble in (
            (cells, lambda p: os.truncate(p, 0x500000), "fpga/1.mem is cut short: it has 5242880 bytes"),
            (store, lambda p: os.truncate(p, 0), f"{store} is cut short: it has 0 bytes"),
            ("cards", lambda p: os.truncate(p, 20), None),
            ("cards", lambda p: p.write_bytes(b"\xff" * 4096), "cards is no list of cards"),
            ("clock", os.remove, "clock is missing or can't be read"),
            ("faults", lambda p: (os.remove(p), os.mkfifo(p)), "faults is missing or can't be read"),
            ("board.conf", lambda p: p.write_text("speed = fast\n"),
             "board.conf:1: bad value 'fast': a number from 1 to 2000 is needed"),
            ("trace.log", lambda p: (p.unlink(missing_ok=True), os.mkdir(p)), None),
            ("sensors/lux", lambda p: p.write_bytes(bytes(range(256)) * 100), None),
        ):
            with self.subTest(name=name, trouble=trouble):
                spoil(self.board.folder / name)
                if trouble is not None:
                    stream.until(lambda s, t=trouble: t in s["board"]["troubles"], trouble)
        self.assertEqual(self.wall.ask("GET", "/")[0], 200)

    def test_a_trace_of_100_mib_is_passed_over(self):
        trace = self.board.folder / "trace.log"
        stream = self.stream()
        stream.next()
        before = self.wall.rss_kib()
        with open(trace, "a", encoding="ascii") as file:
            file.write("1 bus > 0x007f0001 20 " + "ab" * 40000 + "\n")  # a line longer than it may be
            for _ in range(100):
                file.write(("2 fpga W 1 0x00000000 500 ok " + "00" * 485 + "\n") * 1024)
                file.write("x" * 2048 + "\n")
            file.write(BUS_LINE)
        reports = lambda s: [e for e in s["log"]["entries"].values() if e["kind"] == "report"]
        state = stream.until(reports, "the report behind it all")
        self.assertGreater(state["log"]["passed_over"], 90 * MIB)
        os.truncate(trace, 0)
        with open(trace, "a", encoding="ascii") as file:
            file.write(BUS_LINE * 2)
        stream.until(lambda s: len(reports(s)) == 3, "the reports after it was cut short")
        self.assert_little_memory(self.wall.rss_kib() - before)


if __name__ == "__main__":
    unittest.main(verbosity=2)
