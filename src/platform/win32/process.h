// What the system knows about this process: its arguments, its environment, its place on the disk. All UTF-8.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quenlar::win32 {

// The arguments without the program's name.
[[nodiscard]] std::vector<std::string> Arguments();

// The value of an environment variable, or nothing when it is not set.
[[nodiscard]] std::optional<std::string> EnvironmentValue(const std::string& name);

// The folder of the program's file, without a separator at its end. Only the root of a drive keeps it ("C:\").
[[nodiscard]] std::string ProgramFolder();

}  // namespace quenlar::win32
