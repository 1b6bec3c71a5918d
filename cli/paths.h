// Paths that people type.
#pragma once

#include <string>

namespace quenlar {

// An absolute path without a trailing separator, from one relative to the current folder. UTF-8 in and out; empty
// where the system cannot tell.
[[nodiscard]] std::string AbsolutePath(const std::string& path);

// A path in the system's folder for temporary files that nothing stands at: `name`-1, `name`-2 and so on.
[[nodiscard]] std::string FreeTemporaryPath(const std::string& name);

}  // namespace quenlar
