// The contract of EventLoop and LoopTimer.
#include "platform/event_loop.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>
#include <numeric>
#include <thread>
#include <vector>

#include "platform/timer_list.h"
#include "platform_under_test.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class EventLoopContract : public PlatformContract {
 protected:
  EventLoop& loop_ = platform_->loop();
};
INSTANTIATE_TEST_SUITE_P(Platforms, EventLoopContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(EventLoopContract, PostedTasksRunOnceInTheOrderOfTheCallsAndOnlyInsideAPump) {
  std::vector<int> ran;
  for (int i = 0; i < 3; ++i) loop_.Post([&ran, i] { ran.push_back(i); });
  EXPECT_TRUE(ran.empty());
  loop_.Yield();
  loop_.Yield();
  EXPECT_EQ(ran, (std::vector<int>{0, 1, 2}));
}

TEST_P(EventLoopContract, YieldReturnsAlthoughATaskPostsItselfAgain) {
  int runs = 0;
  std::function<void()> task = [&] {
    ++runs;
    loop_.Post(task);
  };
  loop_.Post(task);
  for (int i = 0; i < 3; ++i) loop_.Yield();
  EXPECT_EQ(runs, 3);
}

TEST_P(EventLoopContract, APumpInsideATaskDeliversTheOthers) {
  std::vector<int> ran;
  loop_.Post([&] {
    loop_.Yield();
    ran.push_back(1);
  });
  loop_.Post([&] { ran.push_back(2); });
  loop_.Yield();
  EXPECT_EQ(ran, (std::vector<int>{2, 1}));
}

TEST_P(EventLoopContract, ATaskPostedByAnotherThreadEndsTheSleep) {
  std::atomic<bool> waiting = false;
  bool ran = false;
  std::thread other([&] {
    while (!waiting) std::this_thread::yield();
    loop_.Post([&] { ran = true; });
  });
  const auto start = steady_clock::now();
  waiting = true;
  while (!ran && steady_clock::now() - start < std::chrono::seconds(30)) loop_.Wait(std::chrono::seconds(60));
  other.join();
  EXPECT_TRUE(ran);
}

TEST_P(EventLoopContract, TasksOfManyThreadsAllRunEachThreadsInItsOrder) {
  constexpr int kThreads = 4;
  constexpr int kTasks = 500;
  std::vector<std::vector<int>> ran(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kTasks; ++i) loop_.Post([&ran, t, i] { ran[t].push_back(i); });
    });
  }
  std::vector<int> in_order(kTasks);
  std::iota(in_order.begin(), in_order.end(), 0);
  EXPECT_TRUE(PumpUntil(loop_, [&] {
    return std::all_of(ran.begin(), ran.end(), [](const auto& tasks) { return tasks.size() == kTasks; });
  }));
  for (std::thread& thread : threads) thread.join();
  for (const auto& tasks : ran) EXPECT_EQ(tasks, in_order);
}

TEST_P(EventLoopContract, WaitSleepsWhileNothingArrives) {
  if (!platform_->LoopSleeps()) return;  // time jumps
  const auto start = steady_clock::now();
  int waits = 0;
  while (steady_clock::now() - start < milliseconds(300)) {
    loop_.Wait(milliseconds(100));
    ++waits;
  }
  EXPECT_LE(waits, 30);
}

TEST_P(EventLoopContract, WaitWithoutALimitToSleepReturnsAtOnce) {
  const auto start = steady_clock::now();
  for (int i = 0; i < 100; ++i) loop_.Wait(milliseconds(0));
  EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(10));
}

TEST_P(EventLoopContract, ATimerTicksAgainAndAgainAndWakesASleeper) {
  int ticks = 0;
  const auto timer = loop_.MakeTimer(milliseconds(5), [&] { ++ticks; });
  timer->SetEnabled(true);
  const auto start = steady_clock::now();
  while (ticks < 3 && steady_clock::now() - start < std::chrono::seconds(30)) loop_.Wait(std::chrono::seconds(60));
  EXPECT_GE(ticks, 3);
}

TEST_P(EventLoopContract, ATimerIsDisabledAtFirstAndTicksNoMoreWhenDisabled) {
  int ticks = 0, others = 0;
  const auto timer = loop_.MakeTimer(milliseconds(1), [&] { ++ticks; });
  const auto other = loop_.MakeTimer(milliseconds(10), [&] { ++others; });
  EXPECT_FALSE(timer->enabled());
  other->SetEnabled(true);
  EXPECT_TRUE(PumpUntil(loop_, [&] { return others >= 2; }));
  EXPECT_EQ(ticks, 0);

  timer->SetEnabled(true);
  EXPECT_TRUE(timer->enabled());
  EXPECT_TRUE(PumpUntil(loop_, [&] { return ticks > 0; }));
  timer->SetEnabled(false);
  ticks = others = 0;
  EXPECT_TRUE(PumpUntil(loop_, [&] { return others >= 2; }));
  EXPECT_EQ(ticks, 0);
}

TEST_P(EventLoopContract, ADestroyedTimerTicksNoMoreAlsoWhenItWasDue) {
  int ticks = 0, others = 0;
  auto timer = loop_.MakeTimer(milliseconds(1), [&] { ++ticks; });
  const auto other = loop_.MakeTimer(milliseconds(10), [&] { ++others; });
  timer->SetEnabled(true);
  other->SetEnabled(true);
  const auto due = steady_clock::now() + milliseconds(5);
  while (steady_clock::now() < due) std::this_thread::yield();
  timer.reset();
  EXPECT_TRUE(PumpUntil(loop_, [&] { return others >= 1; }));
  EXPECT_EQ(ticks, 0);
}

TEST_P(EventLoopContract, ATimerMayDieInItsOwnTick) {
  std::unique_ptr<LoopTimer> timer;
  int ticks = 0;
  timer = loop_.MakeTimer(milliseconds(1), [&] {
    timer.reset();
    ++ticks;
  });
  timer->SetEnabled(true);
  EXPECT_TRUE(PumpUntil(loop_, [&] { return ticks == 1; }));
  loop_.Wait(milliseconds(5));
  EXPECT_EQ(ticks, 1);
}

TEST_P(EventLoopContract, EnablingAnEnabledTimerDoesNotStartItsIntervalAnew) {
  int ticks = 0;
  const auto timer = loop_.MakeTimer(milliseconds(100), [&] { ++ticks; });
  const auto restless = loop_.MakeTimer(milliseconds(5), [&] { timer->SetEnabled(true); });
  timer->SetEnabled(true);
  restless->SetEnabled(true);
  EXPECT_TRUE(PumpUntil(loop_, [&] { return ticks > 0; }));
}

TEST_P(EventLoopContract, ATickIsNotDeliveredInsideThatTimersTickButAnothersIs) {
  int depth = 0, deepest = 0, ticks = 0, others_inside = 0;
  const auto other = loop_.MakeTimer(milliseconds(1), [&] { others_inside += depth; });
  const auto timer = loop_.MakeTimer(milliseconds(1), [&] {
    deepest = std::max(deepest, ++depth);
    EXPECT_TRUE(PumpUntil(loop_, [&] { return others_inside >= 3; }));
    --depth;
    ++ticks;
  });
  other->SetEnabled(true);
  timer->SetEnabled(true);
  EXPECT_TRUE(PumpUntil(loop_, [&] { return ticks >= 2; }));
  EXPECT_EQ(deepest, 1);
}

TEST_P(EventLoopContract, MissedTicksAreDropped) {
  if (!platform_->LoopSleeps()) return;  // no time passes outside its pumps
  int ticks = 0;
  const auto timer = loop_.MakeTimer(milliseconds(50), [&] { ++ticks; });
  timer->SetEnabled(true);
  const auto busy_until = steady_clock::now() + milliseconds(500);
  while (steady_clock::now() < busy_until) std::this_thread::yield();
  const auto start = steady_clock::now();
  EXPECT_TRUE(PumpUntil(loop_, [&] { return ticks > 0; }));
  for (int i = 0; i < 5; ++i) loop_.Yield();
  const auto passed = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
  EXPECT_LE(ticks, 1 + passed / milliseconds(50)) << "after " << passed.count() << " ms";
}

TEST_P(EventLoopContract, TimersWithOneIntervalAllTick) {
  std::vector<int> ticks(20);
  std::vector<std::unique_ptr<LoopTimer>> timers;
  for (int& count : ticks) {
    timers.push_back(loop_.MakeTimer(milliseconds(2), [&count] { ++count; }));
    timers.back()->SetEnabled(true);
  }
  EXPECT_TRUE(
      PumpUntil(loop_, [&] { return std::all_of(ticks.begin(), ticks.end(), [](int count) { return count >= 2; }); }));
}

TEST_P(EventLoopContract, TicksComeAlthoughTasksNeverEnd) {
  int ticks = 0;
  std::function<void()> task = [&] { loop_.Post(task); };
  loop_.Post(task);
  const auto timer = loop_.MakeTimer(milliseconds(5), [&] { ++ticks; });
  timer->SetEnabled(true);
  if (!platform_->LoopSleeps()) return;  // time stands still while tasks are waiting
  EXPECT_TRUE(PumpUntil(loop_, [&] { return ticks > 0; }));
}

TEST(TimerListTest, ATickThatEndsByAnExceptionIsNotTheLast) {
  TimerList::Time now{};
  TimerList timers([&now] { return now; });
  int ticks = 0;
  const auto timer = timers.Make(std::chrono::milliseconds(1), [&ticks] {
    if (++ticks == 1) throw std::bad_alloc();
  });
  timer->SetEnabled(true);
  now += std::chrono::milliseconds(1);
  EXPECT_THROW((void)timers.RunDue(), std::bad_alloc);
  now += std::chrono::milliseconds(1);
  EXPECT_TRUE(timers.RunDue());
  EXPECT_EQ(ticks, 2);
}

}  // namespace
}  // namespace quenlar
