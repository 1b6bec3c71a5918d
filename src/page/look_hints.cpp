#include "page/look_hints.h"

#include <bit>
#include <cstdint>

#include "base/ascii.h"
#include "base/processor.h"
#include "page/attributes.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace quenlar {
namespace {

constexpr std::size_t kBytesBehind = 3;  // what is looked at behind a place

#if defined(__SSE2__)
// A place at or behind `at` before which none of the two stands: that of "ty" or "dd" where the words have them, or one
// near the end. Few other words have these letters together.
__attribute__((target("avx2"))) std::size_t PassOverAvx2(std::string_view page, std::size_t at) {
  constexpr std::size_t kBlock = 32;
  const __m256i small = _mm256_set1_epi8(0x20);
  for (; at + kBlock + kBytesBehind <= page.size(); at += kBlock) {
    __m256i bytes[kBytesBehind];
    for (std::size_t i = 0; i < kBytesBehind; ++i) {
      const auto* const place = reinterpret_cast<const __m256i*>(page.data() + at + i + 1);
      bytes[i] = _mm256_or_si256(_mm256_loadu_si256(place), small);
    }
    const __m256i style = _mm256_and_si256(_mm256_cmpeq_epi8(bytes[0], _mm256_set1_epi8('t')),
                                           _mm256_cmpeq_epi8(bytes[1], _mm256_set1_epi8('y')));
    const __m256i d = _mm256_set1_epi8('d');
    const __m256i hidden = _mm256_and_si256(_mm256_cmpeq_epi8(bytes[1], d), _mm256_cmpeq_epi8(bytes[2], d));
    const auto hits = static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_or_si256(style, hidden)));
    if (hits != 0) return at + static_cast<std::size_t>(std::countr_zero(hits));
  }
  return at;
}
#endif

bool StandsAt(std::string_view page, std::size_t at) {
  const std::string_view rest = page.substr(at);
  for (const std::string_view word : {"hidden", "style"}) {
    if (!StartsWithIgnoreCase(rest, word)) continue;
    if (rest.size() == word.size() || EndsTagName(rest[word.size()]) || rest[word.size()] == '=') return true;
  }
  return false;
}

}  // namespace

void LookHints::Find(std::size_t limit) {
  limit = std::min(limit, page_.size());
  // Enough of the page behind the limit for a word that begins before it.
  [[maybe_unused]] const std::string_view near = page_.substr(0, limit + kBytesBehind);
  while (next_ < limit) {
#if defined(__SSE2__)
    if (kHasAvx2) next_ = PassOverAvx2(near, next_);
#endif
    if (next_ >= limit) break;
    found_ = StandsAt(page_, next_);
    if (found_) return;
    ++next_;
  }
}

}  // namespace quenlar
