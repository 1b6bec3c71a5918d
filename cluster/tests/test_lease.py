"""Who may work on what, and until when."""

import json
import multiprocessing
import os
import signal
import socket
from pathlib import Path

from quenlar_cluster.lease import Lease
from running import wait_until


def _owner(path: Path) -> dict:
    return json.loads(path.read_text(encoding="utf-8"))


def test_one_gets_it_and_gives_it_back(tmp_path: Path) -> None:
    """A second one gets it only then."""
    path = tmp_path / "a.lease"
    first, second = Lease(path), Lease(path)
    assert first.acquire()
    assert first.held()
    tries = iter([False, False, True])
    assert not second.acquire(unless=lambda: next(tries))
    assert not second.held()
    first.release()
    assert second.acquire()
    second.release()
    assert list(tmp_path.iterdir()) == []


def _hold(path: Path) -> None:
    assert Lease(path).acquire()
    signal.pause()


def test_one_of_a_process_that_is_no_more_has_lapsed_at_once(tmp_path: Path) -> None:
    """Killed processes of this machine keep nobody waiting, those that live do."""
    path = tmp_path / "a.lease"
    holder = multiprocessing.get_context("spawn").Process(target=_hold, args=(path,))
    holder.start()
    try:
        wait_until(path.exists)
        tries = iter([False, False, True])
        assert not Lease(path).acquire(unless=lambda: next(tries))
    finally:
        os.kill(holder.pid, signal.SIGKILL)
        holder.join()
    lease = Lease(path)
    assert lease.acquire()
    assert _owner(path)["process"] == os.getpid()
    lease.release()


def test_one_of_another_machine_lapses_when_it_is_not_renewed(tmp_path: Path) -> None:
    """Its age is what counts, and the age of the folder's clock at that."""
    path = tmp_path / "a.lease"
    path.write_text(
        json.dumps({"token": "x", "machine": "elsewhere", "boot": "b", "process": 1, "birth": "1"})
    )
    tries = iter([False, True])
    assert not Lease(path).acquire(unless=lambda: next(tries))
    now = path.stat().st_mtime
    os.utime(path, (now - 61, now - 61))
    lease = Lease(path)
    assert lease.acquire()
    assert _owner(path)["machine"] == socket.gethostname()
    lease.release()


def test_one_that_names_nobody_lapses_too(tmp_path: Path) -> None:
    """A machine that loses its power may leave an empty file."""
    path = tmp_path / "a.lease"
    path.touch()
    tries = iter([False, True])
    assert not Lease(path).acquire(unless=lambda: next(tries))
    os.utime(path, (1, 1))
    lease = Lease(path)
    assert lease.acquire()
    assert _owner(path)["process"] == os.getpid()
    lease.release()
    assert list(tmp_path.iterdir()) == []


def test_its_holder_notices_when_it_was_taken_away(tmp_path: Path) -> None:
    """And leaves the other one's lease alone."""
    path = tmp_path / "a.lease"
    lease = Lease(path, lapse_seconds=3)
    assert lease.acquire()
    path.write_text(json.dumps({"token": "another"}))
    wait_until(lambda: not lease.held())
    lease.release()
    assert _owner(path) == {"token": "another"}


def test_of_many_who_see_it_lapsed_one_gets_it(tmp_path: Path) -> None:
    """All others wait."""
    path = tmp_path / "a.lease"
    path.write_text(
        json.dumps({"token": "x", "machine": "elsewhere", "boot": "b", "process": 1, "birth": "1"})
    )
    os.utime(path, (1, 1))
    context = multiprocessing.get_context("spawn")
    with context.Pool(4) as pool:
        assert sum(pool.map(_try, [path] * 12)) == 1


def _try(path: Path) -> bool:
    tries = iter([False, True])
    return Lease(path).acquire(
        unless=lambda: next(tries)
    )  # the pool's process goes on, so it is not given back
