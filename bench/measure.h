// Measures by processor time, in turns, so that what slows the machine for a while slows every side.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quenlar::bench {

// Processor time of this thread, in seconds.
[[nodiscard]] double CpuSeconds();

struct Side {
  std::string name;
  std::function<void()> run;
};

struct Timing {
  std::string name;
  double median = 0, lowest = 0, highest = 0;  // seconds a run
  // Of seconds of this side over seconds of side 0 in the same round.
  double ratio = 0, ratio_lowest = 0, ratio_highest = 0;
};

// Runs all sides in turn (A B C, A B C, ...) for `rounds` rounds after one round that is thrown away.
[[nodiscard]] std::vector<Timing> Compare(const std::vector<Side>& sides, int rounds);

// One run, in seconds of processor time; the better of two.
[[nodiscard]] double Best(const std::function<void()>& run);

// The peak of this process's memory so far, in bytes.
[[nodiscard]] std::size_t PeakMemory();

// Keeps the compiler from leaving out what computes `value`.
void Keep(std::size_t value);

}  // namespace quenlar::bench
