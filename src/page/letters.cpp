#include "page/letters.h"

#include <algorithm>
#include <iterator>

#include "page/letter_ranges.h"
#include "platform/utf8.h"

namespace quenlar {

LetterKind KindOfLetter(char32_t code) {
  const std::uint32_t last_kind = 3;
  const auto* const behind = std::upper_bound(std::begin(kLetterRanges), std::end(kLetterRanges),
                                              static_cast<std::uint32_t>(code) * 4 + last_kind);
  return behind == std::begin(kLetterRanges) ? LetterKind::kNone : static_cast<LetterKind>(behind[-1] & last_kind);
}

Letter LetterAt(std::string_view text, std::size_t at) {
  const Utf8Character character = DecodeUtf8(text.substr(at));
  if (character.bytes == 0) return {};
  return {KindOfLetter(character.code), character.bytes};
}

Letter LetterBefore(std::string_view text, std::size_t end) {
  const std::size_t longest = std::min<std::size_t>(end, 4);
  for (std::size_t bytes = 2; bytes <= longest; ++bytes) {
    const Utf8Character character = DecodeUtf8(text.substr(end - bytes, bytes));
    if (character.bytes == bytes) return {KindOfLetter(character.code), bytes};
  }
  return {};
}

}  // namespace quenlar
