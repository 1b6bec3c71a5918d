// Files and folders as the program needs them. Paths are UTF-8 and absolute; on Windows they may have either separator.
// No member pumps.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"

namespace quenlar {

// A file that is being replaced. The bytes go to a temporary file in the same folder. When the object is destroyed
// without a Commit, it removes the temporary file, and the old file stays as it was, byte for byte.
class FileReplacement {
 public:
  virtual ~FileReplacement() = default;
  // Appends bytes. They may be buffered. After a failure every later call fails with the same status.
  virtual Status Write(std::string_view bytes) = 0;
  // Flushes the bytes to the medium, and renames the temporary file over the target in one step. Nothing else changes
  // the target.
  virtual Status Commit() = 0;
};

// A new file that grows. What has been appended stays, however the program ends. Nothing is buffered by the program.
class GrowingFile {
 public:
  virtual ~GrowingFile() = default;
  // Appends all of `bytes`. Where that fails the file gets back the length that it had, as far as the system allows.
  virtual Status Append(std::string_view bytes) = 0;
  // Flushes what was appended to the medium.
  virtual Status Flush() = 0;
};

// Holds a folder for as long as the object lives. A second lock of the same folder, in any process, fails with kBusy.
class FolderLock {
 public:
  virtual ~FolderLock() = default;
};

// A file that is open for reading: a plain file, or something that is read from its beginning to its end, such as a
// pipe.
class ReadableFile {
 public:
  virtual ~ReadableFile() = default;
  // In bytes, when it was opened. Empty for what is not a plain file.
  [[nodiscard]] virtual std::optional<std::uint64_t> size() const = 0;
  // When it was last changed, in seconds since 1970 UTC.
  [[nodiscard]] virtual std::int64_t modified() const = 0;
  // What that leaves of a second, in nanoseconds, as finely as the file system knows it.
  [[nodiscard]] virtual std::int64_t modified_nanoseconds() const = 0;
  // Reads `size` bytes from `offset` on into `buffer` and returns their number, which is smaller only at the end. Of
  // what is not a plain file it gives the next bytes, whatever the offset. Several threads may read a plain file.
  [[nodiscard]] virtual Result<std::size_t> ReadAt(std::uint64_t offset, char* buffer, std::size_t size) const = 0;
};

// What a path names. Links are not followed.
enum class PathKind { kNothing, kFile, kFolder, kOther };

class Files {
 public:
  virtual ~Files() = default;

  [[nodiscard]] virtual PathKind KindOf(const std::string& path) const = 0;

  // Whether there is a plain file at `path`, directly or behind a link. False for folders.
  [[nodiscard]] virtual bool FileExists(const std::string& path) const = 0;
  [[nodiscard]] virtual bool FolderExists(const std::string& path) const = 0;

  // The names of the files and folders in a folder, sorted bytewise. kNotFound when there is no such folder.
  [[nodiscard]] virtual Result<std::vector<std::string>> Names(const std::string& folder) const = 0;

  // Makes a folder. Its parent must exist. An existing folder is a success.
  virtual Status MakeFolder(const std::string& path) = 0;

  // Hands the bytes of the file to `block` piece by piece and in order, until its end, or until `block` returns false.
  virtual Status Read(const std::string& path, const std::function<bool(std::string_view bytes)>& block) const = 0;

  // Opens a file for reading. Fails for a folder.
  [[nodiscard]] virtual Result<std::unique_ptr<ReadableFile>> Open(const std::string& path) const = 0;

  // Begins to replace the file at `path`, which need not exist. Fails when `path` is a folder, or when its folder
  // cannot be written.
  [[nodiscard]] virtual Result<std::unique_ptr<FileReplacement>> Replace(const std::string& path) = 0;

  // Makes an empty file. kBusy where a file or folder of that name exists; it stays as it is.
  [[nodiscard]] virtual Result<std::unique_ptr<GrowingFile>> Create(const std::string& path) = 0;

  // Deletes a plain file. kNotFound when there is none.
  virtual Status Delete(const std::string& path) = 0;

  // Renames a file. Replaces a file that has the new name.
  virtual Status Rename(const std::string& from, const std::string& to) = 0;

  // Locks an existing folder, kBusy when it is locked. `lock_name` names a file in it, which may stay behind, empty.
  [[nodiscard]] virtual Result<std::unique_ptr<FolderLock>> Lock(const std::string& folder,
                                                                 const std::string& lock_name) = 0;
};

// Returns the whole contents of a file. kLimit when it holds more than `max_bytes`.
[[nodiscard]] Result<std::string> ReadWhole(const Files& files, const std::string& path,
                                            std::uint64_t max_bytes = UINT64_MAX);

// Replaces the whole file with `bytes` in one step.
Status WriteWhole(Files& files, const std::string& path, std::string_view bytes);

// Renames what lies at `path`, a file or a folder, so that nothing overwrites it: to the same name with ".bak" behind
// it, or ".bak2" and so on when that is taken. Returns the new name, or "" when nothing lies there.
[[nodiscard]] Result<std::string> KeepAside(Files& files, const std::string& path);

}  // namespace quenlar
