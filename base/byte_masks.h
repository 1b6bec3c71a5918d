// Where two bytes stand among sixty-four, as bits.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

inline constexpr std::size_t kMaskBytes = 64;

struct ByteMasks {
  std::uint64_t first = 0, second = 0;  // bit i is set where data[i] is the first, the second byte
};

// Reads kMaskBytes bytes.
inline ByteMasks MasksOf(const char* data, char first, char second) {
  ByteMasks masks;
#if defined(__SSE2__)
  const __m128i wanted_first = _mm_set1_epi8(first), wanted_second = _mm_set1_epi8(second);
  for (int i = 0; i < 4; ++i) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data) + i);
    const auto bits_first = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted_first)));
    const auto bits_second = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted_second)));
    masks.first |= static_cast<std::uint64_t>(bits_first) << (16 * i);
    masks.second |= static_cast<std::uint64_t>(bits_second) << (16 * i);
  }
#else
  for (std::size_t i = 0; i < kMaskBytes; ++i) {
    masks.first |= static_cast<std::uint64_t>(data[i] == first) << i;
    masks.second |= static_cast<std::uint64_t>(data[i] == second) << i;
  }
#endif
  return masks;
}

}  // namespace quenlar
