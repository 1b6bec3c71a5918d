#include "crawl/crawl_schedule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;

constexpr CrawlTime kNow{std::chrono::hours(1000)};

std::vector<HostId> ActivateAll(CrawlSchedule& schedule, CrawlTime now = kNow) {
  std::vector<HostId> hosts;
  while (const auto host = schedule.Activate(now)) hosts.push_back(*host);
  return hosts;
}

TEST(CrawlSchedule, HostsComeByTheDepthOfTheirNearestPageThenInTheirOrder) {
  CrawlSchedule schedule(10);
  schedule.Queue(1, 2, kNow, kNow);
  schedule.Queue(2, 0, kNow, kNow);
  schedule.Queue(3, 1, kNow, kNow);
  schedule.Queue(4, 0, kNow, kNow);
  EXPECT_THAT(ActivateAll(schedule), ElementsAre(2, 4, 3, 1));
}

TEST(CrawlSchedule, AQueuedHostMovesForwardWhenANearerPageIsFound) {
  CrawlSchedule schedule(10);
  schedule.Queue(1, 1, kNow, kNow);
  schedule.Queue(2, 3, kNow, kNow);
  schedule.Queue(2, 0, kNow, kNow);
  schedule.Queue(2, 5, kNow, kNow);
  EXPECT_THAT(ActivateAll(schedule), ElementsAre(2, 1));
}

TEST(CrawlSchedule, NoMoreHostsAreActiveThanAskedFor) {
  CrawlSchedule schedule(2);
  for (HostId host = 1; host <= 3; ++host) schedule.Queue(host, 0, kNow, kNow);
  EXPECT_THAT(ActivateAll(schedule), ElementsAre(1, 2));
  EXPECT_EQ(schedule.active(), 2u);
  schedule.Deactivate(1);
  EXPECT_THAT(ActivateAll(schedule), ElementsAre(3));
}

TEST(CrawlSchedule, AHostThatMustWaitIsParkedUntilItsTime) {
  CrawlSchedule schedule(2);
  schedule.Queue(1, 0, kNow + seconds(30), kNow);
  EXPECT_THAT(ActivateAll(schedule), ElementsAre());
  EXPECT_FALSE(schedule.HasQueued());
  EXPECT_EQ(schedule.Parked().size(), 1u);
  EXPECT_EQ(schedule.NextTime(), kNow + seconds(30));
  EXPECT_THAT(ActivateAll(schedule, kNow + seconds(30)), ElementsAre(1));
  EXPECT_TRUE(schedule.Parked().empty());
}

TEST(CrawlSchedule, AParkedHostHoldsNobodyUp) {
  CrawlSchedule schedule(1);
  schedule.Queue(1, 0, kNow + seconds(3600), kNow);
  schedule.Queue(2, 4, kNow, kNow);
  EXPECT_THAT(ActivateAll(schedule), ElementsAre(2));
}

TEST(CrawlSchedule, ActiveHostsAreAskedInTheOrderOfTheirTimes) {
  CrawlSchedule schedule(3);
  for (HostId host = 1; host <= 3; ++host) schedule.Queue(host, 0, kNow, kNow);
  (void)ActivateAll(schedule);
  schedule.AskAt(1, kNow + seconds(3));
  schedule.AskAt(2, kNow + seconds(1));
  schedule.AskAt(3, kNow + seconds(2));
  EXPECT_EQ(schedule.NextToAsk(kNow), std::nullopt);
  EXPECT_EQ(schedule.NextTime(), kNow + seconds(1));
  EXPECT_EQ(schedule.NextToAsk(kNow + seconds(2)), 2);
  EXPECT_EQ(schedule.NextToAsk(kNow + seconds(2)), 3);
  EXPECT_EQ(schedule.NextToAsk(kNow + seconds(2)), std::nullopt);
}

TEST(CrawlSchedule, AnActiveHostMakesRoomForANearerPage) {
  CrawlSchedule schedule(1);
  schedule.Queue(1, 0, kNow, kNow);
  (void)ActivateAll(schedule);
  EXPECT_FALSE(schedule.IsNearerQueued(3));
  schedule.Queue(2, 1, kNow, kNow);
  EXPECT_TRUE(schedule.IsNearerQueued(3));
  EXPECT_FALSE(schedule.IsNearerQueued(1));
}

TEST(CrawlSchedule, AnActiveHostStaysWhenMoreOfItsPagesAreFound) {
  CrawlSchedule schedule(1);
  schedule.Queue(1, 2, kNow, kNow);
  (void)ActivateAll(schedule);
  schedule.Queue(1, 0, kNow, kNow);
  EXPECT_FALSE(schedule.HasQueued());
  EXPECT_EQ(schedule.active(), 1u);
}

TEST(CrawlSchedule, AHundredThousandHostsComeBackInOrder) {
  constexpr HostId kHosts = 100'000;
  CrawlSchedule schedule(64);
  for (HostId host = 1; host <= kHosts; ++host) schedule.Queue(host, static_cast<int>(host % 5), kNow, kNow);
  int last_depth = 0;
  HostId count = 0;
  while (const auto host = schedule.Activate(kNow)) {
    const int depth = static_cast<int>(*host % 5);
    EXPECT_GE(depth, last_depth);
    last_depth = depth;
    ++count;
    schedule.Deactivate(*host);
  }
  EXPECT_EQ(count, kHosts);
}

}  // namespace
}  // namespace quenlar
