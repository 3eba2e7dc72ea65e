"""Lines of a board's wire trace."""

from __future__ import annotations

import dataclasses


@dataclasses.dataclass(frozen=True)
class TraceLine:
    """One access: when, what kind (fpga, flash, card, bus, shell, env ...), and what was done, in words."""

    microseconds: int
    kind: str
    words: tuple[str, ...]

    def __str__(self) -> str:
        return " ".join((self.kind, *self.words))


def parse(line: str) -> TraceLine:
    """Understands a line of trace.log."""
    time, kind, *words = line.split()
    return TraceLine(int(time), kind, tuple(words))
