// A program folder that a command has taken into use: made where it is missing, and locked.
#pragma once

#include <memory>

#include "base/status.h"
#include "cli/invocation.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "settings/settings_store.h"

namespace quenlar {

struct Workplace {
  Platform platform;
  Installation installation;
  std::unique_ptr<FolderLock> lock;
};

// The platform of a command that needs a program folder; fails where there is none.
[[nodiscard]] Result<Platform> OpenHome(Invocation& invocation);

// Makes the program folder where it is missing and holds it. Fails where there is none, where it cannot be made, or
// where another program works in it; nothing but the folder has been made then.
[[nodiscard]] Result<std::unique_ptr<FolderLock>> TakeHome(Files& files, const Installation& installation);

// The same for a whole command.
[[nodiscard]] Result<Workplace> TakeWorkplace(Invocation& invocation);

// The stored settings and the project list as they are, without writing anything on a first start. Fails where they
// cannot be read.
[[nodiscard]] Result<std::vector<std::string>> LoadStored(Registry& registry, Settings& settings);

}  // namespace quenlar
