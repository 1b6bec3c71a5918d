#include "platform/win32/clock.h"

#include <array>
#include <cstdio>

#include "platform/win32/windows_api.h"

namespace quenlar {

std::string Win32Clock::TimeText() const {
  SYSTEMTIME now;
  GetLocalTime(&now);
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%02u:%02u:%02u", now.wHour, now.wMinute, now.wSecond);
  return text.data();
}

std::int64_t Win32Clock::UtcSeconds() const {
  FILETIME now;  // units of 100 ns since 1601
  GetSystemTimeAsFileTime(&now);
  constexpr std::int64_t kUnitsASecond = 10'000'000, kSecondsTo1970 = 11'644'473'600;
  const std::int64_t units = std::int64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
  return units / kUnitsASecond - kSecondsTo1970;
}

}  // namespace quenlar
