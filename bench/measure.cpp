#include "bench/measure.h"

#include <algorithm>

#include <sys/resource.h>
#include <time.h>

namespace quenlar::bench {
namespace {

volatile std::size_t kept;

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

double CpuSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::vector<Timing> Compare(const std::vector<Side>& sides, int rounds) {
  std::vector<std::vector<double>> seconds(sides.size());
  for (int round = -1; round < rounds; ++round) {
    for (std::size_t i = 0; i < sides.size(); ++i) {
      const double start = CpuSeconds();
      sides[i].run();
      if (round >= 0) seconds[i].push_back(CpuSeconds() - start);
    }
  }
  std::vector<Timing> timings;
  for (std::size_t i = 0; i < sides.size(); ++i) {
    std::vector<double> ratios;
    for (std::size_t r = 0; r < seconds[i].size(); ++r) ratios.push_back(seconds[i][r] / seconds[0][r]);
    const auto [low, high] = std::minmax_element(seconds[i].begin(), seconds[i].end());
    const auto [ratio_low, ratio_high] = std::minmax_element(ratios.begin(), ratios.end());
    timings.push_back({sides[i].name, Median(seconds[i]), *low, *high, Median(ratios), *ratio_low, *ratio_high});
  }
  return timings;
}

double Best(const std::function<void()>& run) {
  double best = 1e9;
  for (int i = 0; i < 2; ++i) {
    const double start = CpuSeconds();
    run();
    best = std::min(best, CpuSeconds() - start);
  }
  return best;
}

std::size_t PeakMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

void Keep(std::size_t value) { kept = value; }

}  // namespace quenlar::bench
