"""Starts and ends the commands that the tests need."""

import json
import os
import signal
import socket
import subprocess
import sys
import time
from collections.abc import Callable, Sequence
from pathlib import Path

PROGRAM = os.environ.get("QUENLAR_PROGRAM") or str(
    Path(__file__).parents[2] / "build" / "linux" / "quenlar"
)

_started: list[subprocess.Popen] = []


def quenlar(home: Path, *arguments: str) -> str:
    """Runs the program itself and gives what it prints."""
    command = [PROGRAM, "--home", str(home), *arguments]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, timeout=120).stdout.decode()


def cluster(*arguments: str, folder: Path | None = None, output: object = None) -> subprocess.Popen:
    """Starts `quenlar-cluster`. What a failed test leaves running is killed behind it."""
    command = [sys.executable, "-m", "quenlar_cluster", *arguments]
    stderr = subprocess.STDOUT if output else None
    _started.append(subprocess.Popen(command, stdout=output, stderr=stderr, cwd=folder))
    return _started[-1]


def free_port() -> int:
    """A port of this machine that nobody listens on."""
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def kill_what_is_left() -> None:
    """Ends the coordinators that still run."""
    for process in _started:
        process.kill()
        process.wait()
    _started.clear()


def collect_arguments(folder: Path, starts: Path, *more: str) -> list[str]:
    """Arguments of a quick crawl of one's own web."""
    common = [
        "--program",
        PROGRAM,
        "--assume-online",
        "--delay",
        "0",
        "--scope",
        "anywhere",
        "--depth",
        "9",
        "--shares",
        "5",
    ]
    return ["collect", *common, "--out", str(folder), *more, str(starts)]


def collected_by_one(home: Path, starts: Path) -> list[str]:
    """The addresses of one `quenlar collect` over the same web."""
    arguments = [
        "collect",
        "--from",
        str(starts),
        "--scope",
        "anywhere",
        "--depth",
        "9",
        "--delay",
        "0",
        "--assume-online",
    ]
    return sorted(quenlar(home, *arguments).splitlines())


def addresses_of(folder: Path) -> list[str]:
    """The addresses of the merged list."""
    lines = (folder / "addresses.jsonl").read_text(encoding="utf-8").splitlines()
    return sorted(json.loads(line)["address"] for line in lines)


def wait_until(what: Callable[[], bool], seconds: float = 60) -> None:
    """Waits for a condition that nobody tells of."""
    end = time.monotonic() + seconds
    while not what():
        assert time.monotonic() < end, "it does not happen"
        time.sleep(0.02)


def parent_of(process: int) -> int:
    """The parent of a process; 0 when it is no more."""
    try:
        facts = Path(f"/proc/{process}/stat").read_text(encoding="utf-8", errors="replace")
    except OSError:
        return 0
    return int(facts.rpartition(")")[2].split()[1])


def crawling(folder: Path, origin: str) -> list[int]:
    """The processes that visit a host for a run at the moment."""
    links = {
        str(task)
        for task in (folder / "tasks").glob("round-*")
        if origin in task.read_text(encoding="utf-8")
    }
    found = []
    for entry in Path("/proc").iterdir():
        try:
            words = (entry / "cmdline").read_bytes().decode("utf-8", "replace").split("\0")
        except OSError:
            continue
        if entry.name.isdigit() and words[0] == PROGRAM and links & set(words):
            found.append(int(entry.name))
    return found


class Machines:
    """A scheduler and three worker processes, started by Dask's own commands. Use it in a `with` block."""

    def __init__(self, scratch: Path, port: int) -> None:
        self._scratch = scratch
        self._port = port
        self._processes: list[subprocess.Popen] = []
        self.address = f"tcp://127.0.0.1:{port}"

    def start(self) -> None:
        """Starts all of them; they find each other in any order."""
        scheduler = ["/usr/bin/dask-scheduler", "--host", "127.0.0.1", "--port", str(self._port)]
        self._start([*scheduler, "--dashboard-address", "127.0.0.1:0"])
        worker = [
            "/usr/bin/dask-worker",
            self.address,
            "--nthreads",
            "1",
            "--no-nanny",
            "--no-dashboard",
        ]
        for number in range(3):
            self._start([*worker, "--local-directory", str(self._scratch / f"worker{number}")])

    def kill_scheduler(self) -> None:
        """Kills the scheduler. Its workers end by themselves, each when its task is done."""
        self._scheduler().kill()
        self._scheduler().wait()

    def kill_all(self) -> None:
        """Kills the scheduler and the workers."""
        for process in self._processes:
            process.kill()
            process.wait()
        self._processes.clear()

    def _scheduler(self) -> subprocess.Popen:
        """The one that was started last."""
        return self._processes[-4]

    def _start(self, command: Sequence[str]) -> None:
        # Without this package in their path: they get it from the coordinator.
        environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
        with open(self._scratch / "machines.log", "ab") as log:
            self._processes.append(
                subprocess.Popen(
                    [sys.executable, *command],
                    stdout=log,
                    stderr=log,
                    env=environment,
                    cwd=self._scratch,
                )
            )

    def __enter__(self) -> "Machines":
        self.start()
        return self

    def __exit__(self, *_: object) -> None:
        for process in self._processes:
            process.send_signal(signal.SIGTERM)
        for process in self._processes:
            process.wait(60)
