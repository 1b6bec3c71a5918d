#include "crawl/host_pace.h"

#include <algorithm>
#include <charconv>

#include "base/ascii.h"

namespace quenlar {

CrawlDuration HostPace::Pause(CrawlDuration took) const {
  return std::max({delay_, crawl_delay_, delay_.count() == 0 ? CrawlDuration{0} : took});
}

void HostPace::OnAnswer(CrawlTime now, CrawlDuration took) {
  busy_pause_ = {};
  OnFailure(now, took);
}

void HostPace::OnFailure(CrawlTime now, CrawlDuration took) {
  parked_ = false;
  ready_ = now + Pause(took);
}

void HostPace::OnBusy(CrawlTime now, CrawlDuration took, std::optional<CrawlDuration> retry_after) {
  const CrawlDuration usual = Pause(took);
  if (retry_after) {
    Park(now, std::max(usual, std::min(*retry_after, kLongestPark)));
    return;
  }
  const CrawlDuration before = std::max({busy_pause_, usual, kShortestBusyPause});
  busy_pause_ = std::min(before * 2, kLongestBusyPause);
  Park(now, std::max(busy_pause_, usual));
}

void HostPace::Park(CrawlTime now, CrawlDuration pause) {
  ready_ = now + pause;
  parked_ = true;
}

namespace {

// Days from 1970-01-01 to a date of the Gregorian calendar.
std::optional<std::int64_t> DaysTo(int year, int month, int day) {
  const std::chrono::year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date).time_since_epoch().count();
}

std::optional<int> Number(std::string_view digits) {
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || digits.empty()) return std::nullopt;
  return value;
}

// The form that servers must send: "Sun, 06 Nov 1994 08:49:37 GMT".
std::optional<std::int64_t> HttpDate(std::string_view text) {
  constexpr std::size_t kLength = 29;
  constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
  if (text.size() != kLength || text.substr(25) != " GMT") return std::nullopt;
  const std::size_t month = kMonths.find(text.substr(8, 3));
  const auto day = Number(text.substr(5, 2)), year = Number(text.substr(12, 4)), hour = Number(text.substr(17, 2)),
             minute = Number(text.substr(20, 2)), second = Number(text.substr(23, 2));
  if (month == std::string_view::npos || month % 3 != 0 || !day || !year || !hour || !minute || !second) {
    return std::nullopt;
  }
  const auto days = DaysTo(*year, static_cast<int>(month / 3) + 1, *day);
  if (!days) return std::nullopt;
  return ((*days * 24 + *hour) * 60 + *minute) * 60 + *second;
}

}  // namespace

std::optional<CrawlDuration> RetryAfter(std::string_view value, std::int64_t now_utc) {
  const auto longest = std::chrono::duration_cast<std::chrono::seconds>(kLongestPark).count();
  std::int64_t seconds = 0;
  if (!value.empty() && std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    const auto number = Number(value);
    seconds = number ? *number : longest;  // more digits than a number holds
  } else if (const auto date = HttpDate(value)) {
    seconds = *date - now_utc;
  } else {
    return std::nullopt;
  }
  return std::chrono::seconds(std::clamp<std::int64_t>(seconds, 0, longest));
}

}  // namespace quenlar
