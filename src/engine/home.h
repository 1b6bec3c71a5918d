// The program folder, in which `data` and `report` lie: makes it and holds it against other programs.
#pragma once

#include <memory>
#include <string>

#include "base/status.h"
#include "platform/files.h"
#include "state/settings.h"

namespace quenlar {

// Makes the folder at `path` with all its missing parents. An existing folder is a success.
Status MakeFolders(Files& files, const std::string& path, char separator);

// Holds the program folder against every other Quenlar, window or command line, for as long as the lock lives. The
// folder must exist. kBusy, with a message that names the folder, when another program holds it.
[[nodiscard]] Result<std::unique_ptr<FolderLock>> LockHome(Files& files, const Installation& installation);

}  // namespace quenlar
