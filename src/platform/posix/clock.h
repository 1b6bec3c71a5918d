// The local time of day.
#pragma once

#include "platform/clock.h"

namespace quenlar {

class PosixClock : public Clock {
 public:
  [[nodiscard]] std::string TimeText() const override;
  [[nodiscard]] std::int64_t UtcSeconds() const override;
};

}  // namespace quenlar
