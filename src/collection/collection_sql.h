// All SQL of the collection, in one place: the schema, and each statement that is prepared. docs/collections.md
// describes the schema for people; the two change together.
#pragma once

namespace quenlar::sql {

// PRAGMA user_version of a file with this schema. The first one. A change of the schema raises it, and
// comes with a step that brings files of the version before up to date.
inline constexpr int kSchemaVersion = 1;
inline constexpr const char* kVersion = "PRAGMA user_version";
inline constexpr const char* kCountTables = "SELECT count(*) FROM sqlite_master";

inline constexpr const char* kSettings =
    "PRAGMA journal_mode = WAL;"
    "PRAGMA synchronous = FULL;"
    "PRAGMA secure_delete = ON;"
    "PRAGMA cache_size = -16384;"        // kibibytes
    "PRAGMA wal_autocheckpoint = 4000;"  // pages of 4 KiB
    "PRAGMA temp_store = MEMORY;";

// Times are whole seconds since 1970-01-01 00:00 UTC.
inline constexpr const char* kSchema = R"sql(
CREATE TABLE facts (
  name  TEXT PRIMARY KEY,
  value TEXT NOT NULL
) WITHOUT ROWID;

CREATE TABLE runs (
  id        INTEGER PRIMARY KEY,
  started   INTEGER NOT NULL,
  ended     INTEGER,
  reason    TEXT,
  pages     INTEGER NOT NULL DEFAULT 0,
  failed    INTEGER NOT NULL DEFAULT 0,
  refused   INTEGER NOT NULL DEFAULT 0,
  new       INTEGER NOT NULL DEFAULT 0,
  protected INTEGER NOT NULL DEFAULT 0,
  filtered  INTEGER NOT NULL DEFAULT 0,
  bytes     INTEGER NOT NULL DEFAULT 0,
  seconds   REAL NOT NULL DEFAULT 0
);

CREATE TABLE starts (
  id     INTEGER PRIMARY KEY,
  text   TEXT NOT NULL UNIQUE,
  kind   TEXT NOT NULL,
  parent INTEGER REFERENCES starts (id),
  page   INTEGER REFERENCES pages (id),
  host   TEXT,
  site   TEXT,
  asked  INTEGER
);

CREATE TABLE hosts (
  id            INTEGER PRIMARY KEY,
  origin        TEXT NOT NULL UNIQUE,
  site          TEXT NOT NULL,
  state         TEXT NOT NULL DEFAULT 'new',
  reason        TEXT,
  read          INTEGER NOT NULL DEFAULT 0,
  robots        TEXT,
  robots_status INTEGER,
  robots_time   INTEGER
);
CREATE INDEX hosts_site ON hosts (site);

CREATE TABLE pages (
  id        INTEGER PRIMARY KEY,
  key       INTEGER NOT NULL,
  host      INTEGER NOT NULL REFERENCES hosts (id),
  url       TEXT NOT NULL,
  parent    INTEGER REFERENCES pages (id),
  depth     INTEGER NOT NULL,
  rank      INTEGER NOT NULL,
  hops      INTEGER NOT NULL DEFAULT 0,
  state     TEXT NOT NULL,
  reason    TEXT,
  rule      TEXT,
  line      INTEGER,
  status    INTEGER,
  type      TEXT,
  title     TEXT,
  time      INTEGER,
  bytes     INTEGER,
  body      INTEGER,
  moved_to  INTEGER REFERENCES pages (id),
  protected INTEGER NOT NULL DEFAULT 0,
  filtered  INTEGER NOT NULL DEFAULT 0,
  etag      TEXT,
  modified  TEXT,
  private   INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX pages_key ON pages (key);
CREATE INDEX pages_waiting ON pages (host, depth, rank, id) WHERE state = 'waiting';
CREATE INDEX pages_body ON pages (host, body) WHERE body IS NOT NULL;

CREATE TABLE addresses (
  id         INTEGER PRIMARY KEY,
  address    TEXT NOT NULL COLLATE NOCASE UNIQUE,
  first_seen INTEGER NOT NULL
);

CREATE TABLE sightings (
  address    INTEGER NOT NULL REFERENCES addresses (id),
  page       INTEGER NOT NULL REFERENCES pages (id),
  place      TEXT NOT NULL,
  written    TEXT NOT NULL,
  first_seen INTEGER NOT NULL,
  last_seen  INTEGER NOT NULL,
  gone       INTEGER NOT NULL DEFAULT 0,
  PRIMARY KEY (address, page, place)
) WITHOUT ROWID;
CREATE INDEX sightings_page ON sightings (page);

PRAGMA user_version = 1;
)sql";

// What came after the first collections were made. It is put in wherever it is missing; programs that do not know it
// are not disturbed by it, so the version stays.
inline constexpr const char* kAdditions =
    "CREATE TABLE IF NOT EXISTS links (page INTEGER PRIMARY KEY REFERENCES pages (id), keys BLOB NOT NULL);"
    "CREATE TABLE IF NOT EXISTS waits (host INTEGER PRIMARY KEY REFERENCES hosts (id), until INTEGER NOT NULL);"
    "CREATE INDEX IF NOT EXISTS pages_refused ON pages (host, reason) WHERE state = 'refused';";

inline constexpr const char* kFact = "SELECT value FROM facts WHERE name = ?";
inline constexpr const char* kSetFact = "INSERT OR REPLACE INTO facts (name, value) VALUES (?, ?)";

inline constexpr const char* kBeginRun = "INSERT INTO runs (started) VALUES (?)";
inline constexpr const char* kSaveRun =
    "UPDATE runs SET ended = ?, reason = ?, pages = ?, failed = ?, refused = ?, new = ?, protected = ?, filtered = ?,"
    " bytes = ?, seconds = ? WHERE id = ?";
inline constexpr const char* kUnfinishedRuns = "SELECT ended IS NULL FROM runs ORDER BY id DESC LIMIT 1";

inline constexpr const char* kAddStart =
    "INSERT OR IGNORE INTO starts (text, kind, parent) VALUES (?, ?, nullif(?, 0))";
inline constexpr const char* kStart = "SELECT id, text, kind, page, host, site, asked FROM starts WHERE text = ?";
inline constexpr const char* kStarts = "SELECT id, text, kind, page, host, site, asked FROM starts ORDER BY id";
inline constexpr const char* kPlaceStart = "UPDATE starts SET page = nullif(?, 0), host = ?, site = ? WHERE id = ?";
inline constexpr const char* kAskedStart = "UPDATE starts SET asked = ? WHERE id = ?";

inline constexpr const char* kFindHost = "SELECT id FROM hosts WHERE origin = ?";
inline constexpr const char* kAddHost = "INSERT INTO hosts (origin, site) VALUES (?, ?)";
inline constexpr const char* kHost =
    "SELECT origin, site, state, reason, read, robots, robots_status, robots_time FROM hosts WHERE id = ?";
inline constexpr const char* kSaveHostState = "UPDATE hosts SET state = ?, reason = ? WHERE id = ?";
inline constexpr const char* kSaveRobots =
    "UPDATE hosts SET robots = ?, robots_status = ?, robots_time = ? WHERE id = ?";
inline constexpr const char* kForgetRobots =
    "UPDATE hosts SET robots = NULL, robots_status = NULL, robots_time = NULL WHERE id = ?";
inline constexpr const char* kSaveWait = "INSERT OR REPLACE INTO waits (host, until) VALUES (?, ?)";
inline constexpr const char* kWaits = "SELECT host, until FROM waits";
inline constexpr const char* kHostHasRead = "UPDATE hosts SET read = read + 1 WHERE id = ?";
inline constexpr const char* kHostsWaiting = "SELECT host, min(depth) FROM pages WHERE state = 'waiting' GROUP BY host";

// Both give what ReadKnown reads. A page whose address was erased has the key 0.
inline constexpr const char* kFindPage =
    "SELECT id, host, url, depth, state, reason, private, moved_to, body, rank, key FROM pages WHERE key = ?";
inline constexpr const char* kPage =
    "SELECT id, host, url, depth, state, reason, private, moved_to, body, rank, key FROM pages WHERE id = ?";
inline constexpr const char* kAddPage =
    "INSERT INTO pages (key, host, url, parent, depth, rank, hops, private, state, reason)"
    " VALUES (?, ?, ?, nullif(?, 0), ?, ?, ?, ?, ?, ?)";
inline constexpr const char* kQueuePage =
    "UPDATE pages SET state = 'waiting', reason = NULL, rule = NULL, line = NULL, depth = ?, rank = ?, hops = ?,"
    " private = ?, parent = nullif(?, 0) WHERE id = ?";
inline constexpr const char* kDeepenPage = "UPDATE pages SET depth = ?, parent = nullif(?, 0) WHERE id = ?";
inline constexpr const char* kRaisePage = "UPDATE pages SET rank = ? WHERE id = ?";
inline constexpr const char* kMakePrivate = "UPDATE pages SET private = 1 WHERE id = ?";
inline constexpr const char* kLiftPage =
    "UPDATE pages SET state = 'waiting', reason = NULL, rule = NULL, line = NULL WHERE id = ?";
inline constexpr const char* kNextPage =
    "SELECT id, url, depth, hops, etag, modified, body, private FROM pages WHERE host = ? AND state = 'waiting'"
    " ORDER BY depth, rank, id LIMIT 1";
inline constexpr const char* kWaitingOn = "SELECT count(*) FROM pages WHERE host = ? AND state = 'waiting'";
inline constexpr const char* kReaddressPage = "UPDATE pages SET url = ?, host = ?, hops = ? WHERE id = ?";
inline constexpr const char* kEndPage =
    "UPDATE pages SET state = ?, reason = ?, rule = ?, line = nullif(?, 0), status = nullif(?, 0), type = ?, title = ?,"
    " time = ?, bytes = ?, body = ?, moved_to = nullif(?, 0), protected = ?, filtered = ?, etag = ?, modified = ?"
    " WHERE id = ?";
// A page that was not read keeps what is known of it from an earlier visit.
inline constexpr const char* kEndUnread =
    "UPDATE pages SET state = ?, reason = ?, rule = ?, line = nullif(?, 0), status = nullif(?, 0),"
    " type = coalesce(?, type), time = ?, bytes = ?, moved_to = nullif(?, 0) WHERE id = ?";
// It is not there any more: it cannot be unchanged when it comes back.
inline constexpr const char* kForgetBody = "UPDATE pages SET body = NULL, etag = NULL, modified = NULL WHERE id = ?";
inline constexpr const char* kPageUnchanged = "UPDATE pages SET state = 'read', status = 304, time = ? WHERE id = ?";
inline constexpr const char* kBodySeen =
    "SELECT 1 FROM pages WHERE host = ? AND body = ? AND id <> ? AND state = 'read' LIMIT 1";
inline constexpr const char* kCountWaiting = "SELECT count(*) FROM pages WHERE state = 'waiting'";
// A page that waits to be visited anew was read.
inline constexpr const char* kCountRead =
    "SELECT count(*) FROM pages WHERE state = 'read' OR (state = 'waiting' AND body IS NOT NULL)";
inline constexpr const char* kCountAddresses = "SELECT count(*) FROM addresses";
// Here and below: what stands at the address of a page that was erased is another page, and is not asked for.
inline constexpr const char* kQueueRefused =
    "UPDATE pages SET state = 'waiting', reason = NULL, rule = NULL, line = NULL WHERE key <> 0 AND"
    " ((state = 'refused' AND reason = ?1)"
    " OR (?1 = 'robots' AND state = 'read' AND reason IN ('noindex', 'nofollow')))";
inline constexpr const char* kQueueRefusedOf =
    "UPDATE pages SET state = 'waiting', reason = NULL, rule = NULL, line = NULL WHERE state = 'refused' AND host = ?"
    " AND reason = ? AND key <> 0";
inline constexpr const char* kNearestOf = "SELECT min(depth) FROM pages WHERE host = ? AND state = 'waiting'";
inline constexpr const char* kHostsOfSite = "SELECT id FROM hosts WHERE site = ?";
// What was said of a page that was read still holds when it turns out to be unchanged.
inline constexpr const char* kQueueAgain =
    "UPDATE pages SET state = 'waiting', hops = 0, reason = iif(state = 'read', reason, NULL), rule = NULL, line = NULL"
    " WHERE ((state IN ('read', 'failed', 'moved') AND reason IS NOT 'archive')"
    " OR (state = 'refused' AND reason IN ('robots', 'private', 'suppressed', 'address'))) AND key <> 0";
inline constexpr const char* kForgetReads = "UPDATE hosts SET read = 0";
inline constexpr const char* kForgetSearches = "UPDATE starts SET asked = NULL";

inline constexpr const char* kRefusals =
    "SELECT reason, count(*) FROM pages WHERE state = 'refused' GROUP BY reason ORDER BY reason";

inline constexpr const char* kSaveLinks = "INSERT OR REPLACE INTO links (page, keys) VALUES (?, ?)";
inline constexpr const char* kLinks = "SELECT keys FROM links WHERE page = ?";

inline constexpr const char* kLastRun = "SELECT max(started) FROM runs";
inline constexpr const char* kRuns =
    "SELECT started, ended, reason, pages, failed, refused, new, protected, filtered, bytes, seconds FROM runs ORDER "
    "BY id";
inline constexpr const char* kPageFacts =
    "SELECT p.url, parent.url, p.state, p.reason, p.rule, p.type, p.title, target.url, h.reason, p.depth, p.line,"
    " p.status, p.time,"
    " p.protected, p.filtered, (SELECT count(DISTINCT address) FROM sightings WHERE page = p.id AND gone = 0)"
    " FROM pages p JOIN hosts h ON h.id = p.host LEFT JOIN pages parent ON parent.id = p.parent LEFT JOIN pages target "
    "ON target.id = p.moved_to"
    " WHERE p.key = ?";
// Of a place, a site, addresses first seen from a time on; NULL is any.
inline constexpr const char* kSightings =
    "SELECT a.id, a.address, p.url, p.title, s.place, s.written, h.site, s.first_seen, s.last_seen, s.gone, p.id"
    " FROM addresses a JOIN sightings s ON s.address = a.id JOIN pages p ON p.id = s.page JOIN hosts h ON h.id = p.host"
    " WHERE (?1 IS NULL OR s.place = ?1) AND (?2 IS NULL OR h.site = ?2 COLLATE NOCASE) AND (?3 IS NULL OR "
    "a.first_seen >= ?3)"
    " ORDER BY a.id, s.first_seen, s.page, s.place";
// Of each address in a range of ids the page on which it was seen first, in the order in which they were found.
inline constexpr const char* kListedAddresses =
    "SELECT a.address, p.url, p.title"
    " FROM (SELECT address, page, min(first_seen) FROM sightings WHERE gone = 0 AND address > ?1 AND address <= ?2"
    " GROUP BY address) s"
    " JOIN addresses a ON a.id = s.address JOIN pages p ON p.id = s.page ORDER BY s.address";
inline constexpr const char* kLastAddress = "SELECT coalesce(max(id), 0) FROM addresses";
inline constexpr const char* kSightingsOf =
    "SELECT a.id, a.address, p.url, p.title, s.place, s.written, h.site, s.first_seen, s.last_seen, s.gone, p.id"
    " FROM addresses a JOIN sightings s ON s.address = a.id JOIN pages p ON p.id = s.page JOIN hosts h ON h.id = p.host"
    " WHERE a.address = ? ORDER BY s.first_seen, s.page, s.place";

inline constexpr const char* kFindAddress = "SELECT id, first_seen FROM addresses WHERE address = ?";
inline constexpr const char* kSeenEarlier = "UPDATE addresses SET first_seen = ? WHERE id = ?";
inline constexpr const char* kAddAddress = "INSERT OR IGNORE INTO addresses (address, first_seen) VALUES (?, ?)";
inline constexpr const char* kAddSighting =
    "INSERT INTO sightings (address, page, place, written, first_seen, last_seen) VALUES (?, ?, ?, ?, ?, ?)"
    " ON CONFLICT DO UPDATE SET last_seen = excluded.last_seen, gone = 0";
inline constexpr const char* kAddArchivedPage =
    "INSERT INTO pages (key, host, url, depth, rank, state, reason, status, type, title, time, filtered)"
    " VALUES (?, ?, ?, 0, 1, 'read', 'archive', ?, ?, ?, ?, ?)";
// What was seen before or after is seen for longer; a sighting that is gone is back when it was seen later than that.
inline constexpr const char* kAddArchivedSighting =
    "INSERT INTO sightings (address, page, place, written, first_seen, last_seen) VALUES (?, ?, ?, ?, ?, ?)"
    " ON CONFLICT DO UPDATE SET gone = CASE WHEN excluded.last_seen > last_seen THEN 0 ELSE gone END,"
    " first_seen = min(first_seen, excluded.first_seen), last_seen = max(last_seen, excluded.last_seen)";
inline constexpr const char* kSightingsSeen =
    "UPDATE sightings SET last_seen = ?, gone = 0 WHERE page = ? AND gone = 0";
// Before what a page holds now is put in: what is not put in again is gone.
inline constexpr const char* kSightingsGone = "UPDATE sightings SET gone = 1 WHERE page = ?";

// Taking addresses out for good. Nobody else may have the file open meanwhile.
inline constexpr const char* kEraseSettings =
    "PRAGMA locking_mode = EXCLUSIVE;"
    "PRAGMA busy_timeout = 1000;"  // milliseconds; who has it open for longer is a run, or a person who looks at it
    "PRAGMA synchronous = FULL;"
    "PRAGMA secure_delete = ON;";
inline constexpr const char* kAllAddresses = "SELECT id, address FROM addresses";
// What was taken out comes back when a later visit finds it, so the page has to be fetched whole.
inline constexpr const char* kForgetValidators =
    "UPDATE pages SET etag = NULL, modified = NULL WHERE id IN (SELECT page FROM sightings WHERE address = ?)";
inline constexpr const char* kEraseSightings = "DELETE FROM sightings WHERE address = ?";
inline constexpr const char* kEraseAddress = "DELETE FROM addresses WHERE id = ?";
// Texts that may name an address, with the rows that hold them; then what such a row becomes.
inline constexpr const char* kTitlesWithSigns =
    "SELECT id, title FROM pages WHERE instr(title, '@') OR instr(title, '%40')";
inline constexpr const char* kEraseTitle = "UPDATE pages SET title = NULL, etag = NULL, modified = NULL WHERE id = ?";
inline constexpr const char* kUrlsWithSigns = "SELECT id, url FROM pages WHERE instr(url, '@') OR instr(url, '%40')";
inline constexpr const char* kEraseUrl =
    "UPDATE pages SET url = (SELECT origin FROM hosts WHERE hosts.id = pages.host) || '/(erased)', key = 0,"
    " reason = CASE state WHEN 'waiting' THEN 'erased' ELSE reason END,"
    " state = CASE state WHEN 'waiting' THEN 'refused' ELSE state END WHERE id = ?";
inline constexpr const char* kRulesWithSigns =
    "SELECT id, rule FROM pages WHERE instr(rule, '@') OR instr(rule, '%40')";
inline constexpr const char* kEraseRule = "UPDATE pages SET rule = NULL WHERE id = ?";
inline constexpr const char* kReasonsWithSigns =
    "SELECT id, reason FROM pages WHERE instr(reason, '@') OR instr(reason, '%40')";
inline constexpr const char* kEraseReason = "UPDATE pages SET reason = NULL WHERE id = ?";
inline constexpr const char* kHostReasonsWithSigns =
    "SELECT id, reason FROM hosts WHERE instr(reason, '@') OR instr(reason, '%40')";
inline constexpr const char* kEraseHostReason = "UPDATE hosts SET reason = NULL WHERE id = ?";
inline constexpr const char* kRobotsWithSigns =
    "SELECT id, robots FROM hosts WHERE instr(robots, '@') OR instr(robots, '%40')";
inline constexpr const char* kStartsWithSigns =
    "SELECT id, text FROM starts WHERE instr(text, '@') OR instr(text, '%40')";
inline constexpr const char* kEraseStart = "UPDATE starts SET text = 'erased ' || id WHERE id = ?";
// Stands in the file from the transaction that deletes until everything has been written anew.
inline constexpr const char* kTracesAreLeft = "SELECT count(*) FROM facts WHERE name = 'traces left'";
inline constexpr const char* kMarkTraces = "INSERT OR REPLACE INTO facts (name, value) VALUES ('traces left', '1')";
inline constexpr const char* kUnmarkTraces = "DELETE FROM facts WHERE name = 'traces left'";
// Gives one row; its first column is not 0 where somebody else has kept it from its end.
inline constexpr const char* kEmptyLog = "PRAGMA wal_checkpoint(TRUNCATE)";
// Writes the whole file anew: pages of a database that was in use hold pieces of what was deleted.
inline constexpr const char* kRewrite = "VACUUM";

}  // namespace quenlar::sql
