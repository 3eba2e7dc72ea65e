"""What programs on top of the package rely on: its names, signatures and types.

A stored sample guards them. After a change that is meant: python3 tests/python/interface_test.py renews it,
and CONTRIBUTING.md says when the version goes up.
"""

import dataclasses
import inspect
import pathlib
import shutil
import subprocess

import pytest

import quivord
import quivord.testing
from quivord import _native
from quivord.testing import plugin

SAMPLE = pathlib.Path(__file__).with_name("interface.txt")
ROOT = pathlib.Path(__file__).parents[2]


MADE_BY_HAND = (quivord.Error, quivord.testing.Board)  # others come from calls


def of_class(name, thing):
    bases = ", ".join(base.__name__ for base in thing.__bases__)
    yield f"class {name}({bases})"
    if dataclasses.is_dataclass(thing):
        for field in dataclasses.fields(thing):
            yield f"  {field.name}: {field.type}"
    for member, value in sorted(vars(thing).items()):
        if member.startswith("_") and not (member == "__init__" and thing in MADE_BY_HAND):
            continue
        if inspect.isfunction(value):
            yield f"  def {member}{inspect.signature(value)}"
        elif isinstance(value, property):
            yield f"  {member} -> {inspect.signature(value.fget).return_annotation}"
    for member, kind in vars(thing).get("__annotations__", {}).items():
        if not dataclasses.is_dataclass(thing) and not member.startswith("_"):
            yield f"  {member}: {getattr(kind, '__forward_arg__', kind)}"


def of_module(module):
    for name in module.__all__:
        thing = getattr(module, name)
        path = f"{module.__name__}.{name}"
        if inspect.isclass(thing):
            yield from of_class(path, thing)
        elif inspect.isfunction(thing):
            yield f"def {path}{inspect.signature(thing)}"
        else:
            yield f"{path} = {thing}"


def interface():
    lines = [*of_module(quivord), *of_module(quivord.testing), "fixtures: board, make_board", ""]
    return "\n".join(lines)


def test_the_interface_is_the_stored_one():
    assert interface() == SAMPLE.read_text(), f"if that is meant: python3 {__file__}"


def test_all_of_it_is_explained():
    things = [getattr(module, name) for module in (quivord, quivord.testing) for name in module.__all__]
    classes = [thing for thing in things if inspect.isclass(thing)]
    members = [value for thing in classes for name, value in vars(thing).items() if not name.startswith("_")]
    calls = [call for call in things + members if callable(call) or isinstance(call, property)]
    documented = (call for call in calls if inspect.isclass(call) or inspect.isroutine(call) or isinstance(call, property))
    assert [call for call in documented if not inspect.getdoc(call)] == []


def test_words_are_those_of_the_daemon():
    assert quivord.CABLINGS == _native.CABLINGS
    assert quivord.INTERFACE_VERSION == _native.INTERFACE_VERSION == 1
    assert inspect.isgeneratorfunction(plugin.make_board.__wrapped__)


@pytest.mark.skipif(shutil.which("mypy") is None, reason="mypy is missing")
def test_the_types_are_right(tmp_path):
    run = subprocess.run(
        ["mypy", "--strict", "--no-error-summary", "--cache-dir", tmp_path, "quivord"],
        cwd=ROOT / "python",
        capture_output=True,
        text=True,
    )
    assert run.stdout == ""


if __name__ == "__main__":
    SAMPLE.write_text(interface())
