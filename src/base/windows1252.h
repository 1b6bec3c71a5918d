// The Windows-1252 code page, which stands in for the system's ANSI code page where the system has none.
// Table: https://encoding.spec.whatwg.org/index-windows-1252.txt (the five unassigned bytes are the C1 controls).
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

[[nodiscard]] std::string Windows1252ToUtf8(std::string bytes);
[[nodiscard]] std::string Utf8ToWindows1252(std::string text);

// True when no byte is above 127.
[[nodiscard]] bool IsAscii(std::string_view bytes);

}  // namespace quenlar
