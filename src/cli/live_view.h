// A few lines at the bottom of a terminal that say how a collection goes on.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "crawl/crawl_view.h"
#include "platform/console.h"

namespace quenlar {

// Draws nothing where standard error is not a terminal. Redraws a few times a second at most.
class LiveView {
 public:
  using Time = std::chrono::steady_clock::time_point;

  struct Figures {
    CrawlFigures crawl;
    std::int64_t addresses = 0, left = 0;  // of the collection
    std::size_t requests = 0, hosts = 0;   // under way; visited at the same time
    std::vector<HostUnderWay> slowest = {};
    std::string waiting_for = {};             // hosts, when nothing else is left to do
    std::optional<std::uint64_t> pages = {};  // the budget of the run
    std::optional<double> minutes_left = {};  // of the budget of time
  };

  explicit LiveView(Console& console) : console_(console), on_(console.ErrorIsTerminal()) {}
  ~LiveView() { Clear(); }
  LiveView(const LiveView&) = delete;
  LiveView& operator=(const LiveView&) = delete;

  [[nodiscard]] bool on() const { return on_; }
  void Draw(const Figures& figures, Time now);
  // Gives the lines back, before something else is written to the terminal.
  void Clear();

 private:
  // Pages a second over the last seconds.
  [[nodiscard]] double Rate(std::uint64_t pages, Time now);

  Console& console_;
  const bool on_;
  std::size_t lines_ = 0;  // drawn now
  Time last_{};
  std::deque<std::pair<Time, std::uint64_t>> pages_;
};

// The lines, each cut to `columns`, without what steers the terminal.
[[nodiscard]] std::vector<std::string> LiveText(const LiveView::Figures& figures, double pages_a_second, int columns);

}  // namespace quenlar
