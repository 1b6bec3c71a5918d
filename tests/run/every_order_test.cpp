// Small graphs in every order in which their pages can arrive, with deliveries inside every pump, and with a stop, a
// watchdog's cancel or a failure at every step.
#include <algorithm>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "run/driver_fixture.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

using namespace std::chrono_literals;

struct Site {
  std::map<std::string, std::string> pages;
  std::set<std::string> addresses;
};

// Three sites; the start page links to four pages of its own and to both others.
Site SmallGraph() {
  Site site;
  const auto add = [&](const std::string& url, const Strings& links) {
    const std::string address = "n" + std::to_string(site.pages.size()) + "@x.com";
    site.pages[url] = PageOf(links, address);
    site.addresses.insert(address);
  };
  add("http://start.test", {"a", "b", "c", "d", "http://other.test/", "http://third.test/"});
  for (const char* name : {"a", "b", "c", "d"}) add(std::string("http://start.test/") + name, {"/a", "/b"});
  add("http://other.test", {"1", "2"});
  for (const char* name : {"1", "2"}) add(std::string("http://other.test/") + name, {"http://start.test/"});
  add("http://third.test", {"only"});
  add("http://third.test/only", {});
  return site;
}

std::set<std::string> SetOf(const Strings& strings) { return {strings.begin(), strings.end()}; }

// Which of several possibilities is taken at each step: goes through all of them, one run after the other.
class Choices {
 public:
  std::size_t Choose(std::size_t possibilities) {
    if (step_ == taken_.size()) taken_.push_back({0, possibilities});
    return taken_[step_++].choice;
  }
  // Sets up the next run; false when every run has been made.
  bool Next() {
    taken_.resize(step_);
    step_ = 0;
    while (!taken_.empty() && taken_.back().choice + 1 == taken_.back().possibilities) taken_.pop_back();
    if (taken_.empty()) return false;
    ++taken_.back().choice;
    return true;
  }

 private:
  struct Taken {
    std::size_t choice, possibilities;
  };
  std::vector<Taken> taken_;
  std::size_t step_ = 0;
};

void CheckLimits(const DriverWorld& world) {
  std::map<char, int> levels;
  for (const auto& request : world.fetcher.in_flight()) ++levels[request.key[0]];
  for (const auto& [letter, count] : levels) ASSERT_LE(count, letter == 'M' ? 1 : 2) << letter;
}

void CheckComplete(const DriverWorld& world, const Site& site) {
  EXPECT_EQ(world.host.reason(), kEndAllParsed);
  EXPECT_EQ(SetOf(world.Found()), site.addresses);
  EXPECT_EQ(world.Found().size(), site.addresses.size());
  EXPECT_TRUE(world.Unvisited().empty());
  EXPECT_EQ(world.run.pending, (std::array<std::int16_t, kLevels>{}));
}

TEST(EveryOrder, VisitsEveryPageWhateverTheOrderInWhichPagesArrive) {
  const Site site = SmallGraph();
  Choices choices;
  int runs = 0;
  do {
    DriverWorld world;
    world.OpenAddress("http://start.test");
    std::function<void()> answer = [&] {
      CheckLimits(world);
      const auto in_flight = world.fetcher.in_flight();
      if (!in_flight.empty()) {
        const auto& request = in_flight[choices.Choose(in_flight.size())];
        world.fetcher.Complete(request.key, site.pages.at(request.address));
      }
      if (world.run.running) world.loop.Schedule(1s, answer);
    };
    world.loop.Schedule(1s, answer);
    world.driver.Run();
    CheckComplete(world, site);
    ++runs;
    ASSERT_FALSE(testing::Test::HasFailure()) << "run " << runs;
    ASSERT_LT(runs, 100000);
  } while (choices.Next());
  RecordProperty("runs", runs);
  EXPECT_GT(runs, 1000);
}

// Every pump, those inside the analysis of another page too, delivers the oldest or the newest download in flight.
TEST(EveryOrder, VisitsEveryPageOnceWhenPagesArriveInsideEveryPump) {
  const Site site = SmallGraph();
  for (const bool newest : {false, true}) {
    for (const int every : {1, 2, 3, 5, 7}) {
      DriverWorld world;
      world.OpenAddress("http://start.test");
      int pumps = 0;
      world.loop.OnPump([&] {
        CheckLimits(world);
        const auto in_flight = world.fetcher.in_flight();
        if (in_flight.empty() || ++pumps % every != 0) return;
        const auto& request = newest ? in_flight.back() : in_flight.front();
        world.fetcher.Complete(request.key, site.pages.at(request.address));
      });
      world.driver.Run();
      CheckComplete(world, site);
      EXPECT_EQ(world.fetcher.started().size(), SetOf(world.Keys()).size());
      EXPECT_LE(world.loop.deepest(), 2 * 21 + 2);
    }
  }
}

// Does `what` in the n-th pump of a run; true while the run has that many pumps.
bool RunWithEventInPump(DriverWorld& world, const Site& site, std::int64_t n, const std::function<void()>& what) {
  bool done = false;
  std::int64_t pumps = 0;
  world.loop.OnPump([&] {
    if (++pumps == n) {
      done = true;
      what();
    }
  });
  world.fetcher.ServeOthers([&](const std::string& address) -> std::optional<ScriptedAnswer> {
    return ScriptedAnswer{.body = site.pages.at(address)};
  });
  world.driver.Run();
  world.loop.OnPump({});
  return done;
}

TEST(EveryStep, AStopLosesNeitherALinkNorAnAddress) {
  const Site site = SmallGraph();
  std::int64_t n = 1;
  for (bool more = true; more; ++n) {
    DriverWorld world;
    world.OpenAddress("http://start.test");
    more = RunWithEventInPump(world, site, n, [&] { world.Stop(); });
    if (!more) break;
    EXPECT_EQ(world.host.reason(), kEndStopButton) << n;
    const bool saved = std::count(world.host.calls.begin(), world.host.calls.end(), "data") == 1;
    EXPECT_EQ(saved, !world.Unvisited().empty()) << n;
    if (world.Unvisited().empty()) {
      EXPECT_EQ(SetOf(world.Found()), site.addresses) << n;
      continue;
    }
    world.RunAgain();
    CheckComplete(world, site);
    ASSERT_FALSE(testing::Test::HasFailure()) << n;
  }
  EXPECT_GT(n, 50);
}

// The same by way of a file: what is saved, and nothing else, is opened by another program.
TEST(EveryStep, AStopLosesNothingWhenTheSavedLinksAreLoadedByAnotherProgram) {
  const Site site = SmallGraph();
  for (std::int64_t n = 1;; ++n) {
    DriverWorld first;
    first.OpenAddress("http://start.test");
    if (!RunWithEventInPump(first, site, n, [&] { first.Stop(); })) break;
    if (first.Unvisited().empty()) continue;
    DriverWorld second;
    second.OpenAddress("http://start.test");
    for (int level = 0; level < kLevels; ++level) {
      const LinkQueue& queue = first.project.queues[static_cast<std::size_t>(level)];
      for (const std::uint32_t i : queue.InFlight()) second.Queue(level, {std::string(queue.At(i).URL)});
      for (std::uint32_t i = queue.Next(); i < queue.Count(); ++i) second.Queue(level, {std::string(queue.At(i).URL)});
    }
    for (const std::string& address : first.Found()) second.project.found.Add({"", address, "", false});
    RunWithEventInPump(second, site, -1, {});
    CheckComplete(second, site);
    ASSERT_FALSE(testing::Test::HasFailure()) << n;
  }
}

TEST(EveryStep, AWatchdogsCancelNeverHoldsARunUp) {
  const Site site = SmallGraph();
  std::int64_t n = 1;
  for (bool more = true; more; ++n) {
    DriverWorld world;
    world.OpenAddress("http://start.test");
    more = RunWithEventInPump(world, site, n, [&] {
      world.driver.CancelStalled();
      for (int level = 0; level < kLevels; ++level) {
        // What is left is what is being analysed.
        EXPECT_EQ(world.run.pending[static_cast<std::size_t>(level)],
                  static_cast<int>(world.project.queues[static_cast<std::size_t>(level)].InFlight().size()));
      }
    });
    EXPECT_EQ(world.host.reason(), kEndAllParsed) << n;
    EXPECT_TRUE(world.Unvisited().empty()) << n;
    EXPECT_EQ(world.run.pending, (std::array<std::int16_t, kLevels>{})) << n;
  }
  EXPECT_GT(n, 50);
}

TEST(EveryStep, AFailedPageCostsWhatOnlyItLinksToAndNothingElse) {
  const Site site = SmallGraph();
  for (const auto& [failing, page] : site.pages) {
    DriverWorld world;
    world.OpenAddress("http://start.test");
    world.fetcher.ServeOthers([&, url = failing](const std::string& address) -> std::optional<ScriptedAnswer> {
      if (address == url) return Failure();
      return ScriptedAnswer{.body = site.pages.at(address)};
    });
    world.driver.Run();
    EXPECT_EQ(world.host.reason(), kEndAllParsed);
    EXPECT_TRUE(world.Unvisited().empty());
    if (failing.find("/a") != failing.npos) {
      EXPECT_EQ(world.Found().size(), site.addresses.size() - 1);
    }
  }
}

TEST(EveryStep, ARunOfKeywordsStopsInOrderAtEachOfItsSteps) {
  const Site site = SmallGraph();
  std::int64_t n = 1;
  for (bool more = true; more; ++n) {
    DriverWorld world;
    world.OpenKeyword();
    world.fetcher.Serve(world.SearchAddressAt(0), ResultsOf({"http://start.test/", "http://other.test/"}));
    world.fetcher.Serve(world.SearchAddressAt(100), ResultsOf({"http://third.test/"}));
    world.fetcher.Serve(world.SearchAddressAt(200), "");
    world.host.while_saving = [&] { world.files.Put("/data", "saved"); };
    more = RunWithEventInPump(world, site, n, [&] { world.Stop(); });
    if (!more) break;
    EXPECT_EQ(world.host.reason(), kEndStopButton) << n;
    EXPECT_EQ(world.host.calls.back(), "over");
    world.RunAgain();
    CheckComplete(world, site);
    ASSERT_FALSE(testing::Test::HasFailure()) << n;
  }
  EXPECT_GT(n, 50);
}

}  // namespace
}  // namespace quenlar
