#include "collection/collection.h"

#include <utility>

#include "collection/collection_sql.h"
#include "collection/schema_version.h"
#include "collection/statements.h"

namespace quenlar {
namespace {

constexpr std::chrono::milliseconds kSyncEvery{1000};

// What SQLite keeps beside the file while it is in use. They belong to the file and go with it.
constexpr const char* kCompanions[] = {"-wal", "-shm"};

// The file and its companions get names under which nothing lies.
Result<std::string> KeepDamagedAside(Files& files, const std::string& path) {
  Result<std::string> aside = KeepAside(files, path);
  if (!aside.ok() || aside.value().empty()) return aside;
  for (const char* companion : kCompanions) {
    const Status moved = files.Rename(path + companion, aside.value() + companion);
    if (!moved.ok() && moved.kind() != StatusKind::kNotFound) return moved;
  }
  return aside;
}

// Whether SQLite finds its own structures in order. Reads the whole file.
Status CheckSound(Database& database) {
  Result<Statement> check = database.Prepare("PRAGMA quick_check(1)");
  if (!check.ok()) return check.status();
  const Result<bool> row = check.value().Step();
  if (!row.ok()) return row.status();
  if (row.value() && check.value().Text(0) == "ok") return Status::Ok();
  return database.Refusal(StatusKind::kFormat, "the database is damaged");
}

}  // namespace

std::string_view NameOf(PageState state) {
  switch (state) {
    case PageState::kWaiting:
      return "waiting";
    case PageState::kRead:
      return "read";
    case PageState::kFailed:
      return "failed";
    case PageState::kRefused:
      return "refused";
    case PageState::kMoved:
      break;
  }
  return "moved";
}

Collection::Collection(std::unique_ptr<Database> database)
    : database_(std::move(database)), statements_(std::make_unique<Statements>()) {}

// The last commit of a run is its own matter: what is open here is a run that failed.
Collection::~Collection() {
  statements_.reset();
  database_->RollBack();
}

Result<Collection::Opened> Collection::Open(Files& files, const std::string& path) {
  Opened opened;
  for (;;) {
    auto database = Database::Open(path, Database::Mode::kWrite);
    if (!database.ok()) return database.status();
    std::unique_ptr<Collection> collection(new Collection(database.take()));  // check: raw-new a private constructor
    const Status prepared = collection->Prepare();
    if (prepared.ok()) {
      opened.collection = std::move(collection);
      return opened;
    }
    if (prepared.kind() != StatusKind::kFormat || !opened.kept_aside.empty()) return prepared;
    collection.reset();
    Result<std::string> aside = KeepDamagedAside(files, path);
    if (!aside.ok()) return aside.status();
    opened.kept_aside = aside.take();
  }
}

// kFormat: damaged, or of another program. kLimit: too new.
Status Collection::Prepare() {
  const Status version = CheckVersion(*database_);
  const bool is_new = version.kind() == StatusKind::kNotFound;
  if (!version.ok() && !is_new) return version;
  if (const Status set = database_->Execute(sql::kSettings); !set.ok()) return set;
  if (const Status made = is_new ? MakeSchema() : CheckSound(*database_); !made.ok()) return made;
  if (const Status added = database_->Execute(sql::kAdditions); !added.ok()) return added;
  if (const Status prepared = statements_->Prepare(*database_); !prepared.ok()) return prepared;
  return LoadCounts();
}

Status Collection::MakeSchema() {
  if (const Status begun = database_->Execute("BEGIN IMMEDIATE"); !begun.ok()) return begun;
  if (const Status made = database_->Execute(sql::kSchema); !made.ok()) return made;
  Result<Statement> seed = database_->Prepare(sql::kSetFact);
  if (!seed.ok()) return seed.status();
  for (const char* name : {"first seed", "second seed"}) {
    if (const Status set = seed.value().Bind(name, PageKeys::NewSeed()).Run(); !set.ok()) return set;
  }
  return database_->Execute("COMMIT");
}

Status Collection::LoadCounts() {
  const Result<std::string> first = Fact("first seed"), second = Fact("second seed");
  if (!first.ok()) return first.status();
  if (!second.ok()) return second.status();
  keys_ = PageKeys(first.value(), second.value());
  const Result<std::int64_t> waiting = database_->Number(sql::kCountWaiting);
  if (!waiting.ok()) return waiting.status();
  const Result<std::int64_t> addresses = database_->Number(sql::kCountAddresses);
  if (!addresses.ok()) return addresses.status();
  const Result<std::int64_t> unfinished = database_->Number(sql::kUnfinishedRuns);
  if (!unfinished.ok()) return unfinished.status();
  waiting_ = committed_waiting_ = waiting.value();
  addresses_ = committed_addresses_ = addresses.value();
  last_run_unfinished_ = unfinished.value() != 0;
  return Status::Ok();
}

// A commit under NORMAL writes the log and leaves it to the system when it reaches the disk; one under FULL waits for
// that, and for all commits before it.
Status Collection::Begin() {
  if (database_->InTransaction()) return Status::Ok();
  const auto now = std::chrono::steady_clock::now();
  const bool syncs = now - synced_ >= kSyncEvery;
  if (syncs != syncs_) {
    const Status set = database_->Execute(syncs ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
    if (!set.ok()) return set;
    syncs_ = syncs;
  }
  if (syncs) synced_ = now;
  if (syncs) {
    if (const Status there = CheckFiles(); !there.ok()) return there;
  }
  return database_->Execute("BEGIN IMMEDIATE");
}

Status Collection::CommitSoon() {
  if (!database_->InTransaction()) {
    const bool due = unsynced_ && std::chrono::steady_clock::now() - synced_ >= kSyncEvery;
    return due ? Sync() : Status::Ok();
  }
  if (const Status committed = database_->Execute("COMMIT"); !committed.ok()) return committed;
  unsynced_ = !syncs_;
  committed_waiting_ = waiting_;
  committed_addresses_ = addresses_;
  return Status::Ok();
}

void Collection::Forget() {
  if (database_->InTransaction()) database_->Execute("ROLLBACK").Ignore("SQLite has ended it by itself");
  waiting_ = committed_waiting_;
  addresses_ = committed_addresses_;
}

Status Collection::Commit() {
  if (const Status committed = CommitSoon(); !committed.ok()) return committed;
  if (const Status there = CheckFiles(); !there.ok()) return there;
  return unsynced_ ? Sync() : Status::Ok();
}

// Fails where the files are not where they were: what is written from now on would be found by nobody. What is
// committed goes into the file, wherever that is now: the log keeps the old name, and SQLite leaves it behind.
Status Collection::CheckFiles() {
  const bool file_moved = database_->HasMoved();
  if (!file_moved && !database_->LogHasMoved()) return Status::Ok();
  database_->Execute(sql::kEmptyLog).Ignore("the run ends by a failure anyhow");
  return database_->Refusal(StatusKind::kFailed,
                            file_moved ? "the file was deleted, moved or replaced during the run"
                                       : "the file beside it that ends in -wal was deleted or moved during the run");
}

// A checkpoint begins with giving the log to the disk. Readers do not hinder it.
Status Collection::Sync() {
  synced_ = std::chrono::steady_clock::now();
  unsynced_ = false;
  return database_->Execute("PRAGMA wal_checkpoint(PASSIVE)");
}

Result<std::string> Collection::Fact(std::string_view name) {
  const Result<bool> row = statements_->fact.Bind(name).Step();
  if (!row.ok()) return row.status();
  std::string value(row.value() ? statements_->fact.Text(0) : std::string_view());
  statements_->fact.Reset();
  return value;
}

Status Collection::SetFact(std::string_view name, std::string_view value) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->set_fact.Bind(name, value).Run();
}

Status Collection::BeginRun(std::int64_t now) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  const Status added = statements_->begin_run.Bind(now).Run();
  run_ = database_->LastRowId();
  return added;
}

Status Collection::SaveRun(const RunRecord& run) {
  const auto number = [](std::uint64_t value) { return static_cast<std::int64_t>(value); };
  if (const Status begun = Begin(); !begun.ok()) return begun;
  const auto ended = run.ended == 0 ? std::optional<std::int64_t>() : run.ended;
  return statements_->save_run
      .Bind(ended, run.reason, number(run.pages), number(run.failed), number(run.refused), number(run.fresh),
            number(run.protected_count), number(run.filtered), number(run.bytes), run.seconds, run_)
      .Run();
}

namespace {

// From the columns id, text, kind, page, host, site, asked.
StartRow ReadStart(const Statement& row) {
  StartRow start;
  start.id = row.Int(0);
  start.text = row.Text(1);
  start.kind = row.Text(2);
  start.page = row.Int(3);
  start.host = row.Text(4);
  start.site = row.Text(5);
  if (!row.IsNull(6)) start.asked = row.Int(6);
  return start;
}

}  // namespace

Result<StartRow> Collection::AddStart(std::string_view text, std::string_view kind, StartId parent) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  if (const Status added = statements_->add_start.Bind(text, kind, parent).Run(); !added.ok()) return added;
  const Result<bool> row = statements_->start.Bind(text).Step();
  if (!row.ok()) return row.status();
  StartRow start = ReadStart(statements_->start);
  statements_->start.Reset();
  return start;
}

Status Collection::PlaceStart(StartId start, PageId page, std::string_view host, std::string_view site) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->place_start.Bind(page, host, site, start).Run();
}

Status Collection::MarkAsked(StartId keyword, std::int64_t now) {
  if (const Status begun = Begin(); !begun.ok()) return begun;
  return statements_->asked_start.Bind(now, keyword).Run();
}

Result<std::vector<StartRow>> ReadStarts(Statement& rows) {
  std::vector<StartRow> starts;
  rows.Reset();
  for (;;) {
    const Result<bool> row = rows.Step();
    if (!row.ok()) return row.status();
    if (!row.value()) return starts;
    starts.push_back(ReadStart(rows));
  }
}

Result<std::vector<StartRow>> Collection::Starts() { return ReadStarts(statements_->starts); }

}  // namespace quenlar
