"""What is told at the end of a crawl: what its tasks had to say, and figures of the whole."""

import json
import sqlite3
from collections.abc import Collection, Iterator
from dataclasses import dataclass
from pathlib import Path

from quenlar_cluster import files
from quenlar_cluster.folder import Folder

_MOST_NOTICES = 10  # as many hosts as one program names

_FIGURES = """
SELECT coalesce(sum(pages), 0), coalesce(sum(failed), 0), coalesce(sum(refused), 0), coalesce(sum(protected), 0),
  coalesce(sum(filtered), 0), (SELECT count(*) FROM main.pages WHERE state = 'waiting') FROM runs
"""

_REFUSED_STARTS = """
SELECT h.origin, p.url, p.line, p.rule FROM starts s JOIN pages p ON p.id = s.page JOIN hosts h ON h.id = p.host
WHERE p.state = 'refused' AND p.reason = 'robots' ORDER BY s.id
"""

# A host that is given up after it has answered has the status of its robots.txt.
_ANSWERED_STARTS = """
SELECT count(*) FROM starts s JOIN pages p ON p.id = s.page JOIN hosts h ON h.id = p.host
WHERE p.state = 'read' OR h.state = 'answers' OR h.robots_status IS NOT NULL
"""


def counted(count: int, what: str, ending: str = "s") -> str:
    """The number and what it counts: "1 page", "2 pages". `ending` is what the plural adds."""
    return f"{count} {what}{'' if count == 1 else ending}"


def notices(said: str) -> list[str]:
    """The lines of `quenlar collect` but for the last two, which sum it up."""
    return said.split("\n")[:-2]


def keep_notices(folder: Folder, round_number: int, share: int, said: str) -> None:
    """Keeps what a task had to say. Its part is not there yet."""
    text = json.dumps(notices(said)) + "\n"
    files.write_whole(folder.task_message(round_number, share), text.encode())


def kept_notices(folder: Folder, told: Collection[str]) -> list[str]:
    """What the last task of each share had to say, but for what was told before. Ten lines, and how many more."""
    lines = dict.fromkeys(line for line in _kept(folder) if line not in told)
    more = len(lines) - _MOST_NOTICES
    first = list(lines)[:_MOST_NOTICES]
    if more > 0:
        first.append(f"And {counted(more, 'more message')}, in {folder.root / 'tasks'}.")
    return first


def _kept(folder: Folder) -> Iterator[str]:
    for share, rounds in sorted(folder.finished().items()):
        try:
            text = folder.task_message(max(rounds), share).read_text(encoding="utf-8")
        except FileNotFoundError:  # a version that kept none has done it
            continue
        yield from json.loads(text)


@dataclass(frozen=True)
class Figures:
    """Sums over all tasks whose parts are there."""

    refused_starts: list[str]  # a sentence each
    a_start_answers: bool
    pages: int
    failed: int
    refused: int
    protected: int
    filtered: int
    left: int

    def line(self, protected_listed: bool) -> str:
        """One sentence."""
        line = f"{counted(self.pages, 'page')} read, {counted(self.left, 'page')} left to visit"
        if self.failed:
            line += f", {self.failed} failed"
        if self.refused:
            line += f", {self.refused} refused"
        if self.protected and not protected_listed:
            line += f", {counted(self.protected, 'protected address', 'es')} not listed"
        if self.filtered:
            line += f", {counted(self.filtered, 'address', 'es')} dropped by the filters"
        return line + "."


def figures_of(collection: Path) -> Figures:
    """Those of a merged collection, which nobody writes to."""
    database = sqlite3.connect(f"{collection.absolute().as_uri()}?immutable=1", uri=True)
    try:
        refused = [
            f"The robots.txt of {origin} does not allow {url} (line {line}: {rule}); it is visited all the same with"
            " --robots ignore, or when the web settings say so."
            for origin, url, line, rule in database.execute(_REFUSED_STARTS)
        ]
        answered = database.execute(_ANSWERED_STARTS).fetchone()[0] > 0
        return Figures(refused, answered, *database.execute(_FIGURES).fetchone())
    finally:
        database.close()
