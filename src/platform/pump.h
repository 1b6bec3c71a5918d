// A pump point inside page analysis.
#pragma once

#include <chrono>
#include <cstdint>

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
  // The same once for every bit that is set, after next to no work: the tags of no interest in one block of the page.
  void Light(std::uint64_t bits) {
    if (!always_) return Count(1);
    for (; bits != 0; bits &= bits - 1) Slow();
  }

 private:
  static constexpr int kStride = 1024;  // light calls between two looks at the clock
  static constexpr int kUsualWork = 32;
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
