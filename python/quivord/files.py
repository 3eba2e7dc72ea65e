"""Walls and plans come as a file's path or as what would stand in the file."""

from __future__ import annotations

import json
import os
import pathlib
from collections.abc import Mapping
from typing import Any, Union

from quivord.errors import WrongUseError

FileOrContent = Union[str, "os.PathLike[str]", Mapping[str, Any]]


def text_of(source: FileOrContent, request: str) -> str:
    """The JSON text; `request` is what an error names."""
    if isinstance(source, Mapping):
        return json.dumps(dict(source))
    try:
        return pathlib.Path(source).read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as fault:
        raise WrongUseError(request, str(fault)) from None


def named(what: str, source: FileOrContent) -> str:
    """`what` with the file's name, where there is one."""
    return what if isinstance(source, Mapping) else f"{what} {os.fspath(source)}"
