// The program folder: made where it is missing, and held by one program at a time.
#pragma once

#include <memory>
#include <string>

#include "base/status.h"
#include "platform/files.h"
#include "state/settings.h"

namespace quenlar {

// Makes the folder with all its parents. An existing folder is a success.
Status MakeFolders(Files& files, const std::string& path, char separator);

// Holds the program folder, which must exist, against every other Quenlar (window or command line). kBusy where
// another one has it. The folder is held as long as the lock lives.
[[nodiscard]] Result<std::unique_ptr<FolderLock>> LockHome(Files& files, const Installation& installation);

}  // namespace quenlar
