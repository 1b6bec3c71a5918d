// Finds where tags may begin and end among sixty-four bytes. The answers are words of bits, one bit for each byte.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

inline constexpr std::size_t kMaskBytes = 64;

// Bit i stands for data[i].
struct TagMasks {
  std::uint64_t opens = 0, closes = 0;  // the byte is "<", or ">"
  std::uint64_t wanted = 0;             // the byte is "<", and "a", "f" (in either case) or a blank follows it
};

// Reads kMaskBytes bytes and the one behind them, which tells what follows a "<" in the last place.
inline TagMasks TagMasksOf(const char* data) {
  TagMasks masks;
#if defined(__SSE2__)
  const auto is = [](__m128i bytes, char byte) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte)); };
  const auto put = [](std::uint64_t& mask, __m128i hits, int block) {
    mask |= static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(hits))) << (16 * block);
  };
  const auto look = [&](int block) {
    const auto* const at = reinterpret_cast<const __m128i*>(data + 16 * block);
    const __m128i bytes = _mm_loadu_si128(at);
    const __m128i behind = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data + 16 * block + 1));
    const __m128i lower = _mm_or_si128(behind, _mm_set1_epi8(0x20));  // leaves a blank, and makes one of a NUL
    const __m128i name = _mm_or_si128(_mm_or_si128(is(lower, 'a'), is(lower, 'f')), is(lower, ' '));
    const __m128i open = is(bytes, '<');
    put(masks.opens, open, block);
    put(masks.closes, is(bytes, '>'), block);
    put(masks.wanted, _mm_and_si128(open, name), block);
  };
  look(0), look(1), look(2), look(3);
#else
  for (std::size_t i = 0; i < kMaskBytes; ++i) {
    const int lower = data[i + 1] | 0x20;
    const bool open = data[i] == '<';
    masks.opens |= static_cast<std::uint64_t>(open) << i;
    masks.closes |= static_cast<std::uint64_t>(data[i] == '>') << i;
    masks.wanted |= static_cast<std::uint64_t>(open && (lower == 'a' || lower == 'f' || lower == ' ')) << i;
  }
#endif
  return masks;
}

}  // namespace quenlar
