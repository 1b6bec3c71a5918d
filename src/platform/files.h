// Files and folders as the program needs them. Paths are UTF-8, absolute, with either separator on Windows.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/status.h"

namespace quenlar {

// A file being replaced: bytes go to a temporary file in the same folder. Destroying the writer without Commit
// removes the temporary file and leaves the old file as it was, byte for byte.
class FileReplacement {
 public:
  virtual ~FileReplacement() = default;
  // Buffered. After a failure every later call fails with the same status.
  virtual Status Write(std::string_view bytes) = 0;
  // Flushes to the medium and renames over the target in one step. The only way by which the target changes.
  virtual Status Commit() = 0;
};

// Held for as long as the program uses its folder; a second holder in any process is refused with kBusy.
class FolderLock {
 public:
  virtual ~FolderLock() = default;
};

class Files {
 public:
  virtual ~Files() = default;

  // True for a plain file (behind links too), false for folders and for what is not there.
  [[nodiscard]] virtual bool FileExists(const std::string& path) const = 0;
  [[nodiscard]] virtual bool FolderExists(const std::string& path) const = 0;

  // Parents must exist. An existing folder is a success.
  virtual Status MakeFolder(const std::string& path) = 0;

  // Hands the file's bytes to `block` piece by piece, in order, until its end or until `block` returns false.
  virtual Status Read(const std::string& path, const std::function<bool(std::string_view bytes)>& block) const = 0;

  // Fails where the target is a folder, or its folder cannot be written.
  [[nodiscard]] virtual Result<std::unique_ptr<FileReplacement>> Replace(const std::string& path) = 0;

  // A plain file; kNotFound when there is none.
  virtual Status Delete(const std::string& path) = 0;

  // Renames over an existing target.
  virtual Status Rename(const std::string& from, const std::string& to) = 0;

  // `lock_name` is a file in `folder` that may stay behind, empty.
  [[nodiscard]] virtual Result<std::unique_ptr<FolderLock>> Lock(const std::string& folder,
                                                                 const std::string& lock_name) = 0;
};

// The file's whole contents, or kLimit when it holds more than `max_bytes`.
[[nodiscard]] Result<std::string> ReadWhole(const Files& files, const std::string& path,
                                            std::uint64_t max_bytes = UINT64_MAX);

// Replaces the whole file in one step.
Status WriteWhole(Files& files, const std::string& path, std::string_view bytes);

// Gives what lies at `path` a name under which nothing lies: ".bak", or ".bak2" and so on. The new name, or "" when
// there was nothing.
[[nodiscard]] Result<std::string> KeepAside(Files& files, const std::string& path);

}  // namespace quenlar
