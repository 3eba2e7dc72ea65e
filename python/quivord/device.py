"""A device on the bus of a board."""

from __future__ import annotations

import datetime
import os
import pathlib
from collections.abc import Iterable
from types import TracebackType
from typing import Optional, Union

from quivord import _native
from quivord.brightness import Brightness
from quivord.errors import RefusedError, WrongUseError, asking
from quivord.link import Link
from quivord.names import DeviceKind, Task
from quivord.reports import Reports
from quivord.wall import WallControl

# Answered at once, and without a trace in the device.
_QUIET_REGISTER = 0x02000000


class Device:
    """A device; made by `quivord.connect`. Calls may come from any thread.

    A reply to `write` says that the device has understood, not that it is done; `wall` and `brightness`
    read back by themselves.
    """

    wall: WallControl
    brightness: Brightness

    def __init__(self, peer: _native.Peer, timeout: float) -> None:
        self._board = peer.board
        self._link = Link(peer, timeout)
        self.wall = WallControl(self._link)
        self.brightness = Brightness(self._link)

    @property
    def board(self) -> pathlib.Path:
        """The board folder."""
        return pathlib.Path(self._board)

    def read(
        self,
        address: int,
        length: int,
        *,
        device: DeviceKind = "sender",
        port: int = 0,
        card: int = 0,
        timeout: Optional[float] = None,
    ) -> bytes:
        """Reads up to 65516 bytes of registers: the sending card's, or of a device behind a port."""
        request = _request(f"read {length} bytes", address, device, port, card)
        with asking(request):
            whose = _native.Whose(device, port, card)
            return self._link.peer(request).read(whose, address, length, timeout or self._link.timeout)

    def write(
        self,
        address: int,
        data: Union[bytes, bytearray, Iterable[int]],
        *,
        device: DeviceKind = "sender",
        port: Optional[int] = 0,
        card: Optional[int] = 0,
        timeout: Optional[float] = None,
    ) -> None:
        """Writes registers. `port` and `card` None mean all."""
        content = _bytes_of(data)
        request = _request(f"write {content[:8].hex(' ')}{' ...' * (len(content) > 8)}", address, device, port, card)
        with asking(request):
            whose = _native.Whose(device, port, card)
            self._link.peer(request).write(whose, address, content, timeout or self._link.timeout)

    @property
    def clock(self) -> datetime.datetime:
        """The device's clock, in its own zone."""
        data = self.read(_native.CLOCK, 6)
        try:
            year, month, day, hour, minute, second = (int(f"{byte:02x}") for byte in data)
            return datetime.datetime(2000 + year, month, day, hour, minute, second)
        except ValueError:
            raise RefusedError("reading the clock", f"the device's clock isn't set ({data.hex(' ')})") from None

    def reports(self, timeout: Optional[float] = None, *, task: Task = "owd") -> Reports:
        """What the daemon reports from now on; the iterator ends when nothing comes for `timeout` seconds."""
        request = f"listening to reports as {task}"
        self._link.peer(request)
        with asking(request):
            peer = _native.Peer(self._board, task)
            # Once answered, it is known on the bus.
            peer.read(_native.Whose("sender", 0, 0), _QUIET_REGISTER, 1, self._link.timeout)
        return Reports(peer, timeout)

    def close(self) -> None:
        """Ends the connection; further calls raise `DisconnectedError`."""
        self._link.close()

    def __enter__(self) -> Device:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, fault: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<quivord.Device on {self._board}>"


def connect(board: Union[str, os.PathLike[str], None] = None, *, timeout: float = 5.0) -> Device:
    """Connects to the daemon on `board`, a board folder.

    Without one: the folder in QUIVORD_BOARD, else the one that a daemon of this user takes. `timeout` is
    how many seconds an answer may take.
    """
    folder = "" if board is None else os.fspath(board)
    with asking(f"connecting to the board {folder}".rstrip()):
        return Device(_native.Peer(folder, ""), timeout)


def _request(what: str, address: int, device: str, port: Optional[int], card: Optional[int]) -> str:
    whose = "" if device == "sender" else f" of {device} {_place(card)} on port {_place(port)}"
    return f"{what} at 0x{address:08X}{whose}"


def _place(number: Optional[int]) -> str:
    return "all" if number is None else str(number)


def _bytes_of(data: Union[bytes, bytearray, Iterable[int]]) -> bytes:
    try:
        return bytes(data)
    except (TypeError, ValueError):
        raise WrongUseError("write", f"data is bytes, or numbers from 0 to 255, not {data!r}") from None
