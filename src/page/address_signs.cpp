#include "page/address_signs.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kBytesBehind = 3;  // what is looked at behind a place

#if defined(__SSE2__)

constexpr std::size_t kBlock = 16;

class Block {
 public:
  explicit Block(const char* data) : here_(Load(data)), next_(Load(data + 1)), data_(data) {}

  // Bit i is set where data[i] is a sign.
  template <bool in_script>
  [[nodiscard]] unsigned Signs() const {
    const __m128i next = Small(next_);
    const __m128i point = Or(Is(next, 'd'), Is(next, 'p'));
    const __m128i word = Or(Or(point, Is(next, 'a')), Or(Is(next, 'k'), Is(next, 'c')));
    const __m128i bracket = Or(Or(Is(Small(here_), '{'), Is(here_, '(')), Is(here_, '<'));
    const __m128i third = Load(data_ + 2);
    const __m128i latin = And(point, Or(Is(Small(third), 'o'), Is(Small(third), 'u')));
    // The end of the three bytes of U+30C9.
    const __m128i katakana = And(Is(third, '\x83'), Is(Load(data_ + 3), '\x89'));
    __m128i signs = Or(Is(here_, '@'), And(bracket, Or(word, MayBeBlank(next_))));
    signs = Or(signs, And(MayBeBlank(here_), Or(latin, katakana)));
    if constexpr (in_script) signs = Or(signs, And(Is(here_, '\\'), Or(Is(next_, 'u'), Is(next_, 'x'))));
    return static_cast<unsigned>(_mm_movemask_epi8(signs));
  }

 private:
  static __m128i Load(const char* data) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(data)); }
  static __m128i Or(__m128i a, __m128i b) { return _mm_or_si128(a, b); }
  static __m128i And(__m128i a, __m128i b) { return _mm_and_si128(a, b); }
  static __m128i Is(__m128i bytes, char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); }
  static __m128i Small(__m128i bytes) { return Or(bytes, _mm_set1_epi8(0x20)); }
  // A blank of ASCII, another control character, or a byte beyond ASCII.
  static __m128i MayBeBlank(__m128i bytes) { return _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x21)); }

  __m128i here_, next_;
  const char* data_;
};

template <bool in_script>
std::size_t Find(std::string_view text, std::size_t from) {
  if (text.size() < kBlock + kBytesBehind) {
    std::array<char, kBlock + kBytesBehind> padded{};
    if (!text.empty()) std::memcpy(padded.data(), text.data(), text.size());
    const unsigned signs = from < text.size() ? Block(padded.data()).Signs<in_script>() >> from << from : 0;
    return signs == 0 || static_cast<std::size_t>(std::countr_zero(signs)) >= text.size()
               ? kNone
               : static_cast<std::size_t>(std::countr_zero(signs));
  }
  const std::size_t last = text.size() - kBlock - kBytesBehind;
  for (std::size_t at = from; at < last + kBlock; at += kBlock) {
    // The last bytes, together with some before them.
    const std::size_t place = std::min(at, last);
    const unsigned signs = Block(text.data() + place).Signs<in_script>() >> (at - place);
    if (signs != 0) return at + static_cast<std::size_t>(std::countr_zero(signs));
  }
  return kNone;
}

#else

char Small(char c) { return static_cast<char>(c | 0x20); }
bool MayBeBlank(char c) { return static_cast<signed char>(c) < 0x21; }

bool IsSign(const char* at, bool in_script) {
  const char next = Small(at[1]), third = Small(at[2]);
  const bool point = next == 'd' || next == 'p';
  const bool word = point || next == 'a' || next == 'k' || next == 'c';
  if (at[0] == '@' || (in_script && at[0] == '\\' && (at[1] == 'u' || at[1] == 'x'))) return true;
  if (Small(at[0]) == '{' || at[0] == '(' || at[0] == '<') return word || MayBeBlank(at[1]);
  return MayBeBlank(at[0]) && ((point && (third == 'o' || third == 'u')) || (at[2] == '\x83' && at[3] == '\x89'));
}

template <bool in_script>
std::size_t Find(std::string_view text, std::size_t from) {
  for (std::size_t at = from; at + kBytesBehind < text.size(); ++at) {
    if (IsSign(text.data() + at, in_script)) return at;
  }
  return kNone;
}

#endif

}  // namespace

std::size_t FindMailSign(std::string_view text, std::size_t from) { return Find<false>(text, from); }

std::size_t FindScriptSign(std::string_view text, std::size_t from) { return Find<true>(text, from); }

}  // namespace quenlar
