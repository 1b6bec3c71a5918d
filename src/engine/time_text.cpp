#include "engine/time_text.h"

#include <charconv>
#include <chrono>

#include <fmt/format.h>

namespace quenlar {
namespace {

// The number at the beginning of `text`, of exactly `digits` digits; `text` goes on behind it.
std::optional<int> Take(std::string_view& text, std::size_t digits) {
  if (text.size() < digits || text[0] == '-' || text[0] == '+') return std::nullopt;
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + digits, value);
  if (error != std::errc() || end != text.data() + digits) return std::nullopt;
  text.remove_prefix(digits);
  return value;
}

bool TakeSign(std::string_view& text, std::string_view signs) {
  if (text.empty() || signs.find(text[0]) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<std::chrono::year_month_day> TakeDate(std::string_view& text) {
  const auto year = Take(text, 4);
  if (!year || !TakeSign(text, "-")) return std::nullopt;
  const auto month = Take(text, 2);
  if (!month || !TakeSign(text, "-")) return std::nullopt;
  const auto day = Take(text, 2);
  if (!day) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  return date.ok() ? std::optional(date) : std::nullopt;
}

}  // namespace

std::string TimeText(std::int64_t seconds) {
  constexpr std::int64_t kDay = 24 * 60 * 60;
  std::int64_t days = seconds / kDay, rest = seconds % kDay;
  if (rest < 0) {
    --days;
    rest += kDay;
  }
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(days))};
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), rest / 3600,
                     rest / 60 % 60, rest % 60);
}

std::optional<std::int64_t> ParseTime(std::string_view text) {
  const auto date = TakeDate(text);
  if (!date) return std::nullopt;
  std::int64_t seconds = std::chrono::sys_days(*date).time_since_epoch().count() * 24 * 60 * 60;
  if (text.empty()) return seconds;
  if (!TakeSign(text, "Tt ")) return std::nullopt;
  const auto hour = Take(text, 2);
  if (!hour || *hour > 23 || !TakeSign(text, ":")) return std::nullopt;
  const auto minute = Take(text, 2);
  if (!minute || *minute > 59) return std::nullopt;
  seconds += *hour * 3600 + *minute * 60;
  if (TakeSign(text, ":")) {
    const auto second = Take(text, 2);
    if (!second || *second > 59) return std::nullopt;
    seconds += *second;
  }
  TakeSign(text, "Zz");
  return text.empty() ? std::optional(seconds) : std::nullopt;
}

}  // namespace quenlar
