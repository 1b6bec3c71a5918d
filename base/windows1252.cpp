#include "base/windows1252.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace quenlar {
namespace {

constexpr std::array<std::uint16_t, 32> kHigh = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6,
                                                 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018,
                                                 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161,
                                                 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};  // bytes 0x80 to 0x9F

std::uint32_t Decode(unsigned char byte) { return byte >= 0x80 && byte <= 0x9F ? kHigh[byte - 0x80] : byte; }

// The byte for a character, or '?'.
char Encode(std::uint32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return static_cast<char>(character);
  for (std::size_t i = 0; i < kHigh.size(); ++i) {
    if (kHigh[i] == character) return static_cast<char>(0x80 + i);
  }
  return '?';
}

void AppendUtf8(std::string& out, std::uint32_t character) {
  if (character < 0x80) {
    out += static_cast<char>(character);
  } else if (character < 0x800) {
    out += static_cast<char>(0xC0 | (character >> 6));
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (character >> 12));
    out += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  }
}

// Reads one character and moves `at` behind it; a malformed sequence is one bad byte long and reads as U+FFFD.
std::uint32_t NextCharacter(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) -> std::uint32_t { return static_cast<unsigned char>(text[i]); };
  const std::uint32_t lead = byte(at);
  const std::size_t length = lead < 0x80                   ? 1
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                             : lead >= 0xE0                ? 3
                             : lead >= 0xC2                ? 2
                                                           : 0;
  if (length == 1) return byte(at++);
  if (length == 0 || lead >= 0xF5 || at + length > text.size()) return ++at, 0xFFFD;
  std::uint32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return ++at, 0xFFFD;
    character = (character << 6) | (byte(at + i) & 0x3F);
  }
  at += length;
  return character;
}

}  // namespace

bool IsAscii(std::string_view bytes) {
  constexpr std::uint64_t kTopBits = 0x8080808080808080u;
  std::size_t i = 0;
  for (; i + 32 <= bytes.size(); i += 32) {
    std::uint64_t word[4];
    std::memcpy(word, bytes.data() + i, sizeof word);
    if (((word[0] | word[1] | word[2] | word[3]) & kTopBits) != 0) return false;
  }
  for (; i < bytes.size(); ++i) {
    if (static_cast<unsigned char>(bytes[i]) > 127) return false;
  }
  return true;
}

std::string Windows1252ToUtf8(std::string bytes) {
  if (IsAscii(bytes)) return bytes;
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char c : bytes) AppendUtf8(text, Decode(static_cast<unsigned char>(c)));
  return text;
}

std::string Utf8ToWindows1252(std::string text) {
  if (IsAscii(text)) return text;
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) bytes += Encode(NextCharacter(text, at));
  return bytes;
}

}  // namespace quenlar
