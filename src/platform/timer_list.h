// The timers of an event loop, whatever it sleeps on.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/event_loop.h"

namespace quenlar {

// Keeps the promises of LoopTimer. A loop asks for NextDue before it sleeps and calls RunDue when it pumps.
class TimerList {
 public:
  using Time = std::chrono::steady_clock::duration;  // since a beginning that does not matter

  // `now` must never go back, and must be callable for as long as a timer lives.
  explicit TimerList(std::function<Time()> now) : now_(std::move(now)) {}
  TimerList(const TimerList&) = delete;
  TimerList& operator=(const TimerList&) = delete;

  [[nodiscard]] std::unique_ptr<LoopTimer> Make(std::chrono::milliseconds interval, std::function<void()> tick);

  // Delivers one tick of every timer that is due, the longest due first; true when there was one. Ticks may pump, and
  // may make, change and destroy timers.
  bool RunDue();

  // When the next tick is due, without the timers whose tick is running now; empty: never.
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
