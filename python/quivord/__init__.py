"""Talks to the quivord control daemon of an LED video wall controller.

    import quivord

    with quivord.connect("/tmp/my-board") as device:
        device.wall.configure(rows=4, columns=4, cables="top-left-rows", per_cable=8)
        device.brightness.set("60%")
        print(device.wall.show().screen)

What goes wrong is a `quivord.Error` that names the request and the reason. `quivord.testing` brings
a simulated board to pytest.
"""

from quivord._native import INTERFACE_VERSION
from quivord.brightness import Brightness, Plan
from quivord.device import Device, connect
from quivord.errors import (
    DisconnectedError,
    Error,
    GarbledError,
    NoAnswerError,
    NoDaemonError,
    RefusedError,
    WrongUseError,
)
from quivord.names import CABLINGS, Cabling, DeviceKind, Task
from quivord.reports import Report, Reports
from quivord.wall import Port, Size, Wall, WallControl, Window

__all__ = [
    "CABLINGS",
    "INTERFACE_VERSION",
    "Brightness",
    "Cabling",
    "Device",
    "DeviceKind",
    "DisconnectedError",
    "Error",
    "GarbledError",
    "NoAnswerError",
    "NoDaemonError",
    "Plan",
    "Port",
    "RefusedError",
    "Report",
    "Reports",
    "Size",
    "Task",
    "Wall",
    "WallControl",
    "Window",
    "WrongUseError",
    "connect",
]
