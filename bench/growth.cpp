// Hostile families from 1 KB up: time a byte and the factor per doubling. usage: growth MOST-BYTES
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <sys/wait.h>
#include <unistd.h>

#include "bench/pages.h"
#include "bench/quenlar_pages.h"
#include "bench/table.h"
#include "web/search_results.h"

namespace quenlar::bench {
namespace {

constexpr std::size_t kFrom = 64u << 10;

struct Growth {
  double slowest = 1e12;  // MB/s, of the sizes from 64 KB
  double worst = 0;       // factor of one doubling from there
  double overall = 0;     // factor a doubling over all of them
  double memory = 0;      // at the largest size: memory used over the page's size
};

double Seconds(const std::string& page) {
  const std::size_t repeats = page.size() >= (1u << 20) ? 1 : (1u << 20) / page.size();
  return Best([&] {
           for (std::size_t i = 0; i < repeats; ++i) {
             PageBench bench;
             bench.Analyse(page);
             CollectResultLinks(page, bench.project.queues[0]);
           }
         }) /
         static_cast<double>(repeats);
}

Growth Measure(const Family& family, std::size_t most) {
  Growth growth;
  double first = 0, previous = 0;
  int doublings = 0;
  std::size_t memory_before = 0;
  for (std::size_t bytes = 1024; bytes <= most; bytes *= 2) {
    const std::string page = family.make(bytes);
    memory_before = PeakMemory();
    const double seconds = Seconds(page);
    if (bytes >= kFrom) growth.slowest = std::min(growth.slowest, static_cast<double>(bytes) / seconds / 1e6);
    if (bytes > kFrom) {
      growth.worst = std::max(growth.worst, seconds / previous);
      growth.overall = std::pow(seconds / first, 1.0 / ++doublings);
    } else {
      first = seconds;
    }
    previous = seconds;
  }
  growth.memory = static_cast<double>(PeakMemory() - memory_before) / static_cast<double>(most);
  return growth;
}

// In a process of its own, so that the peak of its memory is its own too.
Growth MeasureAlone(const Family& family, std::size_t most) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    const Growth growth = Measure(family, most);
    _exit(write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
  }
  Growth growth;
  close(ends[1]);
  if (child < 0 || read(ends[0], &growth, sizeof growth) != sizeof growth) std::abort();
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return growth;
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  using namespace quenlar::bench;
  const std::size_t most = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : (8u << 20);
  Heading("Hostile input: growth");
  std::printf(
      "Pages of 1 KB to %zu MB; the factors are those from 64 KB on. Where a page outgrows a cache of the processor, "
      "one\n"
      "doubling costs more than two times; over all of them that evens out.\n\n"
      "| family | MB/s, slowest size | factor a doubling, all | worst doubling | memory, times the page |\n"
      "|---|---|---|---|---|\n",
      most >> 20);
  double worst = 0, worst_overall = 0, slowest = 1e12;
  for (const Family& family : HostileFamilies()) {
    const Growth growth = MeasureAlone(family, most);
    std::printf("| %s | %.0f | %.2f | %.2f | %.1f |\n", family.name, growth.slowest, growth.overall, growth.worst,
                growth.memory);
    std::fflush(stdout);
    worst = std::max(worst, growth.worst);
    worst_overall = std::max(worst_overall, growth.overall);
    slowest = std::min(slowest, growth.slowest);
  }
  PrintGoal("hostile input: factor a doubling, the worst family", 2.2, worst_overall, false);
  PrintGoal("hostile input: factor of the worst single doubling", 2.2, worst, false);
  PrintGoal("hostile input: MB/s, the slowest family and size from 64 KB", 100, slowest, true);
}
