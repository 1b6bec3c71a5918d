#include "page/text_codes.h"

#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

int HexDigit(char c) {
  if (IsDigit(c)) return c - '0';
  const char small = ToLower(c);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

// The number that `digits` hexadecimal digits at `at` write.
std::optional<std::uint32_t> ReadHex(std::string_view text, std::size_t at, std::size_t digits) {
  if (text.size() < at + digits) return std::nullopt;
  std::uint32_t number = 0;
  for (const char c : text.substr(at, digits)) {
    const int digit = HexDigit(c);
    if (digit < 0) return std::nullopt;
    number = number << 4 | static_cast<std::uint32_t>(digit);
  }
  return number;
}

// Decodes "\uXXXX" at `at`, and its second half where it is one of a pair. Returns how many bytes that took, or 0.
std::size_t DecodeUnit(std::string_view script, std::size_t at, std::string& decoded) {
  const auto unit = ReadHex(script, at + 2, 4);
  if (!unit) return 0;
  if ((*unit & 0xF800) != 0xD800) {
    AppendUtf8(*unit, decoded);
    return 6;
  }
  if (*unit < 0xDC00 && script.substr(at + 6, 2) == "\\u") {
    const auto second = ReadHex(script, at + 8, 4);
    if (second && (*second & 0xFC00) == 0xDC00) {
      AppendUtf8(0x10000 + ((*unit & 0x3FF) << 10 | (*second & 0x3FF)), decoded);
      return 12;
    }
  }
  AppendUtf8(0xFFFD, decoded);
  return 6;
}

// Decodes the escape that begins at `at`. Returns how many bytes it took.
std::size_t DecodeEscape(std::string_view script, std::size_t at, std::string& decoded) {
  const char kind = at + 1 < script.size() ? script[at + 1] : '\0';
  if (kind == 'u') {
    if (const std::size_t bytes = DecodeUnit(script, at, decoded)) return bytes;
  } else if (kind == 'x') {
    if (const auto code = ReadHex(script, at + 2, 2)) {
      AppendUtf8(*code, decoded);
      return 4;
    }
  } else if (kind == '/' || kind == '\'' || kind == '\\') {
    decoded += kind;
    return 2;
  } else if (kind != '\0' && std::string_view("nrtbfv").find(kind) != kNone) {
    decoded += ' ';
    return 2;
  }
  decoded += '\\';
  return 1;
}

}  // namespace

void DecodeEscapes(std::string_view script, std::string& decoded) {
  decoded.clear();
  std::size_t from = 0;
  for (std::size_t at = FindByte(script, '\\'); at != kNone; at = FindByte(script, '\\', from)) {
    decoded.append(script.substr(from, at - from));
    from = at + DecodeEscape(script, at, decoded);
  }
  decoded.append(script.substr(from));
}

void DecodePercentSigns(std::string_view text, std::string& decoded) {
  decoded.clear();
  std::size_t from = 0;
  for (std::size_t at = FindByte(text, '%'); at != kNone; at = FindByte(text, '%', at + 1)) {
    const auto byte = ReadHex(text, at + 1, 2);
    if (!byte) continue;
    decoded.append(text.substr(from, at - from)).append(1, static_cast<char>(*byte));
    from = at + 3;
    at += 2;
  }
  decoded.append(text.substr(from));
}

bool DecodeKeyedHex(std::string_view hex, std::string& decoded) {
  decoded.clear();
  if (hex.size() < 2 || hex.size() % 2 != 0) return false;
  const auto key = ReadHex(hex, 0, 2);
  for (std::size_t at = 2; key && at < hex.size(); at += 2) {
    const auto byte = ReadHex(hex, at, 2);
    if (!byte) return false;
    decoded += static_cast<char>(*byte ^ *key);
  }
  return key.has_value();
}

void Reverse(std::string_view text, std::string& reversed) {
  reversed.resize(text.size());
  std::size_t left = text.size();
  while (!text.empty()) {
    const std::size_t known = DecodeUtf8(text).bytes;
    const std::size_t bytes = known == 0 ? 1 : known;
    left -= bytes;
    text.copy(reversed.data() + left, bytes);
    text.remove_prefix(bytes);
  }
}

}  // namespace quenlar
