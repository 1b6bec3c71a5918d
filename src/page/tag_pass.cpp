#include "page/tag_pass.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "base/ascii.h"
#include "base/processor.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace quenlar {

#if defined(__SSE2__)

namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kBytesBehind = 3;  // three letters of a name, or "/" and two

// Bit i of each mask tells of byte i of a block.
struct Masks {
  std::uint64_t open, close, quote, apostrophe, equals;
  std::uint64_t gap;  // blanks and slashes
};

// Blanks and slashes differ in their lower halves, so one look into this table gives the only one that a byte can be.
constexpr auto kGaps = [] {
  std::array<char, 16> gaps{};
  gaps.fill('\xFF');
  for (const char c : {' ', '\t', '\n', '\f', '\r', '/'}) gaps[static_cast<unsigned char>(c) & 15] = c;
  return gaps;
}();

__attribute__((target("avx2,pclmul"))) inline Masks MasksOf(const char* data) {
  const __m256i low = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data));
  const __m256i high = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data + kBlock / 2));
  const __m256i gaps = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(kGaps.data())));
  const auto bits = [](__m256i low_hits, __m256i high_hits) __attribute__((target("avx2,pclmul"))) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(low_hits)) |
           std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(high_hits))} << (kBlock / 2);
  };
  const auto equal = [&](char c) __attribute__((target("avx2,pclmul"))) {
    const __m256i wanted = _mm256_set1_epi8(c);
    return bits(_mm256_cmpeq_epi8(low, wanted), _mm256_cmpeq_epi8(high, wanted));
  };
  // The look into the table gives 0 for bytes beyond ASCII.
  const std::uint64_t gap = bits(_mm256_cmpeq_epi8(low, _mm256_shuffle_epi8(gaps, low)),
                                 _mm256_cmpeq_epi8(high, _mm256_shuffle_epi8(gaps, high)));
  return {equal('<'), equal('>'), equal('"'), equal('\''), equal('='), gap};
}

// Bit i of the result tells whether the number of bits set in mask[0, i] is odd: the mask times a number of ones alone,
// added up without carrying.
__attribute__((target("pclmul"))) inline std::uint64_t OddSoFar(std::uint64_t mask) {
  const __m128i product =
      _mm_clmulepi64_si128(_mm_set_epi64x(0, static_cast<long long>(mask)), _mm_set1_epi8('\xFF'), 0);
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(product));
}

inline std::uint64_t Below(int bit) { return (std::uint64_t{1} << bit) - 1; }
inline std::uint64_t Spread(std::uint64_t last_bit) { return std::uint64_t{0} - last_bit; }

// What a block needs to know of the bytes before it. Bit 0 tells of the last one, unless all bits do.
class TagBits {
 public:
  // The bytes that are not as usual, or do not stand where tags have them. The first one counts, and a tag that ends
  // before it is as usual. `inside` tells of the bytes before which a tag is open.
  __attribute__((target("avx2,pclmul"))) std::uint64_t Odd(const Masks& masks, std::uint64_t& inside) {
    const std::uint64_t tag = OddSoFar(masks.open | masks.close) ^ Spread(tag_);  // from "<" up to the byte before ">"
    inside = tag << 1 | tag_;
    const std::uint64_t quotes = masks.quote & tag;
    const std::uint64_t value = OddSoFar(quotes) ^ Spread(value_);  // from a quote up to the byte before the next one
    const std::uint64_t outside = tag & ~value;
    const std::uint64_t equals = masks.equals & outside;
    const std::uint64_t no_name = (masks.gap | masks.quote) & outside;
    const std::uint64_t odd = (masks.open & inside) | (masks.close & (~inside | value)) | (masks.apostrophe & outside) |
                              ((masks.equals | masks.quote) & Names(masks)) |
                              ((equals << 1 | equals_) ^ (quotes & value)) | ((no_name << 1 | no_name_) & equals);
    tag_ = tag >> 63;
    value_ = value >> 63;
    equals_ = equals >> 63;
    no_name_ = no_name >> 63;
    return odd;
  }
  // Whether a tag is open behind the block.
  [[nodiscard]] bool in_tag() const { return tag_ != 0; }

 private:
  // The names of tags. They begin behind "<" or "</", and go on to the next gap or ">".
  std::uint64_t Names(const Masks& masks) {
    const std::uint64_t behind_open = masks.open << 1 | open_;
    const std::uint64_t slashes = behind_open & masks.gap;
    const std::uint64_t letters = ~(masks.gap | masks.close | masks.open);
    const std::uint64_t first = ((behind_open & ~masks.gap) | slashes << 1 | slash_) & letters;
    // A bit added to the first of a row of bits goes through it to its end.
    std::uint64_t sum = 0;
    bool goes_on = __builtin_add_overflow(letters, first, &sum);
    goes_on = __builtin_add_overflow(sum, name_, &sum) || goes_on;
    open_ = masks.open >> 63;
    slash_ = slashes >> 63;
    name_ = goes_on ? 1 : 0;
    return letters & ~sum;
  }

  std::uint64_t tag_ = 0, value_ = 0, equals_ = 0, no_name_ = 0, open_ = 0, slash_ = 0, name_ = 0;
};

// The bit of the first "<" of `open` that begins something else than a tag to be passed over, and those behind it.
inline std::uint64_t NotPassed(const char* data, std::uint64_t open, const tag_names::Beginnings& wanted) {
  for (; open != 0; open &= open - 1) {
    const char* name = data + std::countr_zero(open) + 1;
    if (*name == '/') {
      if (!IsLetter(name[1])) break;
    } else if (!IsLetter(*name) || tag_names::HasBeginning(wanted, name[0], name[1], name[2])) {
      break;
    }
  }
  return open;
}

__attribute__((target("avx2,pclmul"))) TagPass PassUsualTagsAvx2(std::string_view page, TagPass pass, std::size_t limit,
                                                                 const tag_names::Beginnings& wanted) {
  TagBits bits;
  std::size_t last_open = pass.at;
  for (std::size_t at = pass.at; at + kBlock + kBytesBehind <= limit; at += kBlock) {
    const Masks masks = MasksOf(page.data() + at);
    std::uint64_t inside = 0;
    const std::uint64_t odd = bits.Odd(masks, inside);
    const int end = std::countr_zero(odd);
    const std::uint64_t open = odd == 0 ? masks.open : masks.open & Below(end);
    const std::uint64_t stop = NotPassed(page.data() + at, open, wanted);
    if (const std::uint64_t passed = open ^ stop; passed != 0) {
      last_open = at + 63 - static_cast<std::size_t>(std::countl_zero(passed));
      const std::size_t name = last_open + (page[last_open + 1] == '/' ? 2 : 1);
      if (IsSurelyNotInline(page[name], page[name + 1])) pass.marked = last_open;
    }
    if (stop != 0) {
      pass.at = at + static_cast<std::size_t>(std::countr_zero(stop));
      return pass;
    }
    const bool in_tag = odd == 0 ? bits.in_tag() : (inside >> end & 1) != 0;
    pass.at = in_tag ? last_open : at + static_cast<std::size_t>(end);
    if (odd != 0) return pass;
  }
  return pass;
}

}  // namespace

#endif

TagPass PassUsualTags(std::string_view page, const TagPass& from, std::size_t limit,
                      const tag_names::Beginnings& wanted) {
#if defined(__SSE2__)
  if (kHasAvx2 && kHasPclmul) return PassUsualTagsAvx2(page, from, std::min(limit, page.size()), wanted);
#endif
  (void)page, (void)limit, (void)wanted;
  return from;
}

}  // namespace quenlar
