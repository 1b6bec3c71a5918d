#include "platform/files.h"

namespace quenlar {

Result<std::string> ReadWhole(const Files& files, const std::string& path, std::uint64_t max_bytes) {
  std::string whole;
  bool too_long = false;
  const Status status = files.Read(path, [&](std::string_view bytes) {
    too_long = whole.size() + bytes.size() > max_bytes;
    if (!too_long) whole.append(bytes);
    return !too_long;
  });
  if (!status.ok()) return status;
  if (too_long) return Status(StatusKind::kLimit, path + ": the file is too long");
  return whole;
}

Status WriteWhole(Files& files, const std::string& path, std::string_view bytes) {
  auto replacement = files.Replace(path);
  if (!replacement.ok()) return replacement.status();
  const Status written = replacement.value()->Write(bytes);
  return written.ok() ? replacement.value()->Commit() : written;
}

Result<std::string> KeepAside(Files& files, const std::string& path) {
  std::string aside = path + ".bak";
  for (int n = 2; files.FileExists(aside) || files.FolderExists(aside); ++n) aside = path + ".bak" + std::to_string(n);
  const Status renamed = files.Rename(path, aside);
  if (renamed.kind() == StatusKind::kNotFound) return std::string();
  if (!renamed.ok()) return renamed;
  return aside;
}

}  // namespace quenlar
