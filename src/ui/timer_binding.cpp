#include "ui/timer_binding.h"

namespace quenlar::ui {

TimerBinding::TimerBinding(Timer& timer, EventLoop& loop)
    : timer_(timer), loop_timer_(loop.MakeTimer(timer.interval(), [&timer] {
        if (timer.enabled() && timer.Tick) timer.Tick();
      })) {
  timer_.changed = [this](Aspect aspect) {
    if (aspect == Aspect::kEnabled) loop_timer_->SetEnabled(timer_.enabled());
  };
  loop_timer_->SetEnabled(timer_.enabled());
}

TimerBinding::~TimerBinding() { timer_.changed = nullptr; }

}  // namespace quenlar::ui
