// Text made fit to be shown on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// Control characters (ESC, line ends, the C1 range) and bytes that are no UTF-8 become "?", so that no page can steer
// the terminal. Every other character stays.
[[nodiscard]] std::string ForTerminal(std::string_view text);

// The first `columns` characters, counting every character as one column.
[[nodiscard]] std::string_view FirstColumns(std::string_view utf8, int columns);

[[nodiscard]] bool IsUtf8(std::string_view text);

}  // namespace quenlar
