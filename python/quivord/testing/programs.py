"""Where the programs of quivord are."""

from __future__ import annotations

import os
import pathlib
import shutil


def find(name: str) -> pathlib.Path:
    """The program `name`: of the folder in QUIVORD_BIN, of the build that this package is of, or installed."""
    folder = os.environ.get("QUIVORD_BIN")
    if folder:
        return _existing(pathlib.Path(folder) / name, f"QUIVORD_BIN={folder} has no {name}")
    built = pathlib.Path(__file__).parents[3] / name
    if built.is_file():
        return built
    installed = shutil.which(name)
    return _existing(
        pathlib.Path(installed or name),
        f"{name} isn't found; install the Debian packages quivord and quivord-board, or let QUIVORD_BIN name the "
        "folder that has them",
    )


def _existing(path: pathlib.Path, otherwise: str) -> pathlib.Path:
    if not path.is_file():
        raise FileNotFoundError(otherwise)
    return path
