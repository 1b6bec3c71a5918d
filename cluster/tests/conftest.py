"""Puts the package in the path of the tests, the processes that they start included."""

import os
import sys
from pathlib import Path

_FOLDER = Path(__file__).parent.parent
sys.path[:0] = [str(_FOLDER), str(_FOLDER / "tests")]
os.environ["PYTHONPATH"] = os.pathsep.join(
    filter(None, [str(_FOLDER), os.environ.get("PYTHONPATH")])
)
for variable in [name for name in os.environ if name.lower().endswith("_proxy")]:
    del os.environ[variable]
