// SQLite as the collection uses it: a connection, prepared statements, failures as values that name the file.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/status.h"

struct sqlite3;
struct sqlite3_stmt;

namespace quenlar {

// Bytes that are no text, as a value to bind.
struct Bytes {
  std::string_view bytes;
};

// A prepared statement. Values are bound in order by Bind, from the first parameter on; Step runs it. A statement that
// has ended, or is bound anew, begins again. Texts that are bound must stay as they are until the statement is reset.
class Statement {
 public:
  Statement() = default;

  // Puts the values in the place of the parameters, in their order. Empty optionals and null pointers are NULL.
  template <typename... Values>
  Statement& Bind(const Values&... values) {
    Reset();
    int index = 0;
    (BindOne(++index, values), ...);
    return *this;
  }

  // True: a row is there. False: the statement has ended.
  [[nodiscard]] Result<bool> Step();
  // Runs a statement that gives no rows, or whose rows nobody needs.
  Status Run();

  // Columns of the row at hand, counted from 0. Views live until the next Step, Bind or Reset.
  [[nodiscard]] std::int64_t Int(int column) const;
  [[nodiscard]] double Real(int column) const;
  [[nodiscard]] std::string_view Text(int column) const;  // bytes that are no text come as they are
  [[nodiscard]] bool IsNull(int column) const;

  void Reset();

 private:
  friend class Database;
  struct Finalize {
    void operator()(sqlite3_stmt* statement) const;
  };
  explicit Statement(sqlite3_stmt* statement) : statement_(statement) {}

  void BindOne(int index, std::int64_t value);
  void BindOne(int index, int value) { BindOne(index, static_cast<std::int64_t>(value)); }
  void BindOne(int index, double value);
  void BindOne(int index, std::string_view value);
  void BindOne(int index, const std::string& value) { BindOne(index, std::string_view(value)); }
  void BindOne(int index, const char* value) { BindOne(index, std::string_view(value)); }
  void BindOne(int index, Bytes value);
  void BindOne(int index, std::nullopt_t);
  template <typename T>
  void BindOne(int index, const std::optional<T>& value) {
    value ? BindOne(index, *value) : BindOne(index, std::nullopt);
  }

  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

class Database {
 public:
  enum class Mode {
    kRead,   // an existing file, nothing is written; another process may write at the same time
    kWrite,  // an existing file or a new one
  };

  // `path` is UTF-8. kNotFound where there is no file to read, kDenied where it cannot be opened, or not for writing.
  // That the bytes are no database or are damaged, a statement says: kFormat.
  [[nodiscard]] static Result<std::unique_ptr<Database>> Open(const std::string& path, Mode mode);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  // One or more statements without parameters.
  Status Execute(const char* sql);
  // `sql` is one statement of this program's own, so that only a damaged file or missing memory can fail here.
  [[nodiscard]] Result<Statement> Prepare(const char* sql);
  // The first column of the first row; 0 without one.
  [[nodiscard]] Result<std::int64_t> Number(const char* sql);

  [[nodiscard]] std::int64_t LastRowId() const;
  // Rows that the last INSERT, UPDATE or DELETE has changed.
  [[nodiscard]] std::int64_t Changes() const;
  // Whether a transaction is open. A full disk or missing memory may have ended it by itself.
  [[nodiscard]] bool InTransaction() const;
  // Ends an open transaction without its changes. Takes no memory of this program's, for destructors; where SQLite has
  // none either, the closing of the connection does the same.
  void RollBack() noexcept;
  // Whether the file has been deleted, moved or replaced since it was opened. Where the system does not allow that, it
  // is false.
  [[nodiscard]] bool HasMoved() const;
  // The same of the log alone, the file that ends in -wal, as long as something stands in it. A log under whose name
  // another file with bytes in it lies is not noticed.
  [[nodiscard]] bool LogHasMoved() const;
  // Whether a part of the last page is missing, and no log has it. SQLite would take zeros for it.
  [[nodiscard]] Result<bool> IsCutShort();
  // A failure for what only the caller can judge. Its message is `why` behind the name of the file.
  [[nodiscard]] Status Refusal(StatusKind kind, const std::string& why) const;

 private:
  explicit Database(sqlite3* connection) : connection_(connection) {}
  // `name` is the path, or an address of it; `flags` are SQLite's.
  [[nodiscard]] static Result<std::unique_ptr<Database>> Connect(const std::string& path, const std::string& name,
                                                                 int flags);
  [[nodiscard]] static Result<std::unique_ptr<Database>> OpenForReading(const std::string& path);
  [[nodiscard]] Status Failure() const;

  sqlite3* connection_;
};

}  // namespace quenlar
