// Writes measured figures as Markdown tables.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "bench/measure.h"

namespace quenlar::bench {

inline void Heading(const std::string& text) { std::printf("\n## %s\n\n", text.c_str()); }

// Side 0 is the program; every other side's ratio says how many times its time the other takes.
inline void PrintComparison(const std::string& title, const std::vector<Timing>& timings, double bytes) {
  std::printf(
      "\n### %s\n\n| side | MB/s | times the program's time (lowest to highest of the rounds) |\n|---|---|---|\n",
      title.c_str());
  for (const Timing& t : timings) {
    std::printf("| %s | %.0f | %.2f (%.2f to %.2f) |\n", t.name.c_str(), bytes / t.median / 1e6, t.ratio,
                t.ratio_lowest, t.ratio_highest);
  }
  std::fflush(stdout);
}

inline void PrintGoal(const std::string& goal, double wanted, double measured, bool at_least) {
  const bool met = at_least ? measured >= wanted : measured <= wanted;
  std::printf("\nGoal: %s (%s %.2f). Measured: %.2f, %s.\n", goal.c_str(), at_least ? "at least" : "at most", wanted,
              measured, met ? "met" : "**not met**");
  std::fflush(stdout);
}

}  // namespace quenlar::bench
