// Converts texts between the program (UTF-8) and the system (UTF-16).
#pragma once

#include <string>
#include <string_view>

namespace quenlar::win32 {

// Malformed sequences become U+FFFD.
[[nodiscard]] std::wstring ToWide(std::string_view utf8);
// Lone surrogates become U+FFFD.
[[nodiscard]] std::string FromWide(std::wstring_view wide);

// Returns the system's name for a file: with backslashes, and with the prefix "\\?\" when it is longer than old calls
// take. A NUL would end the path early, so a path with one gives a name that no file can have.
[[nodiscard]] std::wstring NativePath(std::string_view utf8_path);

// The current directory of the process, in UTF-8.
[[nodiscard]] std::string CurrentFolder();

}  // namespace quenlar::win32
