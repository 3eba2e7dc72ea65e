"""What the daemon says unasked."""

from __future__ import annotations

import dataclasses
import re
import time
from collections.abc import Callable
from types import TracebackType
from typing import Optional, Union

from quivord import _native
from quivord.errors import DisconnectedError, NoAnswerError, asking

_REQUEST = "the next report"


@dataclasses.dataclass(frozen=True)
class Report:
    """One report: which register, what it holds now, and that in words where they are known."""

    address: int
    data: bytes
    text: str = ""


class Reports:
    """Reports as they come; an iterator that ends when none has come for `timeout` seconds.

    Listens from the moment it is made, not from the first look, so that nothing is missed in between.
    The daemon knows one listener a task: a newer one takes the older one's place.
    """

    def __init__(self, peer: _native.Peer, timeout: float | None) -> None:
        self._peer: Optional[_native.Peer] = peer
        self._timeout = timeout

    def __iter__(self) -> Reports:
        return self

    def __next__(self) -> Report:
        report = self._take(self._timeout)
        if report is None:
            raise StopIteration
        return report

    def expect(self, wanted: Union[str, int, Callable[[Report], bool]], timeout: float = 5.0) -> Report:
        """The first report that says `wanted`: a pattern (`re.search`) in its text, its address, or a function
        that knows.

        Those in front of it are dropped. `NoAnswerError` after `timeout` seconds names what came instead.
        """
        end = time.monotonic() + timeout
        others: list[str] = []
        while (report := self._take(max(0.0, end - time.monotonic()))) is not None:
            if _says(report, wanted):
                return report
            others.append(report.text or f"0x{report.address:08X} {report.data.hex()}")
        came = "; it reported " + ", ".join(others) if others else " and nothing else either"
        raise NoAnswerError(f"a report of {_name(wanted)}", f"none in {timeout:g} seconds{came}")

    def close(self) -> None:
        """Stops listening."""
        self._peer = None

    def __enter__(self) -> Reports:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, fault: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def _take(self, timeout: float | None) -> Report | None:
        if self._peer is None:
            raise DisconnectedError(_REQUEST, "these reports are closed; ask the device for reports() again")
        with asking(_REQUEST):
            words = self._peer.next_report(timeout)
        return None if words is None else Report(*words)


def _says(report: Report, wanted: Union[str, int, Callable[[Report], bool]]) -> bool:
    if isinstance(wanted, str):
        return re.search(wanted, report.text) is not None
    if isinstance(wanted, int):
        return report.address == wanted
    return wanted(report)


def _name(wanted: Union[str, int, Callable[[Report], bool]]) -> str:
    if isinstance(wanted, int):
        return f"0x{wanted:08X}"
    return repr(wanted) if isinstance(wanted, str) else "such a report"
