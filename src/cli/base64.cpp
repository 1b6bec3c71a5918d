#include "cli/base64.h"

#include <array>
#include <cstdint>

namespace quenlar {
namespace {

constexpr std::uint8_t kNoDigit = 64;

constexpr std::array<std::uint8_t, 256> MakeDigits() {
  std::array<std::uint8_t, 256> digits{};
  digits.fill(kNoDigit);
  constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    digits[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return digits;
}

constexpr auto kDigits = MakeDigits();

}  // namespace

std::optional<std::string> DecodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::size_t padding = 0;
  while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') ++padding;
  const std::size_t digits = text.size() - padding;

  std::string bytes;
  bytes.reserve(digits / 4 * 3 + 2);
  std::uint32_t bits = 0;
  int held = 0;  // bits that wait for a whole byte
  for (std::size_t i = 0; i < digits; ++i) {
    const std::uint8_t digit = kDigits[static_cast<unsigned char>(text[i])];
    if (digit == kNoDigit) return std::nullopt;
    bits = (bits << 6 | digit) & 0xFFFF;
    held += 6;
    if (held >= 8) {
      held -= 8;
      bytes += static_cast<char>(bits >> held & 0xFF);
    }
  }
  return bytes;
}

}  // namespace quenlar
