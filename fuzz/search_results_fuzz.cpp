// Search results: one link a site, none of the engine's own.
#include <set>

#include "fuzz/target.h"
#include "state/get_host.h"
#include "state/settings.h"
#include "web/search_results.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(search_results) {
  LinkQueue queue;
  CollectResultLinks(bytes, queue);
  std::set<std::string> hosts;
  for (std::uint32_t i = 0; i < queue.Count(); ++i) {
    const std::string_view url = queue.At(i).URL;
    FUZZ_CHECK(url.find(kSearchEngineDomain) == url.npos);
    FUZZ_CHECK(hosts.insert(GetHost(url)).second);
  }
  const std::uint32_t count = queue.Count();
  CollectResultLinks(bytes, queue);
  FUZZ_CHECK(queue.Count() == count);
}
