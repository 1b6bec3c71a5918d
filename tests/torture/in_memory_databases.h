// Databases among the files in memory: SQLite reads and writes InMemoryFiles, so that its calls fail and its disk fills
// up together with those of all other files.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "support/in_memory_files.h"

namespace quenlar {

// For as long as it lives, SQLite opens every database in `files`, which must outlive it. Each of SQLite's calls that
// can fail counts as a call of InMemoryFiles; a failing one answers that the disk is full, or that it could not be read
// or written. What is protected can be read. Only bytes by which a file grows take space. One connection at a time, in
// one thread.
class InMemoryDatabases {
 public:
  explicit InMemoryDatabases(InMemoryFiles& files);
  ~InMemoryDatabases();
  InMemoryDatabases(const InMemoryDatabases&) = delete;
  InMemoryDatabases& operator=(const InMemoryDatabases&) = delete;

  // From the n-th lock on that SQLite asks for (1 is the next one) somebody else holds every lock; 0: nobody does. Also
  // sets locks() to 0.
  void HoldLocks(int n) {
    held_from_ = n;
    locks_ = 0;
  }
  [[nodiscard]] int locks() const { return locks_; }

 private:
  struct OpenFile;
  struct Calls;

  // `code` where this call is to fail for another reason than a full disk; SQLITE_OK where it is not to.
  [[nodiscard]] int Count(const char* what, const std::string& path, int code) const;
  [[nodiscard]] int CountLock(const std::string& path, int code);
  [[nodiscard]] int Write(const std::string& path, const void* bytes, std::size_t size, std::size_t at);

  InMemoryFiles& files_;
  const std::string name_;
  int locks_ = 0, held_from_ = 0;
  sqlite3_vfs system_{};
  std::map<std::string, std::vector<std::unique_ptr<char[]>>> shared_memory_;  // by path
};

}  // namespace quenlar
