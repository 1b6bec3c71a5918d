// The local time of day.
#pragma once

#include "platform/clock.h"

namespace quenlar {

class Win32Clock final : public Clock {
 public:
  [[nodiscard]] std::string TimeText() const override;
  [[nodiscard]] std::int64_t UtcSeconds() const override;
};

}  // namespace quenlar
