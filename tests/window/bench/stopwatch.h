// The time since an object of this was made.
#pragma once

#include "ui/win32/windows_api.h"

namespace quenlar::window_test {

class Stopwatch {
 public:
  Stopwatch() { QueryPerformanceCounter(&begun_); }
  [[nodiscard]] double Milliseconds() const {
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return 1e3 * static_cast<double>(now.QuadPart - begun_.QuadPart) / static_cast<double>(frequency.QuadPart);
  }

 private:
  LARGE_INTEGER begun_;
};

}  // namespace quenlar::window_test
