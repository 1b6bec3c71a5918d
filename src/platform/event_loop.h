// The event loop of the program's one thread. Downloads, timers, signals and window messages are delivered inside Yield
// and Wait, on the thread that calls them, and nowhere else.
//
// A function that calls either says "pumps" in its contract. Anything may happen inside a pump, so the caller reads
// counters, references and iterators again behind it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace quenlar {

// A repeating timer. Destroying it stops it. A tick may pump, and other ticks may be delivered inside it, but never one
// of the same timer. Intervals are measured by a clock that is never set. Ticks that were missed are dropped.
class LoopTimer {
 public:
  virtual ~LoopTimer() = default;
  // Enabling a disabled timer starts a whole interval. Enabling an enabled one changes nothing.
  virtual void SetEnabled(bool enabled) = 0;
  [[nodiscard]] virtual bool enabled() const = 0;
};

class EventLoop {
 public:
  virtual ~EventLoop() = default;

  // The time by which this loop waits. It never goes back, and the user cannot set it.
  [[nodiscard]] virtual std::chrono::steady_clock::time_point Now() const { return std::chrono::steady_clock::now(); }

  // Pumps: delivers what has arrived and returns at once. May be called inside another pump.
  virtual void Yield() = 0;

  // Pumps: sleeps until something arrives or `limit` has passed, and delivers it. May return earlier, and may be called
  // inside another pump.
  virtual void Wait(std::chrono::milliseconds limit) = 0;

  // Runs `task` once inside a later pump. Tasks run in the order of the calls. This is the only member that other
  // threads and signal watchers may call.
  virtual void Post(std::function<void()> task) = 0;

  // Makes a timer that calls `tick` every `interval`. It is disabled at first. The loop must outlive it.
  [[nodiscard]] virtual std::unique_ptr<LoopTimer> MakeTimer(std::chrono::milliseconds interval,
                                                             std::function<void()> tick) = 0;
};

}  // namespace quenlar
