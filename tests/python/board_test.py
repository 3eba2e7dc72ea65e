"""The fixture `board`: what a test engineer has in hand, and that nothing is left behind."""

import datetime
import pathlib
import subprocess
import sys
import textwrap

import pytest

import quivord
from quivord.testing import Board, BoardError

CELL = 0xF0000100


@pytest.mark.board({"port.2.cards": 3, "port.2.multi": 1}, slot=2, trace="fpga bus")
def test_a_board_is_wired_as_the_mark_says(board, device):
    assert [card.card for card in board.cards(2)] == [0, 1, 2]
    assert len(board.cards(2, "multi")) == 1
    device.write(CELL, [0x5A])
    assert board.peek(0x100) == b"\x5a"
    assert any(line.words[:3] == ("W", "1", "0x00000100") for line in board.trace("fpga"))
    assert {line.kind for line in board.trace()} == {"fpga", "bus"}


def test_clock_speed_and_restart(board, device):
    before = device.clock
    board.clock.shift(86400)
    assert abs(device.clock - before - datetime.timedelta(days=1)) < datetime.timedelta(hours=2)  # summer may begin
    assert (board.clock.offset, board.speed) == (86400, 1)
    device.wall.configure(rows=1, columns=2, per_cable=2)
    board.restart(speed=50)
    assert board.speed == 50
    assert board.connect().wall.show().cabinets == 2


def test_a_power_cut_starts_the_daemon_again(board, device):
    board.fault("flash-cut", 1)
    with pytest.raises(quivord.Error):
        device.wall.configure(rows=1, columns=2, per_cable=2)
    board.await_start(2)
    assert board.connect().read(CELL, 1) == b"\0"


@pytest.mark.parametrize(
    "use, says",
    [
        (lambda board: board.fault("flash"), "no fault is called 'flash'"),
        (lambda board: board.link(16, up=True), "port '16' is no number"),
        (lambda board: board.trace(), "nothing is traced; say what"),
        (lambda board: board.start(), "runs already"),
        (lambda board: board.stop() or board.kill(), "start\\(\\) starts it"),
        (lambda board: board.restart(speed=0), "board.conf"),
        (lambda board: board.until(lambda: 0, timeout=0.1), "still 0"),
        (lambda board: Board({"colour": 1}), "colour"),
    ],
)
def test_wrong_use_is_told(board, use, says):
    with pytest.raises(BoardError, match=says):
        use(board)


def test_boards_side_by_side(make_board):
    one, two = make_board(slot=1), make_board({"port.0.cards": 1})
    assert one.folder != two.folder
    one.connect().write(CELL, [7])
    assert (one.peek(0x100), two.peek(0x100)) == (b"\7", b"\0")


def test_all_ends_with_a_test_that_fails(tmp_path):
    """Failing tests in a pytest of their own: one that asserts, one whose daemon hangs."""
    (tmp_path / "test_fails.py").write_text(
        textwrap.dedent(
            f"""
            import os, pathlib, signal
            def test_fails(board):
                pathlib.Path({str(tmp_path)!r}, "folder").write_text(str(board.folder))
                pid = int((board.folder / "var/run/quivord.pid").read_text())
                pathlib.Path({str(tmp_path)!r}, "pid").write_text(str(pid))
                assert board.connect().read(0xF0000100, 1) == b"x"
            """
        )
    )
    run = subprocess.run(
        [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", tmp_path], capture_output=True, text=True
    )
    assert run.returncode == 1
    assert "receive file /etc/init.d/flag_fpgaload" in run.stdout  # what the board said
    assert not pathlib.Path((tmp_path / "folder").read_text()).exists()
    assert not pathlib.Path("/proc", (tmp_path / "pid").read_text()).exists()
