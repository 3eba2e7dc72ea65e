"""The wall: how cabinets are cabled onto output ports."""

from __future__ import annotations

import dataclasses
import json
from typing import Any, Literal, NamedTuple, Optional, cast

from quivord.errors import WrongUseError, asking
from quivord.files import FileOrContent, named, text_of
from quivord.link import Link
from quivord.names import CABLINGS, Cabling


class Size(NamedTuple):
    """In pixels."""

    width: int
    height: int


class Window(NamedTuple):
    """The part of the screen that a port carries, in pixels."""

    x: int
    y: int
    width: int
    height: int


@dataclasses.dataclass(frozen=True)
class Port:
    """An output port: how many cards hang on it, and what it carries."""

    port: int
    cards: int
    window: Window
    repeats: Optional[int]
    """The port whose picture this one shows again; None for one of the wall's own."""
    backup: bool


@dataclasses.dataclass(frozen=True)
class Wall:
    """A wall as the device holds it."""

    kind: Literal["none", "smart", "advanced", "software"]
    """How it came about: not at all, from rows and columns, port by port, by a configuration tool."""
    screen: Size
    card: Size
    """One cabinet."""
    cabinets: int
    ports: tuple[Port, ...]
    rows: Optional[int] = None
    """Rows, columns, cables and per_cable are those of a smart wall, else None."""
    columns: Optional[int] = None
    cables: Optional[Cabling] = None
    per_cable: Optional[int] = None


class WallControl:
    """`device.wall`: lays out a wall and reads it back."""

    def __init__(self, link: Link) -> None:
        self._link = link

    def show(self) -> Wall:
        """The wall that the device holds."""
        request = "reading the wall"
        with asking(request):
            return _wall_of(self._link.peer(request).show_wall(self._link.timeout))

    def configure(
        self, *, rows: int, columns: int, cables: Cabling = "top-left-rows", per_cable: int, wait: bool = True
    ) -> Wall:
        """Lays out a wall of rows and columns of cabinets; `per_cable` is what one cable may carry.

        Returns the wall once the device has laid it out. Without `wait` it comes back as soon as the device
        has taken the numbers, with what it holds then: mostly the wall from before. `RefusedError` says which
        limit a wall breaks and what would help.
        """
        request = f"wall of {rows} rows and {columns} columns, {cables}, {per_cable} a cable"
        if cables not in CABLINGS:
            raise WrongUseError(request, f"cables is one of {', '.join(CABLINGS)}")
        return self._send(
            {"kind": "smart", "rows": rows, "columns": columns, "cables": cables, "per_cable": per_cable},
            request,
            wait,
        )

    def load(self, file: FileOrContent) -> Wall:
        """Lays out the wall of a file, as `quivordctl wall export` writes it, or of its content; waits."""
        return self._send(file, named("wall", file), True)

    def _send(self, file: FileOrContent, request: str, wait: bool) -> Wall:
        text = text_of(file, request)
        with asking(request):
            return _wall_of(self._link.peer(request).configure_wall(text, wait, self._link.timeout))


def _wall_of(text: str) -> Wall:
    words = cast(dict[str, Any], json.loads(text))
    words["screen"], words["card"] = Size(**words["screen"]), Size(**words["card"])
    for port in words["ports"]:
        port["window"] = Window(**port["window"])
    words["ports"] = tuple(Port(**port) for port in words["ports"])
    return Wall(**words)
