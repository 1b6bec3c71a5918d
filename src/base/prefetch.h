// Asks the processor for memory before it is needed.
#pragma once

namespace quenlar {

// Has what lies at `address` at hand soon. Any address will do; one that cannot be read does nothing.
inline void Prefetch(const void* address) {
  __builtin_prefetch(address);
  // A function that does nothing but the above counts as one without any effect, and GCC leaves out all calls of it.
  asm volatile("");
}

}  // namespace quenlar
