// Hostile families from 64 KB up: time a byte and the factor per doubling. usage: growth MOST-BYTES
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

#include <malloc.h>
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
  double slowest = 1e12;  // MB/s
  double worst = 0;       // factor of one doubling
  double overall = 0;     // factor a doubling over all of them
  double memory = 0;      // of the largest page: memory used over the page's size
};

using Analysis = void (*)(const std::string& page);

void Analyse(const std::string& page) {
  PageBench bench;
  bench.Analyse(page);
  CollectResultLinks(page, bench.project.queues[0]);
}

void Read(const std::string& page) {
  static const ReadBench reader;
  Keep(reader.Read(page));
}

// Seconds a page. A small page is many copies of one, as many as make the largest page or take a tenth of a second, so
// that it comes from memory as a large one does, and not out of a cache that a large one does not fit in.
double Seconds(const std::string& page, std::size_t most_copies, Analysis analyse) {
  const double once = Best([&] { analyse(page); });
  const std::size_t count = std::min(static_cast<std::size_t>(0.1 / once), most_copies);
  const std::vector<std::string> copies(std::max<std::size_t>(1, count), page);
  return Best([&] {
           for (const std::string& copy : copies) analyse(copy);
         }) /
         static_cast<double>(copies.size());
}

// The system hands out memory by the page, and large blocks anew each time; here what was used once is used again, as
// a program that has run for a while does.
void KeepMemory() {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

// Goes through the sizes several times over, so that what slows the machine for a while slows no single size.
Growth Times(const Family& family, std::size_t most, Analysis analyse) {
  constexpr int kRounds = 3;
  KeepMemory();
  std::vector<double> seconds;
  for (int round = 0; round < kRounds; ++round) {
    std::size_t at = 0;
    for (std::size_t bytes = kFrom; bytes <= most; bytes *= 2, ++at) {
      if (round == 0) seconds.push_back(1e9);
      seconds[at] = std::min(seconds[at], Seconds(family.make(bytes), most / bytes, analyse));
    }
  }
  Growth growth;
  for (std::size_t i = 0; i < seconds.size(); ++i) {
    growth.slowest = std::min(growth.slowest, static_cast<double>(kFrom << i) / seconds[i] / 1e6);
    if (i == 0) continue;
    growth.worst = std::max(growth.worst, seconds[i] / seconds[i - 1]);
    growth.overall = std::pow(seconds[i] / seconds[0], 1.0 / static_cast<double>(i));
  }
  return growth;
}

Growth Memory(const Family& family, std::size_t most, Analysis analyse) {
  const std::string page = family.make(most);
  const std::size_t before = PeakMemory();
  analyse(page);
  Growth growth;
  growth.memory = static_cast<double>(PeakMemory() - before) / static_cast<double>(most);
  return growth;
}

// In a process of its own, so that its memory is its own too.
Growth Alone(Growth (*measure)(const Family&, std::size_t, Analysis), const Family& family, std::size_t most,
             Analysis analyse) {
  int ends[2];
  if (pipe(ends) != 0) std::abort();
  const pid_t child = fork();
  if (child == 0) {
    const Growth growth = measure(family, most, analyse);
    _exit(write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
  }
  Growth growth;
  close(ends[1]);
  if (child < 0 || read(ends[0], &growth, sizeof growth) != sizeof growth) std::abort();
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return growth;
}

// Measures all families and says how the analysis called `name` stands to its goals.
void Families(const char* title, const std::string& name, std::size_t most, Analysis analyse) {
  std::printf(
      "\n### %s\n\n| family | MB/s, slowest size | factor a doubling, all | worst doubling | memory, times the page |\n"
      "|---|---|---|---|---|\n",
      title);
  double worst = 0, worst_overall = 0, slowest = 1e12;
  for (const Family& family : HostileFamilies()) {
    Growth growth = Alone(Times, family, most, analyse);
    growth.memory = Alone(Memory, family, most, analyse).memory;
    std::printf("| %s | %.0f | %.2f | %.2f | %.1f |\n", family.name, growth.slowest, growth.overall, growth.worst,
                growth.memory);
    std::fflush(stdout);
    worst = std::max(worst, growth.worst);
    worst_overall = std::max(worst_overall, growth.overall);
    slowest = std::min(slowest, growth.slowest);
  }
  PrintGoal(name + ": factor a doubling, the worst family", 2.2, worst_overall, false);
  PrintGoal(name + ": factor of the worst single doubling", 2.2, worst, false);
  PrintGoal(name + ": MB/s, the slowest family and size from 64 KB", 100, slowest, true);
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  using namespace quenlar::bench;
  const std::size_t most = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : (8u << 20);
  Heading("Hostile input: growth");
  std::printf(
      "Pages of 64 KB to %zu MB, small ones in copies that make as much, all out of memory that has been used "
      "before.\n",
      most >> 20);
  Families("The classic analysis", "hostile input", most, Analyse);
  Families("The reader of a collection", "hostile input, the reader", most, Read);
}
