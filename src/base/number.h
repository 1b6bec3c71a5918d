// Reads numbers from text that people or other programs wrote, narrows them to the widths that settings have, and puts
// them into sentences.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// Returns the number at the beginning of `text`. Leading blanks are skipped. Reading stops at the first character that
// cannot continue a decimal number with sign, digits, fraction and exponent. So " 12 apples" gives 12. A text that does
// not begin with a number gives 0, and so do "nan" and "inf". A number too large for a double gives infinity. The
// locale makes no difference.
[[nodiscard]] double LeadingNumber(std::string_view text);

// Rounds to the nearest integer, halves to the even one. Empty when the result does not fit into the width, and for
// infinity and values that are not numbers.
[[nodiscard]] std::optional<std::int16_t> RoundToInt16(double value);
[[nodiscard]] std::optional<std::int32_t> RoundToInt32(double value);

// "1 page", "2 pages": the number and what it counts. `ending` is what the plural adds to `what`.
[[nodiscard]] std::string Counted(std::uint64_t count, std::string_view what, std::string_view ending = "s");

}  // namespace quenlar
