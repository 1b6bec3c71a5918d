// Files and folders of Windows.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "platform/files.h"

namespace quenlar {

// Paths may have any length. A replacement is written through to the medium before it takes the name. When another
// program holds a file that is to be renamed or replaced, the call waits for about 0.3 s at most.
class Win32Files final : public Files {
 public:
  Win32Files();
  // `pause` is called between two attempts, nine times at most.
  explicit Win32Files(std::function<void()> pause) : pause_(std::move(pause)) {}
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

 private:
  const std::function<void()> pause_;
  std::set<std::wstring> swept_;  // folders from which the temporary files of dead processes have been removed
};

}  // namespace quenlar
