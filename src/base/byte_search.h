// Searches for single bytes, many of them at a time.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

namespace byte_search {

// FindByte where the byte is not near, or the text is short.
[[nodiscard]] std::size_t FindFar(std::string_view text, char byte, std::size_t from);

#if defined(__SSE2__)
// Bit i is set where data[i] is the wanted byte, for 16 bytes.
inline unsigned Hits(const char* data, __m128i wanted) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted)));
}
#endif

}  // namespace byte_search

// The position of the first `byte` in text[from, end), or npos. `from` may lie behind the end.
[[nodiscard]] inline std::size_t FindByte(std::string_view text, char byte, std::size_t from = 0) {
#if defined(__SSE2__)
  if (from < text.size() && text.size() - from >= 16) {
    const unsigned hits = byte_search::Hits(text.data() + from, _mm_set1_epi8(byte));
    if (hits != 0) return from + static_cast<std::size_t>(std::countr_zero(hits));
    from += 16;
  }
#endif
  return byte_search::FindFar(text, byte, from);
}

// The position of the first of three bytes in text[from, end), or npos; for short distances.
[[nodiscard]] std::size_t FindOneOf(std::string_view text, const std::array<char, 3>& bytes, std::size_t from);

// The position of the last `byte` in text[from, end), or npos. `end` is at most text.size().
[[nodiscard]] std::size_t FindLastByte(std::string_view text, char byte, std::size_t from, std::size_t end);

}  // namespace quenlar
