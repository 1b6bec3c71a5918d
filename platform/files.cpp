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

}  // namespace quenlar
