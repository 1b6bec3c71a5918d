"""The program `quenlar`: how it is started, ended, and asked."""

import json
import os
import subprocess
import tempfile
from collections.abc import Callable, Sequence
from pathlib import Path
from typing import BinaryIO

from quenlar_cluster.errors import ClusterError

# The shell looks whether its parent is still the one that asked for the signal: a parent that died in between would
# not be noticed otherwise.
_IF_PARENT_LIVES = '[ "$PPID" = "$0" ] || exit 1; exec "$@"'

_POLL_SECONDS = 0.2
_MOST_ERROR_BYTES = 64 << 10


def dying_with_us(command: Sequence[str]) -> list[str]:
    """The command line that runs `command` so that the kernel kills it when this thread ends, however it ends."""
    return [
        "setpriv",
        "--pdeathsig",
        "KILL",
        "sh",
        "-c",
        _IF_PARENT_LIVES,
        str(os.getpid()),
        *command,
    ]


def run(
    command: Sequence[str],
    output: BinaryIO,
    go_on: Callable[[], bool],
    folder: Path | None = None,
) -> tuple[int, str]:
    """Runs the program to its end: its exit status, and the last of what it said on standard error.

    Its standard output goes to `output`. When `go_on` becomes false the program is killed, and the status is negative.
    It works in `folder` where one is given.
    """
    with tempfile.TemporaryFile() as errors:
        process = subprocess.Popen(
            dying_with_us(command),
            stdin=subprocess.DEVNULL,
            stdout=output,
            stderr=errors,
            cwd=folder,
        )
        try:
            while go_on():
                try:
                    process.wait(_POLL_SECONDS)
                    break
                except subprocess.TimeoutExpired:
                    continue
        finally:
            if process.poll() is None:
                process.kill()
            status = process.wait()
        errors.seek(0, os.SEEK_END)
        errors.seek(max(0, errors.tell() - _MOST_ERROR_BYTES))
        return status, errors.read().decode("utf-8", "replace").strip()


def check(command: Sequence[str], **options: object) -> bytes:
    """Runs a short command to its end and gives its standard output. Raises ClusterError with its message."""
    try:
        done = subprocess.run(list(command), capture_output=True, check=False, **options)  # type: ignore[call-overload]
    except OSError as error:
        raise ClusterError(f"{command[0]}: {error.strerror}") from error
    if done.returncode != 0:
        said = done.stderr.decode("utf-8", "replace").strip()
        raise ClusterError(said or f"{' '.join(command)} ends with status {done.returncode}")
    return done.stdout


def ask(program: str, requests: Sequence[dict]) -> list[dict]:
    """The answers of `quenlar analyze` to requests that need no session."""
    with tempfile.TemporaryDirectory(prefix="quenlar-cluster-") as home:
        lines = "".join(json.dumps(request) + "\n" for request in requests)
        answers = check([program, "--home", home, "analyze", "--jsonl"], input=lines.encode())
    return [json.loads(line) for line in answers.splitlines()]


def home_of(given: str | None) -> tuple[Path, Path]:
    """The program folder and the folder of the settings, found as the program finds them."""
    home = given or os.environ.get("QUENLAR_HOME")
    if home:
        return Path(home), Path(home)

    def folder(variable: str, otherwise: str) -> Path:
        return Path(os.environ.get(variable) or Path.home() / otherwise) / "quenlar"

    return folder("XDG_DATA_HOME", ".local/share"), folder("XDG_CONFIG_HOME", ".config")
