// One benchmark a hot path and size, for comparing two commits (bench/compare_commits.sh).
#include <benchmark/benchmark.h>

#include "bench/pages.h"
#include "bench/quenlar_pages.h"
#include "mailtool/email_book_merge.h"

namespace quenlar::bench {
namespace {

void HarvestDense(benchmark::State& state) {
  const auto pages = ContactPages(static_cast<std::size_t>(state.range(0)));
  PageBench bench;
  for (auto _ : state) {
    bench.Reset();
    for (const auto& page : pages) bench.Harvest(page);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * TotalBytes(pages)));
}
BENCHMARK(HarvestDense)->Range(64 << 10, 8 << 20);

void AnalyseDense(benchmark::State& state) {
  const auto pages = ContactPages(static_cast<std::size_t>(state.range(0)));
  PageBench bench;
  for (auto _ : state) {
    bench.Reset();
    for (const auto& page : pages) bench.Analyse(page);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * TotalBytes(pages)));
}
BENCHMARK(AnalyseDense)->Range(64 << 10, 8 << 20);

void QueueOffers(benchmark::State& state) {
  std::vector<std::string> links;
  for (int i = 0; i < state.range(0); ++i)
    links.push_back("http://www.site.example/folder/page" + std::to_string(i) + ".html");
  for (auto _ : state) {
    LinkQueue queue;
    for (int time = 0; time < 3; ++time) {
      for (const auto& link : links) benchmark::DoNotOptimize(queue.AddIfNew(link));
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0) * 3);
}
BENCHMARK(QueueOffers)->Range(1000, 1'000'000);

void MergeLines(benchmark::State& state) {
  std::string book;
  for (int i = 0; i < state.range(0); ++i) book += "person" + std::to_string(i % 70'000) + "@mail.example.org\r\n";
  for (auto _ : state) {
    AddressList list;
    list.AddMatchesToAddressList(book);
    benchmark::DoNotOptimize(list.Count());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * book.size()));
}
BENCHMARK(MergeLines)->Range(1000, 1'000'000);

}  // namespace
}  // namespace quenlar::bench

BENCHMARK_MAIN();
