#include "bench/unpumped/unpumped.h"

#include "bench/quenlar_pages.h"

void AnalyseUnpumped(std::string_view page, int times) {
  quenlar::bench::PageBench bench;
  for (int i = 0; i < times; ++i) bench.Analyse(page);
}
