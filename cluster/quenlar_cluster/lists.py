"""Lists that a person hands in: one entry a line."""

import sys
from pathlib import Path

from quenlar_cluster.errors import ClusterError


def read_lines(path: Path) -> list[str]:
    """The entries of a file, or of standard input for "-", in their order.

    Blanks around an entry, empty lines, lines that begin with "#" and a byte order mark do not count.
    """
    try:
        content = sys.stdin.buffer.read() if str(path) == "-" else path.read_bytes()
        text = content.decode("utf-8-sig")
    except OSError as error:
        raise ClusterError(f"{path}: {error.strerror}") from error
    except UnicodeDecodeError as error:
        raise ClusterError(f"{path}: this is not UTF-8") from error
    entries = [line.strip(" \t\r") for line in text.split("\n")]
    entries = [entry for entry in entries if entry and not entry.startswith("#")]
    if not entries:
        raise ClusterError(f"{path}: There is nothing to start from")
    return entries
