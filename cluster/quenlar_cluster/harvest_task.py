"""One task of a harvest: a worker reads an archive with `quenlar harvest`, and leaves a part."""

import tempfile
from dataclasses import dataclass
from pathlib import Path

from quenlar_cluster import files, program, settings
from quenlar_cluster.errors import TaskFailed
from quenlar_cluster.folder import Folder

# The program has read what it could, and said what it could not.
_DAMAGED = 1


@dataclass(frozen=True)
class HarvestJob:
    """What a worker is told. `given` is the input as the list names it, from `start_folder` on."""

    folder: Folder
    program: str
    options: tuple[str, ...]
    row_format: str
    start_folder: Path
    number: int
    given: str

    @property
    def name(self) -> str:
        """For messages."""
        return f"input {self.number}"


def harvest_input(job: HarvestJob) -> str:
    """Makes the part unless it is there. Gives its path: a short value, which the scheduler may lose."""
    part = job.folder.input_part(job.number, job.row_format)
    if not part.exists():
        with tempfile.TemporaryDirectory(
            prefix="quenlar-cluster-", ignore_cleanup_errors=True
        ) as scratch:
            _read(job, part, Path(scratch))
    return str(part)


def _read(job: HarvestJob, part: Path, home: Path) -> None:
    path = job.start_folder / job.given
    try:
        if not path.is_dir():
            path.open("rb").close()
    except OSError as error:
        raise TaskFailed(f"{job.given}: {error.strerror}") from error
    settings.take_over(job.folder.handed, home)
    command = [job.program, "--home", str(home), "harvest", "--format", job.row_format]
    command += [*job.options, "--", job.given]
    rows = home / "rows"
    with open(rows, "wb") as stream:
        status, said = program.run(command, stream, lambda: True, folder=job.start_folder)
    if status not in (0, _DAMAGED):
        raise TaskFailed(f"quenlar harvest ends with status {status}: {said}")
    if status == _DAMAGED:
        files.write_whole(job.folder.input_message(job.number), said.encode() + b"\n")
    files.copy_whole(rows, part)
