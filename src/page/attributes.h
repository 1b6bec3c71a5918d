// The attributes of a tag, as the HTML Standard's tokenizer reads them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/byte_search.h"
#include "page/html_blanks.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {

[[nodiscard]] constexpr bool EndsTagName(char c) { return c == '>' || c == '/' || IsHtmlBlank(c); }

// The first byte at or behind `at` that ends the name of a tag, or is `other`; the end of the page if there is none.
[[nodiscard]] inline std::size_t FindEndOfName(std::string_view page, std::size_t at, char other) {
#if defined(__SSE2__)
  // Nearly all names are shorter than sixteen bytes, and differ in length too much to be foreseen.
  if (at < page.size() && page.size() - at >= 16) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(page.data() + at));
    const auto equal = [&](char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    const __m128i low =
        _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(' ')), bytes);  // also other control characters
    const __m128i ends = _mm_or_si128(_mm_or_si128(low, equal('/')), _mm_or_si128(equal('>'), equal(other)));
    const auto bits = static_cast<unsigned>(_mm_movemask_epi8(ends));
    at += bits == 0 ? 16 : static_cast<std::size_t>(std::countr_zero(bits));
  }
#endif
  while (at < page.size() && !EndsTagName(page[at]) && page[at] != other) ++at;
  return at;
}

// Views into the page: the name as it is written, the value without its quotes, references not decoded.
struct TagAttribute {
  std::string_view name, value;
};

// Goes through the attributes of one tag. Every byte is looked at once.
class AttributeReader {
 public:
  // `at` is the place behind the tag's name.
  AttributeReader(std::string_view page, std::size_t at) : page_(page), at_(at) {}

  // False at the end of the tag. Of two attributes with one name only the first one counts: that is left to the caller.
  [[nodiscard]] bool Next(TagAttribute& attribute) {
    if (!FindName()) return false;
    const std::size_t name = at_++;  // the first byte is part of the name, also when it is "="
    at_ = FindEndOfName(page_, at_, '=');
    attribute.name = page_.substr(name, at_ - name);
    attribute.value = {};
    PassBlanks();
    if (at_ >= page_.size() || page_[at_] != '=') return true;
    ++at_;
    PassBlanks();
    if (at_ < page_.size()) ReadValue(attribute.value);
    return true;
  }

  // When Next has returned false: the place behind ">", or npos where the page ends within the tag.
  [[nodiscard]] std::size_t end() const { return end_; }
  // Whether the tag ends in "/>".
  [[nodiscard]] bool self_closing() const { return self_closing_; }

 private:
  // What ends an unquoted value, a row of blanks; as bits.
  static constexpr std::uint8_t kValue = 1, kBlank = 2;
  static constexpr auto kEnds = [] {
    std::array<std::uint8_t, 256> ends{};
    for (std::size_t byte = 0; byte < ends.size(); ++byte) {
      const bool blank = IsHtmlBlank(static_cast<char>(byte));
      if (blank || byte == '>') ends[byte] |= kValue;
      if (!blank) ends[byte] |= kBlank;
    }
    return ends;
  }();
  [[nodiscard]] bool Ends(std::uint8_t kind) const {
    return (kEnds[static_cast<unsigned char>(page_[at_])] & kind) != 0;
  }

  void PassBlanks() {
    while (at_ < page_.size() && !Ends(kBlank)) ++at_;
  }

  // False at the end of the tag.
  bool FindName() {
    for (;; ++at_) {
      PassBlanks();
      if (at_ >= page_.size()) return false;
      if (page_[at_] == '>') {
        end_ = at_ + 1;
        return false;
      }
      if (page_[at_] != '/') return true;
      self_closing_ = at_ + 1 < page_.size() && page_[at_ + 1] == '>';
    }
  }

  void ReadValue(std::string_view& value) {
    const char quote = page_[at_];
    if (quote == '"' || quote == '\'') {
      const std::size_t end = FindByte(page_, quote, at_ + 1);
      if (end == std::string_view::npos) {
        at_ = page_.size();
        return;
      }
      value = page_.substr(at_ + 1, end - at_ - 1);
      at_ = end + 1;
      return;
    }
    const std::size_t begin = at_;
    while (at_ < page_.size() && !Ends(kValue)) ++at_;
    value = page_.substr(begin, at_ - begin);
  }

  std::string_view page_;
  std::size_t at_;
  std::size_t end_ = std::string_view::npos;
  bool self_closing_ = false;
};

}  // namespace quenlar
