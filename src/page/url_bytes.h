// What each byte of a URL is to the WHATWG URL Standard: the sets of bytes that are percent-encoded, and others that
// its parser looks for.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/ascii.h"

namespace quenlar {

// Sets of bytes, as bits.
enum UrlByteSet : std::uint8_t {
  kEncodedInQuery = 1,     // "special-query percent-encode set"
  kEncodedInPath = 2,      // "path percent-encode set"
  kEncodedInUserinfo = 4,  // "userinfo percent-encode set"
  kForbiddenInDomain = 8,  // "forbidden domain code points"
  kPlainDomainByte = 16,   // stands for itself in a domain: small letters, digits, "-", ".", "_"
  kEndsSegment = 32,       // "/", "\", "?", "#"
};

namespace url_bytes {

constexpr bool Contains(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

constexpr std::uint8_t SetsOf(unsigned byte) {
  const char c = static_cast<char>(byte);
  const bool control = byte < 0x20 || byte == 0x7F;
  const bool encoded = control || byte > 0x7E || c == ' ';
  std::uint8_t sets = 0;
  if (encoded || Contains("\"#<>'", c)) sets |= kEncodedInQuery;
  if (encoded || Contains("\"#<>?^`{}", c)) sets |= kEncodedInPath;
  if (encoded || Contains("\"#<>?^`{}/:;=@[\\]|", c)) sets |= kEncodedInUserinfo;
  if (control || Contains(" #/:<>?@[\\]^|%", c)) sets |= kForbiddenInDomain;
  if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || Contains("-._", c)) sets |= kPlainDomainByte;
  if (Contains("/\\?#", c)) sets |= kEndsSegment;
  return sets;
}

constexpr auto kTable = [] {
  std::array<std::uint8_t, 256> table{};
  for (unsigned byte = 0; byte < 256; ++byte) table[byte] = SetsOf(byte);
  return table;
}();

}  // namespace url_bytes

// True when the byte is in one of the sets.
[[nodiscard]] constexpr bool IsUrlByte(char c, std::uint8_t sets) {
  return (url_bytes::kTable[static_cast<unsigned char>(c)] & sets) != 0;
}

// 0 to 15, or -1.
[[nodiscard]] constexpr int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

inline void AppendPercentEncoded(char c, std::string& out) {
  const auto byte = static_cast<unsigned char>(c);
  out += {'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]};
}

}  // namespace quenlar
