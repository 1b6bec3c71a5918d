// Page analysis under every request letter: no crash, a sound table, and links that the rules allow.
#include "fuzz/page_world.h"
#include "fuzz/target.h"

using namespace quenlar;

QUENLAR_FUZZ_TARGET(page) {
  fuzz::Feed feed(bytes);
  const std::uint8_t choice = feed.Byte();
  const char letter = RequestLetter(choice % kLevels);
  fuzz::PageWorld world;
  world.settings.StopNumber = (choice & 0x10) != 0 ? 3 : 99999;
  world.settings.CorrelationMode = (choice & 0x20) != 0 ? 1 : 0;
  world.project.IsKeywordProject = (choice & 0x40) != 0;
  const std::string name = std::string(1, letter) + "1http://www.h.example/a/" + std::string(feed.Text().substr(0, 64));
  const std::string_view page = feed.Rest();

  const PageOutcome first = ParsePage(world.context(), page, name);
  FUZZ_CHECK(world.TableIsSound());
  FUZZ_CHECK(first.result || world.run.stop_requested);
  FUZZ_CHECK(!first.cut_short || world.run.stop_requested);
  const std::uint32_t count = world.project.found.Count();
  if (!world.run.stop_requested) {
    ParsePage(world.context(), page, name);
    FUZZ_CHECK(world.project.found.Count() == count);  // a page seen again brings nothing new
  }
  if (letter != 'M') {
    for (const LinkQueue& queue : world.project.queues) FUZZ_CHECK(queue.Count() == 0);
  }
}
