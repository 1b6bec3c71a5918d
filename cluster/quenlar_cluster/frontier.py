"""The coordinator's memory of a crawl: every link that was handed out, and in which round.

It is a database, because ten million sites have more links than memory holds. All of it follows from the starts and
the parts, and a part is taken in by one transaction.
"""

import hashlib
import json
import sqlite3
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from pathlib import Path

_SCHEMA = """
CREATE TABLE IF NOT EXISTS links (
  url         TEXT PRIMARY KEY,
  site        TEXT NOT NULL,
  share       INTEGER NOT NULL,
  round       INTEGER NOT NULL,
  distance    INTEGER NOT NULL,
  depth       INTEGER NOT NULL,
  private     INTEGER NOT NULL,
  https_first INTEGER NOT NULL,
  start       TEXT
) WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS links_share ON links (share, round);
CREATE TABLE IF NOT EXISTS merged (round INTEGER, share INTEGER, PRIMARY KEY (round, share)) WITHOUT ROWID;
"""


# A link that is known is queued again when it has turned out to be nearer, or to be more than a link.
_QUEUE = """
INSERT INTO links VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)
ON CONFLICT (url) DO UPDATE SET
  round = excluded.round, distance = min(distance, excluded.distance), depth = min(depth, excluded.depth),
  private = max(private, excluded.private), start = coalesce(start, excluded.start)
WHERE excluded.distance < distance OR excluded.depth < depth OR excluded.private > private
  OR (start IS NULL AND excluded.start IS NOT NULL)
"""

# Each site that a share visits behind one round, up to another: its distance now, and as it was known before.
_SITES = """
SELECT site, min(distance), min(CASE WHEN round <= :after THEN distance END) FROM links
WHERE share = :share AND round <= :last
GROUP BY site HAVING max(round) > :after
"""


@dataclass(frozen=True)
class Link:
    """A page to visit. `distance` counts how many sites away from a start it lies, `depth` the clicks."""

    url: str
    site: str
    distance: int = 0
    depth: int = 0
    private: bool = False
    https_first: bool = False
    start: str | None = (
        None  # as the person wrote it; also of a page on another site that a start redirects to
    )
    nearer: bool = False  # its site lies nearer now than when links of it were told of

    def row(self) -> dict:
        """The row that `quenlar collect --links` reads, with what a part needs besides."""
        return {
            "url": self.url,
            "site": self.site,
            "depth": self.depth,
            "private": self.private,
            "https_first": self.https_first,
            "distance": self.distance,
            "start": self.start,
            "nearer": self.nearer,
        }


def share_of(site: str, shares: int) -> int:
    """The share of a site: the same for ever, on every machine."""
    return int.from_bytes(hashlib.sha256(site.encode()).digest()[:8], "big") % shares


class Frontier:
    """Opens the database at `path`, which is made where there is none."""

    def __init__(self, path: Path, shares: int) -> None:
        self.shares = shares
        self._database = sqlite3.connect(path, isolation_level=None)
        self._database.executescript(_SCHEMA)

    def close(self) -> None:
        """Closes the database."""
        self._database.close()

    def add_starts(self, starts: Iterable[Link]) -> None:
        """Queues starts for the first round, or for one more where the crawl goes on with more of them."""
        self._transact(starts, self.last_round() + 1, None)

    def merge_part(
        self, part: Path, round_number: int, share: int, next_round: int, most_distance: int
    ) -> int:
        """Queues the links of a finished part for `next_round`, of which there is no part yet.

        Does that once. Returns how many of them are new, or nearer than known.

        Links that lead more than `most_distance` sites away from a start are not taken.
        """
        merged = self._database.execute(
            "SELECT 1 FROM merged WHERE round = ? AND share = ?", (round_number, share)
        )
        if merged.fetchone():
            return 0
        links = (link for link in links_of(part) if link.distance <= most_distance)
        return self._transact(links, next_round, (round_number, share))

    def last_round(self) -> int:
        """The last round for which links are queued; 0 where there is none."""
        return self._database.execute("SELECT coalesce(max(round), 0) FROM links").fetchone()[0]

    def open_tasks(self, round_number: int, finished: dict[int, list[int]]) -> list[int]:
        """The shares that have links up to that round which no finished part of theirs has visited."""
        rows = self._database.execute(
            "SELECT share, max(round) FROM links WHERE round <= ? GROUP BY share ORDER BY share",
            (round_number,),
        )
        return [share for share, last in rows if max(finished.get(share, [0])) < last]

    def links(self, share: int, after_round: int, last_round: int) -> Iterator[Link]:
        """The links of a share that were queued behind one round, up to another. A site has one distance, its least."""
        rounds = {"share": share, "after": after_round, "last": last_round}
        distances = {
            site: (distance, known is not None and distance < known)
            for site, distance, known in self._database.execute(_SITES, rounds)
        }
        rows = self._database.execute(
            "SELECT url, site, depth, private, https_first, start FROM links"
            " WHERE share = :share AND round > :after AND round <= :last ORDER BY url",
            rounds,
        )
        for url, site, depth, private, https_first, start in rows:
            distance, nearer = distances[site]
            yield Link(url, site, distance, depth, bool(private), bool(https_first), start, nearer)

    def starts(self) -> Iterator[Link]:
        """What the person named."""
        rows = self._database.execute(
            "SELECT url, site, start FROM links WHERE start IS NOT NULL ORDER BY round, start, url"
        )
        for url, site, start in rows:
            yield Link(url, site, start=start)

    def _transact(
        self, links: Iterable[Link], round_number: int, part: tuple[int, int] | None
    ) -> int:
        before = self._database.total_changes
        self._database.execute("BEGIN IMMEDIATE")
        try:
            self._database.executemany(
                _QUEUE,
                (
                    (
                        k.url,
                        k.site,
                        share_of(k.site, self.shares),
                        round_number,
                        k.distance,
                        k.depth,
                    )
                    + (k.private, k.https_first, k.start)
                    for k in links
                ),
            )
            added = self._database.total_changes - before
            if part:
                self._database.execute("INSERT OR IGNORE INTO merged VALUES (?, ?)", part)
            self._database.execute("COMMIT")
        except BaseException:
            self._database.execute("ROLLBACK")
            raise
        return added


def links_of(part: Path) -> Iterator[Link]:
    """The links to other sites that a part holds."""
    with open(part, encoding="utf-8") as rows:
        for line in rows:
            row = json.loads(line)
            if "link" in row:
                yield Link(
                    row["link"],
                    row["site"],
                    row["distance"],
                    row["depth"],
                    row["private"],
                    start=row.get("start"),
                )
