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

Result<std::unique_ptr<FolderLock>> TakeHome(Files& files, const Installation& installation) {
  if (installation.program_folder.empty()) return NoProgramFolder();
  if (Status made = MakeFolders(files, installation.program_folder, installation.separator); !made.ok()) return made;
  return LockHome(files, installation);
}

Result<Workplace> TakeWorkplace(Invocation& invocation) {
  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return platform.status();
  Workplace place{platform.value(), invocation.installation(), nullptr};
  auto lock = TakeHome(place.platform.files, place.installation);
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
