"""The pytest plugin: the fixtures `board` and `make_board`, and what a board said in a test that fails."""

from __future__ import annotations

from collections.abc import Callable, Generator, Mapping
from typing import Any, Optional

import pytest

from quivord.testing.board import Board, Setting

MakeBoard = Callable[..., Board]

_BOARDS = pytest.StashKey[list[Board]]()
_MOST_LINES = 40  # of a board's output, in a report


def pytest_configure(config: pytest.Config) -> None:
    config.addinivalue_line(
        "markers",
        'board(settings, **more): what is wired to the board of this test, as @pytest.mark.board({"port.0.cards": 8},'
        " speed=10); the keys are those of its board.conf",
    )


@pytest.fixture
def make_board(request: pytest.FixtureRequest) -> Generator[MakeBoard, None, None]:
    """Makes boards that run: `make_board({"port.0.cards": 8}, speed=10)`. They end with the test."""
    boards = request.node.stash.setdefault(_BOARDS, [])

    def make(settings: Optional[Mapping[str, Setting]] = None, /, **more: Setting) -> Board:
        board = Board({**(settings or {}), **more})
        boards.append(board)
        board.start()
        return board

    yield make
    for board in boards:
        board.remove()


@pytest.fixture
def board(request: pytest.FixtureRequest, make_board: MakeBoard) -> Board:
    """A board that runs, wired as the test's mark `board` says. It ends with the test."""
    settings: dict[str, Setting] = {}
    for mark in reversed(list(request.node.iter_markers("board"))):  # the nearest one last
        for words in mark.args:
            settings.update(words)
        settings.update(mark.kwargs)
    return make_board(settings)


@pytest.hookimpl(hookwrapper=True)  # type: ignore[misc]
def pytest_runtest_makereport(item: pytest.Item) -> Generator[None, Any, None]:
    """Adds what the boards said to the report of a test that fails."""
    outcome = yield
    report = outcome.get_result()
    if not report.failed:
        return
    for one in item.stash.get(_BOARDS, []):
        lines = one.output.splitlines()[-_MOST_LINES:]
        report.sections.append((f"board in {one.folder}", "\n".join(lines)))
