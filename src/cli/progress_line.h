// One line on a terminal that says how far a run is.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "cli/system.h"

namespace quenlar {

// Draws nothing when standard error is not a terminal. Redraws a few times a second at most.
class ProgressLine {
 public:
  explicit ProgressLine(Console& console) : console_(console), on_(console.ErrorIsTerminal()) {}
  ~ProgressLine() { Clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  struct Figures {
    std::uint32_t addresses = 0;
    std::int64_t scanned = 0;
    std::uint64_t links = 0;    // known so far
    std::uint64_t visited = 0;  // of these links
    std::string stage;
  };

  // Whether there is a terminal to draw on. A caller that finds none need not collect figures.
  [[nodiscard]] bool on() const { return on_; }
  // Shows the figures, unless the line was drawn a moment ago.
  void Draw(const Figures& figures);
  // Removes the line. Call it before something else is written to the terminal.
  void Clear();

 private:
  Console& console_;
  const bool on_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point last_{};
};

// Returns the text of the line, cut to `columns` characters, without the codes that steer the terminal.
[[nodiscard]] std::string ProgressText(const ProgressLine::Figures& figures, int columns);

}  // namespace quenlar
