// Text helpers that look at ASCII bytes only. Every other byte (all of a multi-byte UTF-8 character) passes
// through unchanged and never matches a letter, so the result does not depend on any locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quenlar {

// Returns the small letter of an ASCII capital, and every other byte as it is.
constexpr char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
// ToLower for eight bytes at once. In each byte, adding 0x80 - 'A' to the low seven bits sets the top bit from 'A' on,
// and adding 0x7F - 'Z' sets it from 'Z' + 1 on. The bytes in which the two differ, and whose own top bit is clear, are
// the capitals. Their top bit, moved down by two, is the bit 0x20 that makes a letter small.
constexpr std::uint64_t LowerEight(std::uint64_t bytes) {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  const std::uint64_t low_bits = bytes & (kOnes * 0x7F);
  const std::uint64_t from_a = low_bits + kOnes * (0x80 - 'A');
  const std::uint64_t above_z = low_bits + kOnes * (0x7F - 'Z');
  const std::uint64_t capitals = ~bytes & (from_a ^ above_z) & (kOnes * 0x80);
  return bytes | (capitals >> 2);
}

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsLetter(char c) { return ToLower(c) >= 'a' && ToLower(c) <= 'z'; }

// A word character as regular expressions define it (`\w`): a letter, a digit or the underscore.
constexpr bool IsWord(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }

// Returns a copy with every ASCII capital made small.
[[nodiscard]] std::string Lower(std::string_view text);

inline constexpr char kHexDigits[] = "0123456789ABCDEF";

// The percent code of a byte: "%20" for a blank.
[[nodiscard]] inline std::string PercentCode(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
}

// Returns whether both texts are the same when ASCII letter case is ignored.
[[nodiscard]] bool EqualsIgnoreCase(std::string_view a, std::string_view b);

// Whether `text` begins or ends with a text, ASCII letter case ignored. The second argument is given in lower case.
[[nodiscard]] constexpr bool StartsWithIgnoreCase(std::string_view text, std::string_view lower_prefix) {
  if (text.size() < lower_prefix.size()) return false;
  for (std::size_t i = 0; i < lower_prefix.size(); ++i) {
    if (ToLower(text[i]) != lower_prefix[i]) return false;
  }
  return true;
}
[[nodiscard]] bool EndsWithIgnoreCase(std::string_view text, std::string_view lower_suffix);

// Returns the byte position of the first occurrence of `lower_needle` at or after `from`, or npos. Letter case is
// ignored, and the needle is given in lower case. Compares many bytes at a time. The time is linear for a needle that
// does not repeat itself, such as "href="; no caller has another kind.
[[nodiscard]] std::size_t FindIgnoreCase(std::string_view text, std::string_view lower_needle, std::size_t from = 0);
[[nodiscard]] inline bool ContainsIgnoreCase(std::string_view text, std::string_view lower_needle) {
  return FindIgnoreCase(text, lower_needle) != std::string_view::npos;
}

// Returns the text without the blanks at its ends. A blank is U+0020 and nothing else: tabs and line ends stay.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);

// Returns a copy in which every occurrence of `needle` is replaced, from left to right. `needle` must not be empty.
[[nodiscard]] std::string ReplaceAll(std::string_view text, std::string_view needle, std::string_view replacement);

// Returns the pieces between the separators, empty ones too. A text without a separator gives one piece, the whole
// text. The views point into `text`.
[[nodiscard]] std::vector<std::string_view> Split(std::string_view text, std::string_view separator);

}  // namespace quenlar
