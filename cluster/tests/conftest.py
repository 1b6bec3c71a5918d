"""Puts the package in the path of the tests, the processes that they start included."""

import os
import sys
from collections.abc import Iterator
from pathlib import Path

import pytest

_FOLDER = Path(__file__).parent.parent
sys.path[:0] = [str(_FOLDER), str(_FOLDER / "tests")]
os.environ["PYTHONPATH"] = os.pathsep.join(
    filter(None, [str(_FOLDER), os.environ.get("PYTHONPATH")])
)
for variable in [name for name in os.environ if name.lower().endswith("_proxy")]:
    del os.environ[variable]


@pytest.fixture(autouse=True)
def _nothing_is_left() -> Iterator[None]:
    from running import kill_what_is_left  # found by the path above

    yield
    kill_what_is_left()
