// Where a tag ends whose attributes are written in the usual way, told 32 bytes at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

namespace tag_end {

#if defined(__SSE2__)
constexpr std::size_t kBlock = 32;  // bytes; few tags are longer

// Bit i of each mask tells of byte i.
struct Masks {
  std::uint32_t quote = 0, apostrophe = 0, equals = 0, close = 0;
  std::uint32_t gap = 0;  // blanks and slashes; other control characters count too
};

// Those of the 16 bytes at `bytes`, in bits from `shift` on. Written so that no loop is left to the compiler.
template <int shift>
inline void AddMasks(const char* bytes, Masks& masks) {
  const __m128i row = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + shift));
  const auto bits = [](__m128i hits) { return static_cast<std::uint32_t>(_mm_movemask_epi8(hits)) << shift; };
  const auto equal = [&](char c) { return _mm_cmpeq_epi8(row, _mm_set1_epi8(c)); };
  masks.quote |= bits(equal('"'));
  masks.apostrophe |= bits(equal('\''));
  masks.equals |= bits(equal('='));
  masks.close |= bits(equal('>'));
  const __m128i low = _mm_cmpeq_epi8(_mm_min_epu8(row, _mm_set1_epi8(' ')), row);
  masks.gap |= bits(_mm_or_si128(low, equal('/')));
}

inline Masks MasksOf(const char* bytes) {
  Masks masks;
  AddMasks<0>(bytes, masks);
  AddMasks<16>(bytes, masks);
  return masks;
}

// Bit i of the result tells whether the number of bits set in mask[0, i] is odd. For 0b0010'0100 that is 0b0001'1100.
inline std::uint32_t OddSoFar(std::uint32_t mask) {
  mask ^= mask << 1;
  mask ^= mask << 2;
  mask ^= mask << 4;
  mask ^= mask << 8;
  mask ^= mask << 16;
  return mask;
}
#endif

}  // namespace tag_end

// Returns the place of the ">" that ends a tag, or npos when the tag is unusual or near the end of the page; the
// AttributeReader then finds the end. `at` is the place behind the tag's name. A tag is usual when every "=" stands
// between a name and a double quote, and no other quote stands outside of values: then each ">" outside of values ends
// the tag, and a "/" before it is not part of a value.
//   <a href="x>y" id="z">  usual; the first ">" is within a value
//   <a b=c="d>">           not usual
[[nodiscard]] inline std::size_t FindUsualTagEnd(std::string_view page, std::size_t at) {
#if defined(__SSE2__)
  std::uint32_t inside_before = 0;                  // all bits: the block before ended within a value
  std::uint32_t equals_before = 0, gap_before = 0;  // bit 0: of the byte before the block
  for (; at < page.size() && page.size() - at >= tag_end::kBlock; at += tag_end::kBlock) {
    const tag_end::Masks masks = tag_end::MasksOf(page.data() + at);
    // From each opening quote up to the byte before the closing one.
    const std::uint32_t inside = tag_end::OddSoFar(masks.quote) ^ inside_before;
    const std::uint32_t close = masks.close & ~inside;
    const std::uint32_t tag = close == 0 ? ~std::uint32_t{0} : (close & (~close + 1)) - 1;  // the bytes before ">"
    const std::uint32_t outside = ~inside & tag;
    const std::uint32_t opening = masks.quote & inside & tag;
    const std::uint32_t equals = masks.equals & outside;
    const std::uint32_t no_name = (masks.gap | masks.quote) & outside;  // an outside quote is a closing one
    if ((masks.apostrophe & outside) != 0 || ((equals << 1) | equals_before) != opening ||
        (((no_name << 1) | gap_before) & equals) != 0)
      return std::string_view::npos;
    if (close != 0) return at + static_cast<std::size_t>(std::countr_zero(close));
    inside_before = (inside >> 31) != 0 ? ~std::uint32_t{0} : 0;
    equals_before = equals >> 31;
    gap_before = no_name >> 31;
  }
#endif
  (void)page, (void)at;
  return std::string_view::npos;
}

}  // namespace quenlar
