// Paths that people type.
#pragma once

#include <string>

namespace quenlar {

// Returns the absolute path of one that may be relative to the current folder, without a separator at its end. Both are
// UTF-8. Empty when the system does not know the current folder.
[[nodiscard]] std::string AbsolutePath(const std::string& path);

// Makes a new folder in the system's folder for temporary files and returns its path: `name`-1, `name`-2 and so on.
// When none can be made, returns a path that does not exist. Empty when the system has no folder for temporary files.
[[nodiscard]] std::string MakeTemporaryFolder(const std::string& name);

}  // namespace quenlar
