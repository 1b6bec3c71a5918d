// Texts between the program (UTF-8) and the system (UTF-16).
#pragma once

#include <string>
#include <string_view>

namespace quenlar::win32 {

// Malformed sequences become U+FFFD.
[[nodiscard]] std::wstring ToWide(std::string_view utf8);
// Lone surrogates become U+FFFD.
[[nodiscard]] std::string FromWide(std::wstring_view wide);

// The system's name for a file: backslashes, and beyond the length that old calls take, the prefix "\\?\". A path with
// a NUL, which the system would take for its end, gives a name that no file can have.
[[nodiscard]] std::wstring NativePath(std::string_view utf8_path);

// The process's current directory, UTF-8.
[[nodiscard]] std::string CurrentFolder();

}  // namespace quenlar::win32
