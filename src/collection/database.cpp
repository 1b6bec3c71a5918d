#include "collection/database.h"

#include <sqlite3.h>

namespace quenlar {
namespace {

constexpr int kBusyMilliseconds = 5000;  // how long a reader or writer waits for the other one's lock

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
      return StatusKind::kDenied;
    case SQLITE_CANTOPEN:
      return StatusKind::kNotFound;
    default:
      return StatusKind::kFailed;
  }
}

std::string PathOf(sqlite3* connection) {
  const char* const path = sqlite3_db_filename(connection, "main");
  return path == nullptr ? "" : path;
}

Status FailureOf(sqlite3* connection) {
  return Status(KindOf(sqlite3_errcode(connection)), sqlite3_errmsg(connection)).WithContext(PathOf(connection));
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
  const int flags = mode == Mode::kRead ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &connection, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  std::unique_ptr<Database> database(new Database(connection));  // check: raw-new the constructor is private
  if (connection == nullptr) return Status(StatusKind::kFull, path + ": there is not enough memory");
  if (code != SQLITE_OK) return Status(KindOf(code), path + ": " + sqlite3_errmsg(connection));
  sqlite3_busy_timeout(connection, kBusyMilliseconds);
  sqlite3_extended_result_codes(connection, 0);
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

bool Database::InTransaction() const { return sqlite3_get_autocommit(connection_) == 0; }

}  // namespace quenlar
