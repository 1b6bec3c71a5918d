#include "ui/timer_binding.h"

#include <optional>

#include <gtest/gtest.h>

#include "support/fake_event_loop.h"

namespace quenlar::ui {
namespace {

using std::chrono::milliseconds;

struct TimerBindingTest : testing::Test {
  FakeEventLoop loop;
  Timer timer{"tmrTest", milliseconds(100), false};
  int ticks = 0;
  TimerBindingTest() {
    timer.Tick = [this] { ++ticks; };
  }
};

TEST_F(TimerBindingTest, ADisabledTimerDoesNotTick) {
  TimerBinding binding(timer, loop);
  loop.Advance(milliseconds(1000));
  EXPECT_EQ(ticks, 0);
}

TEST_F(TimerBindingTest, ATimerThatIsEnabledByDesignTicksFromTheBeginning) {
  Timer enabled("tmrOther", milliseconds(100), true);
  enabled.Tick = [this] { ++ticks; };
  TimerBinding binding(enabled, loop);
  loop.Advance(milliseconds(350));
  EXPECT_EQ(ticks, 3);
}

TEST_F(TimerBindingTest, EnablingStartsTheIntervalAnew) {
  TimerBinding binding(timer, loop);
  loop.Advance(milliseconds(90));
  timer.SetEnabled(true);
  loop.Advance(milliseconds(99));
  EXPECT_EQ(ticks, 0);
  loop.Advance(milliseconds(1));
  EXPECT_EQ(ticks, 1);
}

TEST_F(TimerBindingTest, ATimerThatDisablesItselfTicksOnce) {
  timer.Tick = [this] {
    ++ticks;
    timer.SetEnabled(false);
  };
  TimerBinding binding(timer, loop);
  timer.SetEnabled(true);
  loop.Advance(milliseconds(1000));
  EXPECT_EQ(ticks, 1);
}

TEST_F(TimerBindingTest, WithoutItsBindingATimerNeitherTicksNorMindsBeingEnabled) {
  std::optional<TimerBinding> binding(std::in_place, timer, loop);
  timer.SetEnabled(true);
  binding.reset();
  loop.Advance(milliseconds(1000));
  timer.SetEnabled(false);
  timer.SetEnabled(true);
  loop.Advance(milliseconds(1000));
  EXPECT_EQ(ticks, 0);
}

}  // namespace
}  // namespace quenlar::ui
