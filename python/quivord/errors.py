"""What can go wrong, by how a caller would go on."""

from __future__ import annotations

import contextlib
from collections.abc import Iterator

from quivord import _native


class Error(Exception):
    """Base of all. `request` says what was asked for, `reason` why it failed and what would help."""

    def __init__(self, request: str, reason: str) -> None:
        super().__init__(request, reason)
        self.request = request
        self.reason = reason

    def __str__(self) -> str:
        return f"{self.request}: {self.reason}"


class RefusedError(Error):
    """The device refused, or would have: then nothing was sent."""


class WrongUseError(Error, ValueError):
    """The call itself can't be carried out, whatever the device."""


class NoDaemonError(Error, ConnectionError):
    """Nobody listens on the board's bus."""


class NoAnswerError(Error, TimeoutError):
    """No answer, or no report, in time."""


class DisconnectedError(Error, ConnectionError):
    """The connection has ended; the device has to be connected to again."""


class GarbledError(Error):
    """An answer came that is none."""


_KINDS: dict[str, tuple[type[Error], str]] = {
    "refused": (RefusedError, ""),
    "wrong-use": (WrongUseError, ""),
    "no-daemon": (NoDaemonError, "; 'quivord-board run DIR' starts one on a simulated board"),
    "timeout": (NoAnswerError, "; give a longer timeout, or look into the daemon's log"),
    "disconnected": (DisconnectedError, "; connect again once the daemon runs"),
    "garbled": (GarbledError, ""),
}


@contextlib.contextmanager
def asking(request: str) -> Iterator[None]:
    """Turns what goes wrong inside into the error that names `request`."""
    try:
        yield
    except _native.Fault as fault:
        word, text = fault.args
        kind, hint = _KINDS[word]
        raise kind(request, text + hint) from None
