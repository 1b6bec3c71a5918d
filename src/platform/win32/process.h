// What the system knows of this process: its arguments, its environment, its place on the disk. All UTF-8.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quenlar::win32 {

// Without the program's name.
[[nodiscard]] std::vector<std::string> Arguments();

[[nodiscard]] std::optional<std::string> EnvironmentValue(const std::string& name);

// The folder of the program's file, without a separator at its end (but "C:\" is the root of a drive).
[[nodiscard]] std::string ProgramFolder();

}  // namespace quenlar::win32
