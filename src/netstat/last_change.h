// The time of an interface's last change, as the object model publishes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// Returns a single-precision number as text: up to seven significant digits and no trailing zeros. From ten million on
// it has the form 1.234568E+07.
[[nodiscard]] std::string SingleText(float value);

// Returns the date that a text stands for, in days since 1899-12-30. The text must be a number and nothing else: digits
// with an optional sign, fraction and exponent. Empty for any other text, and for dates outside the years 100 to 9999.
[[nodiscard]] std::optional<double> DateFromNumberText(std::string_view text);

// Turns the counter of the last change into a date: it is taken as a signed number in single precision, written as
// text, and the first five characters of that text are read as a date. Empty when they are not a date.
//
// The result is not a useful time. A large counter loses its exponent ("1.234E+07" becomes "1.234") or is cut in the
// middle of it ("1.2E+", which is not a date). The property keeps the values that it has always had.
// Kept: LastChange.GoesThroughTheFirstFiveCharactersOfASinglePrecisionText.
[[nodiscard]] std::optional<double> LastChangeDate(std::uint32_t last_change);

}  // namespace quenlar
