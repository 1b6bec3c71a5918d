// Paths that people type.
#pragma once

#include <string>

namespace quenlar {

// An absolute path without a trailing separator, from one relative to the current folder. UTF-8 in and out; empty
// where the system cannot tell.
[[nodiscard]] std::string AbsolutePath(const std::string& path);

// Makes a new folder in the system's folder for temporary files: `name`-1, `name`-2 and so on. Where none can be made,
// the path of one that is not there; empty where the system has no such place.
[[nodiscard]] std::string MakeTemporaryFolder(const std::string& name);

}  // namespace quenlar
