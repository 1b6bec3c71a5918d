// Numbers read from text that people or foreign programs wrote, and their narrowing to stored widths.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quenlar {

// The number at the beginning of `text`: leading blanks are skipped, reading stops at the first character that
// cannot continue a decimal number (sign, digits, fraction, exponent). No number gives 0; a number too large for
// a double gives infinity. "nan" and "inf" are no numbers.
[[nodiscard]] double LeadingNumber(std::string_view text);

// Rounds to the nearest integer, halves to even, and narrows; empty when the result does not fit (or is not finite).
[[nodiscard]] std::optional<std::int16_t> RoundToInt16(double value);
[[nodiscard]] std::optional<std::int32_t> RoundToInt32(double value);

}  // namespace quenlar
