#include "collection/database.h"

#include <sqlite3.h>

#include "page/url_bytes.h"

namespace quenlar {
namespace {

constexpr int kBusyMilliseconds = 5000;  // how long a reader or writer waits for the other one's lock
constexpr const char* kProtected = "the file or its folder is write-protected";

StatusKind KindOf(int code) {
  switch (code & 0xFF) {
    case SQLITE_FULL:
      return StatusKind::kFull;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return StatusKind::kFormat;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return StatusKind::kBusy;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_CANTOPEN:
      return StatusKind::kDenied;
    default:
      return StatusKind::kFailed;
  }
}

std::string PathOf(sqlite3* connection) {
  const char* const path = sqlite3_db_filename(connection, "main");
  return path == nullptr ? "" : path;
}

Status FailureOf(sqlite3* connection) {
  const int code = sqlite3_errcode(connection);
  const bool is_protected = (code & 0xFF) == SQLITE_READONLY;
  const char* const message = is_protected ? kProtected : sqlite3_errmsg(connection);
  return Status(KindOf(code), message).WithContext(PathOf(connection));
}

enum class Presence { kMissing, kThere, kUnknown };

// An empty file counts as missing.
Presence PresenceOf(const std::string& path) {
  sqlite3_vfs* const system = sqlite3_vfs_find(nullptr);
  int is_there = 0;
  if (system->xAccess(system, path.c_str(), SQLITE_ACCESS_EXISTS, &is_there) != SQLITE_OK) return Presence::kUnknown;
  return is_there != 0 ? Presence::kThere : Presence::kMissing;
}

// The path as a `file:` address that says that nobody changes the file (https://www.sqlite.org/uri.html).
std::string UnchangingUri(const std::string& path) {
  constexpr std::string_view kSpecial = "%?#";
  std::string uri = path.starts_with('/') ? "file://" : "file:///";
  for (const char c : path) {
    if (kSpecial.find(c) != kSpecial.npos) {
      AppendPercentEncoded(c, uri);
    } else {
      uri += c == '\\' ? '/' : c;
    }
  }
  return uri + "?immutable=1";
}

}  // namespace

void Statement::Finalize::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

Result<bool> Statement::Step() {
  const int code = sqlite3_step(statement_.get());
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) {
    sqlite3_reset(statement_.get());
    return false;
  }
  const Status failure = FailureOf(sqlite3_db_handle(statement_.get()));
  sqlite3_reset(statement_.get());
  return failure;
}

Status Statement::Run() {
  for (;;) {
    const Result<bool> row = Step();
    if (!row.ok()) return row.status();
    if (!row.value()) return Status::Ok();
  }
}

std::int64_t Statement::Int(int column) const { return sqlite3_column_int64(statement_.get(), column); }

double Statement::Real(int column) const { return sqlite3_column_double(statement_.get(), column); }

std::string_view Statement::Text(int column) const {
  const unsigned char* const text = sqlite3_column_text(statement_.get(), column);
  if (text == nullptr) return {};
  return {reinterpret_cast<const char*>(text),
          static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

bool Statement::IsNull(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }

void Statement::Reset() { sqlite3_reset(statement_.get()); }

void Statement::BindOne(int index, std::int64_t value) { sqlite3_bind_int64(statement_.get(), index, value); }

void Statement::BindOne(int index, double value) { sqlite3_bind_double(statement_.get(), index, value); }

void Statement::BindOne(int index, std::string_view value) {
  // A view without memory behind it would be bound as NULL.
  sqlite3_bind_text64(statement_.get(), index, value.empty() ? "" : value.data(), value.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
}

void Statement::BindOne(int index, Bytes value) {
  sqlite3_bind_blob64(statement_.get(), index, value.bytes.empty() ? "" : value.bytes.data(), value.bytes.size(),
                      SQLITE_STATIC);
}

void Statement::BindOne(int index, std::nullopt_t) { sqlite3_bind_null(statement_.get(), index); }

Result<std::unique_ptr<Database>> Database::Open(const std::string& path, Mode mode) {
  if (mode == Mode::kRead) return OpenForReading(path);
  auto database = Connect(path, path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (database.ok() && sqlite3_db_readonly(database.value()->connection_, "main") != 0) {
    return database.value()->Refusal(StatusKind::kDenied, kProtected);
  }
  return database;
}

Result<std::unique_ptr<Database>> Database::Connect(const std::string& path, const std::string& name, int flags) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &connection, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  std::unique_ptr<Database> database(new Database(connection));  // check: raw-new the constructor is private
  if (connection == nullptr) return Status(StatusKind::kFull, path + ": there is not enough memory");
  if (code != SQLITE_OK) return Status(KindOf(code), path + ": " + sqlite3_errmsg(connection));
  sqlite3_busy_timeout(connection, kBusyMilliseconds);
  sqlite3_extended_result_codes(connection, 0);
  return database;
}

// Readers share memory with a writer through a file beside the database. In a folder that cannot be written they cannot
// make that file. If no log lies there either, no writer is at work, and they do without. If one does, the database
// alone is not the whole.
Result<std::unique_ptr<Database>> Database::OpenForReading(const std::string& path) {
  auto database = Connect(path, path, SQLITE_OPEN_READONLY);
  if (!database.ok()) {
    if (database.status().kind() != StatusKind::kDenied || PresenceOf(path) != Presence::kMissing) return database;
    return Status(StatusKind::kNotFound, path + ": there is no such file");
  }
  if (database.value()->Execute("PRAGMA schema_version").kind() != StatusKind::kDenied) return database;
  switch (PresenceOf(path + "-wal")) {
    case Presence::kMissing:
      return Connect(path, UnchangingUri(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    case Presence::kThere:
      return database.value()->Refusal(
          StatusKind::kDenied,
          "its folder is write-protected and its last run was cut short: copy it, together "
          "with the file of that name that ends in -wal, into another folder");
    case Presence::kUnknown:
      break;
  }
  return database;
}

Database::~Database() { sqlite3_close_v2(connection_); }

Status Database::Failure() const { return FailureOf(connection_); }

Status Database::Refusal(StatusKind kind, const std::string& why) const {
  return Status(kind, why).WithContext(PathOf(connection_));
}

Status Database::Execute(const char* sql) {
  return sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr) == SQLITE_OK ? Status::Ok() : Failure();
}

Result<Statement> Database::Prepare(const char* sql) {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(connection_, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  if (code != SQLITE_OK) return Failure();
  return Statement(statement);
}

Result<std::int64_t> Database::Number(const char* sql) {
  Result<Statement> statement = Prepare(sql);
  if (!statement.ok()) return statement.status();
  const Result<bool> row = statement.value().Step();
  if (!row.ok()) return row.status();
  return row.value() ? statement.value().Int(0) : 0;
}

std::int64_t Database::LastRowId() const { return sqlite3_last_insert_rowid(connection_); }

std::int64_t Database::Changes() const { return sqlite3_changes64(connection_); }

void Database::RollBack() noexcept {
  if (InTransaction()) sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
}

bool Database::HasMoved() const {
  int moved = 0;
  sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  return moved != 0;
}

bool Database::LogHasMoved() const {
  int moved = 0;
  if (sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) != SQLITE_OK) return false;
  sqlite3_file* log = nullptr;
  sqlite3_int64 size = 0;
  sqlite3_file_control(connection_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  if (log == nullptr || log->pMethods == nullptr || log->pMethods->xFileSize(log, &size) != SQLITE_OK) return false;
  return size > 0 && PresenceOf(PathOf(connection_) + "-wal") == Presence::kMissing;
}

Result<bool> Database::IsCutShort() {
  const Result<std::int64_t> page_size = Number("PRAGMA page_size");
  if (!page_size.ok()) return page_size.status();
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection_, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  sqlite3_int64 size = 0;
  if (file == nullptr || file->pMethods == nullptr || file->pMethods->xFileSize(file, &size) != SQLITE_OK) {
    return Refusal(StatusKind::kFailed, "its size cannot be told");
  }
  return size % page_size.value() != 0 && PresenceOf(PathOf(connection_) + "-wal") == Presence::kMissing;
}

bool Database::InTransaction() const { return sqlite3_get_autocommit(connection_) == 0; }

}  // namespace quenlar
