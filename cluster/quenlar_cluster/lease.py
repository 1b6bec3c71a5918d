"""A lease: a file in the shared folder that says who is at work on something, renewed while the work lasts.

The file is made in one step by whoever gets the lease. Its age is told by the clock of the shared folder, so the
machines' own clocks do not matter. A lease that was not renewed for LEASE_SECONDS has lapsed and may be taken over;
one of a process of this machine that is no more has lapsed at once.
"""

import json
import os
import socket
import threading
import time
import uuid
from collections.abc import Callable
from pathlib import Path

LEASE_SECONDS = 60.0
_RENEW_SECONDS = 5.0
_POLL_SECONDS = 0.5


def _boot() -> str:
    """Tells this boot of this machine from any other."""
    return Path("/proc/sys/kernel/random/boot_id").read_text(encoding="ascii").strip()


def _birth(process: int) -> str | None:
    """When a process of this machine was started, so that a number used again is noticed; None when it is no more."""
    try:
        facts = Path(f"/proc/{process}/stat").read_text(encoding="utf-8", errors="replace")
    except OSError:
        return None
    fields = facts.rpartition(")")[2].split()
    return None if fields[0] in "ZX" else fields[19]


class Lease:
    """Use it as `with Lease(path) as lease:`; while it is held, `lease.held()` is true."""

    def __init__(
        self,
        path: Path,
        lapse_seconds: float = LEASE_SECONDS,
        on_wait: Callable[[], None] | None = None,
    ) -> None:
        """`on_wait` is called once when another has the lease and it must be waited for."""
        self._path = path
        self._lapse_seconds = lapse_seconds
        self._on_wait = on_wait
        self._token = uuid.uuid4().hex
        self._renewed = 0.0
        self._lost = False
        self._end = threading.Event()
        self._renewer: threading.Thread | None = None

    def acquire(self, unless: Callable[[], bool] = lambda: False) -> bool:
        """Waits until the lease is ours, and renews it from then on. False when `unless` became true before."""
        while not unless():
            if self._make() or (self._has_lapsed() and self._take_away() and self._make()):
                self._renewed = time.monotonic()
                self._renewer = threading.Thread(target=self._renew, daemon=True)
                self._renewer.start()
                return True
            if self._on_wait is not None:
                self._on_wait()
                self._on_wait = None
            time.sleep(_POLL_SECONDS)
        return False

    def held(self) -> bool:
        """False once another has taken it over, or when it could not be renewed for half of its time."""
        return not self._lost and time.monotonic() - self._renewed < self._lapse_seconds / 2

    def release(self) -> None:
        """Gives the lease back. Does nothing when it is not ours any more."""
        self._end.set()
        if self._renewer is not None:
            self._renewer.join()
            self._renewer = None
            if self._read().get("token") == self._token:
                self._path.unlink(missing_ok=True)

    def __enter__(self) -> "Lease":
        self.acquire()
        return self

    def __exit__(self, *_: object) -> None:
        self.release()

    def _make(self) -> bool:
        """Makes the file, whole, unless it is there: a link is made in one step on every file system."""
        facts = {
            "token": self._token,
            "machine": socket.gethostname(),
            "boot": _boot(),
            "process": os.getpid(),
        }
        facts["birth"] = _birth(os.getpid())
        draft = self._path.with_name(f".{self._path.name}.{self._token}")
        try:
            with open(draft, "wb") as stream:
                stream.write(json.dumps(facts).encode() + b"\n")
                stream.flush()
                os.fsync(stream.fileno())
            os.link(draft, self._path)
        except FileExistsError:
            return False
        finally:
            draft.unlink(missing_ok=True)
        return True

    def _read(self) -> dict:
        try:
            return json.loads(self._path.read_text(encoding="utf-8"))
        except (OSError, ValueError):
            return {}

    def _owner(self) -> str | None:
        """Whose lease it is. A lost machine may leave one that names nobody: then which file. None: there is none."""
        if token := self._read().get("token"):
            return token
        try:
            facts = self._path.stat()
        except OSError:
            return None
        return f"nobody-{facts.st_ino}-{facts.st_mtime_ns}"

    def _age(self, path: Path) -> float | None:
        """Seconds since a file was touched, by the clock of the folder; None when it is no more."""
        probe = self._path.with_name(f".now.{self._token}")
        try:
            probe.touch()
            os.utime(probe)
            return probe.stat().st_mtime - path.stat().st_mtime
        except FileNotFoundError:
            return None
        finally:
            probe.unlink(missing_ok=True)

    def _has_lapsed(self) -> bool:
        owner = self._read()
        if owner.get("machine") == socket.gethostname() and owner.get("boot") == _boot():
            return _birth(owner["process"]) != owner["birth"]
        age = self._age(self._path)
        return age is not None and age > self._lapse_seconds

    def _take_away(self) -> bool:
        """Removes a lapsed lease. Of all that see it lapsed, one alone succeeds: the one that gets to mark it."""
        owner = self._owner()
        if owner is None:
            return False
        mark = self._path.with_name(f".lapsed.{owner}")
        try:
            os.link(self._path, mark)
        except FileExistsError:
            # Who marked it may have died before the next step. The mark is the same file as the lease, so it tells
            # its age by its own change time.
            self._forget_old_mark(mark)
            return False
        except FileNotFoundError:
            return False
        if self._owner() == owner:
            self._path.unlink(missing_ok=True)
        mark.unlink(missing_ok=True)
        return True

    def _forget_old_mark(self, mark: Path) -> None:
        probe = self._path.with_name(f".now.{self._token}")
        try:
            probe.touch()
            if probe.stat().st_ctime - mark.stat().st_ctime > self._lapse_seconds:
                mark.unlink(missing_ok=True)
        except FileNotFoundError:
            pass
        finally:
            probe.unlink(missing_ok=True)

    def _renew(self) -> None:
        while not self._end.wait(min(_RENEW_SECONDS, self._lapse_seconds / 6)):
            try:
                if self._read().get("token") != self._token:
                    self._lost = True
                    return
                os.utime(self._path)
                self._renewed = time.monotonic()
            except OSError:
                continue  # the folder may come back; held() tells when it took too long
