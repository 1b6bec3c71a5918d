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
  Site site;
  std::unique_ptr<FolderLock> lock;
};

// Fails where another program works in the folder, before anything is written, or where it cannot be made.
[[nodiscard]] Result<Workplace> TakeWorkplace(Invocation& invocation);

// The stored settings and the project list as they are, without writing anything on a first start.
std::vector<std::string> LoadStored(Registry& registry, Settings& settings);

}  // namespace quenlar
