// What the processor can do beyond what every build assumes.
#pragma once

#if defined(__SSE2__)

namespace quenlar {

// Whether it has AVX2. Found out once, before main.
inline const bool kHasAvx2 = [] {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") != 0;
}();
// Whether it multiplies without carrying.
inline const bool kHasPclmul = [] {
  __builtin_cpu_init();
  return __builtin_cpu_supports("pclmul") != 0;
}();

}  // namespace quenlar

#endif
