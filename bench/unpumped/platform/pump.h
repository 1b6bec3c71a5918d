// Stands in for the program's own web/pump.h where page analysis is built without pump points, to see what they cost.
#pragma once

#include <cstddef>

#include "platform/event_loop.h"

namespace quenlar {

class Pump {
 public:
  enum class Pace { kWhenTimeHasPassed, kAlways };
  explicit Pump(EventLoop&, Pace = Pace::kWhenTimeHasPassed) {}
  void operator()() {}
  void Light(std::size_t) {}
};

}  // namespace quenlar
