#include "run/watchdog.h"

#include <gtest/gtest.h>

#include "run/end_reasons.h"
#include "support/fake_system.h"
#include "support/recording_view.h"

namespace quenlar {
namespace {

class WatchdogTest : public testing::Test {
 protected:
  void Ticks(int count) {
    for (int i = 0; i < count; ++i) watchdog_.Tick();
  }

  RunState run_;
  Settings settings_;
  FakeInterfaceTable interfaces_;
  RecordingView view_;
  int cancels_ = 0;
  int upgrade_checks_ = 0;
  Watchdog watchdog_{run_, settings_, interfaces_, view_, [this] { ++cancels_; }, [this] { ++upgrade_checks_; }};
};

TEST_F(WatchdogTest, CancelsARunInWhichNoDownloadFinishesForElevenSeconds) {
  run_.running = true;
  Ticks(10);
  EXPECT_EQ(cancels_, 0);
  Ticks(1);
  EXPECT_EQ(cancels_, 1);
  Ticks(10);
  EXPECT_EQ(cancels_, 1);
  Ticks(1);
  EXPECT_EQ(cancels_, 2);
  EXPECT_FALSE(run_.stop_requested);
}

TEST_F(WatchdogTest, StartsCountingAnewWhenADownloadFinishesInBetween) {
  run_.running = true;
  Ticks(10);
  watchdog_.ResetStallCounter();
  Ticks(10);
  EXPECT_EQ(cancels_, 0);
  Ticks(1);
  EXPECT_EQ(cancels_, 1);
}

TEST_F(WatchdogTest, CountsOnlyWhileARunGoesOn) {
  Ticks(100);
  run_.running = true;
  Ticks(8);
  run_.running = false;
  Ticks(1);
  run_.running = true;
  Ticks(10);
  EXPECT_EQ(cancels_, 0);
}

TEST_F(WatchdogTest, DoesNotCountWhileOffLine) {
  run_.running = true;
  Ticks(10);
  interfaces_.alive = false;
  Ticks(5);
  interfaces_.alive = true;
  EXPECT_EQ(cancels_, 0);
  Ticks(1);
  EXPECT_EQ(cancels_, 1);
}

TEST_F(WatchdogTest, EndsARunThroughItsFlagsWhenTheComputerGoesOffLine) {
  run_.running = true;
  interfaces_.alive = false;
  Ticks(2);
  EXPECT_TRUE(run_.stop_requested);
  EXPECT_TRUE(run_.off_line);
  EXPECT_EQ(view_.stages, (std::vector<std::string>{kEndOffLine, kEndOffLine}));
}

TEST_F(WatchdogTest, SetsOnlyTheOffLineFlagWithoutARun) {
  interfaces_.alive = false;
  Ticks(1);
  EXPECT_FALSE(run_.stop_requested);
  EXPECT_TRUE(run_.off_line);
  EXPECT_EQ(view_.last_stage(), "You are not on the internet !");
}

TEST_F(WatchdogTest, LeavesTheFlagsAloneWhenTheComputerIsOnLineAgain) {
  interfaces_.alive = false;
  Ticks(1);
  interfaces_.alive = true;
  Ticks(1);
  EXPECT_TRUE(run_.off_line);  // the next run clears it
}

TEST_F(WatchdogTest, AsksForTheUpgradePageOnceAtTheFirstOnLineTickWhenNeverUpgradeFlagIsZero) {
  interfaces_.alive = false;
  Ticks(3);
  EXPECT_EQ(upgrade_checks_, 0);
  interfaces_.alive = true;
  Ticks(1);
  EXPECT_EQ(upgrade_checks_, 1);
  Ticks(20);
  EXPECT_EQ(upgrade_checks_, 1);
}

TEST_F(WatchdogTest, NeverAsksForTheUpgradePageWhenNeverUpgradeFlagIsNotZero) {
  settings_.NeverUpgradeFlag = -1;
  Ticks(2);
  settings_.NeverUpgradeFlag = 0;  // too late: the check of this start has had its turn
  Ticks(2);
  EXPECT_EQ(upgrade_checks_, 0);
}

}  // namespace
}  // namespace quenlar
