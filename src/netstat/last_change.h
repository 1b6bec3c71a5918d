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

// Turns the counter of the last change into a date: it is taken as a signed number in single precision, written as
// text, and the first five characters of that text are read as a date. Empty when they are not a date.
//
// The result is not a useful time. A large counter loses its exponent ("1.234E+07" becomes "1.234") or is cut in the
// middle of it ("1.2E+", which is not a date). The property keeps the values that it has always had.
// Kept: LastChange.GoesThroughTheFirstFiveCharactersOfASinglePrecisionText.
[[nodiscard]] std::optional<double> LastChangeDate(std::uint32_t last_change);

}  // namespace quenlar
