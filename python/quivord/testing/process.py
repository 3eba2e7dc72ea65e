"""`quivord-board run` as a child, and what it says."""

from __future__ import annotations

import ctypes
import pathlib
import signal
import subprocess
import threading
from collections.abc import Callable
from typing import IO, Optional

_LIBC = ctypes.CDLL(None)
_PR_SET_PDEATHSIG = 1

# What the daemon says once it has restored the FPGA and reports that it is ready.
_READY = "Send quivord load flag"


def _end_with_parent() -> None:
    _LIBC.prctl(_PR_SET_PDEATHSIG, signal.SIGTERM)


class Runner:
    """A running board; its output is read as it comes, so that waiting is waiting for a line."""

    def __init__(self, program: pathlib.Path, folder: pathlib.Path) -> None:
        # The signal comes when the thread that started the child ends, so only the main thread may ask for it.
        main = threading.current_thread() is threading.main_thread()
        self._process = subprocess.Popen(
            [program, "run", folder],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
            errors="replace",
            preexec_fn=_end_with_parent if main else None,
        )
        self._said: list[str] = []
        self._starts = 0
        self._changed = threading.Condition()
        self._ended = False
        assert self._process.stdout is not None
        self._reader = threading.Thread(target=self._read, args=(self._process.stdout,), daemon=True)
        self._reader.start()

    @property
    def starts(self) -> int:
        """How often the daemon has become ready."""
        return self._starts

    @property
    def output(self) -> str:
        with self._changed:
            return "".join(self._said)

    def await_start(self, number: int, timeout: float) -> bool:
        """Waits until the daemon has become ready for the `number`-th time; False where it ended or didn't."""
        return self._await(lambda: self._ended or self._starts >= number, timeout) and self._starts >= number

    def await_end(self, timeout: float) -> Optional[int]:
        """The exit status once it has ended; None while it runs on."""
        try:
            status = self._process.wait(timeout)
        except subprocess.TimeoutExpired:
            return None
        self._reader.join(timeout)
        return status

    def stop(self, timeout: float) -> None:
        """Ends the board and its daemon, by force where it has to be."""
        self._process.terminate()
        if self.await_end(timeout) is None:
            self._process.kill()
            self.await_end(timeout)

    def _await(self, holds: Callable[[], bool], timeout: float) -> bool:
        with self._changed:
            return self._changed.wait_for(holds, timeout)

    def _read(self, stream: IO[str]) -> None:
        with stream:
            for line in stream:
                with self._changed:
                    self._said.append(line)
                    self._starts += _READY in line
                    self._changed.notify_all()
        with self._changed:
            self._ended = True
            self._changed.notify_all()
