#include "cli/live_view.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/number.h"
#include "cli/terminal_text.h"

namespace quenlar {
namespace {

constexpr std::chrono::milliseconds kRedrawEvery{100};
constexpr std::chrono::seconds kRateOver{5};

std::string Duration(double seconds) {
  const auto whole = static_cast<std::int64_t>(seconds + 0.5);
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{} min", (whole + 30) / 60);
  return fmt::format("{} h {} min", whole / 3600, whole % 3600 / 60);
}

// The rest of the run, where a budget or the pages that are known bound it.
std::string Rest(const LiveView::Figures& figures, double rate) {
  if (figures.minutes_left) return ", " + Duration(std::max(0.0, *figures.minutes_left) * 60) + " left";
  if (!figures.pages || rate <= 0) return {};
  const std::uint64_t done = std::min(figures.crawl.pages, *figures.pages);
  const auto known = static_cast<std::uint64_t>(std::max<std::int64_t>(figures.left, 0));
  return ", about " + Duration(static_cast<double>(std::min(*figures.pages - done, known)) / rate) + " left";
}

}  // namespace

std::vector<std::string> LiveText(const LiveView::Figures& figures, double pages_a_second, int columns) {
  std::vector<std::string> lines;
  lines.push_back(fmt::format("{} ({} new), {}, {:.1f} a second, {} left to visit{}",
                              Counted(static_cast<std::uint64_t>(figures.addresses), "address", "es"),
                              figures.crawl.fresh, Counted(figures.crawl.pages, "page"), pages_a_second, figures.left,
                              Rest(figures, pages_a_second)));
  std::string second = Counted(figures.requests, "request") + " under way on " + Counted(figures.hosts, "host");
  if (!figures.waiting_for.empty()) {
    second = ForTerminal(figures.waiting_for);
  } else if (!figures.slowest.empty()) {
    second += "; slowest:";
    for (const HostUnderWay& host : figures.slowest) {
      second += fmt::format(" {} {:.1f} s", ForTerminal(host.origin.substr(host.origin.find("//") + 2)), host.seconds);
    }
  }
  lines.push_back(std::move(second));
  for (std::string& line : lines) line = std::string(FirstColumns(line, columns - 1));
  return lines;
}

double LiveView::Rate(std::uint64_t pages, Time now) {
  pages_.emplace_back(now, pages);
  while (pages_.size() > 2 && now - pages_.front().first > kRateOver) pages_.pop_front();
  const double seconds = std::chrono::duration<double>(now - pages_.front().first).count();
  return seconds <= 0 ? 0 : static_cast<double>(pages - pages_.front().second) / seconds;
}

void LiveView::Draw(const Figures& figures, Time now) {
  if (!on_ || (lines_ > 0 && now - last_ < kRedrawEvery)) return;
  last_ = now;
  const std::vector<std::string> lines = LiveText(figures, Rate(figures.crawl.pages, now), console_.ErrorColumns());
  std::string out;
  for (std::size_t i = 1; i < lines_; ++i) out += "\x1B[A";
  for (std::size_t i = 0; i < lines.size(); ++i) out += (i == 0 ? "\r" : "\n\r") + lines[i] + "\x1B[K";
  console_.WriteError(out);
  lines_ = lines.size();
}

void LiveView::Clear() {
  if (lines_ == 0) return;
  std::string out = "\r\x1B[K";
  for (std::size_t i = 1; i < lines_; ++i) out += "\x1B[A\r\x1B[K";
  console_.WriteError(out);
  lines_ = 0;
}

}  // namespace quenlar
