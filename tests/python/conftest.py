import pytest


@pytest.fixture
def device(board):
    return board.connect()
