// Searches for single bytes. They compare 16 or more bytes at a time where the processor can, and give the same answer
// as a loop over the bytes everywhere.
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

// The rest of FindByte: for a byte that is not near, and for the last bytes of a text. Callers use FindByte.
[[nodiscard]] std::size_t FindFar(std::string_view text, char byte, std::size_t from);

#if defined(__SSE2__)
// Compares the 16 bytes at `data` with a vector that repeats the wanted byte. Bit i of the result is set when data[i]
// is that byte.
inline unsigned Hits(const char* data, __m128i wanted) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
  return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted)));
}
#endif

}  // namespace byte_search

// Returns the position of the first `byte` at or after `from`, or npos. `from` may lie behind the end of the text. The
// first 16 bytes are compared right here, because most bytes that callers look for are near.
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

// Returns the position of the first of any of three bytes at or after `from`, or npos. Made for short distances, such
// as the end of an attribute's value.
[[nodiscard]] std::size_t FindOneOf(std::string_view text, const std::array<char, 3>& bytes, std::size_t from);

// Returns the position of the last `byte` in text[from, end), or npos. `end` is at most text.size().
[[nodiscard]] std::size_t FindLastByte(std::string_view text, char byte, std::size_t from, std::size_t end);

}  // namespace quenlar
