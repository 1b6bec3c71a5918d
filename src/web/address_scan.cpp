#include "web/address_scan.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "web/address_masks.h"

namespace quenlar {
namespace {

constexpr std::uint8_t kLocal = 1, kDomain = 2, kLetter = 4, kWord = 8;

constexpr std::array<std::uint8_t, 256> MakeKinds() {
  std::array<std::uint8_t, 256> kinds{};
  for (int i = 0; i < 128; ++i) {
    const char c = static_cast<char>(i);
    const bool alphanumeric = IsLetter(c) || IsDigit(c);
    auto& kind = kinds[static_cast<std::size_t>(i)];
    if (alphanumeric || c == '.' || c == '_' || c == '%' || c == '+' || c == '-') kind |= kLocal;
    if (alphanumeric || c == '.' || c == '-') kind |= kDomain;
    if (IsLetter(c)) kind |= kLetter;
    if (IsWord(c)) kind |= kWord;
  }
  return kinds;
}

constexpr std::array<std::uint8_t, 256> kKinds = MakeKinds();

inline bool Is(char c, std::uint8_t kind) { return (kKinds[static_cast<unsigned char>(c)] & kind) != 0; }

// The end of the run of domain characters that begins at `begin`.
std::size_t DomainRunEnd(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
#if defined(__SSE2__)
  for (; text.size() - end >= 16; end += 16) {
    const unsigned others = ~AddressBytes(text.data() + end).Domain() & 0xFFFF;
    if (others != 0) return end + static_cast<std::size_t>(std::countr_zero(others));
  }
#endif
  while (end < text.size() && Is(text[end], kDomain)) ++end;
  return end;
}

// Returns where the run of local characters that ends at `end` begins. It does not reach back beyond `from`.
std::size_t LocalRunBegin(std::string_view text, std::size_t from, std::size_t end) {
  std::size_t begin = end;
#if defined(__SSE2__)
  for (; begin > from && begin >= 16; begin -= 16) {
    const unsigned others = ~AddressBytes(text.data() + begin - 16).Local() & 0xFFFF;
    if (others != 0) return std::max(from, begin - 16 + static_cast<std::size_t>(std::bit_width(others)));
  }
#endif
  while (begin > from && Is(text[begin - 1], kLocal)) --begin;
  return std::max(from, begin);
}

// Returns where the local part in front of the "@" at `sign` begins: at the first word boundary in the run of local
// characters, which does not reach back beyond `from`. Returns `sign` when the run has no word boundary.
std::size_t LocalStart(std::string_view text, std::size_t from, std::size_t sign) {
#if defined(__SSE2__)
  // Most local parts are shorter than sixteen characters. Where no word character stands in front of one, the first
  // word character in it is the boundary. For example, the sixteen bytes before the "@", with bit 0 at the left:
  //
  //   text      write to -jo.doe
  //   others    .....1..1.......   not local; the last one is byte 8, so the local run begins at byte 9
  //   Word      11111.11..11.111   byte 8 is not a word character
  //   word      ..........11.111   from byte 9 on: the first one is byte 10, so the local part is "jo.doe"
  if (sign >= 16) {
    const std::size_t window = sign - 16;
    const AddressBytes bytes(text.data() + window);
    unsigned others = ~bytes.Local() & 0xFFFF;
    if (from > window) others |= (1u << (from - window)) - 1;
    const int behind_others = std::bit_width(others);
    if (behind_others > 0 && (bytes.Word() >> (behind_others - 1) & 1) == 0) {
      const unsigned word = bytes.Word() >> behind_others << behind_others;
      return word == 0 ? sign : window + static_cast<std::size_t>(std::countr_zero(word));
    }
  }
#endif
  std::size_t start = LocalRunBegin(text, from, sign);
  bool word_before = start > 0 && Is(text[start - 1], kWord);
  for (; start < sign; ++start) {
    const bool word = Is(text[start], kWord);
    if (word != word_before) return start;
  }
  return sign;
}

// Returns the end of the top-level name behind the dot: two to four letters with no word character behind them. Returns
// 0 when the dot does not have one.
std::size_t TopLevelEnd(std::string_view text, std::size_t dot) {
  std::size_t end = dot + 1;
  while (end < text.size() && end < dot + 6 && Is(text[end], kLetter)) ++end;
  const std::size_t letters = end - dot - 1;
  if (letters < 2 || letters > 4) return 0;
  return end < text.size() && Is(text[end], kWord) ? 0 : end;
}

#if defined(__SSE2__)

constexpr std::size_t kShortDomain = 27;  // with the five bytes that decide about a dot at its end: 32

// DomainEnd where thirty-two bytes follow, or nothing when the run of domain characters is longer than kShortDomain.
// For example, the bytes behind the "@", with bit 0 at the left:
//
//   text        cs.uni-x.de.4 see b.org
//   domain      1111111111111.111.11111   the run is thirteen bytes long
//   letters     11.111.1.11...111.1.111
//   no_word     ..1...1.1..1.1...1.1...
//   top_level   ..11....1....11....11..   two to four letters behind this byte, and no word character behind those
//   dots        ..1.....1..............   dots with a top-level name, in the run, not as its first byte
//
// The last dot is byte 8, and the letters behind it end before byte 11: the domain is "cs.uni-x.de".
inline std::optional<std::size_t> ShortDomainEnd(std::string_view text, std::size_t begin) {
  const AddressBytes near(text.data() + begin), far(text.data() + begin + 16);
  const auto both = [](unsigned first, unsigned second) { return first | second << 16; };
  const auto run = static_cast<std::size_t>(std::countr_one(both(near.Domain(), far.Domain())));
  if (run > kShortDomain) return std::nullopt;
  // `letters >> 1` moves what is known of the byte behind to the byte itself, `letters >> 2` that of the byte after it,
  // and so on: a top-level name is two to four letters and no word character behind them.
  const unsigned letters = both(near.Letters(), far.Letters()), no_word = ~both(near.Word(), far.Word());
  const unsigned top_level =
      letters >> 1 & letters >> 2 & (no_word >> 3 | (letters >> 3 & (no_word >> 4 | (letters >> 4 & no_word >> 5))));
  // Only dots of the run count, and not its first character.
  const unsigned dots = both(near.Dots(), far.Dots()) & top_level & ((1u << run) - 1) & ~1u;
  if (dots == 0) return 0;
  const auto behind_dot = static_cast<std::size_t>(std::bit_width(dots));
  return begin + behind_dot + static_cast<std::size_t>(std::countr_one(letters >> behind_dot));
}

#endif

// Returns the end of the domain that begins at `begin`: that of the top-level name behind the last dot that has one.
// Returns 0 when no dot has one.
std::size_t DomainEnd(std::string_view text, std::size_t begin) {
#if defined(__SSE2__)
  if (text.size() - begin >= 32) {
    if (const std::optional<std::size_t> end = ShortDomainEnd(text, begin)) return *end;
  }
#endif
  const std::size_t end = DomainRunEnd(text, begin);
  for (std::size_t dot = end; dot-- > begin + 1;) {
    if (text[dot] != '.') continue;
    if (const std::size_t found = TopLevelEnd(text, dot)) return found;
  }
  return 0;
}

// Returns whether the domain that begins at `begin` has a dot with two letters behind it, not counting its first
// character.
bool HasLooseDomain(std::string_view text, std::size_t begin) {
  for (std::size_t at = begin; at < text.size() && Is(text[at], kDomain); ++at) {
    if (text[at] == '.' && at > begin && at + 2 < text.size() && Is(text[at + 1], kLetter) &&
        Is(text[at + 2], kLetter)) {
      return true;
    }
  }
  return false;
}

std::string_view AddressAround(std::string_view text, std::size_t from, std::size_t sign, std::size_t end) {
  const std::size_t start = LocalStart(text, from, sign);
  return start < sign ? text.substr(start, end - start) : std::string_view();
}

}  // namespace

std::string_view NextAddress(std::string_view text, std::size_t from) {
  std::size_t floor = from;
  for (std::size_t sign = FindByte(text, '@', from); sign < text.size(); sign = FindByte(text, '@', floor)) {
    if (sign > floor && Is(text[sign - 1], kLocal)) {
      if (const std::size_t end = DomainEnd(text, sign + 1)) {
        const std::string_view address = AddressAround(text, floor, sign, end);
        if (!address.empty()) return address;
      }
    }
    floor = sign + 1;
  }
  return {};
}

AddressSign FindAddressSign(std::string_view text, std::size_t from) {
  for (std::size_t sign = FindByte(text, '@', from); sign < text.size(); sign = FindByte(text, '@', sign + 1)) {
    if (sign == 0 || !Is(text[sign - 1], kLocal)) continue;
    if (const std::size_t end = DomainEnd(text, sign + 1)) return {sign, AddressAround(text, 0, sign, end)};
    if (HasLooseDomain(text, sign + 1)) return {sign, {}};
  }
  return {};
}

}  // namespace quenlar
