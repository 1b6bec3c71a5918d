// One run of a collection from the command line, from its start to its end.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/address_format.h"
#include "cli/workplace.h"
#include "crawl/crawl_options.h"
#include "crawl/crawl_view.h"
#include "platform/web_client.h"

namespace quenlar {

struct CollectOptions {
  std::vector<std::string> starts;
  std::string name;  // of the collection; empty: made from the first start
  CrawlOptions crawl;
  AddressFormat format = AddressFormat::kLines;
  std::vector<std::string> remove_words, extract_words;
  std::string warc;  // the prefix of the archive that keeps what is fetched; absolute; empty: none
};

struct CollectResult {
  int status = 0;      // exit status
  std::string reason;  // one of the words of CrawlEnd, or why there was no run
  std::string collection;
  std::int64_t addresses = 0, left = 0;  // of the collection
  CrawlFigures figures;
  double seconds = 0;
};

// Prints each new address as it is found; the live view and messages go to standard error. Pumps until the run has
// ended. `watch_stop` is handed a way to stop the run in order.
[[nodiscard]] CollectResult RunCollect(Console& console, Workplace& place, WebClient& client,
                                       const CollectOptions& options,
                                       const std::function<void(std::function<void()> stop)>& watch_stop);

// {"reason", "addresses", "new", "pages", "failed", "refused", "left", "protected", "suppressed", "bytes", "seconds",
// "collection"}, one line.
[[nodiscard]] std::string SummaryText(const CollectResult& result);

}  // namespace quenlar
