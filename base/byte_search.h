// Searches for single bytes, many of them at a time.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// The position of the first `byte` in text[from, end), or npos. `from` may lie behind the end.
[[nodiscard]] std::size_t FindByte(std::string_view text, char byte, std::size_t from = 0);

// The position of the last `byte` in text[from, end), or npos. `end` is at most text.size().
[[nodiscard]] std::size_t FindLastByte(std::string_view text, char byte, std::size_t from, std::size_t end);

}  // namespace quenlar
