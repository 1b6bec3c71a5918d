#include "archive/warc_date.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "base/ascii.h"

namespace quenlar {
namespace {

constexpr std::size_t kParts = 6;  // year, month, day, hour, minute, second
using Parts = std::array<int, kParts>;

// Takes a number of exactly `digits` digits.
bool TakeNumber(std::string_view& text, std::size_t digits, int& number) {
  if (text.size() < digits || !std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(digits), IsDigit))
    return false;
  number = 0;
  for (const char c : text.substr(0, digits)) number = number * 10 + (c - '0');
  text.remove_prefix(digits);
  return true;
}

bool TakeSign(std::string_view& text, std::string_view signs) {
  if (text.empty() || signs.find(text[0]) == signs.npos) return false;
  text.remove_prefix(1);
  return true;
}

// Reads what stands behind the time: a fraction, then "Z" or an offset. `offset` becomes the offset's seconds.
bool TakeZone(std::string_view text, int& offset) {
  offset = 0;
  if (TakeSign(text, ".,")) text.remove_prefix(std::min(text.find_first_not_of("0123456789"), text.size()));
  if (text.empty() || text == "Z" || text == "z") return true;
  const bool west = text[0] == '-';
  int hours = 0, minutes = 0;
  if (!TakeSign(text, "+-") || !TakeNumber(text, 2, hours)) return false;
  TakeSign(text, ":");
  if (!text.empty() && !TakeNumber(text, 2, minutes)) return false;
  offset = (west ? -1 : 1) * (hours * 60 + minutes) * 60;
  return text.empty();
}

}  // namespace

std::optional<std::int64_t> ParseWarcDate(std::string_view text) {
  constexpr std::array<std::string_view, kParts> kSigns = {"", "-", "-", "Tt ", ":", ":"};
  Parts parts{1970, 1, 1, 0, 0, 0};
  text = TrimBlanks(text);
  const bool digits_alone = text.size() > 4 && IsDigit(text[4]);
  for (std::size_t i = 0; i < kParts && (i == 0 || !text.empty()); ++i) {
    if (i > 0 && !digits_alone && !TakeSign(text, kSigns[i])) break;
    if (!TakeNumber(text, i == 0 ? 4 : 2, parts[i])) return std::nullopt;
  }
  int offset = 0;
  if (!TakeZone(text, offset)) return std::nullopt;
  const auto [year, month, day, hour, minute, second] = parts;
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok() || hour > 23 || minute > 59 || second > 60) return std::nullopt;
  const std::int64_t days = std::chrono::sys_days(date).time_since_epoch().count();
  return ((days * 24 + hour) * 60 + minute) * 60 + second - offset;
}

}  // namespace quenlar
