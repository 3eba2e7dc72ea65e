"""Walls and brightness, compared with what the cards and another client see."""

import json
import pathlib

import pytest

import quivord

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"
WIRED = pytest.mark.board({"port.0.cards": 6, "port.1.cards": 6}, speed=20)


@WIRED
@pytest.mark.parametrize("cables, of_port_0", [("top-left-rows", 6), ("bottom-right-columns", 8)])  # whole lines
def test_a_wall_is_laid_out_and_read_back(device, cables, of_port_0):
    wall = device.wall.configure(rows=4, columns=3, cables=cables, per_cable=6)
    assert (wall.kind, wall.rows, wall.columns, wall.cables, wall.per_cable) == ("smart", 4, 3, cables, 6)
    assert (wall.screen, wall.card, wall.cabinets) == (quivord.Size(384, 512), quivord.Size(128, 128), 12)
    assert [(port.port, port.cards) for port in wall.ports if port.repeats is None][0] == (0, of_port_0)
    assert device.wall.show() == wall


@WIRED
def test_walls_from_files_and_content(device):
    file = EXAMPLES / "wall-2x3.json"
    assert device.wall.load(file).cabinets == 6
    port = {"port": 1, "cables": "top-left-rows", "rows": 2, "columns": 2, "x": 128, "y": 0}
    wall = device.wall.load({"kind": "advanced", "ports": [port]})
    assert (wall.kind, wall.rows, wall.screen) == ("advanced", None, (384, 256))
    assert [(port.port, port.window) for port in wall.ports] == [(1, (128, 0, 256, 256))]


@WIRED
def test_without_waiting_the_wall_comes_later(board, device):
    device.wall.configure(rows=2, columns=2, per_cable=4, wait=False)
    board.until(lambda: device.wall.show().rows == 2)


def test_brightness_by_hand(board, device):
    assert device.brightness.set("60%") == 153
    assert device.brightness.set(10, port=1) == 10
    assert device.brightness.set(20, port=1, card=2) == 20
    assert [card.brightness for card in board.cards(0)] == [153] * 6
    assert [card.brightness for card in board.cards(1)] == [10, 10, 20, 10, 10, 10]


@pytest.mark.parametrize("file", sorted(EXAMPLES.glob("brightness-*.json")), ids=lambda file: file.stem)
def test_a_plan_comes_back_and_survives(board, device, file):
    plan = device.brightness.plan(file)
    assert plan.kind == json.loads(file.read_text())["kind"]
    assert device.brightness.plan(plan.content).content == plan.content
    board.restart()
    again = board.connect().brightness
    board.until(lambda: again.show().content == plan.content)  # the loop's first pass loads it


def test_no_plan(device):
    plan = device.brightness.show()
    assert (plan.kind, plan.node, plan.next_node) == ("none", None, None)
