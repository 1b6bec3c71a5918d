#include "cli/workplace.h"

#include "app/home.h"
#include "platform/registry.h"

namespace quenlar {

Result<Workplace> TakeWorkplace(Invocation& invocation) {
  const Result<Platform> platform = invocation.system().Open(invocation.choice());
  if (!platform.ok()) return platform.status();
  Workplace place{platform.value(), invocation.site(), nullptr};
  Files& files = place.platform.files;
  if (Status made = MakeFolders(files, place.site.program_folder, place.site.separator); !made.ok()) return made;
  auto lock = LockHome(files, place.site);
  if (!lock.ok()) return lock.status();
  place.lock = lock.take();
  return place;
}

std::vector<std::string> LoadStored(Registry& registry, Settings& settings) {
  if (!registry.KeyExists(kProjectKey)) return {};
  return SettingsStore(registry, settings).LoadSettings();
}

}  // namespace quenlar
