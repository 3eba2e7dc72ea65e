"""Simulated boards for tests: the pytest fixture `board`, and the same by hand.

    def test_a_wall(board):
        device = board.connect()
        ...

Installed with the package, so pytest knows the fixture without a conftest.py. What is wired to the board
is said by a mark, in the words of its `board.conf`:

    @pytest.mark.board({"port.0.cards": 8}, speed=10)
"""

from quivord.testing.board import Board, BoardError, Card, Clock
from quivord.testing.trace import TraceLine

__all__ = ["Board", "BoardError", "Card", "Clock", "TraceLine"]
