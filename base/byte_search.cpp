#include "base/byte_search.h"

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

#if defined(__SSE2__)

// Bit i is set where data[i] is the wanted byte, for 16 bytes.
inline unsigned Hits(const char* data, __m128i wanted) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted)));
}

inline bool AnyInSixtyFour(const char* data, __m128i wanted) {
  const auto* blocks = reinterpret_cast<const __m128i*>(data);
  const __m128i a = _mm_cmpeq_epi8(_mm_loadu_si128(blocks), wanted);
  const __m128i b = _mm_cmpeq_epi8(_mm_loadu_si128(blocks + 1), wanted);
  const __m128i c = _mm_cmpeq_epi8(_mm_loadu_si128(blocks + 2), wanted);
  const __m128i d = _mm_cmpeq_epi8(_mm_loadu_si128(blocks + 3), wanted);
  return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) != 0;
}

#endif

}  // namespace

std::size_t FindByte(std::string_view text, char byte, std::size_t from) {
  const char* data = text.data();
  const std::size_t end = text.size();
  std::size_t at = from;
#if defined(__SSE2__)
  const __m128i wanted = _mm_set1_epi8(byte);
  while (at < end && end - at >= 16) {
    if (const unsigned hits = Hits(data + at, wanted)) return at + static_cast<std::size_t>(std::countr_zero(hits));
    at += 16;
    while (end - at >= 64 && !AnyInSixtyFour(data + at, wanted)) at += 64;
  }
#endif
  for (; at < end; ++at) {
    if (data[at] == byte) return at;
  }
  return kNone;
}

std::size_t FindLastByte(std::string_view text, char byte, std::size_t from, std::size_t end) {
  const char* data = text.data();
  std::size_t at = end;  // everything from here on has been looked at
#if defined(__SSE2__)
  const __m128i wanted = _mm_set1_epi8(byte);
  while (at > from && at - from >= 16) {
    if (const unsigned hits = Hits(data + at - 16, wanted)) {
      return at - 16 + static_cast<std::size_t>(std::bit_width(hits)) - 1;
    }
    at -= 16;
    while (at - from >= 64 && !AnyInSixtyFour(data + at - 64, wanted)) at -= 64;
  }
#endif
  while (at > from) {
    if (data[--at] == byte) return at;
  }
  return kNone;
}

}  // namespace quenlar
