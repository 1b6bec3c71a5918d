#include "platform/timer_list.h"

#include <algorithm>
#include <utility>

namespace quenlar {

// Marks a tick as running. The mark goes even when the tick ends by an exception, so its timer ticks again.
class TimerList::Ticking {
 public:
  explicit Ticking(State& state) : state_(state) { state_.ticking = true; }
  ~Ticking() { state_.ticking = false; }
  Ticking(const Ticking&) = delete;
  Ticking& operator=(const Ticking&) = delete;

 private:
  State& state_;
};

class TimerList::Timer : public LoopTimer {
 public:
  explicit Timer(std::shared_ptr<State> state) : state_(std::move(state)) {}
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  ~Timer() override { state_->enabled = false; }

  void SetEnabled(bool enabled) override {
    if (enabled && !state_->enabled) state_->due = state_->now() + state_->interval;
    state_->enabled = enabled;
  }
  [[nodiscard]] bool enabled() const override { return state_->enabled; }

 private:
  std::shared_ptr<State> state_;
};

std::unique_ptr<LoopTimer> TimerList::Make(std::chrono::milliseconds interval, std::function<void()> tick) {
  auto state = std::make_shared<State>();
  state->interval = std::max(interval, std::chrono::milliseconds(1));
  state->now = now_;
  state->tick = std::move(tick);
  std::erase_if(timers_, [](const auto& timer) { return timer.expired(); });
  timers_.push_back(state);
  return std::make_unique<Timer>(std::move(state));
}

bool TimerList::RunDue() {
  std::vector<std::shared_ptr<State>> due;
  const Time now = now_();
  for (const auto& timer : timers_) {
    auto state = timer.lock();
    if (state && state->enabled && !state->ticking && state->due <= now) due.push_back(std::move(state));
  }
  std::stable_sort(due.begin(), due.end(), [](const auto& a, const auto& b) { return a->due < b->due; });
  bool ticked = false;
  for (const auto& state : due) {
    if (!state->enabled || state->ticking || state->due > now) continue;  // changed by an earlier tick
    state->due = now_() + state->interval;
    const Ticking ticking(*state);
    state->tick();
    ticked = true;
  }
  return ticked;
}

std::optional<TimerList::Time> TimerList::NextDue() const {
  std::optional<Time> next;
  for (const auto& timer : timers_) {
    const auto state = timer.lock();
    if (state && state->enabled && !state->ticking && (!next || state->due < *next)) next = state->due;
  }
  return next;
}

}  // namespace quenlar
