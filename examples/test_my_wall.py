"""Tests of a wall on a simulated board: copy this file and change it.

    pytest test_my_wall.py        # with the Debian packages python3-quivord and python3-pytest

Each test gets a board of its own with the real daemon on it, and leaves nothing behind.
"""

import datetime

import pytest

import quivord

# What is wired to the board, by the keys of its board.conf: eight cabinets on each of two ports. Time runs
# twenty times faster than on the PC.
pytestmark = pytest.mark.board({"port.0.cards": 8, "port.1.cards": 8}, speed=20)


@pytest.fixture
def device(board):
    return board.connect()


def test_the_wall_is_laid_out(device):
    wall = device.wall.configure(rows=4, columns=4, cables="top-left-rows", per_cable=8)
    assert wall.screen == (512, 512)  # 16 cabinets of 128 x 128 pixels
    assert [port.cards for port in wall.ports if port.repeats is None] == [8, 8]


def test_the_wall_survives_a_crash(board, device):
    before = device.wall.configure(rows=4, columns=4, cables="bottom-left-columns", per_cable=8)
    board.kill()
    board.start()
    assert board.connect().wall.show() == before


def test_a_wall_that_is_too_large_is_refused(device):
    with pytest.raises(quivord.RefusedError, match="a wall has 2048 at most"):
        device.wall.configure(rows=100, columns=100, cables="top-left-rows", per_cable=512)


def test_a_pulled_cable_is_reported(board, device):
    with device.reports() as reports:
        reports.expect("copper link, of 0 to 3: 0 1$")  # as it stands
        board.link(1, up=False)
        reports.expect("copper link, of 0 to 3: 0$")


def test_the_screen_is_dimmed_in_the_evening(board, device):
    evening = (device.clock + datetime.timedelta(hours=1)).replace(second=0)
    device.brightness.plan(
        {"kind": "list", "nodes": [{"time": f"{evening:%H:%M}", "brightness": "20%", "ports": [0, 1]}]}
    )
    board.clock.shift((evening - device.clock).total_seconds() - 60)  # a minute is three seconds here
    board.until(lambda: all(card.brightness == 51 for card in board.cards()))


def test_a_card_that_fails_is_told(board, device):
    board.fault("card-read", -1)  # each read, until it is set to 0
    with pytest.raises(quivord.RefusedError, match="did not answer"):
        device.read(0x02000017, 4, device="receiver", port=0, card=3)
