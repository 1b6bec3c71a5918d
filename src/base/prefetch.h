// Asks the processor for memory before it is needed.
#pragma once

namespace quenlar {

// Asks the processor to load the cache line at `address`. Returns at once, so other work can go on meanwhile. Any
// address is allowed: one that cannot be read has no effect.
inline void Prefetch(const void* address) {
  __builtin_prefetch(address);
  // GCC takes a function with nothing but a prefetch for one without effect and removes the calls. This line stops it.
  asm volatile("");
}

}  // namespace quenlar
