// A whole page analysis against the literal patterns and linear scans: records, queues, result and saves must be the
// same.
#include <stdexcept>

#include "fuzz/page_world.h"
#include "fuzz/target.h"
#include "support/reference_page.h"
#include "web/search_results.h"
#include "web/tag_text.h"

using namespace quenlar;

namespace {

void CheckFound(const FoundAddresses& found, const std::vector<ReferenceRecord>& expected) {
  FUZZ_CHECK(found.Count() == expected.size());
  for (std::uint32_t i = 0; i < found.Count(); ++i) {
    const FoundAddress record = found.At(i);
    FUZZ_CHECK(record.URL == expected[i].url && record.Address == expected[i].address);
    FUZZ_CHECK(record.Title == expected[i].title && record.TagOnly == expected[i].tag_only);
  }
}

void CheckQueues(const LinkQueues& queues, const ReferenceQueues& expected) {
  for (int level = 0; level < kLevels; ++level) {
    const auto& links = expected.levels[static_cast<std::size_t>(level)];
    const LinkQueue& queue = queues[static_cast<std::size_t>(level)];
    FUZZ_CHECK(queue.Count() == links.size());
    for (std::uint32_t i = 0; i < queue.Count(); ++i) {
      FUZZ_CHECK(queue.At(i).URL == links[i].url && queue.At(i).number == links[i].number);
    }
  }
}

}  // namespace

QUENLAR_FUZZ_TARGET(harvest) {
  fuzz::Feed feed(bytes.substr(0, 4096));
  const std::uint8_t choice = feed.Byte();
  fuzz::PageWorld world;
  static ReferenceAnalysis reference;  // its patterns take longer to compile than a page to analyse
  reference.queues = {};
  reference.found.clear();
  reference.saves.clear();
  reference.stop_requested = false;
  world.settings.StopNumber = (choice & 0x10) != 0 ? 2 : 99999;
  reference.stop_number = world.settings.StopNumber;
  world.settings.CorrelationMode = (choice & 0x20) != 0 ? 1 : 0;
  reference.queues.correlation_mode = world.settings.CorrelationMode;
  world.project.IsKeywordProject = (choice & 0x40) != 0;
  reference.queues.is_keyword = world.project.IsKeywordProject;
  const std::string name = std::string(1, RequestLetter(choice % kLevels)) + static_cast<char>('0' + choice % 3) +
                           "http://www.h.example.org/a/" + std::string(feed.Text().substr(0, 64));
  const std::string page(feed.Rest());
  try {
    const bool expected = reference.ParsePage(page, name);
    reference.CollectResultLinks(page);
    const std::string title = reference.Title(page);

    FUZZ_CHECK(ParsePage(world.context(), page, name).result == expected);
    CollectResultLinks(page, world.project.queues[0]);
    FUZZ_CHECK(GetPageTitle(page) == title);
    FUZZ_CHECK(world.run.stop_requested == reference.stop_requested);
    CheckFound(world.project.found, reference.found);
    CheckQueues(world.project.queues, reference.queues);
  } catch (const std::runtime_error&) {
    return;  // the reference has given up; the page target covers such input
  }
}
