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

}  // namespace quenlar
