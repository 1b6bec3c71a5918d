// A program folder in use by a command: it exists and is locked.
#pragma once

#include <memory>

#include "base/status.h"
#include "cli/invocation.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "settings/settings_store.h"

namespace quenlar {

// The platform and the program folder. The lock holds the folder for as long as this lives.
struct Workplace {
  Platform platform;
  Installation installation;
  std::unique_ptr<FolderLock> lock;
};

// Opens the platform for a command that needs a program folder. Fails when there is none.
[[nodiscard]] Result<Platform> OpenHome(Invocation& invocation);

// Makes the program folder if it is missing, and locks it. Fails when there is none, when it cannot be made, and when
// another program works in it. At most the folder itself has been made then.
[[nodiscard]] Result<std::unique_ptr<FolderLock>> TakeHome(Files& files, const Installation& installation);

// Opens the platform and takes the program folder.
[[nodiscard]] Result<Workplace> TakeWorkplace(Invocation& invocation);

// Loads the stored settings into `settings` and returns the project list. Writes nothing, even on a first start. Fails
// when they cannot be read.
[[nodiscard]] Result<std::vector<std::string>> LoadStored(Registry& registry, Settings& settings);

}  // namespace quenlar
