"""Puts the collections of all shares together into one, which `quenlar` reads and goes on with as with any other.

Every share began with the same empty collection, so equal pages and equal bodies have equal numbers in all of them.
A host is visited by one share alone, the owner of its site; what other shares know of it is links that lead there.
"""

import shutil
import sqlite3
from collections.abc import Iterable, Mapping
from pathlib import Path

from quenlar_cluster.frontier import Link, share_of

_COPIED = (
    "depth, rank, hops, state, reason, rule, line, status, type, title, time, bytes, body, protected, filtered, etag,"
    " modified, private"
)
_COPIED_OF_P = ", ".join(f"p.{column.strip()}" for column in _COPIED.split(","))

_MAKE_TEMPORARY = f"""
CREATE TEMP TABLE offsets (pages INTEGER, runs INTEGER);
CREATE TEMP TABLE start_pages (page INTEGER PRIMARY KEY);
CREATE TEMP TABLE host_waits (origin TEXT PRIMARY KEY, until INTEGER NOT NULL);
CREATE TEMP TABLE foreign_pages AS
SELECT id, key, url, '' AS origin, '' AS site, parent, 0 AS known, {_COPIED} FROM main.pages WHERE 0;
"""

# One share: what it owns, and the links that it knows to sites of others. Numbers of rows move up.
_ADD_SHARE = f"""
INSERT INTO temp.offsets SELECT (SELECT max(coalesce((SELECT max(id) FROM main.pages), 0),
  coalesce((SELECT max(id) FROM temp.foreign_pages), 0))), (SELECT coalesce(max(id), 0) FROM main.runs);

INSERT INTO main.hosts (origin, site, state, reason, read, robots, robots_status, robots_time)
SELECT origin, site, state, reason, read, robots, robots_status, robots_time FROM share.hosts
WHERE owned(site) ORDER BY id;

INSERT INTO main.pages (id, key, url, host, parent, moved_to, {_COPIED})
SELECT p.id + o.pages, p.key, p.url, m.id, p.parent + o.pages, p.moved_to + o.pages, {_COPIED_OF_P}
FROM temp.offsets o, share.pages p JOIN share.hosts h ON h.id = p.host JOIN main.hosts m ON m.origin = h.origin
WHERE owned(h.site) ORDER BY p.id;

INSERT INTO main.links (page, keys)
SELECT l.page + o.pages, l.keys FROM temp.offsets o, share.links l ORDER BY l.page;

INSERT INTO temp.foreign_pages (id, key, url, origin, site, parent, {_COPIED})
SELECT p.id + o.pages, p.key, p.url, h.origin, h.site, p.parent + o.pages, {_COPIED_OF_P}
FROM temp.offsets o, share.pages p JOIN share.hosts h ON h.id = p.host
WHERE NOT owned(h.site) ORDER BY p.id;

INSERT INTO main.addresses (address, first_seen) SELECT address, first_seen FROM share.addresses WHERE true ORDER BY id
ON CONFLICT (address) DO UPDATE SET first_seen = min(first_seen, excluded.first_seen);

INSERT INTO main.sightings (address, page, place, written, first_seen, last_seen, gone)
SELECT m.id, s.page + o.pages, s.place, s.written, s.first_seen, s.last_seen, s.gone FROM temp.offsets o,
  share.sightings s JOIN share.addresses a ON a.id = s.address JOIN main.addresses m ON m.address = a.address;

INSERT INTO main.runs (id, started, ended, reason, pages, failed, refused, new, protected, filtered, bytes, seconds)
SELECT r.id + o.runs, started, ended, reason, r.pages, failed, refused, new, protected, filtered, bytes, seconds
FROM temp.offsets o, share.runs r ORDER BY r.id;

INSERT INTO temp.host_waits SELECT h.origin, w.until FROM share.waits w JOIN share.hosts h ON h.id = w.host WHERE true
ON CONFLICT (origin) DO UPDATE SET until = max(until, excluded.until);

DELETE FROM temp.offsets;
"""

# A link to a page that its owner knows is that page; links to one that nobody has visited are one page. A page's
# identity is its URL without the scheme.
_JOIN_FOREIGN = f"""
CREATE INDEX temp.foreign_key ON foreign_pages (key);
UPDATE temp.foreign_pages SET known = coalesce(
  (SELECT p.id FROM main.pages p WHERE p.key = foreign_pages.key
   AND substr(p.url, instr(p.url, '//')) = substr(foreign_pages.url, instr(foreign_pages.url, '//'))),
  (SELECT f.id FROM temp.foreign_pages f WHERE f.key = foreign_pages.key
   AND substr(f.url, instr(f.url, '//')) = substr(foreign_pages.url, instr(foreign_pages.url, '//'))
   ORDER BY f.depth, f.id LIMIT 1));
CREATE INDEX temp.foreign_known ON foreign_pages (known);
CREATE INDEX temp.foreign_id ON foreign_pages (id);

INSERT OR IGNORE INTO main.hosts (origin, site) SELECT origin, site FROM temp.foreign_pages WHERE known = id;
INSERT INTO main.pages (id, key, url, host, parent, {_COPIED})
SELECT p.id, p.key, p.url, m.id, p.parent, {_COPIED_OF_P}
FROM temp.foreign_pages p JOIN main.hosts m ON m.origin = p.origin WHERE p.known = p.id ORDER BY p.id;

INSERT INTO main.waits (host, until) SELECT m.id, w.until FROM temp.host_waits w JOIN main.hosts m ON m.origin = w.origin;

UPDATE main.pages SET moved_to = (SELECT known FROM temp.foreign_pages f WHERE f.id = main.pages.moved_to)
WHERE moved_to IN (SELECT id FROM temp.foreign_pages);
"""

# Pages that came as links from other shares have the nearest of those pages as parents.
_SET_PARENTS = """
UPDATE main.pages SET parent = (
  SELECT f.parent FROM temp.foreign_pages f WHERE f.known = main.pages.id ORDER BY f.depth, f.id)
WHERE parent IS NULL AND id IN (SELECT known FROM temp.foreign_pages) AND id NOT IN (SELECT page FROM temp.start_pages);
"""

# The pages of a start: where it begins, and where redirects have led it.
_PAGES_OF_START = """
WITH RECURSIVE moved (page, hops) AS (
  SELECT id, 0 FROM main.pages WHERE url IN ('http:' || :page, 'https:' || :page)
  UNION
  SELECT p.moved_to, m.hops + 1 FROM moved m JOIN main.pages p ON p.id = m.page
  WHERE p.moved_to IS NOT NULL AND m.hops < 20
)
SELECT p.id, substr(h.origin, instr(h.origin, '//') + 2), h.site
FROM moved m JOIN main.pages p ON p.id = m.page JOIN main.hosts h ON h.id = p.host ORDER BY m.hops
"""


def merge_collections(
    seed: Path, shares: Mapping[int, Path], count: int, starts: Iterable[Link], target: Path
) -> None:
    """Makes the collection `target` out of those of a run with `count` shares. Nobody may write to them meanwhile."""
    shutil.copyfile(seed, target)
    database = sqlite3.connect(target, isolation_level=None, uri=True)
    try:
        database.executescript(
            "PRAGMA synchronous = OFF; PRAGMA cache_size = -262144;" + _MAKE_TEMPORARY
        )
        database.execute("DELETE FROM main.runs")
        for share, path in shares.items():
            # The finished files are never written to again, so no locks are needed, which network folders lack.
            database.execute("ATTACH ? AS share", (f"{path.absolute().as_uri()}?immutable=1",))
            database.create_function(
                "owned",
                1,
                lambda site, owner=share: share_of(site, count) == owner,
                deterministic=True,
            )
            database.executescript(f"BEGIN; {_ADD_SHARE} COMMIT;")
            database.execute("DETACH share")
        database.executescript(f"BEGIN; {_JOIN_FOREIGN} COMMIT;")
        _add_starts(database, starts)
        database.executescript(_SET_PARENTS)
    finally:
        database.close()


def _add_starts(database: sqlite3.Connection, starts: Iterable[Link]) -> None:
    """Enters what the person named, so that the collection can be gone on with."""
    # Looking up a URL needs an index, which the collection itself does not have.
    database.execute("BEGIN")
    database.execute("CREATE INDEX main.pages_url ON pages (url)")
    for start in starts:
        page = start.url[start.url.index("//") :]
        pages = database.execute(_PAGES_OF_START, {"page": page}).fetchall()
        database.executemany(
            "INSERT OR IGNORE INTO temp.start_pages VALUES (?)", [(row[0],) for row in pages]
        )
        if not pages:
            continue
        last, host, site = pages[-1]
        database.execute(
            "INSERT OR IGNORE INTO main.starts (text, kind, page, host, site) VALUES (?, 'site', ?, ?, ?)",
            (start.start, last, host, site),
        )
    database.execute("DROP INDEX main.pages_url")
    database.execute("COMMIT")
