"""Words that stand for numbers of the device."""

from typing import Literal, get_args

Cabling = Literal[
    "top-left-rows",
    "top-left-columns",
    "top-right-rows",
    "top-right-columns",
    "bottom-left-rows",
    "bottom-left-columns",
    "bottom-right-rows",
    "bottom-right-columns",
]
"""How cables run: the corner of the first cabinet, then along rows or columns."""

CABLINGS: tuple[Cabling, ...] = get_args(Cabling)
"""All of them, in the order of their numbers."""

DeviceKind = Literal["sender", "receiver", "multi", "distribute", "launcher"]
"""Whose registers: the sending card's own, or those of a device behind an output port."""

Task = Literal["owd", "kye", "moirad"]
"""Whom the daemon reports to: the service daemon, the video application, the video daemon."""
