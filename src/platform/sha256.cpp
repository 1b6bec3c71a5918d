#include "platform/sha256.h"

#include "base/ascii.h"

namespace quenlar {

std::string LowerHex(std::string_view bytes) {
  std::string digits;
  digits.reserve(bytes.size() * 2);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    digits += ToLower(kHexDigits[byte >> 4]);
    digits += ToLower(kHexDigits[byte & 15]);
  }
  return digits;
}

}  // namespace quenlar
