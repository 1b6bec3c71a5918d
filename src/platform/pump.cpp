#include "platform/pump.h"

namespace quenlar {

void Pump::Slow() {
  countdown_ = stride_;
  if (!always_) {
    const auto now = std::chrono::steady_clock::now();
    if (now - last_ < std::chrono::milliseconds(1)) return;
    last_ = now;
  }
  loop_.Yield();
}

}  // namespace quenlar
