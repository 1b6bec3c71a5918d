#include "platform/punycode.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "base/ascii.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr std::size_t kMaxLabelBytes = 63;

// The parameters of RFC 3492, section 5.
constexpr std::uint32_t kBase = 36, kTMin = 1, kTMax = 26, kSkew = 38, kDamp = 700, kInitialBias = 72;

char32_t LowerCode(char32_t code) {
  if (code >= 0xC0 && code <= 0xDE && code != 0xD7) return code + 0x20;  // Latin-1
  if (code >= 0x100 && code <= 0x137 && code != 0x130) return code | 1;  // Latin Extended-A, by pairs
  if (code >= 0x14A && code <= 0x177) return code | 1;
  if ((code >= 0x139 && code <= 0x148) || (code >= 0x179 && code <= 0x17E)) return code + (code & 1);
  if (code == 0x178) return 0xFF;
  if (code >= 0x391 && code <= 0x3AB) return code + 0x20;  // Greek
  if (code == 0x386) return 0x3AC;                         // and its letters with an accent
  if (code >= 0x388 && code <= 0x38A) return code + 0x25;
  if (code == 0x38C) return 0x3CC;
  if (code == 0x38E || code == 0x38F) return code + 0x3F;
  if (code >= 0x410 && code <= 0x42F) return code + 0x20;  // Cyrillic
  if (code >= 0x400 && code <= 0x40F) return code + 0x50;
  return code;
}

std::uint32_t Adapt(std::uint32_t delta, std::uint32_t points, bool first) {
  delta = first ? delta / kDamp : delta / 2;
  delta += delta / points;
  std::uint32_t k = 0;
  for (; delta > (kBase - kTMin) * kTMax / 2; k += kBase) delta /= kBase - kTMin;
  return k + (kBase - kTMin + 1) * delta / (delta + kSkew);
}

char Digit(std::uint32_t value) { return static_cast<char>(value < 26 ? 'a' + value : '0' + value - 26); }

// A number as a sequence of digits whose weights depend on `bias`.
void AppendNumber(std::uint32_t number, std::uint32_t bias, std::string& out) {
  for (std::uint32_t k = kBase;; k += kBase) {
    const std::uint32_t threshold = k <= bias ? kTMin : std::min(k - bias, kTMax);
    if (number < threshold) break;
    out += Digit(threshold + (number - threshold) % (kBase - threshold));
    number = (number - threshold) / (kBase - threshold);
  }
  out += Digit(number);
}

}  // namespace

std::optional<std::string> PunycodeLabel(std::string_view label) {
  std::vector<char32_t> codes;
  std::string out = "xn--";
  while (!label.empty()) {
    const Utf8Character character = DecodeUtf8(label);
    if (character.bytes == 0 || codes.size() == kMaxLabelBytes) return std::nullopt;
    codes.push_back(character.code < 0x80 ? static_cast<unsigned char>(ToLower(label.front()))
                                          : LowerCode(character.code));
    if (codes.back() < 0x80) out += static_cast<char>(codes.back());
    label.remove_prefix(character.bytes);
  }
  const auto basic = static_cast<std::uint32_t>(out.size() - 4);
  if (basic > 0) out += '-';

  // At most 63 codes below 2^21, so no sum below can overflow.
  std::uint32_t delta = 0, bias = kInitialBias, handled = basic;
  char32_t next = 0x80;
  while (handled < codes.size()) {
    char32_t smallest = 0x10FFFF;
    for (const char32_t code : codes) {
      if (code >= next) smallest = std::min(smallest, code);
    }
    delta += static_cast<std::uint32_t>(smallest - next) * (handled + 1);
    next = smallest;
    for (const char32_t code : codes) {
      if (code < next) ++delta;
      if (code != next) continue;
      AppendNumber(delta, bias, out);
      bias = Adapt(delta, handled + 1, handled == basic);
      delta = 0;
      ++handled;
    }
    ++delta;
    ++next;
  }
  if (out.size() > kMaxLabelBytes) return std::nullopt;
  return out;
}

}  // namespace quenlar
