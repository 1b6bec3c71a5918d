// How many random samples a test looks at.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace quenlar {

// `usual`, or a tenth of it under sanitizers, which take ten times as long; QUENLAR_ROUNDS multiplies either.
[[nodiscard]] inline std::size_t Rounds(std::size_t usual) {
#ifdef __SANITIZE_ADDRESS__
  usual = std::max<std::size_t>(1, usual / 10);
#endif
  const char* const times = std::getenv("QUENLAR_ROUNDS");
  return usual * (times == nullptr ? 1 : std::max<std::size_t>(1, std::strtoul(times, nullptr, 10)));
}

}  // namespace quenlar
