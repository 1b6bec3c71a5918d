// A pump point inside long work such as page analysis: lets the event loop run, at next to no cost.
#pragma once

#include <chrono>
#include <cstdint>

#include "platform/event_loop.h"

namespace quenlar {

// Calls EventLoop::Yield, but only when a millisecond has passed since it last did. A page of 10,000 tags pumps 20,000
// times, and asking the system that often would take longer than the analysis. Between two looks at the clock a call
// costs one subtraction.
//
//   Pump pump(loop);
//   for (const Tag& tag : tags) {
//     pump();  // other pages may be analysed here
//     Handle(tag);
//   }
//
// Every call counts as a pump: any download may complete inside it, and any other analysis may run.
class Pump {
 public:
  // kAlways yields at every call. It is for tests that deliver a page in each pump.
  enum class Pace { kWhenTimeHasPassed, kAlways };

  // `loop` must outlive the pump.

  explicit Pump(EventLoop& loop, Pace pace = Pace::kWhenTimeHasPassed)
      : loop_(loop), stride_(pace == Pace::kAlways ? 1 : kStride), always_(pace == Pace::kAlways) {}

  // One pump, after an ordinary piece of work.
  void operator()() { Count(kUsualWork); }
  // One pump for each bit that is set in `bits`, after almost no work. The tag walk calls it once for a block of 64
  // bytes, with a bit for each tag in it that is neither an anchor nor a frame.
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
