// The wall clock, for texts only; nothing is timed by it.
#pragma once

#include <string>

namespace quenlar {

class Clock {
 public:
  virtual ~Clock() = default;
  // The local time of day as a person reads it, such as "14:05:09".
  [[nodiscard]] virtual std::string TimeText() const = 0;
};

}  // namespace quenlar
