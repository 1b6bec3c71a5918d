// When a host may be asked for its next page.
#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "base/status.h"

namespace quenlar {

using CrawlTime = std::chrono::steady_clock::time_point;
using CrawlDuration = std::chrono::milliseconds;

inline constexpr CrawlDuration kLongestPark = std::chrono::hours(1);          // that a Retry-After can ask for
inline constexpr CrawlDuration kLongestBusyPause = std::chrono::minutes(5);   // without one
inline constexpr CrawlDuration kShortestBusyPause = std::chrono::seconds(1);  // before the first doubling

// The pause between two pages of a host runs from the end of one to the start of the next. It is the longest of the
// pause that was asked for, the host's Crawl-delay and the time that the last answer took.
class HostPace {
 public:
  // A `delay` of 0 says that the server is one's own: the time of an answer then makes no pause.
  explicit HostPace(CrawlDuration delay = {}) : delay_(delay) {}

  void SetCrawlDelay(CrawlDuration crawl_delay) { crawl_delay_ = crawl_delay; }

  // A good answer has ended at `now`.
  void OnAnswer(CrawlTime now, CrawlDuration took);
  // An error of the server has come, or no answer. The next busy answer goes on with doubling the pause.
  void OnFailure(CrawlTime now, CrawlDuration took);
  // The host has too much to do (429, 503). Without `retry_after` each such answer in a row doubles the pause.
  void OnBusy(CrawlTime now, CrawlDuration took, std::optional<CrawlDuration> retry_after);
  // Nothing is asked for before now + `pause`.
  void Park(CrawlTime now, CrawlDuration pause);

  [[nodiscard]] CrawlTime ready() const { return ready_; }
  // The host asked for the wait at hand.
  [[nodiscard]] bool parked() const { return parked_; }

 private:
  [[nodiscard]] CrawlDuration Pause(CrawlDuration took) const;

  CrawlDuration delay_{0}, crawl_delay_{0};
  CrawlDuration busy_pause_{0};  // 0: the last answer was a good one
  CrawlTime ready_{};
  bool parked_ = false;
};

// How long a `Retry-After` header asks to wait (RFC 9110, 10.2.3): seconds, or a date, which is compared with
// `now_utc`, seconds since 1970. At most kLongestPark; empty where the value is neither.
[[nodiscard]] std::optional<CrawlDuration> RetryAfter(std::string_view value, std::int64_t now_utc);

}  // namespace quenlar
