// Files and folders in memory, whose calls fail on demand and whose disk can fill up.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"

namespace quenlar {

// Paths begin with "/" (or a drive); "\" counts as "/". The root "/" exists, other folders must be made.
class InMemoryFiles : public Files {
 public:
  static constexpr std::int64_t kModified = 1'700'000'000;  // of every file, in seconds since 1970

  InMemoryFiles() = default;
  InMemoryFiles(const InMemoryFiles&) = delete;
  InMemoryFiles& operator=(const InMemoryFiles&) = delete;

  [[nodiscard]] PathKind KindOf(const std::string& path) const override;
  [[nodiscard]] bool FileExists(const std::string& path) const override;
  [[nodiscard]] bool FolderExists(const std::string& path) const override;
  [[nodiscard]] Result<std::vector<std::string>> Names(const std::string& folder) const override;
  Status MakeFolder(const std::string& path) override;
  Status Read(const std::string& path, const std::function<bool(std::string_view bytes)>& block) const override;
  [[nodiscard]] Result<std::unique_ptr<ReadableFile>> Open(const std::string& path) const override;
  [[nodiscard]] Result<std::unique_ptr<FileReplacement>> Replace(const std::string& path) override;
  [[nodiscard]] Result<std::unique_ptr<GrowingFile>> Create(const std::string& path) override;
  Status Delete(const std::string& path) override;
  Status Rename(const std::string& from, const std::string& to) override;
  [[nodiscard]] Result<std::unique_ptr<FolderLock>> Lock(const std::string& folder,
                                                         const std::string& lock_name) override;

  // What a test prepares and looks at, without counting as a call and without failing.
  void AddFolder(const std::string& path);  // with its parents
  void Put(const std::string& path, std::string contents);
  [[nodiscard]] std::optional<std::string> Contents(const std::string& path) const;
  [[nodiscard]] std::vector<std::string> AllFiles() const;  // full paths, sorted

  // The n-th call from now on that can fail (1 is the next one: MakeFolder, Read, Open, Replace, Write, Commit, Create,
  // Append, Flush, Delete, Rename, Lock) fails with `kind`, once; 0 fails none. Also sets calls() to 0.
  void FailCall(int n, StatusKind kind = StatusKind::kFailed);
  [[nodiscard]] int calls() const { return calls_; }

  // What a file's last change has beside kModified; 0 until it is set.
  void SetModifiedNanoseconds(const std::string& path, std::int64_t nanoseconds);

  // No more than this many bytes can be written from now on (kFull); empty: as many as one likes.
  void SetFreeSpace(std::optional<std::uint64_t> bytes) { free_space_ = bytes; }

  // Nothing can be made, replaced, deleted or renamed at or below this path (kDenied).
  void Protect(const std::string& path);
  void Unprotect(const std::string& path);

  // Read hands out at most this many bytes at a time.
  void SetBlockSize(std::size_t bytes) { block_size_ = bytes; }

 private:
  friend class InMemoryReplacement;
  friend class InMemoryGrowingFile;
  friend class InMemoryLock;
  friend class InMemoryDatabases;

  Status CountCall(const char* what, const std::string& path) const;
  [[nodiscard]] Status CheckPlace(const std::string& path) const;

  std::map<std::string, std::string> files_;
  std::map<std::string, std::int64_t> nanoseconds_;
  std::set<std::string> folders_;
  std::set<std::string> locks_;
  std::set<std::string> protected_;
  std::optional<std::uint64_t> free_space_;
  std::size_t block_size_ = 4096;
  mutable int calls_ = 0;
  int failing_call_ = 0;
  StatusKind failure_ = StatusKind::kFailed;
};

}  // namespace quenlar
