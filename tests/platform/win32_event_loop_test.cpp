// What the message loop of Windows adds to the contract of event loops.
#include <new>

#include <gtest/gtest.h>

#include "platform/win32/event_loop.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;

// A message loop as the system's menus and message boxes have one, until `done`.
void RunSystemLoop(const bool& done) {
  MSG message;
  while (!done && GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

TEST(Win32EventLoop, PostedTasksRunInMessageLoopsOfTheSystem) {
  Win32EventLoop loop;
  bool done = false;
  std::string order;
  loop.Post([&] {
    order += "1";
    RunSystemLoop(done);
    order += "4";
  });
  loop.Post([&] { order += "2"; });
  loop.Post([&] {
    order += "3";
    done = true;
  });
  loop.Yield();
  EXPECT_EQ(order, "1234");
}

TEST(Win32EventLoop, TimersTickInMessageLoopsOfTheSystem) {
  Win32EventLoop loop;
  bool done = false;
  int ticks = 0;
  const auto timer = loop.MakeTimer(milliseconds(10), [&] { done = ++ticks == 3; });
  timer->SetEnabled(true);
  RunSystemLoop(done);
  EXPECT_EQ(ticks, 3);
}

TEST(Win32EventLoop, ATaskPostedInAMessageHandlerOfAPumpRunsInASystemLoopOfThatHandler) {
  Win32EventLoop loop;
  bool done = false;
  loop.AddMessageFilter([&](void* message) {
    if (static_cast<MSG*>(message)->message != WM_APP + 7) return false;
    loop.Post([&] { done = true; });
    RunSystemLoop(done);
    return true;
  });
  PostThreadMessageW(GetCurrentThreadId(), WM_APP + 7, 0, 0);
  loop.Yield();
  EXPECT_TRUE(done);
}

TEST(Win32EventLoop, FiltersSeeEveryMessageInTheOrderOfTheirRegistrationAndCanTakeIt) {
  Win32EventLoop loop;
  std::string seen;
  loop.AddMessageFilter([&](void* message) {
    if (static_cast<MSG*>(message)->message == WM_APP + 8) seen += "a";
    return false;
  });
  loop.AddMessageFilter([&](void* message) {
    const bool ours = static_cast<MSG*>(message)->message == WM_APP + 8;
    if (ours) seen += "b";
    return ours;
  });
  loop.AddMessageFilter([&](void* message) {
    if (static_cast<MSG*>(message)->message == WM_APP + 8) seen += "c";
    return false;
  });
  PostThreadMessageW(GetCurrentThreadId(), WM_APP + 8, 0, 0);
  loop.Yield();
  EXPECT_EQ(seen, "ab");
}

TEST(Win32EventLoop, TheSystemsWishToEndIsRemembered) {
  Win32EventLoop loop;
  EXPECT_FALSE(loop.quit_requested());
  PostQuitMessage(0);
  loop.Yield();
  EXPECT_TRUE(loop.quit_requested());
  loop.Yield();
  EXPECT_TRUE(loop.quit_requested());
}

TEST(Win32EventLoop, AMessageThatNeverStopsComingDoesNotKeepAPumpGoing) {
  Win32EventLoop loop;
  int seen = 0;
  loop.AddMessageFilter([&](void* message) {
    if (static_cast<MSG*>(message)->message != WM_APP + 9) return false;
    ++seen;
    PostThreadMessageW(GetCurrentThreadId(), WM_APP + 9, 0, 0);
    return true;
  });
  PostThreadMessageW(GetCurrentThreadId(), WM_APP + 9, 0, 0);
  loop.Yield();
  EXPECT_GT(seen, 0);
  MSG message;
  while (PeekMessageW(&message, nullptr, WM_APP + 9, WM_APP + 9, PM_REMOVE)) {
  }
}

TEST(Win32EventLoop, TimersTickWhileTasksKeepPostingThemselves) {
  Win32EventLoop loop;
  bool stop = false;
  std::function<void()> again = [&] {
    if (!stop) loop.Post(again);
  };
  again();
  int ticks = 0;
  const auto timer = loop.MakeTimer(milliseconds(10), [&] { ++ticks; });
  timer->SetEnabled(true);
  while (ticks < 3) loop.Yield();
  stop = true;
  loop.Yield();
}

TEST(Win32EventLoop, ATickThatEndsByAnExceptionIsNotTheLast) {
  Win32EventLoop loop;
  int ticks = 0;
  const auto timer = loop.MakeTimer(milliseconds(10), [&] {
    if (++ticks == 1) throw std::bad_alloc();
  });
  timer->SetEnabled(true);
  const auto wait_for = [&](int wanted) {
    while (ticks < wanted) loop.Yield();
  };
  EXPECT_THROW(wait_for(1), std::bad_alloc);
  wait_for(2);
}

TEST(Win32EventLoop, WaitingTakesNoProcessorTime) {
  Win32EventLoop loop;
  const auto used = [] {
    FILETIME created, exited, kernel, user;
    GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user);
    const auto ticks = [](FILETIME time) {
      return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    };
    return milliseconds((ticks(kernel) + ticks(user)) / 10000);
  };
  const auto before = used();
  const auto start = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - start < milliseconds(500)) loop.Wait(milliseconds(500));
  EXPECT_LT(used() - before, milliseconds(100));
}

}  // namespace
}  // namespace quenlar
