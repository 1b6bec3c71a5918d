// An event loop whose time is a value: it never sleeps, and a test decides what each pump delivers.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/event_loop.h"
#include "platform/timer_list.h"

namespace quenlar {

// Yield delivers what is due now. Wait does the same, and when nothing was due, lets the time jump to the next thing
// that is (a timer's tick, a scheduled task) or by its limit. A loop that is pumped five million times ends the test
// program with a message: something waits for what never comes.
class FakeEventLoop : public EventLoop {
 public:
  using Milliseconds = std::chrono::milliseconds;

  FakeEventLoop() = default;
  FakeEventLoop(const FakeEventLoop&) = delete;
  FakeEventLoop& operator=(const FakeEventLoop&) = delete;

  [[nodiscard]] std::chrono::steady_clock::time_point Now() const override {
    return std::chrono::steady_clock::time_point(now());
  }
  void Yield() override;
  void Wait(Milliseconds limit) override;
  void Post(std::function<void()> task) override;
  [[nodiscard]] std::unique_ptr<LoopTimer> MakeTimer(Milliseconds interval, std::function<void()> tick) override;

  // Runs `task` once, inside the first pump at or after now + `delay`.
  void Schedule(Milliseconds delay, std::function<void()> task);

  // Called first in every Yield and Wait, nested ones included (so it can deliver a page in each pump); empty: nothing.
  void OnPump(std::function<void()> source) { source_ = std::move(source); }

  // Pumps: lets the time pass, tick by tick and task by task.
  void Advance(Milliseconds time);

  // At most this many posted and scheduled tasks are delivered by one pump; the others wait for the next one.
  void SetDeliveriesPerPump(std::size_t count) { deliveries_per_pump_ = count; }

  [[nodiscard]] Milliseconds now() const;
  [[nodiscard]] std::int64_t yields() const { return yields_; }
  [[nodiscard]] std::int64_t waits() const { return waits_; }
  [[nodiscard]] int depth() const { return depth_; }      // pumps that are running now, nested
  [[nodiscard]] int deepest() const { return deepest_; }  // the most of them at any time

 private:
  using TaskKey = std::pair<Milliseconds, std::uint64_t>;  // when, and in which order

  bool Pump();
  bool RunTasks();
  [[nodiscard]] Milliseconds NextDue(Milliseconds limit) const;
  void JumpTo(Milliseconds time);

  mutable std::mutex mutex_;  // guards tasks_, next_task_ and now_, which Post from another thread uses
  std::map<TaskKey, std::function<void()>> tasks_;
  std::uint64_t next_task_ = 0;
  Milliseconds now_{0};
  TimerList timers_{[this] { return now(); }};
  std::function<void()> source_;
  std::size_t deliveries_per_pump_ = SIZE_MAX;
  std::int64_t yields_ = 0, waits_ = 0;
  int depth_ = 0, deepest_ = 0;
};

}  // namespace quenlar
