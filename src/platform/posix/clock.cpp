#include "platform/posix/clock.h"

#include <ctime>

namespace quenlar {

std::string PosixClock::TimeText() const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[16];
  return std::string(text, std::strftime(text, sizeof text, "%H:%M:%S", &local));
}

std::int64_t PosixClock::UtcSeconds() const { return std::time(nullptr); }

}  // namespace quenlar
