#include "engine/home.h"

namespace quenlar {

Status MakeFolders(Files& files, const std::string& path, char separator) {
  // Finds the nearest parent that exists, beginning at the end of the path, and then makes the missing ones below it.
  std::size_t exists = path.size();
  while (exists > 0 && exists != std::string::npos && !files.FolderExists(path.substr(0, exists))) {
    exists = path.find_last_of(separator == '\\' ? "\\/" : "/", exists - 1);
  }
  if (exists == std::string::npos) exists = 0;
  while (exists < path.size()) {
    const std::size_t next = path.find_first_of(separator == '\\' ? "\\/" : "/", exists + 1);
    exists = next == std::string::npos ? path.size() : next;
    if (Status made = files.MakeFolder(path.substr(0, exists)); !made.ok()) return made;
  }
  return {};
}

Result<std::unique_ptr<FolderLock>> LockHome(Files& files, const Installation& installation) {
  constexpr const char* kLockName = "quenlar.lock";
  auto lock = files.Lock(installation.program_folder, kLockName);
  if (!lock.ok() && lock.status().kind() == StatusKind::kBusy) {
    return Status(StatusKind::kBusy, "Another Quenlar is at work in " + installation.program_folder);
  }
  return lock;
}

}  // namespace quenlar
