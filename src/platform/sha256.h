// The SHA-256 digest of a text (FIPS 180-4), by a library of the system.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// 64 hexadecimal digits in lower case. Throws std::bad_alloc where the library has no memory. Each platform room
// defines its own.
[[nodiscard]] std::string Sha256Hex(std::string_view bytes);

// For these rooms: the digits of 32 bytes.
[[nodiscard]] std::string LowerHex(std::string_view bytes);

}  // namespace quenlar
