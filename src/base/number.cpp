#include "base/number.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "base/ascii.h"

namespace quenlar {
namespace {

template <typename Int>
std::optional<Int> RoundTo(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  const double floor = std::floor(value);
  const double fraction = value - floor;
  const bool up = fraction > 0.5 || (fraction == 0.5 && std::fmod(floor, 2.0) != 0.0);
  const double rounded = up ? floor + 1 : floor;
  if (rounded < std::numeric_limits<Int>::min() || rounded > std::numeric_limits<Int>::max()) return std::nullopt;
  return static_cast<Int>(rounded);
}

}  // namespace

double LeadingNumber(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return 0;
  text.remove_prefix(first);
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') text.remove_prefix(1);
  // from_chars would read "inf" and "nan", which count as 0 here.
  if (text.empty() || !(IsDigit(text.front()) || text.front() == '.')) return 0;
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return 0;
  if (error == std::errc::result_out_of_range) {
    // The number is too large, or too small to differ from 0. Only a large one has a positive
    // exponent or a long integer part.
    const std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.data()));
    const bool tiny = number.find("e-") != number.npos || number.find("E-") != number.npos;
    value = tiny ? 0 : std::numeric_limits<double>::infinity();
  }
  return negative ? -value : value;
}

std::optional<std::int16_t> RoundToInt16(double value) { return RoundTo<std::int16_t>(value); }
std::optional<std::int32_t> RoundToInt32(double value) { return RoundTo<std::int32_t>(value); }

std::string Counted(std::uint64_t count, std::string_view what, std::string_view ending) {
  return std::to_string(count).append(" ").append(what).append(count == 1 ? "" : ending);
}

}  // namespace quenlar
