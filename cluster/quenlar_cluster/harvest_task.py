"""One task of a harvest: a worker reads an archive with `quenlar harvest`, and leaves a part."""

import json
import os
import tempfile
from dataclasses import dataclass
from pathlib import Path

from quenlar_cluster import files, program, settings
from quenlar_cluster.errors import TaskFailed
from quenlar_cluster.folder import Folder

_MOST_TOLD = 2000  # characters of a failed program's messages


@dataclass(frozen=True)
class HarvestJob:
    """What a worker is told. `given` is the input as it is shown, from `start_folder` on."""

    folder: Folder
    program: str
    options: tuple[str, ...]
    row_format: str
    start_folder: Path
    number: int
    given: str
    named: bool  # not found in a folder

    @property
    def name(self) -> str:
        """For messages."""
        return f"input {self.number}"

    @property
    def part(self) -> Path:
        """What it leaves when it is done."""
        return self.folder.input_part(self.number, self.row_format)


def harvest_input(job: HarvestJob) -> str:
    """Makes the part unless it is there. Gives its path: a short value, which the scheduler may lose."""
    part = job.part
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
    summary = home / "summary.json"
    command += [*job.options, "--summary", str(summary), "--", job.given]
    rows = home / "rows"
    start_folder = None if os.path.isabs(job.given) else job.start_folder
    with open(rows, "wb") as stream:
        status, said = program.run(command, stream, lambda: True, folder=start_folder)
    figures = _figures(summary)
    if figures.get("reason") != "finished" or figures["unread"] > 0:
        raise TaskFailed(f"quenlar harvest ends with status {status}: {said[-_MOST_TOLD:]}")
    # The last line is the sum, which is not told of each input.
    notices = said.split("\n")[:-1]
    if figures["other"] > 0 and not job.named:
        status, notices = 0, []
    message = job.folder.input_message(job.number)
    if notices:
        text = json.dumps({"damaged": status != 0, "said": notices})
        files.write_whole(message, text.encode() + b"\n")
    else:
        message.unlink(missing_ok=True)  # of an attempt that was killed
    files.copy_whole(rows, part)


def _figures(summary: Path) -> dict:
    """What the program says of its run. Empty when it has not come to its end."""
    try:
        return json.loads(summary.read_text(encoding="utf-8"))
    except (OSError, ValueError):
        return {}
