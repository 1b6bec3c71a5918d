// Says for sixteen bytes at once which of them can stand in an e-mail address. Bit i of each answer stands for data[i].
#pragma once

#if defined(__SSE2__)

#include <emmintrin.h>

namespace quenlar {

// Loads sixteen bytes and sorts them into classes. The classes of "a.b_c@x-y.de":
//
//   bytes    a . b _ c @ x - y . d e
//   Letters  1 0 1 0 1 0 1 0 1 0 1 1
//   Dots     0 1 0 0 0 0 0 0 0 1 0 0
//   Domain   1 1 1 0 1 0 1 1 1 1 1 1    letters, digits, "-", "."
//   Local    1 1 1 1 1 0 1 1 1 1 1 1    the same and "_", "%", "+"
class AddressBytes {
 public:
  // Reads the sixteen bytes at `data`.
  explicit AddressBytes(const char* data)
      : bytes_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(data))),
        letters_(Within(_mm_or_si128(bytes_, _mm_set1_epi8(0x20)), 'a', 'z')),
        letters_and_digits_(_mm_or_si128(letters_, Within(bytes_, '0', '9'))),
        // The characters that local parts and domains share. "-" and "." are neighbours in ASCII.
        common_(_mm_or_si128(letters_and_digits_, Within(bytes_, '-', '.'))) {}
  [[nodiscard]] unsigned Letters() const { return Bits(letters_); }
  [[nodiscard]] unsigned Word() const { return Bits(_mm_or_si128(letters_and_digits_, Is('_'))); }
  [[nodiscard]] unsigned Dots() const { return Bits(Is('.')); }
  [[nodiscard]] unsigned Domain() const { return Bits(common_); }
  [[nodiscard]] unsigned Local() const {
    return Bits(_mm_or_si128(_mm_or_si128(common_, Is('_')), _mm_or_si128(Is('%'), Is('+'))));
  }

 private:
  static unsigned Bits(__m128i hits) { return static_cast<unsigned>(_mm_movemask_epi8(hits)); }
  [[nodiscard]] __m128i Is(char c) const { return _mm_cmpeq_epi8(bytes_, _mm_set1_epi8(c)); }
  static __m128i Within(__m128i bytes, char first, char last) {
    const __m128i above_first = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
    return _mm_cmpeq_epi8(_mm_min_epu8(above_first, _mm_set1_epi8(static_cast<char>(last - first))), above_first);
  }

  __m128i bytes_, letters_, letters_and_digits_, common_;
};

}  // namespace quenlar

#endif
