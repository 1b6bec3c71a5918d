// Search results: one link a site, none of the engine's own. "http://" alone has another site once its slash is cut, so
// it is told from none and may come again.
#include <set>

#include "base/ascii.h"
#include "fuzz/target.h"
#include "state/get_host.h"
#include "state/settings.h"
#include "web/search_results.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(search_results) {
  LinkQueue queue;
  CollectResultLinks(bytes, queue);
  std::set<std::string> hosts;
  bool may_come_again = false;
  for (std::uint32_t i = 0; i < queue.Count(); ++i) {
    const std::string_view url = queue.At(i).URL;
    FUZZ_CHECK(url.find(kSearchEngineDomain) == url.npos);
    const bool is_new = hosts.insert(GetHost(url)).second;
    const bool was_scheme_alone = EqualsIgnoreCase(url, "http:/");
    FUZZ_CHECK(is_new || was_scheme_alone);
    may_come_again = may_come_again || was_scheme_alone;
  }
  const std::uint32_t count = queue.Count();
  CollectResultLinks(bytes, queue);
  FUZZ_CHECK(queue.Count() == count || may_come_again);
}
