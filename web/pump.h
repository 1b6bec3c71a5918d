// A pump point inside page analysis.
#pragma once

#include <chrono>

#include "platform/event_loop.h"

namespace quenlar {

// Lets the message loop run, but really asks the system only when time has passed since it last did: a page of
// 10,000 tags pumps 20,000 times and must not be slowed by it. kAlways is for tests that deliver pages in every pump.
class Pump {
 public:
  enum class Pace { kWhenTimeHasPassed, kAlways };

  explicit Pump(EventLoop& loop, Pace pace = Pace::kWhenTimeHasPassed)
      : loop_(loop), stride_(pace == Pace::kAlways ? 1 : kStride), always_(pace == Pace::kAlways) {}

  // Pumps: any download may complete and any other analysis may run inside.
  void operator()() { Count(kUsualWork); }
  // The same `times` times, after next to no work each time: the many tags that are of no interest.
  void Light(int times) {
    Count(times);
    for (; always_ && times > 1; --times) Slow();
  }

 private:
  static constexpr int kStride = 256;  // light pump points between two looks at the clock
  static constexpr int kUsualWork = 16;
  void Count(int work) {
    countdown_ -= work;
    if (countdown_ <= 0) Slow();
  }
  void Slow();

  EventLoop& loop_;
  int stride_;
  bool always_;
  int countdown_ = 1;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace quenlar
