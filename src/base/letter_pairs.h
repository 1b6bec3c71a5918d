// A quick test whether a text may hold any of several pairs of characters, in one pass. Link builders use it to find
// out that none of the many texts that would drop a link occurs in it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

struct LetterPair {
  char first, second;  // in lower case
};

// Returns false when the text holds none of the pairs; letter case is ignored. True proves nothing: the bit that makes
// a letter small also turns some control characters into others. So a caller that gets true looks closely.
//
// Sixteen bytes are compared at a time with the first characters, and the sixteen bytes one further on with the second
// ones. A bit that is set in both marks a pair. The last step is moved back so that it ends with the text.
template <LetterPair... pairs>
[[nodiscard]] bool MayHoldPair(std::string_view text) {
  constexpr char kFold = 0x20;  // makes small letters of capitals
  std::size_t at = 0;
#if defined(__SSE2__)
  constexpr std::size_t kStep = 16;
  if (text.size() > kStep) {
    const auto folded = [&](std::size_t from) {
      const auto* const bytes = reinterpret_cast<const __m128i*>(text.data() + from);
      return _mm_or_si128(_mm_loadu_si128(bytes), _mm_set1_epi8(kFold));
    };
    for (const std::size_t last = text.size() - kStep - 1;; at = std::min(at + kStep, last)) {
      const __m128i bytes = folded(at), behind = folded(at + 1);
      const auto hits = [&](LetterPair pair) {
        return _mm_and_si128(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(pair.first)),
                             _mm_cmpeq_epi8(behind, _mm_set1_epi8(pair.second)));
      };
      __m128i any = _mm_setzero_si128();
      ((any = _mm_or_si128(any, hits(pairs))), ...);
      if (_mm_movemask_epi8(any) != 0) return true;
      if (at == last) return false;
    }
  }
#endif
  for (; at + 1 < text.size(); ++at) {
    const auto hits = [&](LetterPair pair) {
      return (text[at] | kFold) == pair.first && (text[at + 1] | kFold) == pair.second;
    };
    if ((hits(pairs) || ...)) return true;
  }
  return false;
}

}  // namespace quenlar
