// Where a user's data and settings lie on a POSIX desktop.
#pragma once

#include <string>

namespace quenlar {

// Return $XDG_DATA_HOME or .local/share in the user's folder, and $XDG_CONFIG_HOME or .config there, as the XDG Base
// Directory Specification defines them. The path is absolute and has no separator at its end. Empty when the system
// does not know the folder of the user.
[[nodiscard]] std::string UserDataFolder();
[[nodiscard]] std::string UserConfigFolder();

}  // namespace quenlar
