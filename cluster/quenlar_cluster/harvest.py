"""The coordinator of a harvest: one task an archive, and in the end one list."""

import csv
import hashlib
import json
import re
import shutil
import sqlite3
import tempfile
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass
from pathlib import Path
from typing import BinaryIO

from quenlar_cluster import files, program, settings
from quenlar_cluster.engine import Engine
from quenlar_cluster.errors import ClusterError
from quenlar_cluster.folder import Folder
from quenlar_cluster.harvest_task import HarvestJob, harvest_input
from quenlar_cluster.inputs import keep_inputs
from quenlar_cluster.lease import Lease
from quenlar_cluster.lists import read_lines
from quenlar_cluster.suppression import Suppression
from quenlar_cluster.told import counted

# What the program puts before a field of CSV that a spreadsheet would take for a formula.
_GUARD = re.compile(r"^'(?=[=+\-@\t ])")


@dataclass(frozen=True)
class HarvestOrder:
    """What a person asks for."""

    folder: Folder
    inputs: Path
    program: str
    home: str | None
    scheduler: str | None
    workers: int | None
    list_format: str  # lines, csv or jsonl
    jobs: int  # cores that one task uses
    options: tuple[str, ...]  # of `quenlar harvest`


def harvest(order: HarvestOrder, say: Callable[[str], None]) -> int:
    """Reads the inputs, or goes on with it. Returns the exit status."""
    names = read_lines(order.inputs)
    if "-" in names:
        raise ClusterError("-: standard input cannot be divided")
    _check_options(order)
    with Engine(order.scheduler, order.workers, say) as engine:
        say(f"The cluster: {engine.dashboard} (plain figures: /json/counts.json there).")
        engine.wait_for_workers()
        return _run(order, engine, names, say)


def _check_options(order: HarvestOrder) -> None:
    """Lets the program say what it has to say of its options, over an empty file."""
    with tempfile.TemporaryDirectory(prefix="quenlar-cluster-") as home:
        nothing = Path(home) / "nothing"
        nothing.touch()
        command = [order.program, "--home", home, "harvest", f"--jobs={order.jobs}"]
        program.check([*command, *order.options, str(nothing)])


def _run(order: HarvestOrder, engine: Engine, names: list[str], say: Callable[[str], None]) -> int:
    folder = order.folder
    folder.root.mkdir(parents=True, exist_ok=True)
    # Rows of lines are told apart by address only when all of them are there, so they are kept as JSON.
    row_format = "csv" if order.list_format == "csv" else "jsonl"
    digest = hashlib.sha256("\n".join(names).encode()).hexdigest()
    facts = {"command": "harvest", "options": list(order.options), "rows": row_format}
    folder.claim(facts | {"list": digest, "start": str(Path.cwd())})
    on_wait: Callable[[], None] = lambda: say(f"Another is at work in {folder.root}; waiting.")
    with Lease(folder.coordinator_lease, on_wait=on_wait):
        settings.hand_out(order.home, folder.handed)
        # Also looks whether the list can be read, before any worker does.
        suppression = Suppression(order.program, folder.handed)
        inputs = keep_inputs(folder.inputs, names)
        options = (f"--jobs={order.jobs}", *order.options)
        jobs = [
            HarvestJob(
                folder,
                order.program,
                options,
                row_format,
                Path.cwd(),
                number,
                given.name,
                given.named,
            )
            for number, given in enumerate(inputs, 1)
        ]
        left = [job for job in jobs if not job.part.exists()]
        say(f"{counted(len(jobs), 'input')}, {len(left)} of them to read.")
        failures = {
            outcome.job.number: outcome.failure for outcome in engine.run(harvest_input, left)
        }
        _finish(order, [job.part for job in jobs if job.part.exists()], suppression, say)
        status = max(_tell(job, failures.get(job.number), say) for job in jobs)
        if status == 0:
            folder.remove_leftovers()
    return status


def _tell(job: HarvestJob, failure: str | None, say: Callable[[str], None]) -> int:
    """Says what there is to say of an input. Gives its status."""
    if failure is None and not job.part.exists():
        failure = "its part is not there"
    if failure is not None:
        say(f"Set aside: {job.given}: {failure}")
        return 1
    try:
        message = json.loads(job.folder.input_message(job.number).read_text(encoding="utf-8"))
    except FileNotFoundError:
        return 0
    for line in message["said"]:
        say(line)
    return 1 if message["damaged"] else 0


def _finish(
    order: HarvestOrder, parts: list[Path], suppression: Suppression, say: Callable[[str], None]
) -> None:
    """Puts the parts together in the order of the inputs: the bytes of one `quenlar harvest` over all of them.

    Who was put on the suppression list when a part was there already is left out.
    """
    target = order.folder.addresses(order.list_format)
    with files.replacing(target) as stream:
        if order.list_format == "lines":
            _write_addresses(parts, suppression, stream)
        else:
            for part in parts:
                _copy_rows(part, suppression, stream)
    say(f"The list is in {target}.")


def _copy_rows(part: Path, suppression: Suppression, stream: BinaryIO) -> None:
    with open(part, "rb") as rows:
        if not suppression:
            shutil.copyfileobj(rows, stream, 1 << 20)
            return
        for row in rows:
            if (kept := _held_against(suppression, row, part.suffix)) is not None:
                stream.write(kept)


def _held_against(suppression: Suppression, row: bytes, suffix: str) -> bytes | None:
    """The row as it may be listed. None where its address, or that of its page, may not."""
    text = row.decode()
    if suffix == ".csv":
        names = ("address", "page", "title", "place")
        fields = dict(zip(names, next(csv.reader([text]))))
        address = _GUARD.sub("", fields["address"])
    else:
        fields = json.loads(text)
        address = fields["address"]
    page = fields["page"]
    of_record = page.startswith(("http://", "https://"))
    if not suppression.keeps(address) or (of_record and suppression.is_named_in(page)):
        return None
    if not suppression.is_named_in(fields["title"]):
        return row
    fields["title"] = ""
    if suffix == ".csv":
        quoted = (field.replace('"', '""') for field in fields.values())
        return ('"' + '","'.join(quoted) + '"\n').encode()
    return json.dumps(fields, ensure_ascii=False, separators=(",", ":")).encode() + b"\n"


def _write_addresses(parts: Iterable[Path], suppression: Suppression, stream: BinaryIO) -> None:
    """Each address once, whatever its letter case, as it is spelt first. The disk remembers them, not the memory."""
    with tempfile.TemporaryDirectory(prefix="quenlar-cluster-") as scratch:
        database = sqlite3.connect(Path(scratch) / "seen.sqlite", isolation_level=None)
        try:
            database.executescript(
                "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA cache_size = -262144;"
                "CREATE TABLE seen (address TEXT PRIMARY KEY COLLATE NOCASE) WITHOUT ROWID;"
            )
            for address in _addresses_of(parts, suppression):
                added = database.execute("INSERT OR IGNORE INTO seen VALUES (?)", (address,))
                if added.rowcount == 1:
                    stream.write(address.encode() + b"\n")
        finally:
            database.close()


def _addresses_of(parts: Iterable[Path], suppression: Suppression) -> Iterator[str]:
    for part in parts:
        with open(part, "rb") as rows:
            for row in rows:
                if not suppression or _held_against(suppression, row, part.suffix) is not None:
                    yield json.loads(row)["address"]
