// Harvest against the literal patterns on other engines, and against the limit of the machine.
// usage: compare_harvest PAGES-LIST ROUNDS
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/literal.h"
#include "bench/pages.h"
#include "bench/quenlar_pages.h"
#include "bench/table.h"

namespace quenlar::bench {
namespace {

std::size_t CountAt(const std::vector<std::string>& pages) {
  std::size_t count = 0;
  for (const std::string& page : pages) {
    const char* at = page.data();
    const char* end = at + page.size();
    while ((at = static_cast<const char*>(std::memchr(at, '@', static_cast<std::size_t>(end - at)))) != nullptr)
      ++count, ++at;
  }
  return count;
}

void CheckSame(const FoundAddresses& ours, const FoundSet& theirs, const char* name) {
  bool same = ours.Count() == theirs.in_order.size();
  for (std::uint32_t i = 0; same && i < ours.Count(); ++i) same = ours.At(i).Address == theirs.in_order[i];
  std::printf("%s finds the same %u addresses in the same order: %s\n", name, ours.Count(), same ? "yes" : "NO");
}

void OneCorpus(const std::string& title, const std::vector<std::string>& pages, int rounds, bool dense) {
  LiteralHarvest pcre2(Pcre2Jit), re2(Re2);
  HyperscanHarvest hyperscan;
  PageBench ours;
  FoundSet by_pcre2, by_re2, by_hyperscan;
  const std::vector<Side> sides = {
      {"Quenlar",
       [&] {
         ours.Reset();
         for (const auto& p : pages) ours.Harvest(p);
       }},
      {"byte search for @ (memchr)", [&] { Keep(CountAt(pages)); }},
      {"Hyperscan, candidates with a check",
       [&] {
         by_hyperscan = {};
         for (const auto& p : pages) hyperscan.Page(p, by_hyperscan);
       }},
      {"RE2, the literal patterns",
       [&] {
         by_re2 = {};
         for (const auto& p : pages) re2.Page(p, by_re2), Keep(re2.Title(p).size());
       }},
      {"PCRE2 with JIT, the literal patterns",
       [&] {
         by_pcre2 = {};
         for (const auto& p : pages) pcre2.Page(p, by_pcre2), Keep(pcre2.Title(p).size());
       }},
  };
  const auto timings = Compare(sides, rounds);
  PrintComparison(title, timings, static_cast<double>(TotalBytes(pages)));
  std::printf("\n");
  CheckSame(ours.project.found, by_pcre2, "PCRE2");
  CheckSame(ours.project.found, by_re2, "RE2");
  CheckSame(ours.project.found, by_hyperscan, "Hyperscan");
  if (dense) {
    PrintGoal("times PCRE2 JIT, dense corpus", 24, timings[4].ratio, true);
    return;
  }
  PrintGoal("times PCRE2 JIT, documentation corpus", 60, timings[4].ratio, true);
  PrintGoal("times RE2", 40, timings[3].ratio, true);
  PrintGoal("times Hyperscan", 1, timings[2].ratio, true);
  PrintGoal("share of the byte search's rate", 0.5, timings[1].ratio, true);
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  using namespace quenlar::bench;
  if (argc != 3) return std::fprintf(stderr, "usage: compare_harvest PAGES-LIST ROUNDS\n"), 2;
  const int rounds = std::atoi(argv[2]);
  Heading("Harvest");
  OneCorpus("Documentation corpus", LoadPages(argv[1]), rounds, false);
  OneCorpus("Address-dense corpus", DensePages(64u << 20), rounds, true);
}
