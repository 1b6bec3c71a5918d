// UTF-8, character by character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quenlar {

struct Utf8Character {
  char32_t code = 0;
  std::size_t bytes = 0;  // 0: the bytes at this place are no character
};

// Returns the character at the beginning of `text`, by RFC 3629: overlong forms, surrogates and codes above U+10FFFF
// are not characters. An empty text has none.
[[nodiscard]] Utf8Character DecodeUtf8(std::string_view text);

// `code` is a Unicode scalar value.
void AppendUtf8(char32_t code, std::string& to);

}  // namespace quenlar
