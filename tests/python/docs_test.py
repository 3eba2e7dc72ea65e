"""What docs/python.md and the example say is run, as it stands there."""

import os
import pathlib
import re
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).parents[2]
BLOCKS = re.findall(r"```python\n(.*?)```", (ROOT / "docs/python.md").read_text(), re.DOTALL)


def run(*words, **environment):
    ran = subprocess.run(
        [sys.executable, *words],
        cwd=ROOT,
        env={**os.environ, **environment},
        capture_output=True,
        text=True,
    )
    assert ran.returncode == 0, ran.stdout + ran.stderr
    return ran.stdout


@pytest.mark.parametrize("block", [block for block in BLOCKS if "def test_" not in block])
def test_a_block_runs(board, block):
    run("-c", block, QUIVORD_BOARD=str(board.folder))


def test_blocks_and_example_that_are_tests_pass(tmp_path):
    example = ROOT / "examples/test_my_wall.py"
    tests = [block for block in BLOCKS if "def test_" in block]
    for index, block in enumerate(tests):
        (tmp_path / f"test_{index}.py").write_text(block)
    said = run("-m", "pytest", "-q", "-p", "no:cacheprovider", tmp_path, example)
    count = sum(text.count("def test_") for text in [*tests, example.read_text()])
    assert f"{count} passed" in said
