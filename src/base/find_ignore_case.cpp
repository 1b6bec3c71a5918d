// FindIgnoreCase: looks for the first and the last byte of the needle in many places at once.
#include <algorithm>
#include <bit>

#include "base/ascii.h"
#include "base/processor.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool HasAt(std::string_view text, std::size_t at, std::string_view lower_needle) {
  for (std::size_t k = 0; k < lower_needle.size(); ++k) {
    if (ToLower(text[at + k]) != lower_needle[k]) return false;
  }
  return true;
}

#if defined(__SSE2__)

// Sixteen copies of one wanted byte. A letter matches in either case.
struct Wanted {
  explicit Wanted(char lower) : byte(_mm_set1_epi8(lower)), fold(_mm_set1_epi8(IsLetter(lower) ? 0x20 : 0)) {}
  [[nodiscard]] __m128i In(const char* data) const {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(data));
    return _mm_cmpeq_epi8(_mm_or_si128(bytes, fold), byte);
  }
  __m128i byte, fold;
};

// The first place at or behind `at` where a byte is `first` and the byte `apart` places on is `last`, or one of the
// last 31 before `places`.
__attribute__((target("avx2"))) std::size_t PassOverAvx2(const char* text, std::size_t at, std::size_t places,
                                                         std::size_t apart, const Wanted& first, const Wanted& last) {
  const __m256i first_byte = _mm256_broadcastsi128_si256(first.byte);
  const __m256i first_fold = _mm256_broadcastsi128_si256(first.fold);
  const __m256i last_byte = _mm256_broadcastsi128_si256(last.byte);
  const __m256i last_fold = _mm256_broadcastsi128_si256(last.fold);
  for (; at + 32 <= places; at += 32) {
    const __m256i begin = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + at));
    const __m256i end = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text + at + apart));
    const __m256i both = _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_or_si256(begin, first_fold), first_byte),
                                          _mm256_cmpeq_epi8(_mm256_or_si256(end, last_fold), last_byte));
    const auto hits = static_cast<unsigned>(_mm256_movemask_epi8(both));
    if (hits != 0) return at + static_cast<std::size_t>(std::countr_zero(hits));
  }
  return at;
}

#endif

}  // namespace

std::size_t FindIgnoreCase(std::string_view text, std::string_view lower_needle, std::size_t from) {
  if (lower_needle.size() > text.size()) return kNone;
  if (lower_needle.empty()) return from <= text.size() ? from : kNone;
  const std::size_t places = text.size() - lower_needle.size() + 1;  // where the needle can begin
  std::size_t at = from;
#if defined(__SSE2__)
  const Wanted first(lower_needle.front()), last(lower_needle.back());
  const std::size_t to_last = lower_needle.size() - 1;
  while (at < places && places - from >= 16) {
    if (kHasAvx2 && places - at >= 64) at = PassOverAvx2(text.data(), at, places, to_last, first, last);
    at = std::min(at, places - 16);  // the last sixteen places overlap those before them
    const __m128i both = _mm_and_si128(first.In(text.data() + at), last.In(text.data() + at + to_last));
    for (auto hits = static_cast<unsigned>(_mm_movemask_epi8(both)); hits != 0; hits &= hits - 1) {
      const std::size_t place = at + static_cast<std::size_t>(std::countr_zero(hits));
      if (HasAt(text, place, lower_needle)) return place;
    }
    at += 16;
  }
#endif
  for (; at < places; ++at) {
    if (HasAt(text, at, lower_needle)) return at;
  }
  return kNone;
}

}  // namespace quenlar
