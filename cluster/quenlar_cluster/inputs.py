"""The inputs of a harvest: the files that a list names, and those in the folders that it names."""

import json
import os
from collections.abc import Iterable, Iterator
from dataclasses import asdict, dataclass
from pathlib import Path

from quenlar_cluster import files


@dataclass(frozen=True)
class Input:
    """A file, as `quenlar harvest` shows it: what the list names, in a folder that and the path in it."""

    name: str
    named: bool = (
        True  # by the list itself; in a folder what is neither an archive nor a page is passed over
    )


def inputs_of(names: Iterable[str]) -> Iterator[Input]:
    """The files in the order of `quenlar harvest`. A folder that cannot be listed stays one input, which will fail."""
    for name in names:
        if os.path.isdir(name):
            yield from _in_folder(name, True)
        else:
            yield Input(name)


def _in_folder(folder: str, named: bool) -> Iterator[Input]:
    """By name, bytewise, those of the folders in it among them; links are not followed."""
    try:
        with os.scandir(folder) as listing:
            entries = sorted(listing, key=lambda entry: os.fsencode(entry.name))
    except OSError:
        yield Input(folder, named)
        return
    for entry in entries:
        name = os.path.join(folder, entry.name)
        if entry.is_dir(follow_symlinks=False):
            yield from _in_folder(name, False)
        elif entry.is_file(follow_symlinks=False):
            yield Input(name, False)


def keep_inputs(path: Path, names: Iterable[str]) -> list[Input]:
    """The inputs as they were when the run began: parts are numbered by them. `path` remembers them."""
    if not path.exists():
        with files.replacing(path) as stream:
            for each in inputs_of(names):
                stream.write(json.dumps(asdict(each)).encode() + b"\n")
    with open(path, "rb") as rows:
        return [Input(**json.loads(row)) for row in rows]
