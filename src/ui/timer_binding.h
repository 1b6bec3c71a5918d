// Ties a timer model to the event loop.
#pragma once

#include <memory>

#include "platform/event_loop.h"
#include "ui/controls.h"

namespace quenlar::ui {

// The timer ticks while the binding lives and the model is enabled. Ticks are delivered inside a pump, and never inside
// a tick of the same timer. Enabling the model starts its interval anew. Both references must outlive the binding.
class TimerBinding {
 public:
  TimerBinding(Timer& timer, EventLoop& loop);
  ~TimerBinding();
  TimerBinding(const TimerBinding&) = delete;
  TimerBinding& operator=(const TimerBinding&) = delete;

 private:
  Timer& timer_;
  std::unique_ptr<LoopTimer> loop_timer_;
};

}  // namespace quenlar::ui
