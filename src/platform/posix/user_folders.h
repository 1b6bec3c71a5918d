// Where a user's data and settings lie on a POSIX desktop.
#pragma once

#include <string>

namespace quenlar {

// $XDG_DATA_HOME, or .local/share in the user's folder; $XDG_CONFIG_HOME, or .config. Absolute, without a separator at
// the end; "" where the system knows no folder of the user.
[[nodiscard]] std::string UserDataFolder();
[[nodiscard]] std::string UserConfigFolder();

}  // namespace quenlar
