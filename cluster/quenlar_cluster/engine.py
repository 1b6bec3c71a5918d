"""Dask.distributed as the engine: tasks out, results in, whatever dies in between."""

import logging
import os
import tempfile
import time
import uuid
import warnings
import zipfile
from collections.abc import Callable, Iterator, Sequence
from concurrent.futures import CancelledError
from contextlib import suppress
from dataclasses import dataclass
from pathlib import Path
from types import TracebackType
from typing import Generic, Protocol, TypeVar

import dask
from distributed import Client, Future, LocalCluster, as_completed

from quenlar_cluster import files
from quenlar_cluster.errors import ClusterError

ATTEMPTS = 3
_ATTACH_SECONDS = 30
_CLOSE_SECONDS = 10
_WORKERS_SECONDS = 600
_IN_FLIGHT_EACH_WORKER = 20


class Task(Protocol):
    """What a worker is told."""

    @property
    def name(self) -> str:
        """Tells it from all others of its batch; for messages."""
        ...

    @property
    def part(self) -> Path:
        """The file that is there when the task is done."""
        ...


Job = TypeVar("Job", bound=Task)


@dataclass(frozen=True)
class Outcome(Generic[Job]):
    """How a task ended. `failure` is None where it was done."""

    job: Job
    failure: str | None = None


class Engine:
    """A scheduler that runs already, or a local cluster of this machine's cores. Use it in a `with` block.

    `say` is handed sentences for the person who looks on.
    """

    def __init__(
        self, scheduler: str | None, workers: int | None, say: Callable[[str], None]
    ) -> None:
        self._say = say
        self._id = uuid.uuid4().hex
        self._batch = 0
        self._cluster: LocalCluster | None = None
        logging.getLogger("distributed").setLevel(logging.ERROR)
        if scheduler is None:
            # Read once, when the scheduler starts: what kills its worker so often is set aside.
            dask.config.set({"distributed.scheduler.allowed-failures": ATTEMPTS - 1})
            self._cluster = LocalCluster(
                n_workers=workers or os.cpu_count() or 1,
                threads_per_worker=1,
                processes=True,
                host="127.0.0.1",
                dashboard_address="127.0.0.1:0",
            )
        try:
            self._client = Client(self._cluster or scheduler, timeout=_ATTACH_SECONDS)
        except OSError as error:
            raise ClusterError(f"No scheduler answers at {scheduler}: {error}") from error

    def _check_versions(self) -> None:
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            try:
                self._client.get_versions(check=True)
            except (Warning, ValueError) as mismatch:
                raise ClusterError(
                    f"The cluster's machines have different versions: {mismatch}"
                ) from mismatch

    def __enter__(self) -> "Engine":
        return self

    def __exit__(
        self, kind: type | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        # What the run has done lies in its folder; an engine that takes its time to end is no failure.
        with suppress(TimeoutError):
            self._client.close(timeout=_CLOSE_SECONDS)
        if self._cluster is not None:
            with suppress(TimeoutError):
                self._cluster.close(timeout=_CLOSE_SECONDS)

    @property
    def dashboard(self) -> str:
        """Where the state of the cluster can be looked at."""
        return self._client.dashboard_link

    @property
    def workers(self) -> int:
        """How many tasks can run at the same time."""
        return sum(self._client.nthreads().values())

    def wait_for_workers(self) -> None:
        """Waits until there is a worker, compares the versions of all machines, and hands out this package."""
        if not self._client.nthreads():
            self._say("Waiting for workers.")
        try:
            self._client.wait_for_workers(1, timeout=_WORKERS_SECONDS)
        except TimeoutError as error:
            raise ClusterError("There are no workers") from error
        self._check_versions()
        if self._cluster is None:
            with tempfile.TemporaryDirectory() as scratch:
                self._client.upload_file(str(_packed(Path(scratch))))

    def run(self, function: Callable[[Job], object], jobs: Sequence[Job]) -> Iterator[Outcome[Job]]:
        """Does the jobs in any order, each until it was done or has failed ATTEMPTS times.

        When the scheduler is lost, the jobs that have not ended are submitted again as soon as it is back; what has
        been done of them is found out by the function itself.
        """
        left = {job.name: job for job in jobs}
        while left:
            self.wait_for_workers()
            for outcome in self._run_once(function, list(left.values())):
                del left[outcome.job.name]
                yield outcome
            if left:
                self._say(
                    "The scheduler was lost. What is not done yet begins again when it is back."
                )
                self._wait_for_scheduler()

    def _run_once(
        self, function: Callable[[Job], object], jobs: Sequence[Job]
    ) -> Iterator[Outcome[Job]]:
        """Ends early, without a word, when the scheduler is lost."""
        self._batch += 1
        waiting = iter(jobs)
        under_way: dict[Future, Job] = {}

        def submit_next() -> Future | None:
            job = next(waiting, None)
            if job is None:
                return None
            # A key that nobody else has, and of its own each time: of equal keys the scheduler does one alone, and it
            # remembers the failure of one that it has had.
            key = f"quenlar-{self._id}-{self._batch}-{job.name.replace(' ', '-')}"
            future = self._client.submit(function, job, key=key, pure=False, retries=ATTEMPTS - 1)
            under_way[future] = job
            return future

        first = [submit_next() for _ in range(max(1, self.workers) * _IN_FLIGHT_EACH_WORKER)]
        completed = as_completed([future for future in first if future is not None])
        for future in completed:
            job = under_way.pop(future)
            if future.status == "cancelled":
                return
            failure = None if future.status == "finished" else _told(future)
            future.release()
            if failure is None and not files.appears(job.part):
                failure = f"it was done, but {job.part} does not appear: is the folder shared?"
            if (another := submit_next()) is not None:
                completed.add(another)
            yield Outcome(job, failure)

    def _wait_for_scheduler(self) -> None:
        end = time.monotonic() + _WORKERS_SECONDS
        while self._client.status != "running":
            if time.monotonic() > end or self._client.status == "closed":
                raise ClusterError("The scheduler does not come back")
            time.sleep(0.2)


def _told(future: Future) -> str:
    """Why a task failed, in one line."""
    try:
        error = future.exception()
    except CancelledError:
        return "it was cancelled"
    return " ".join(f"{type(error).__name__}: {error}".split())


def _packed(scratch: Path) -> Path:
    """This package as one file, for workers that have not installed it."""
    package = Path(__file__).parent
    archive = scratch / "quenlar_cluster.zip"
    with zipfile.ZipFile(archive, "w") as packed:
        for source in sorted(package.glob("*.py")):
            packed.write(source, f"{package.name}/{source.name}")
    return archive
