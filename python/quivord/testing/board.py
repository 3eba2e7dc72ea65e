"""A simulated board in a folder of its own, with the daemon on it."""

from __future__ import annotations

import dataclasses
import os
import pathlib
import shutil
import signal
import struct
import subprocess
import tempfile
import time
from collections.abc import Callable, Iterator, Mapping
from types import TracebackType
from typing import Literal, Optional, TypeVar, Union

import quivord
from quivord.testing import programs
from quivord.testing.process import Runner
from quivord.testing.trace import TraceLine, parse

Setting = Union[str, int]
_Answer = TypeVar("_Answer")

_LIMIT = 30.0  # seconds until something that should happen counts as not happening
_DEFAULTS: dict[str, Setting] = {"fpga.load_ms": 50}
_CLOCK = struct.Struct("<q")
_CARDS = struct.Struct("<8sII")
_CARD = struct.Struct("<BBHHHB4BBBBI12x")
_KINDS = ("receiver", "multi", "distribute", "launcher")


class BoardError(Exception):
    """The board couldn't do what the test asked of it."""


@dataclasses.dataclass(frozen=True)
class Card:
    """What a device behind a port shows at one moment."""

    kind: str
    """receiver, multi, distribute or launcher."""
    port: int
    card: int
    width: int
    height: int
    brightness: int
    """0 to 255, as red, green, blue and virtual_red."""
    red: int
    green: int
    blue: int
    virtual_red: int
    screen: int
    mapping: int
    present: bool
    packets: int


class Clock:
    """The board's clock, as far as it is set apart from the PC's."""

    def __init__(self, file: pathlib.Path) -> None:
        self._file = file

    @property
    def offset(self) -> float:
        """Seconds by which the board is ahead of the PC."""
        return float(_CLOCK.unpack(self._file.read_bytes())[0]) / 1e6

    def shift(self, seconds: float) -> None:
        """Sets it forward by so many seconds, or back; the daemon goes on at once with the new time."""
        moved = _CLOCK.pack(round((self.offset + seconds) * 1e6))
        with self._file.open("r+b") as file:
            file.write(moved)


class Board:
    """A board; of the fixture `board`, or made by hand as a context.

    `settings` are keys of board.conf with their values. It is made in a temporary folder, which goes with it.
    """

    def __init__(self, settings: Optional[Mapping[str, Setting]] = None) -> None:
        self._tool = programs.find("quivord-board")
        self._runner: Optional[Runner] = None
        self._devices: list[quivord.Device] = []
        self._earlier = ""  # what runs before the present one have said
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="quivord-"))
        try:
            words = [f"{key}={value}" for key, value in {**_DEFAULTS, **(settings or {})}.items()]
            self._run("create", str(self.folder), *words)
        except BaseException:
            self.remove()
            raise

    # The daemon on it.

    def start(self) -> None:
        """Starts the daemon and waits until it is ready."""
        if self._runner is not None:
            raise BoardError("the board runs already; restart() starts it afresh")
        self._runner = Runner(self._tool, self.folder)
        self.await_start(1)

    def await_start(self, number: int, timeout: float = _LIMIT) -> None:
        """Waits until the daemon has become ready for the `number`-th time since `start`.

        Ready is once it has restored the FPGA; a stored brightness plan is loaded a moment later, by the first
        pass of its loop. It starts again by itself after a reboot and a power cut (`fault("flash-cut", n)`).
        """
        runner = self._running()
        if not runner.await_start(number, timeout):
            raise BoardError(f"the daemon was not ready within {timeout:g} s, start {number}:\n{self.output}")

    @property
    def starts(self) -> int:
        """How often the daemon has become ready since `start`."""
        return self._running().starts

    def stop(self) -> None:
        """Ends the daemon; the folder stays."""
        if self._runner is not None:
            self._runner.stop(_LIMIT)
            self._forget_runner()

    def kill(self) -> None:
        """Kills the daemon on the spot, as a crash would; `start` starts it on what it left."""
        runner = self._running()
        os.kill(int((self.folder / "var/run/quivord.pid").read_text()), signal.SIGKILL)
        if runner.await_end(_LIMIT) is None:
            raise BoardError("the board goes on after its daemon was killed")
        self._forget_runner()

    def restart(self, settings: Optional[Mapping[str, Setting]] = None, /, **more: Setting) -> None:
        """Stops the daemon and starts it, with other settings where some are given: `restart(speed=100)`."""
        self.stop()
        with (self.folder / "board.conf").open("a", encoding="utf-8") as file:
            file.writelines(f"{key} = {value}\n" for key, value in {**(settings or {}), **more}.items())
        self.start()

    @property
    def running(self) -> bool:
        """Whether it has been started and not ended by the test."""
        return self._runner is not None

    @property
    def output(self) -> str:
        """What daemon and board have said."""
        return self._earlier + (self._runner.output if self._runner is not None else "")

    def connect(self, *, timeout: float = 5.0) -> quivord.Device:
        """A connection to the daemon; closed with the board."""
        device = quivord.connect(self.folder, timeout=timeout)
        self._devices.append(device)
        return device

    # What the daemon meets.

    def fault(self, name: str, count: int = 1) -> None:
        """Lets the next `count` accesses of a kind fail: below 0 all, 0 none. docs/board.md names the kinds."""
        self._run("fault", name, str(count), "--board", str(self.folder))

    def link(self, port: int, up: bool) -> None:
        """Plugs a cable into an output port, or pulls it."""
        self._run("link", str(port), "up" if up else "down", "--board", str(self.folder))

    def lux(self, value: Union[int, Literal["fail"]]) -> None:
        """What the light sensors see; "fail" for broken ones."""
        self._run("lux", str(value), "--board", str(self.folder))

    @property
    def clock(self) -> Clock:
        """The board's clock, to be shifted."""
        return Clock(self.folder / "clock")

    @property
    def speed(self) -> int:
        """How many times faster than the PC's time passes; `restart(speed=N)` changes it."""
        lines = (line.partition("#")[0].partition("=") for line in self._settings().splitlines())
        return int([value for key, _, value in lines if key.strip() == "speed"][-1])  # the last one counts

    def peek(self, cell: int, length: int = 1, *, fpga: int = 1) -> bytes:
        """Cells of an FPGA."""
        with (self.folder / f"fpga/{fpga}.mem").open("rb") as file:
            file.seek(cell)
            return file.read(length)

    def poke(self, cell: int, data: bytes, *, fpga: int = 1) -> None:
        """Changes cells of an FPGA, as the hardware does."""
        words = [str(byte) for byte in data]
        self._run("poke", "--fpga", str(fpga), "--board", str(self.folder), str(cell), *words)

    # What the daemon did.

    def cards(self, port: Optional[int] = None, kind: str = "receiver") -> list[Card]:
        """The devices of a kind behind a port, or behind all."""
        return [card for card in self._all_cards() if card.kind == kind and port in (None, card.port)]

    def trace(self, kind: Optional[str] = None) -> list[TraceLine]:
        """The wire trace so far, all of it or of one kind. The setting `trace` says what is traced."""
        file = self.folder / "trace.log"
        if not file.exists():
            raise BoardError('nothing is traced; say what, as @pytest.mark.board(trace="fpga card")')
        whole, _, _ = file.read_text().rpartition("\n")  # the last line may still be growing
        return [line for line in map(parse, whole.splitlines()) if kind in (None, line.kind)]

    def until(self, ask: Callable[[], _Answer], timeout: float = _LIMIT) -> _Answer:
        """The first true answer of `ask`, which is asked again and again; `BoardError` after `timeout` seconds.

        For what the board shows, as `cards()` does. What the daemon reports comes by `device.reports()`.
        """
        end = time.monotonic() + timeout
        while not (answer := ask()):
            if time.monotonic() > end:
                raise BoardError(f"after {timeout:g} s the answer is still {answer!r}")
            time.sleep(0.02)
        return answer

    # Its end.

    def remove(self) -> None:
        """Ends all and deletes the folder."""
        for device in self._devices:
            device.close()
        self.stop()
        shutil.rmtree(self.folder, ignore_errors=True)

    def __enter__(self) -> Board:
        try:
            self.start()
        except BaseException:
            self.remove()
            raise
        return self

    def __exit__(
        self, kind: type[BaseException] | None, fault: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.remove()

    def __repr__(self) -> str:
        return f"<quivord.testing.Board in {self.folder}>"

    def _running(self) -> Runner:
        if self._runner is None:
            raise BoardError("the daemon doesn't run; start() starts it")
        return self._runner

    def _settings(self) -> str:
        return (self.folder / "board.conf").read_text(encoding="utf-8")

    def _forget_runner(self) -> None:
        self._earlier = self.output
        self._runner = None

    def _run(self, *words: str) -> None:
        run = subprocess.run([self._tool, *words], check=False, capture_output=True, text=True)
        if run.returncode != 0:
            raise BoardError(run.stderr.strip() or f"quivord-board {' '.join(words)} ended with {run.returncode}")

    def _all_cards(self) -> Iterator[Card]:
        content = (self.folder / "cards").read_bytes()
        _, count, size = _CARDS.unpack_from(content)
        for index in range(count):
            kind, *shown, present, packets = _CARD.unpack_from(content, _CARDS.size + index * size)
            values = (_KINDS[kind - 1], *shown, present == 1, packets)
            yield Card(*values)
