// Files and folders over POSIX.
#pragma once

#include <memory>
#include <set>
#include <string>

#include "platform/files.h"

namespace quenlar {

// A replaced file keeps its permissions. When the path is a symbolic link, the file to which it points is replaced.
// Temporary files lie beside their target and are named ".<name>.<process>-<random>.partial". Those that a dead process
// has left are removed when their target is replaced for the first time.
class PosixFiles : public Files {
 public:
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
  // The lock belongs to the open file, so it ends with the process, even when that is killed.
  [[nodiscard]] Result<std::unique_ptr<FolderLock>> Lock(const std::string& folder,
                                                         const std::string& lock_name) override;

 private:
  std::set<std::string> swept_;  // targets whose folder has been searched for leftovers
};

}  // namespace quenlar
