// The driver sleeps where no pass over the queues could do anything. A plain loop that goes through the passes one by
// one must start the same pages in the same order, on any web and however late its pages come.
#include <array>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "run/driver_fixture.h"

namespace quenlar {
namespace {

// Walks the queues of an address project with nothing in flight, as plainly as it can be said.
class BusyLoop : public WebEvents {
 public:
  explicit BusyLoop(DriverWorld& world) : world_(world) { world.web.SetEvents(this); }

  void DownloadComplete(int level, const std::string&, bool) override { --Pending(level); }

  void Run() {
    world_.Queue(0, {world_.project.StartURL});
    while (!AllDone()) {
      if (may_start_site_) {
        may_start_site_ = StartSite();
      } else {
        for (int level = 1; level < kLevels; ++level) may_start_site_ = FillLevel(level) || may_start_site_;
      }
      // Time passes while nothing but passes without effect are to come; in which of them the next page arrives is
      // chance, and here it is the first.
      if (ActsSoon()) {
        world_.loop.Yield();
      } else {
        world_.loop.Wait(std::chrono::seconds(1));
      }
    }
  }

 private:
  LinkQueue& Queue(int level) { return world_.project.queues[static_cast<std::size_t>(level)]; }
  int& Pending(int level) { return pending_[static_cast<std::size_t>(level)]; }
  bool Waiting(int level) { return Queue(level).Next() != Queue(level).Count(); }
  int FirstEmptyLevel() {
    int level = 1;
    while (level <= 10 && Queue(level).Count() != 0) ++level;
    return level;
  }

  bool StartSite() {
    if (!Waiting(0) || Pending(0) != 0) return false;
    world_.loop.Yield();
    const int empty = FirstEmptyLevel();
    if (empty > 10) return false;
    Start(0, "M" + std::to_string(empty % 10));
    return true;
  }

  // Whether a site may be started again.
  bool FillLevel(int level) {
    while (Pending(level) < 2) {
      if (!Waiting(level)) {
        if (Pending(level) != 0) return false;
        Queue(level).Clear();
        return true;
      }
      world_.loop.Yield();
      Start(level, std::string("MXYZVWPQRST").substr(static_cast<std::size_t>(level), 1) +
                       std::to_string(Queue(level).At(Queue(level).Next()).number));
    }
    return false;
  }

  void Start(int level, const std::string& tag) {
    const std::uint32_t index = Queue(level).StartNext();
    const std::string address(Queue(level).At(index).URL);
    world_.web.BeginDownload(address, tag + address);
    ++Pending(level);
  }

  // Whether one of the next passes starts a page or empties a level, with nothing arriving before it. They come round
  // to where they were after two.
  bool ActsSoon() {
    bool may_start_site = may_start_site_;
    for (int pass = 0; pass < 4; ++pass) {
      if (may_start_site) {
        if (Waiting(0) && Pending(0) == 0 && FirstEmptyLevel() <= 10) return true;
        may_start_site = false;
        continue;
      }
      for (int level = 1; level < kLevels; ++level) {
        if (Waiting(level) && Pending(level) < 2) return true;
        if (Waiting(level) || Pending(level) != 0) continue;
        if (Queue(level).Count() != 0) return true;
        may_start_site = true;
      }
    }
    return false;
  }

  bool AllDone() {
    for (int level = 0; level < kLevels; ++level) {
      if (Waiting(level) || Pending(level) != 0) return false;
    }
    return true;
  }

  DriverWorld& world_;
  std::array<int, kLevels> pending_{};
  bool may_start_site_ = true;
};

// A web of `sites` sites whose pages answer at once or late, fail, and lead elsewhere; the same for the same seed.
ScriptedAnswer PageOfRandomWeb(const std::string& address, unsigned seed, unsigned sites) {
  std::seed_seq mixed(address.begin(), address.end());
  std::mt19937 random(mixed);
  random.seed(random() + seed);
  const auto any_page = [&] {
    return "http://s" + std::to_string(random() % sites) + ".test/" + std::to_string(random() % 12);
  };
  Strings links;
  for (std::uint32_t i = random() % 9; i > 0; --i) links.push_back(random() % 2 == 0 ? any_page() : std::to_string(i));
  ScriptedAnswer answer{.body = PageOf(links, "a" + std::to_string(random() % 300) + "@x.com")};
  answer.failed = random() % 10 == 0;
  if (random() % 6 == 0) answer.redirects.push_back(any_page());
  if (random() % 3 != 0) answer.delay = std::chrono::milliseconds(random() % 40);
  return answer;
}

TEST(BusyLoop, StartsTheSamePagesInTheSameOrderAsTheDriver) {
  std::size_t pages = 0;
  for (unsigned seed = 0; seed < 200; ++seed) {
    const unsigned sites = 1 + seed % 40;
    DriverWorld driven, plain;
    for (DriverWorld* world : {&driven, &plain}) {
      world->OpenAddress("http://s0.test/0");
      world->fetcher.ServeOthers([=](const std::string& address) { return PageOfRandomWeb(address, seed, sites); });
    }
    driven.driver.Run();
    BusyLoop(plain).Run();
    ASSERT_EQ(driven.Keys(), plain.Keys()) << "seed " << seed;
    ASSERT_EQ(driven.Found(), plain.Found()) << "seed " << seed;
    pages += driven.Keys().size();
  }
  EXPECT_GT(pages, 5000u);
}

}  // namespace
}  // namespace quenlar
