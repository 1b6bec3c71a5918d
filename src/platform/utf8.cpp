#include "platform/utf8.h"

namespace quenlar {

Utf8Character DecodeUtf8(std::string_view text) {
  if (text.empty()) return {};
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(0) < 0x80) return {byte(0), 1};
  const std::size_t bytes = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
  if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < bytes) return {};
  char32_t code = byte(0) & (0x7F >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return {};
    code = code << 6 | (byte(i) & 0x3F);
  }
  static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < kSmallest[bytes] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {};
  return {code, bytes};
}

void AppendUtf8(char32_t code, std::string& to) {
  const auto rest = [&](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    to += static_cast<char>(code);
  } else if (code < 0x800) {
    to += {static_cast<char>(0xC0 | code >> 6), rest(0)};
  } else if (code < 0x10000) {
    to += {static_cast<char>(0xE0 | code >> 12), rest(6), rest(0)};
  } else {
    to += {static_cast<char>(0xF0 | code >> 18), rest(12), rest(6), rest(0)};
  }
}

}  // namespace quenlar
