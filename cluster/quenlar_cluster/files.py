"""Files of the shared folder: written under a temporary name, flushed, and renamed in one step."""

import os
import re
import shutil
import socket
import threading
import time
from collections.abc import Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import BinaryIO

# As _temporary_name makes them.
_TEMPORARY = re.compile(r"\..+\.\d+\.\d+")
_APPEARS_SECONDS = 10.0
_POLL_SECONDS = 0.2


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


def appears(path: Path) -> bool:
    """Whether a file is there that another machine has just written. Network folders may show it some seconds later."""
    end = time.monotonic() + _APPEARS_SECONDS
    while not path.exists():
        # To open the folder makes its machine look at it anew.
        if path.parent.is_dir() and path.name in os.listdir(path.parent):
            return True
        if time.monotonic() > end:
            return False
        time.sleep(_POLL_SECONDS)
    return True


def remove_leftovers(folder: Path) -> None:
    """Removes what killed writers have left in a folder that nobody writes to at the moment."""
    for leftover in folder.iterdir():
        if _TEMPORARY.fullmatch(leftover.name):
            leftover.unlink(missing_ok=True)
