// Text made fit to be shown on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// Returns a copy in which control characters (ESC, line ends, the C1 range) and bytes that are not UTF-8 are "?". So no
// page can steer the terminal. Every other character stays, and so do tabs, which part the columns of lists.
[[nodiscard]] std::string ForTerminal(std::string_view text);

// Returns the first `columns` characters of the text. Every character counts as one column.
[[nodiscard]] std::string_view FirstColumns(std::string_view utf8, int columns);

[[nodiscard]] bool IsUtf8(std::string_view text);

}  // namespace quenlar
