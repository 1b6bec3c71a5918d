// Runs over a web that is slow, endless or out of order.
#include <algorithm>

#include <gtest/gtest.h>

#include "run/driver_fixture.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

using namespace std::chrono_literals;

class BadWeb : public DriverTest {
 protected:
  BadWeb() { OpenAddress("http://start.test"); }
};

TEST_F(BadWeb, HasTwoOfFiveThousandLinksToOneSlowHostInFlightWhileOthersProgress) {
  Strings links = {"http://quick.test/"};
  for (int i = 0; i < 5000; ++i) links.push_back("slow" + std::to_string(i));
  fetcher.Serve("http://start.test", PageOf(links));
  fetcher.Serve("http://quick.test", PageOf({"1", "2", "3"}, "quick@x.com"));
  fetcher.ServeOthers([&](const std::string& address) {
    const bool slow = address.find("slow") != address.npos;
    if (slow) {
      const auto in_flight = fetcher.in_flight();
      EXPECT_LE(std::count_if(in_flight.begin(), in_flight.end(), [](const auto& r) { return r.key[0] == 'X'; }), 2);
    }
    return ScriptedAnswer{.body = PageOf({}, "a" + std::to_string(fetcher.started().size()) + "@x.com"),
                          .delay = slow ? 5000ms : 0ms};
  });
  loop.Schedule(1s, [this] { EXPECT_EQ(Found().size(), 4u); });  // the quick site has been visited by then
  loop.Schedule(5000s, [this] { Stop(); });
  driver.Run();
  EXPECT_EQ(host.reason(), kEndStopButton);
  EXPECT_NEAR(static_cast<double>(Found().size()), 2004, 8);
  EXPECT_NEAR(static_cast<double>(Unvisited().size()), 3000, 8);
}

TEST_F(BadWeb, RunsToTheStopNumberThroughAFarmOfHostsThatLinkToNewHosts) {
  settings.StopNumber = 500;
  int hosts = 0;
  fetcher.ServeOthers([&](const std::string&) {
    Strings links;
    for (int i = 0; i < 3; ++i) links.push_back("http://h" + std::to_string(++hosts) + ".farm.test/");
    return ScriptedAnswer{.body = PageOf(links, "a" + std::to_string(hosts) + "@farm.test")};
  });
  driver.Run();
  EXPECT_EQ(host.reason(), kEndStopNumber);
  EXPECT_EQ(Found().size(), 500u);
  EXPECT_GE(project.queues[0].Count(), 1400u);
}

TEST_F(BadWeb, IsNotFooledByBytesThatTrickleIn) {
  EnableAlarm();
  std::function<void()> trickle = [&] {
    if (fetcher.Progress("M1http://start.test", FetchCode::kDataAvailable)) loop.Schedule(1s, trickle);
  };
  loop.Schedule(1s, trickle);
  driver.Run();
  EXPECT_EQ(loop.now(), 11s);
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(BadWeb, EndsALoopOfPagesThatLinkToEachOther) {
  fetcher.ServeOthers([](const std::string&) {
    return ScriptedAnswer{.body = PageOf({"http://a.test/", "http://b.test/", "http://start.test/", "/x", "/y"})};
  });
  driver.Run();
  EXPECT_EQ(host.reason(), kEndAllParsed);
  EXPECT_EQ(fetcher.started().size(), 3u + 3 * 3);  // each site, and on each the three links to itself
}

TEST_F(BadWeb, NestsAtMostAsDeepAsDownloadsAreInFlightAndAddsNoAddressTwice) {
  project.IsKeywordProject = true;
  files.Put("/data", "saved");
  Queue(0, {"http://site.test"});
  for (int level = 1; level <= 9; ++level) {
    for (int i = 0; i < 2; ++i) Queue(level, {"http://h/" + std::to_string(level) + "/" + std::to_string(i)});
  }
  const std::string page = PageOf({"1", "2"}, "same@x.com<br>Same@X.com<br>other@x.com");
  int deepest_analysis = 0, analyses = 0;
  bool all_started = false;
  loop.OnPump([&] {
    all_started = all_started || fetcher.started().size() == 19;
    if (!all_started) return;
    // Every pump inside an analysis delivers the next page, whose analysis pumps in its turn.
    const auto in_flight = fetcher.in_flight();
    if (in_flight.empty()) return;
    deepest_analysis = std::max(deepest_analysis, ++analyses);
    fetcher.Cancel(in_flight.front().key);
    web.Complete(in_flight.front().key, page);  // at once, on this stack
    --analyses;
  });
  driver.Run();
  EXPECT_GT(deepest_analysis, 5);
  EXPECT_LE(deepest_analysis, 21);
  EXPECT_EQ(Found(), (Strings{"same@x.com", "other@x.com"}));
  EXPECT_EQ(host.reason(), kEndAllParsed);
  EXPECT_EQ(run.pending, (std::array<std::int16_t, kLevels>{}));
}

}  // namespace
}  // namespace quenlar
