// The timers of an event loop. They keep the promises of LoopTimer for any loop, whatever the loop sleeps on.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/event_loop.h"

namespace quenlar {

// A loop asks for NextDue before it sleeps, and calls RunDue when it pumps.
class TimerList {
 public:
  using Time = std::chrono::steady_clock::duration;  // since any fixed moment

  // `now` must never go back, and must be callable for as long as a timer lives.
  explicit TimerList(std::function<Time()> now) : now_(std::move(now)) {}
  TimerList(const TimerList&) = delete;
  TimerList& operator=(const TimerList&) = delete;

  [[nodiscard]] std::unique_ptr<LoopTimer> Make(std::chrono::milliseconds interval, std::function<void()> tick);

  // Delivers one tick of every timer that is due, beginning with the one that has been due longest. Returns whether
  // there was one. A tick may pump, and may make, change and destroy timers.
  bool RunDue();

  // Returns when the next tick is due, or nothing when no timer is enabled. Timers whose tick runs now do not count.
  [[nodiscard]] std::optional<Time> NextDue() const;

 private:
  struct State {
    Time interval{}, due{};
    std::function<Time()> now;
    std::function<void()> tick;
    bool enabled = false;
    bool ticking = false;
  };
  class Ticking;
  class Timer;

  std::function<Time()> now_;
  std::vector<std::weak_ptr<State>> timers_;
};

}  // namespace quenlar
