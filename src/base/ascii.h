// Text helpers that look at ASCII bytes only. Every other byte (all of a multi-byte UTF-8 character) passes
// through unchanged and never matches a letter, so the result does not depend on any locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quenlar {

constexpr char ToLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
// Sets the lower-case bit of every ASCII capital among eight bytes.
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

// A word character of the regular expressions (`\w`): letters, digits and the underscore.
constexpr bool IsWord(char c) { return IsLetter(c) || IsDigit(c) || c == '_'; }

[[nodiscard]] std::string Lower(std::string_view text);

inline constexpr char kHexDigits[] = "0123456789ABCDEF";

// The percent code of a byte: "%20" for a blank.
[[nodiscard]] inline std::string PercentCode(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
}

[[nodiscard]] bool EqualsIgnoreCase(std::string_view a, std::string_view b);

// `lower_prefix`, `lower_suffix` and `lower_needle` are given in lower case.
[[nodiscard]] constexpr bool StartsWithIgnoreCase(std::string_view text, std::string_view lower_prefix) {
  if (text.size() < lower_prefix.size()) return false;
  for (std::size_t i = 0; i < lower_prefix.size(); ++i) {
    if (ToLower(text[i]) != lower_prefix[i]) return false;
  }
  return true;
}
[[nodiscard]] bool EndsWithIgnoreCase(std::string_view text, std::string_view lower_suffix);

// The byte position of the first occurrence at or after `from`, or npos. Looks at many bytes at a time; linear for
// needles that do not repeat themselves, which is all that is looked for.
[[nodiscard]] std::size_t FindIgnoreCase(std::string_view text, std::string_view lower_needle, std::size_t from = 0);
[[nodiscard]] inline bool ContainsIgnoreCase(std::string_view text, std::string_view lower_needle) {
  return FindIgnoreCase(text, lower_needle) != std::string_view::npos;
}

// Cuts blanks (U+0020, nothing else) at both ends.
[[nodiscard]] std::string_view TrimBlanks(std::string_view text);

// `needle` must not be empty.
[[nodiscard]] std::string ReplaceAll(std::string_view text, std::string_view needle, std::string_view replacement);

// The pieces between the separators; one piece (the whole text) when there is no separator. The views point
// into `text`.
[[nodiscard]] std::vector<std::string_view> Split(std::string_view text, std::string_view separator);

}  // namespace quenlar
