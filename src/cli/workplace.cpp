#include "cli/workplace.h"

#include "engine/home.h"
#include "platform/registry.h"

namespace quenlar {

namespace {

Status NoProgramFolder() { return {StatusKind::kNotFound, "There is no program folder; name one by --home"}; }

}  // namespace

Result<Platform> OpenHome(Invocation& invocation) {
  if (invocation.choice().home.empty()) return NoProgramFolder();
  return invocation.system().Open(invocation.choice());
}

Result<std::unique_ptr<FolderLock>> TakeHome(Files& files, const Site& site) {
  if (site.program_folder.empty()) return NoProgramFolder();
  if (Status made = MakeFolders(files, site.program_folder, site.separator); !made.ok()) return made;
  return LockHome(files, site);
}

Result<Workplace> TakeWorkplace(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return platform.status();
  Workplace place{platform.value(), invocation.site(), nullptr};
  auto lock = TakeHome(place.platform.files, place.site);
  if (!lock.ok()) return lock.status();
  place.lock = lock.take();
  return place;
}

Result<std::vector<std::string>> LoadStored(Registry& registry, Settings& settings) {
  if (Status read = registry.Flush(); !read.ok()) return read;
  if (!registry.KeyExists(kProjectKey)) return std::vector<std::string>();
  return SettingsStore(registry, settings).LoadSettings();
}

}  // namespace quenlar
