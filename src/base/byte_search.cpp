#include "base/byte_search.h"

#include <algorithm>
#include <bit>

#include "base/processor.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

#if defined(__SSE2__)

inline bool AnyInSixtyFour(const char* data, __m128i wanted) {
  const auto* blocks = reinterpret_cast<const __m128i*>(data);
  const __m128i a = _mm_cmpeq_epi8(_mm_loadu_si128(blocks), wanted);
  const __m128i b = _mm_cmpeq_epi8(_mm_loadu_si128(blocks + 1), wanted);
  const __m128i c = _mm_cmpeq_epi8(_mm_loadu_si128(blocks + 2), wanted);
  const __m128i d = _mm_cmpeq_epi8(_mm_loadu_si128(blocks + 3), wanted);
  return _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d))) != 0;
}

// Long stretches without the byte are the rule, so these functions skip them as fast as the processor can. They return
// a place at or behind `at`, with no such byte in between, from which the caller searches step by step.
std::size_t PassOver(const char* data, char byte, std::size_t at, std::size_t end) {
  const __m128i wanted = _mm_set1_epi8(byte);
  while (end - at >= 64 && !AnyInSixtyFour(data + at, wanted)) at += 64;
  return at;
}

__attribute__((target("avx2"))) std::size_t PassOverAvx2(const char* data, char byte, std::size_t at, std::size_t end) {
  constexpr std::size_t kReadAhead = 2048;  // it may reach behind the end of the text, where it has no effect
  const __m256i wanted = _mm256_set1_epi8(byte);
  for (; end - at >= 128; at += 128) {
    // The processor loads ahead by itself, but not far enough for this pace.
    _mm_prefetch(data + at + kReadAhead, _MM_HINT_T0);
    _mm_prefetch(data + at + kReadAhead + 64, _MM_HINT_T0);
    const auto* blocks = reinterpret_cast<const __m256i*>(data + at);
    const __m256i a = _mm256_cmpeq_epi8(_mm256_loadu_si256(blocks), wanted);
    const __m256i b = _mm256_cmpeq_epi8(_mm256_loadu_si256(blocks + 1), wanted);
    const __m256i c = _mm256_cmpeq_epi8(_mm256_loadu_si256(blocks + 2), wanted);
    const __m256i d = _mm256_cmpeq_epi8(_mm256_loadu_si256(blocks + 3), wanted);
    const __m256i any = _mm256_or_si256(_mm256_or_si256(a, b), _mm256_or_si256(c, d));
    if (_mm256_movemask_epi8(any) != 0) break;
  }
  return at;
}

#endif

}  // namespace

std::size_t byte_search::FindFar(std::string_view text, char byte, std::size_t from) {
  const char* data = text.data();
  const std::size_t end = text.size();
  std::size_t at = from;
#if defined(__SSE2__)
  if (at >= end) return kNone;
  if (end >= 16) {
    const __m128i wanted = _mm_set1_epi8(byte);
    for (const std::size_t near = at + 48; end - at >= 16; at += 16) {
      if (at >= near && end - at >= 128)
        at = kHasAvx2 ? PassOverAvx2(data, byte, at, end) : PassOver(data, byte, at, end);
      if (end - at < 16) break;
      if (const unsigned hits = byte_search::Hits(data + at, wanted))
        return at + static_cast<std::size_t>(std::countr_zero(hits));
    }
    // The last bytes, together with some before them.
    const unsigned hits = byte_search::Hits(data + end - 16, wanted) >> (16 - (end - at));
    return hits == 0 ? kNone : at + static_cast<std::size_t>(std::countr_zero(hits));
  }
#endif
  for (; at < end; ++at) {
    if (data[at] == byte) return at;
  }
  return kNone;
}

std::size_t FindOneOf(std::string_view text, const std::array<char, 3>& bytes, std::size_t from) {
  std::size_t at = from;
#if defined(__SSE2__)
  if (text.size() >= 16) {
    const __m128i a = _mm_set1_epi8(bytes[0]), b = _mm_set1_epi8(bytes[1]), c = _mm_set1_epi8(bytes[2]);
    const auto hits_at = [&](std::size_t place) {
      const __m128i found = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + place));
      const __m128i either = _mm_or_si128(_mm_cmpeq_epi8(found, a), _mm_cmpeq_epi8(found, b));
      return static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(either, _mm_cmpeq_epi8(found, c))));
    };
    for (; at < text.size(); at += 16) {
      // The last bytes, together with some before them.
      const std::size_t place = std::min(at, text.size() - 16);
      const unsigned hits = hits_at(place) >> (at - place);
      if (hits != 0) return at + static_cast<std::size_t>(std::countr_zero(hits));
    }
    return kNone;
  }
#endif
  for (; at < text.size(); ++at) {
    if (std::find(bytes.begin(), bytes.end(), text[at]) != bytes.end()) return at;
  }
  return kNone;
}

std::size_t FindLastByte(std::string_view text, char byte, std::size_t from, std::size_t end) {
  const char* data = text.data();
  std::size_t at = end;  // everything from here on has been searched
#if defined(__SSE2__)
  if (at <= from) return kNone;
  if (text.size() - from >= 16) {
    const __m128i wanted = _mm_set1_epi8(byte);
    while (at - from >= 16) {
      if (const unsigned hits = byte_search::Hits(data + at - 16, wanted)) {
        return at - 16 + static_cast<std::size_t>(std::bit_width(hits)) - 1;
      }
      at -= 16;
      while (at - from >= 64 && !AnyInSixtyFour(data + at - 64, wanted)) at -= 64;
    }
    // The first bytes, together with some behind them.
    const unsigned hits = byte_search::Hits(data + from, wanted) & ((1u << (at - from)) - 1);
    return hits == 0 ? kNone : from + static_cast<std::size_t>(std::bit_width(hits)) - 1;
  }
#endif
  while (at > from) {
    if (data[--at] == byte) return at;
  }
  return kNone;
}

}  // namespace quenlar
