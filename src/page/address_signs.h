// Where in a text an address may stand, found many bytes at a time.
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// The first place in text[from, end) that is worth a closer look, or npos:
// - "@";
// - an opening bracket with the first letter of a word for "at" or "dot" behind it, or a blank;
// - the last byte of a blank with the first letters of a word for "dot" behind it.
// All such places are found, but for those too near to the end of the text for an address. Some others are found too.
[[nodiscard]] std::size_t FindMailSign(std::string_view text, std::size_t from);

// The same, and also a backslash that may begin an escape for "@".
[[nodiscard]] std::size_t FindScriptSign(std::string_view text, std::size_t from);

}  // namespace quenlar
