#include "base/windows1252.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace quenlar {
namespace {

constexpr std::array<std::uint16_t, 32> kHigh = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6,
                                                 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018,
                                                 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161,
                                                 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};  // bytes 0x80 to 0x9F

// The byte for a character, or '?'.
char Encode(std::uint32_t character) {
  if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return static_cast<char>(character);
  for (std::size_t i = 0; i < kHigh.size(); ++i) {
    if (kHigh[i] == character) return static_cast<char>(0x80 + i);
  }
  return '?';
}

// A byte as UTF-8, three bytes at most, and its length behind them. That makes four bytes, so one store writes them
// all. The next character overwrites the length.
struct Utf8 {
  char bytes[3];
  std::uint8_t length;
};
static_assert(sizeof(Utf8) == 4);

constexpr Utf8 ToUtf8(std::uint32_t character) {
  const auto rest = [&](int shift) { return static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) return {{static_cast<char>(character)}, 1};
  if (character < 0x800) return {{static_cast<char>(0xC0 | (character >> 6)), rest(0)}, 2};
  return {{static_cast<char>(0xE0 | (character >> 12)), rest(6), rest(0)}, 3};
}

constexpr std::array<Utf8, 256> MakeUtf8() {
  std::array<Utf8, 256> table{};
  for (std::uint32_t i = 0; i < table.size(); ++i) table[i] = ToUtf8(i >= 0x80 && i <= 0x9F ? kHigh[i - 0x80] : i);
  return table;
}
constexpr std::array<Utf8, 256> kUtf8 = MakeUtf8();

constexpr std::uint64_t kTopBits = 0x8080808080808080u;

inline std::uint64_t Eight(const char* bytes) {
  std::uint64_t eight;
  std::memcpy(&eight, bytes, sizeof eight);
  return eight;
}

// Writes the byte and up to three bytes behind it; returns where the next one goes.
inline char* PutByte(char* out, char byte) {
  const Utf8& utf8 = kUtf8[static_cast<unsigned char>(byte)];
  std::memcpy(out, &utf8, sizeof utf8);
  return out + utf8.length;
}

// Reads one character and moves `at` behind it. A malformed sequence reads as U+FFFD and is one byte long.
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
  std::size_t i = 0;
  for (; i + 32 <= bytes.size(); i += 32) {
    const char* const at = bytes.data() + i;
    if (((Eight(at) | Eight(at + 8) | Eight(at + 16) | Eight(at + 24)) & kTopBits) != 0) return false;
  }
  for (; i < bytes.size(); ++i) {
    if (static_cast<unsigned char>(bytes[i]) > 127) return false;
  }
  return true;
}

// Nearly all pages are ASCII with a few other characters, so ASCII is copied eight bytes at a time.
std::string Windows1252ToUtf8(std::string bytes) {
  if (IsAscii(bytes)) return bytes;
  constexpr std::size_t kPiece = 1024;
  char piece[3 * kPiece + sizeof(Utf8)];
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  const char* at = bytes.data();
  for (std::size_t left = bytes.size(); left > 0;) {
    const char* const end = at + std::min(left, kPiece);
    left -= static_cast<std::size_t>(end - at);
    char* out = piece;
    for (; end - at >= 8; at += 8) {
      // A long stretch of ASCII is copied in longer steps.
      for (; end - at >= 24 && ((Eight(at) | Eight(at + 8)) & kTopBits) == 0; at += 16) {
        std::memcpy(out, at, 16);
        out += 16;
      }
      const std::uint64_t eight = Eight(at);
      if ((eight & kTopBits) == 0) {
        std::memcpy(out, &eight, sizeof eight);
        out += sizeof eight;
      } else {
        for (int i = 0; i < 8; ++i) out = PutByte(out, at[i]);
      }
    }
    while (at < end) out = PutByte(out, *at++);
    text.append(piece, static_cast<std::size_t>(out - piece));
  }
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
