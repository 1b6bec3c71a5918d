"""One task of a crawl: a worker visits the sites of a share with `quenlar collect`, and leaves a part."""

import json
import sqlite3
import tempfile
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path
from typing import BinaryIO

from quenlar_cluster import files, program, settings
from quenlar_cluster.errors import TaskFailed
from quenlar_cluster.folder import Folder
from quenlar_cluster.lease import Lease
from quenlar_cluster.told import keep_notices

_NAME = "share"
_MOST_TOLD = 2000  # characters of a failed program's messages

# Pages that starts are, or redirect to. Links are matched as the program knows pages: whatever their scheme.
_STARTS = """
WITH RECURSIVE moved (page, start) AS (
  SELECT p.id, s.start FROM temp.handed s JOIN pages p ON substr(p.url, instr(p.url, '//')) = s.page
  WHERE s.start IS NOT NULL
  UNION SELECT p.moved_to, m.start FROM moved m JOIN pages p ON p.id = m.page WHERE p.moved_to IS NOT NULL
)
"""

# Links to other sites: refused for their scope. They are new, or lie nearer than before this round.
_LINKS = (
    _STARTS
    + """
SELECT p.url, h.site, p.depth, p.private, parent.url, parent_host.site,
       (SELECT min(start) FROM moved WHERE moved.page = p.id)
FROM pages p JOIN hosts h ON h.id = p.host
LEFT JOIN pages parent ON parent.id = p.parent LEFT JOIN hosts parent_host ON parent_host.id = parent.host
LEFT JOIN before.pages known ON known.id = p.id
WHERE p.state = 'refused' AND p.reason = 'scope'
  AND (known.id IS NULL OR p.depth < known.depth
       OR parent_host.site IN (SELECT site FROM temp.nearer_sites))
ORDER BY p.id
"""
)


@dataclass(frozen=True)
class CollectJob:
    """What a worker is told."""

    folder: Folder
    program: str
    options: tuple[str, ...]
    archives: bool
    round_number: int
    share: int

    @property
    def name(self) -> str:
        """For messages."""
        return f"share {self.share} of round {self.round_number}"

    @property
    def part(self) -> Path:
        """What it leaves when it is done."""
        return self.folder.part(self.round_number, self.share)


def collect_share(job: CollectJob) -> str:
    """Makes the part unless it is there. Gives its path: a short value, which the scheduler may lose."""
    part = job.part
    lease = Lease(job.folder.lease(job.share))
    if lease.acquire(unless=part.exists):
        try:
            if not part.exists():
                _visit(job, part, lease)
        finally:
            lease.release()
    return str(part)


def _visit(job: CollectJob, part: Path, lease: Lease) -> None:
    with tempfile.TemporaryDirectory(
        prefix="quenlar-cluster-", ignore_cleanup_errors=True
    ) as scratch:
        home = Path(scratch)
        settings.take_over(job.folder.handed, home)
        collection = home / "data" / f"{_NAME}.sqlite"
        # The last finished round, looked for under the lease: one that began before may have ended just now.
        rounds = job.folder.finished().get(job.share)
        base = job.folder.share(max(rounds), job.share) if rounds else job.folder.seed
        files.copy_whole(base, collection)
        rows = home / "rows.jsonl"
        with open(rows, "wb") as stream:
            said = _collect(job, home, stream, lease)
            for link in _links(collection, base, job.folder.task(job.round_number, job.share)):
                stream.write(
                    json.dumps(link, ensure_ascii=False, separators=(",", ":")).encode() + b"\n"
                )
        files.copy_whole(collection, job.folder.share(job.round_number, job.share))
        if not lease.held():
            raise TaskFailed("the lease was lost")
        keep_notices(job.folder, job.round_number, job.share, said)
        files.copy_whole(rows, part)


def _collect(job: CollectJob, home: Path, rows: BinaryIO, lease: Lease) -> str:
    """Runs the program; its output, a row a new address, goes to `rows`. Gives what it had to say."""
    command = [job.program, "--home", str(home), "collect", "--name", _NAME, "--format", "jsonl"]
    command += ["--links", str(job.folder.task(job.round_number, job.share)), *job.options]
    if job.archives:
        command += ["--warc", str(job.folder.archives(job.round_number, job.share))]
    status, said = program.run(command, rows, lease.held)
    if not lease.held():
        raise TaskFailed("the lease was lost")
    if status != 0:
        raise TaskFailed(f"quenlar collect ends with status {status}: {said[-_MOST_TOLD:]}")
    return said


def _links(collection: Path, base: Path, task: Path) -> Iterator[dict]:
    """The rows of links that go back to the coordinator. `base` is the collection as it was before the task."""
    distances: dict[str, int] = {}
    database = sqlite3.connect(collection, uri=True)
    try:
        database.execute("ATTACH ? AS before", (f"{base.absolute().as_uri()}?immutable=1",))
        database.execute("CREATE TEMP TABLE handed (page TEXT, start TEXT)")
        database.execute("CREATE TEMP TABLE nearer_sites (site TEXT PRIMARY KEY)")
        with open(task, encoding="utf-8") as rows:
            for row in map(json.loads, rows):
                site = row["site"]
                distances[site] = row["distance"]
                if row["nearer"]:
                    database.execute("INSERT OR IGNORE INTO nearer_sites VALUES (?)", (site,))
                if row["start"] is not None:
                    page = row["url"][row["url"].index("//") :]
                    database.execute("INSERT INTO handed VALUES (?, ?)", (page, row["start"]))
        for url, site, depth, private, parent, parent_site, start in database.execute(_LINKS):
            distance = distances.get(parent_site, 0) + (0 if start is not None else 1)
            link = {
                "link": url,
                "site": site,
                "distance": distance,
                "depth": depth,
                "private": bool(private),
            }
            if start is not None:
                link["start"] = start
            yield link | {"from": parent}
    finally:
        database.close()
