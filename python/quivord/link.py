"""The connection that the parts of a device share."""

from __future__ import annotations

from typing import Optional

from quivord import _native
from quivord.errors import DisconnectedError


class Link:
    """A peer on the bus until it is closed, and how long an answer may take."""

    def __init__(self, peer: _native.Peer, timeout: float) -> None:
        self._peer: Optional[_native.Peer] = peer
        self.timeout = timeout

    def peer(self, request: str) -> _native.Peer:
        """The peer; `request` is what an error names."""
        if self._peer is None:
            raise DisconnectedError(request, "this device is closed; connect again")
        return self._peer

    def close(self) -> None:
        self._peer = None
