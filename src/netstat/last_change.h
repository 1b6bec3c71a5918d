// The time of an interface's last change, by way of a text that is cut short.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// A single-precision number as text: up to seven significant digits, no trailing zeros, in the form 1.234568E+07 from
// ten million on.
[[nodiscard]] std::string SingleText(float value);

// The date that a number text stands for: the number (digits, an optional sign, fraction and exponent, nothing else)
// counts days since 1899-12-30. Empty for any other text, and outside the years 100 to 9999.
[[nodiscard]] std::optional<double> DateFromNumberText(std::string_view text);

// The last change's counter taken as a signed number, in single precision, as text, of which the first five characters
// are read as a date. Meant, and good for nothing: large counters lose their exponent ("1.234E+07" becomes "1.234") or
// end in the middle of it ("1.2E+"), and the latter are no date.
[[nodiscard]] std::optional<double> LastChangeDate(std::uint32_t last_change);

}  // namespace quenlar
