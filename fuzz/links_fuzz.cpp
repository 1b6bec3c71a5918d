// Link resolution and the link builders: no crash, every queued link is accepted by the rules, and no link is queued
// twice.
#include "base/ascii.h"
#include "fuzz/target.h"
#include "state/get_host.h"
#include "web/links.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(links) {
  fuzz::Feed feed(bytes);
  const std::uint8_t choice = feed.Byte();
  const std::string page(feed.Text());
  Project project;
  Settings settings;
  project.IsKeywordProject = (choice & 1) != 0;
  settings.CorrelationMode = (choice & 2) != 0 ? 1 : 0;
  while (!feed.empty()) {
    const std::string resolved = ResolveLink(feed.Text(), page);
    if (resolved.empty()) continue;
    FUZZ_CHECK(ResolveLink("#" + resolved, page).find("/#") != std::string::npos);
    QueueLink(project, settings, resolved, page, std::string(1, static_cast<char>('0' + choice % 10)));
    QueueExpandLink(project, settings, 1 + choice % 10, resolved, page, 1);
  }
  for (const LinkQueue& queue : project.queues) {
    for (std::uint32_t i = 0; i < queue.Count(); ++i) {
      const std::string_view url = queue.At(i).URL;
      FUZZ_CHECK(url.find("/#") == url.npos);
      FUZZ_CHECK(!ContainsIgnoreCase(url, "microsoft"));
      FUZZ_CHECK(!ContainsIgnoreCase(url, "https://"));
      for (std::uint32_t k = 0; k < i && k < 64; ++k) FUZZ_CHECK(queue.At(k).URL != url);
    }
  }
}
