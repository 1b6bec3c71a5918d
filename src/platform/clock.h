// The wall clock, for texts and for what is written down; nothing is timed by it.
#pragma once

#include <cstdint>
#include <string>

namespace quenlar {

class Clock {
 public:
  virtual ~Clock() = default;
  // The local time of day as a person reads it, such as "14:05:09".
  [[nodiscard]] virtual std::string TimeText() const = 0;
  // Seconds since 1970-01-01 00:00 UTC. It jumps when somebody sets the clock.
  [[nodiscard]] virtual std::int64_t UtcSeconds() const = 0;
};

}  // namespace quenlar
