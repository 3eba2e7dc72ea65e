"""Registers, errors, reports and threads over one connection."""

import os
import signal
import threading
import time

import pytest

import quivord

CELL = 0xF0000100


def test_what_is_written_is_read(device):
    device.write(CELL, [1, 2, 3, 254])
    assert device.read(CELL, 4) == b"\x01\x02\x03\xfe"


@pytest.mark.parametrize(
    "call, kind, says",
    [
        (lambda d: d.read(0x02000000, 0x10000), quivord.WrongUseError, "a read is of 0 to 65516 bytes"),
        (lambda d: d.read(1 << 32, 1), quivord.WrongUseError, "an address is 0 to 0xFFFFFFFF"),
        (lambda d: d.read(CELL, 1, port=16), quivord.WrongUseError, "port is 0 to 15"),
        (lambda d: d.read(CELL, 1, device="card"), quivord.WrongUseError, "sender, receiver"),
        (lambda d: d.read(CELL, 1, timeout=-1), quivord.WrongUseError, "timeout"),
        (lambda d: d.write(CELL, [256]), quivord.WrongUseError, "0 to 255"),
        (lambda d: d.write(CELL, b""), quivord.RefusedError, "at 0xF0000100: not sent: nothing to write"),
        (lambda d: d.write(0x0A0013FF, b"\1\2"), quivord.RefusedError, "write 01 02 at 0x0A0013FF: not sent: "),
        (
            lambda d: d.read(0x02000017, 4, device="receiver", port=9),
            quivord.RefusedError,
            "of receiver 0 on port 9: refused: the port has no link",
        ),
        (lambda d: d.wall.configure(rows=0, columns=4, per_cable=4), quivord.WrongUseError, "rows"),
        (lambda d: d.wall.configure(rows=1, columns=1, cables="x", per_cable=1), quivord.WrongUseError, "top-left-rows, "),
        (lambda d: d.wall.load("/nowhere.json"), quivord.WrongUseError, "wall /nowhere.json: "),
        (lambda d: d.brightness.set("101%"), quivord.WrongUseError, "brightness 101%: "),
        (lambda d: d.brightness.plan({"kind": "moon"}), quivord.WrongUseError, "kind"),
    ],
)
def test_an_error_names_the_request_and_the_reason(device, call, kind, says):
    with pytest.raises(kind) as caught:
        call(device)
    assert says in str(caught.value)


def test_connecting_and_closing(board, tmp_path, monkeypatch):
    with pytest.raises(ConnectionError, match="'quivord-board run DIR' starts one"):
        quivord.connect(tmp_path)
    monkeypatch.setenv("QUIVORD_BOARD", str(board.folder))
    with quivord.connect() as one, quivord.connect() as two:  # side by side
        assert one.read(CELL, 1) == two.read(CELL, 1)
    with pytest.raises(quivord.DisconnectedError, match="connect again"):
        one.read(CELL, 1)
    with quivord.connect() as device:
        board.kill()
        with pytest.raises(quivord.DisconnectedError):
            device.wall.show()


def test_a_stalled_daemon_is_no_answer(board, device):
    daemon = int((board.folder / "var/run/quivord.pid").read_text())
    os.kill(daemon, signal.SIGSTOP)
    try:
        with pytest.raises(TimeoutError, match="longer timeout"):
            device.read(CELL, 1, timeout=0.1)
    finally:
        os.kill(daemon, signal.SIGCONT)


def test_reports(board, device):
    with device.reports(timeout=1) as reports:
        board.link(3, up=True)
        assert reports.expect("of 0 to 3: 0 1 3$").address == 0x0200001F
        board.link(3, up=False)
        assert any(report.text.endswith("of 0 to 3: 0 1") for report in reports)  # and it ends by itself
        with pytest.raises(quivord.NoAnswerError, match="'port 5': none in 0.1 seconds"):
            reports.expect("port 5", timeout=0.1)


def test_others_run_while_one_waits(board, device):
    reports = device.reports(timeout=20)
    came = []
    listener = threading.Thread(target=lambda: came.append(next(reports)))
    listener.start()
    for _ in range(100):
        device.read(CELL, 1)
    board.link(4, up=True)
    listener.join(20)
    assert came


def test_ctrl_c_ends_a_wait(device):
    reports = device.reports()
    begin = time.monotonic()
    with pytest.raises(KeyboardInterrupt):
        threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()
        for _ in reports:
            pass
    assert time.monotonic() - begin < 10
