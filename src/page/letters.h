// Characters beyond ASCII as words are made of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quenlar {

enum class LetterKind : std::uint8_t {
  kNone,       // a blank, a sign, a picture, or bytes that are not UTF-8: a word ends at it
  kParted,     // a letter, mark or digit of a script that puts blanks between words: Latin, Greek, Cyrillic, Arabic ...
  kUnparted,   // one of a script that does not, or of Korean: text may touch what is written in other letters
  kInvisible,  // nothing is seen of it: soft hyphen, zero width blanks and joiners, variation selectors
};

// What `code`, which is beyond ASCII, is.
[[nodiscard]] LetterKind KindOfLetter(char32_t code);

struct Letter {
  LetterKind kind = LetterKind::kNone;
  std::size_t bytes = 1;
};

// The character beyond ASCII that begins at `at`, and the one that ends before `end`. Bytes that are not UTF-8 are one
// by one of the kind kNone.
[[nodiscard]] Letter LetterAt(std::string_view text, std::size_t at);
[[nodiscard]] Letter LetterBefore(std::string_view text, std::size_t end);

}  // namespace quenlar
