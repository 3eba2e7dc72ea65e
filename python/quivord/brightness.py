"""Brightness: once by hand, or by a plan that the device follows."""

from __future__ import annotations

import dataclasses
import json
from typing import Any, Literal, Optional, Union

from quivord import _native
from quivord.errors import asking
from quivord.files import FileOrContent, named, text_of
from quivord.link import Link


@dataclasses.dataclass(frozen=True)
class Plan:
    """The plan that a device holds, and where it stands. Nodes count from 0, in the plan's order."""

    kind: Literal["none", "list", "sensor", "mix", "serial", "hardware"]
    content: dict[str, Any]
    """As a file has it; `device.brightness.plan()` takes it back."""
    node: Optional[int] = None
    """The node in force; None where the plan has none or the device's clock isn't set."""
    next_node: Optional[int] = None
    next_in_min: Optional[int] = None
    """When the next node comes."""


class Brightness:
    """`device.brightness`."""

    def __init__(self, link: Link) -> None:
        self._link = link

    def show(self) -> Plan:
        """The plan that the device holds."""
        request = "reading the brightness plan"
        with asking(request):
            return _plan_of(self._link.peer(request).show_plan(self._link.timeout))

    def set(self, value: Union[int, str], *, port: Optional[int] = None, card: Optional[int] = None) -> int:
        """Sets receiving cards to 0 to 255, or to a percentage as "60%"; returns the 0 to 255 that they got.

        All cards, or those of a port, or one of them. A plan in force sets its own at its next step.
        """
        request = f"brightness {value}"
        with asking(request):
            level = _native.brightness_of(str(value))
            whose = _native.Whose("receiver", port, card)
            peer = self._link.peer(request)
            peer.write(whose, _native.CARD_BRIGHTNESS, bytes([level]), self._link.timeout)
        return level

    def plan(self, file: FileOrContent) -> Plan:
        """Sends a plan, from the file that `quivordctl brightness plan` takes or from its content.

        It is in force at once and survives a restart. Returns it as the device then holds it.
        """
        request = named("brightness plan", file)
        text = text_of(file, request)
        with asking(request):
            self._link.peer(request).send_plan(text, self._link.timeout)
        return self.show()


def _plan_of(text: str) -> Plan:
    content: dict[str, Any] = json.loads(text)
    standing = content.pop("in_force") or {}
    following = content.pop("next") or {}
    return Plan(
        kind=content["kind"],
        content=content,
        node=standing.get("node"),
        next_node=following.get("node"),
        next_in_min=following.get("in_min"),
    )
