"""Files of the shared folder: written under a temporary name, flushed, and renamed in one step."""

import os
import shutil
import socket
import threading
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import BinaryIO


def _temporary_name(path: Path) -> Path:
    """A name beside `path` that no other process or thread of any machine makes."""
    return path.with_name(
        f".{path.name}.{socket.gethostname()}.{os.getpid()}.{threading.get_native_id()}"
    )


@contextmanager
def replacing(path: Path) -> Iterator[BinaryIO]:
    """Opens a file that becomes `path` when the block ends well, and that is removed when it does not."""
    temporary = _temporary_name(path)
    try:
        with open(temporary, "wb") as stream:
            yield stream
            stream.flush()
            os.fsync(stream.fileno())
        os.replace(temporary, path)
    except BaseException:
        temporary.unlink(missing_ok=True)
        raise


def write_whole(path: Path, content: bytes) -> None:
    """Replaces the file by `content`."""
    with replacing(path) as stream:
        stream.write(content)


def copy_whole(source: Path, target: Path) -> None:
    """Replaces `target` by a copy of `source`."""
    with open(source, "rb") as original, replacing(target) as stream:
        shutil.copyfileobj(original, stream, 1 << 20)


def remove_leftovers(folder: Path) -> None:
    """Removes what killed writers have left in a folder that nobody writes to at the moment."""
    for leftover in folder.glob(".*"):
        if leftover.is_file():
            leftover.unlink(missing_ok=True)
