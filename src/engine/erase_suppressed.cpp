#include "engine/erase_suppressed.h"

#include "collection/erase_addresses.h"

namespace quenlar {

Status EraseSuppressed(const Files& files, const std::string& path, SuppressionList& suppression,
                       std::vector<std::string>& notices) {
  if (suppression.empty() || !files.FileExists(path)) return Status::Ok();
  const auto erased = EraseAddresses(path, [&](std::string_view address) { return suppression.Keeps(address); });
  if (erased.status().kind() == StatusKind::kBusy) {
    notices.emplace_back("Another program reads the collection; what is suppressed leaves it with the next run");
    return Status::Ok();
  }
  if (erased.status().kind() == StatusKind::kFormat) return Status::Ok();
  if (!erased.ok()) return erased.status();
  const std::size_t count = erased.value().addresses.size();
  if (count > 0) notices.push_back("Suppressed addresses taken out of the collection: " + std::to_string(count));
  return Status::Ok();
}

}  // namespace quenlar
