#include "cli/progress_line.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/terminal_text.h"

namespace quenlar {

std::string ProgressText(const ProgressLine::Figures& figures, int columns) {
  constexpr std::uint64_t kBar = 20;
  const std::uint64_t filled = figures.links == 0 ? 0 : std::min(kBar, figures.visited * kBar / figures.links);
  const std::string text =
      fmt::format("[{}{}] {} addresses, {} pages, {} links left  {}", std::string(filled, '#'),
                  std::string(kBar - filled, '.'), figures.addresses, figures.scanned,
                  figures.links - std::min(figures.links, figures.visited), ForTerminal(figures.stage));
  return std::string(FirstColumns(text, columns - 1));
}

void ProgressLine::Draw(const Figures& figures) {
  if (!on_) return;
  const auto now = std::chrono::steady_clock::now();
  if (drawn_ && now - last_ < std::chrono::milliseconds(80)) return;
  last_ = now;
  drawn_ = true;
  console_.WriteError("\r" + ProgressText(figures, console_.ErrorColumns()) + "\x1B[K");
}

void ProgressLine::Clear() {
  if (!drawn_) return;
  drawn_ = false;
  console_.WriteError("\r\x1B[K");
}

}  // namespace quenlar
