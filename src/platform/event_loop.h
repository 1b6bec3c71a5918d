// The one thread's event loop: everything asynchronous (downloads, timers, signals, window messages) is delivered
// from inside Yield or Wait, on the thread that calls them.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quenlar {

// A repeating timer; it dies with its owner, and a dead or disabled timer never ticks. Ticks are delivered inside
// EventLoop::Yield and Wait, also in nested calls (a tick may pump), but a timer's tick is never delivered inside
// that same timer's tick. Intervals are monotonic: a wall clock that steps changes nothing. Missed ticks are dropped.
class LoopTimer {
 public:
  virtual ~LoopTimer() = default;
  // A timer that is enabled starts its interval anew; enabling an enabled timer changes nothing.
  virtual void SetEnabled(bool enabled) = 0;
  [[nodiscard]] virtual bool enabled() const = 0;
};

class EventLoop {
 public:
  virtual ~EventLoop() = default;

  // The time by which this loop waits. It never goes back; nobody can set it.
  [[nodiscard]] virtual std::chrono::steady_clock::time_point Now() const { return std::chrono::steady_clock::now(); }

  // Pumps: delivers what has arrived and returns at once. Safe to nest.
  virtual void Yield() = 0;

  // Pumps: sleeps until something arrives or `limit` has passed, then delivers it. Safe to nest. May return early.
  virtual void Wait(std::chrono::milliseconds limit) = 0;

  // Runs `task` once from a later Yield or Wait, in the order of the calls. The only member that other threads and
  // signal watchers may call.
  virtual void Post(std::function<void()> task) = 0;

  // Disabled at first.
  [[nodiscard]] virtual std::unique_ptr<LoopTimer> MakeTimer(std::chrono::milliseconds interval,
                                                             std::function<void()> tick) = 0;
};

}  // namespace quenlar
