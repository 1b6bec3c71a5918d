// Harvest against the literal patterns on other engines, and against the limit of the machine.
// usage: compare_harvest PAGES-LIST DENSE-BYTES ROUNDS
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

std::vector<Timing> OneCorpus(const std::string& title, const std::vector<std::string>& pages, int rounds) {
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
  std::printf("One @ in %.0f bytes.\n",
              static_cast<double>(TotalBytes(pages)) / static_cast<double>(std::max<std::size_t>(CountAt(pages), 1)));
  return timings;
}

}  // namespace
}  // namespace quenlar::bench

int main(int argc, char** argv) {
  using namespace quenlar::bench;
  if (argc != 4) return std::fprintf(stderr, "usage: compare_harvest PAGES-LIST DENSE-BYTES ROUNDS\n"), 2;
  const std::size_t dense_bytes = std::strtoull(argv[2], nullptr, 10);
  const int rounds = std::atoi(argv[3]);
  Heading("Harvest");
  const auto docs = OneCorpus("Documentation corpus", LoadPages(argv[1]), rounds);
  PrintGoal("harvest, documentation corpus: times PCRE2 JIT", 60, docs[4].ratio, true);
  PrintGoal("harvest, documentation corpus: times RE2", 40, docs[3].ratio, true);
  PrintGoal("harvest, documentation corpus: times Hyperscan", 1, docs[2].ratio, true);
  PrintGoal("harvest, documentation corpus: share of the byte search's rate", 0.5, docs[1].ratio, true);
  const auto dense = OneCorpus("Mailing-list archives", DensePages(dense_bytes), rounds);
  PrintGoal("harvest, mailing-list archives: times PCRE2 JIT", 24, dense[4].ratio, true);
  (void)OneCorpus("Lists of members: nothing but addresses", ContactPages(dense_bytes / 4), rounds);
}
