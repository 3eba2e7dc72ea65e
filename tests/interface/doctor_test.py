"""quivordctl doctor notices what is broken, one thing at a time, and says what to do."""

import pathlib
import unittest

import scenario


class Doctor(unittest.TestCase):
    def setUp(self):
        self.on = scenario.Scenario()
        self.addCleanup(self.on.close)
        self.on.start_daemon("fpga.load_ms=50", "port.0.cards=1", "port.1.cards=1")
        self.addCleanup(self.on.stop_daemon)

    def look(self):
        answer = self.on.ask("doctor", "doctor")
        return answer, {check["name"]: check for check in answer.lines[0]["checks"]}

    def tool(self, *lines):
        for line in lines:
            self.on.tool(*line.split(), "--board", self.on.board)

    def change(self, path, text):
        file = pathlib.Path(self.on.board, path)
        before = file.read_bytes()
        if text is None:
            file.unlink()
        else:
            file.write_text(text)
        return lambda: file.write_bytes(before)

    def test_a_healthy_board_and_one_fault_at_a_time(self):
        answer, checks = self.look()
        self.assertEqual((answer.status, answer.lines[0]["well"]), (0, True))
        self.assertEqual({name for name, check in checks.items() if check["health"] != "good"}, {"output"})
        self.assertIn("for the daemon", checks["versions"]["text"])
        # What breaks it, how it is mended where that isn't what breaking gave back, and what is found.
        cases = [
            (lambda: self.tool("link 5 up"), lambda: self.tool("link 5 down"), "cards", "wrong", "port 5"),
            (lambda: self.tool("link 0 down", "link 1 down"), lambda: self.tool("link 0 up", "link 1 up"),
             "links", "wrong", "no port"),
            (lambda: self.tool("fault flash-write 3"), lambda: self.tool("fault flash-write 0"),
             "faults", "note", "flash-write 3"),
            (lambda: self.change("board.conf", "slot = frog\n"), None, "board", "wrong", "frog"),
            (lambda: self.change("board.conf", None), None, "board", "note", "no board.conf"),
            (lambda: self.change("usr/zeph/etc/envcfg/brmpara_factory", "short"), None, "stores", "wrong", "5 bytes"),
            (lambda: self.change("sys/class/fpga/fpga_conf", "0\n"), None, "fpga", "wrong", "down"),
            (lambda: self.tool("fault fpga-read -1"), lambda: self.tool("fault fpga-read 0"),
             "fpga", "wrong", "silent"),
            (self.on.stop_daemon, None, "process", "wrong", "no daemon"),
        ]
        for breaks, mends, name, health, says in cases:
            with self.subTest(name):
                mends = breaks() or mends
                self.on.until(lambda name=name, health=health: self.look()[1][name]["health"] == health, name)
                answer, checks = self.look()
                self.assertIn(says, checks[name]["text"])
                self.assertIsNotNone(checks[name]["advice"])
                if name == "fpga":
                    self.assertIn("not asked: the FPGA", checks["links"]["text"])
                if mends is not None:
                    self.assertEqual(answer.status, 1 if health == "wrong" else 0)
                    mends()
                    self.on.until(lambda: self.look()[0].status == 0, "all is well again")
        self.assertEqual(answer.status, 3)


if __name__ == "__main__":
    unittest.main()
