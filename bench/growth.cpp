// Hostile families from 1 KB up: time a byte and the factor per doubling. usage: growth MOST-BYTES
#include <cstdio>
#include <cstdlib>

#include "bench/pages.h"
#include "bench/quenlar_pages.h"
#include "bench/table.h"
#include "web/search_results.h"

int main(int argc, char** argv) {
  using namespace quenlar::bench;
  const std::size_t most = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : (8u << 20);
  Heading("Hostile input: growth");
  std::printf(
      "| family | MB/s, slowest size | worst factor per doubling (from 64 KB) | peak memory over the page's size "
      "|\n|---|---|---|---|\n");
  double worst = 0, slowest = 1e12;
  for (const Family& family : HostileFamilies()) {
    double previous = 0, family_worst = 0, family_slowest = 1e12;
    std::size_t memory_before = PeakMemory();
    for (std::size_t bytes = 1024; bytes <= most; bytes *= 2) {
      const std::string page = family.make(bytes);
      const std::size_t repeats = bytes >= (1u << 20) ? 1 : (1u << 20) / bytes;
      const double seconds = Best([&] {
                               for (std::size_t i = 0; i < repeats; ++i) {
                                 PageBench bench;
                                 bench.Analyse(page);
                                 quenlar::CollectResultLinks(page, bench.project.queues[0]);
                               }
                             }) /
                             static_cast<double>(repeats);
      if (previous > 0 && bytes > 65536) family_worst = std::max(family_worst, seconds / previous);
      if (bytes >= 65536) family_slowest = std::min(family_slowest, static_cast<double>(bytes) / seconds / 1e6);
      previous = seconds;
    }
    const std::size_t grown = PeakMemory() - memory_before;
    std::printf("| %s | %.0f | %.2f | %.1f |\n", family.name, family_slowest, family_worst,
                static_cast<double>(grown) / static_cast<double>(most));
    std::fflush(stdout);
    worst = std::max(worst, family_worst);
    slowest = std::min(slowest, family_slowest);
  }
  PrintGoal("hostile input: factor per doubling, the worst family", 2.2, worst, false);
  PrintGoal("hostile input: MB/s, the slowest family and size from 64 KB", 100, slowest, true);
}
