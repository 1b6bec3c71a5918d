#include "page/page_signs.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "base/ascii.h"
#include "base/processor.h"
#include "page/attributes.h"
#include "page/html_blanks.h"
#include "page/references.h"
#include "page/tag_end.h"

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Three bytes in a row that a sign may begin with: of each, the bytes that it can be. All others mean any byte.
struct Beginning {
  std::string_view first, second, third;
};
constexpr std::string_view kAny = "";
// In no bracket of a word for "at": a digit or most letters behind it.
constexpr std::string_view kBehindBracket = "aAkKcC \t\n\r\f&<\xC2\xC3\xE3";
constexpr std::array<Beginning, 8> kBeginnings = {{
    {"@", kAny, kAny},
    {"&", "#clpL", kAny},
    {"%", "4", "0"},
    {"\\", "ux", "04"},
    {"cC", "fF", "eE"},
    {"[({", kBehindBracket, kAny},
    {"dD\xE3", "oO\x83", "tT\x89"},
    {"pP", "oOuU", "iInN"},
}};
constexpr std::size_t kBeginningBytes = 3;
constexpr std::uint8_t kAllBeginnings = 0xFF, kPlainBeginnings = 0x0F;  // a bit for each of kBeginnings

constexpr bool CanBe(std::string_view bytes, std::size_t byte) {
  return bytes.empty() || bytes.find(static_cast<char>(byte)) != std::string_view::npos;
}

// A bit for each of kBeginnings that can have this byte at this place.
using ByteTable = std::array<std::uint8_t, 256>;
constexpr auto kTables = [] {
  std::array<ByteTable, kBeginningBytes> tables{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    for (std::size_t i = 0; i < kBeginnings.size(); ++i) {
      const auto bit = static_cast<std::uint8_t>(1u << i);
      if (CanBe(kBeginnings[i].first, byte)) tables[0][byte] |= bit;
      if (CanBe(kBeginnings[i].second, byte)) tables[1][byte] |= bit;
      if (CanBe(kBeginnings[i].third, byte)) tables[2][byte] |= bit;
    }
  }
  return tables;
}();

bool MayBegin(std::string_view page, std::size_t at, std::uint8_t wanted) {
  const auto byte = [&](std::size_t i) { return i < page.size() ? static_cast<unsigned char>(page[i]) : 0; };
  return (kTables[0][byte(at)] & kTables[1][byte(at + 1)] & kTables[2][byte(at + 2)] & wanted) != 0;
}

#if defined(__SSE2__)

// The same bits by the halves of a byte: a byte has those that both of its halves have. Some bytes get too many.
struct HalfTables {
  alignas(16) std::array<std::uint8_t, 16> low{}, high{};
};
constexpr auto kHalves = [] {
  std::array<HalfTables, kBeginningBytes> halves{};
  for (std::size_t place = 0; place < halves.size(); ++place) {
    for (std::size_t byte = 0; byte < 256; ++byte) {
      halves[place].low[byte & 15] |= kTables[place][byte];
      halves[place].high[byte >> 4] |= kTables[place][byte];
    }
  }
  return halves;
}();

// A place at or behind `from` before which no sign begins: that of the first bytes that may be one, or one near the
// end.
__attribute__((target("avx2"))) std::size_t PassOverAvx2(std::string_view page, std::size_t from, std::uint8_t wanted) {
  constexpr std::size_t kBlock = 32;
  __m256i low[kBeginningBytes], high[kBeginningBytes];
  for (std::size_t i = 0; i < kBeginningBytes; ++i) {
    low[i] = _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(kHalves[i].low.data())));
    high[i] = _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(kHalves[i].high.data())));
  }
  const __m256i half = _mm256_set1_epi8(15);
  std::size_t at = from;
  for (; at + kBlock + kBeginningBytes <= page.size(); at += kBlock) {
    __m256i all = _mm256_set1_epi8(static_cast<char>(wanted));
    for (std::size_t i = 0; i < kBeginningBytes; ++i) {
      const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(page.data() + at + i));
      const __m256i by_low = _mm256_shuffle_epi8(low[i], _mm256_and_si256(bytes, half));
      const __m256i by_high = _mm256_shuffle_epi8(high[i], _mm256_and_si256(_mm256_srli_epi16(bytes, 4), half));
      all = _mm256_and_si256(all, _mm256_and_si256(by_low, by_high));
    }
    const __m256i none = _mm256_cmpeq_epi8(all, _mm256_setzero_si256());
    for (auto hits = ~static_cast<std::uint32_t>(_mm256_movemask_epi8(none)); hits != 0; hits &= hits - 1) {
      const std::size_t hit = at + static_cast<std::size_t>(std::countr_zero(hits));
      if (MayBegin(page, hit, wanted)) return hit;
    }
  }
  return at;
}

// The bytes that a plain sign may begin with differ in their lower halves. So one look into a table by that half gives
// the only one of them that a byte can be. All but "@" are followed by bytes of certain lower halves.
struct PlainTables {
  alignas(16) std::array<char, 16> first{}, second_half{};
};
constexpr auto kPlain = [] {
  PlainTables tables{};
  for (std::size_t byte = 0; byte < 128; ++byte) {
    if ((kTables[0][byte] & kPlainBeginnings) != 0) tables.first[byte & 15] = static_cast<char>(byte);
    if ((kTables[1][byte] & kPlainBeginnings & ~1) != 0) tables.second_half[byte & 15] = '\xFF';
  }
  return tables;
}();

// Bit i: a plain sign may begin at data[i]. Reads 33 bytes.
__attribute__((target("avx2"))) inline std::uint32_t PlainHits(const char* data, __m256i first, __m256i second_half) {
  const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data));
  const __m256i behind = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(data + 1));
  // The look into a table gives 0 for bytes beyond ASCII.
  const __m256i begins = _mm256_cmpeq_epi8(bytes, _mm256_shuffle_epi8(first, bytes));
  const __m256i at = _mm256_cmpeq_epi8(bytes, _mm256_set1_epi8('@'));
  const __m256i hits = _mm256_and_si256(begins, _mm256_or_si256(at, _mm256_shuffle_epi8(second_half, behind)));
  return static_cast<std::uint32_t>(_mm256_movemask_epi8(hits));
}

// A place at or behind `from` before which no plain sign begins: that of the first bytes that may be one, or one near
// the end.
__attribute__((target("avx2"))) std::size_t PassOverPlainAvx2(std::string_view page, std::size_t from) {
  constexpr std::size_t kBlock = 64;
  const __m256i first =
      _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(kPlain.first.data())));
  const __m256i second_half =
      _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(kPlain.second_half.data())));
  if (page.size() < kBlock + kBeginningBytes || from > page.size()) return from;
  const std::size_t last = page.size() - kBlock - kBeginningBytes;
  for (std::size_t at = from; at < last + kBlock; at += kBlock) {
    // The last bytes, together with some before them.
    const std::size_t place = std::min(at, last);
    const char* const data = page.data() + place;
    std::uint64_t hits = PlainHits(data, first, second_half);
    hits |= std::uint64_t{PlainHits(data + kBlock / 2, first, second_half)} << (kBlock / 2);
    for (hits = hits >> (at - place) << (at - place); hits != 0; hits &= hits - 1) {
      const std::size_t hit = place + static_cast<std::size_t>(std::countr_zero(hits));
      if (MayBegin(page, hit, kPlainBeginnings)) return hit;
    }
  }
  return std::max(from, last + kBlock);
}

#endif

// The first place at or behind `from` where a sign may begin.
std::size_t NextBeginning(std::string_view page, std::size_t from, std::uint8_t wanted) {
  std::size_t at = from;
#if defined(__SSE2__)
  if (kHasAvx2) at = wanted == kPlainBeginnings ? PassOverPlainAvx2(page, from) : PassOverAvx2(page, from, wanted);
#endif
  while (at < page.size() && !MayBegin(page, at, wanted)) ++at;
  return at;
}

// Bytes that an "@" with an address around it cannot have beside it. Odd ones before it, such as "=", are never the end
// of what stands before the "@" of an address.
constexpr std::string_view kNotBefore = " \t\n\r\f\"'()[]{}<,:=`|/?&#@\\";
constexpr std::string_view kNotBehind = " \t\n\r\f\"'()]},.:;=`|/?#@*!$^~+_-";
constexpr auto kBeside = [] {
  std::array<std::uint8_t, 256> table{};
  for (std::size_t byte = 0; byte < 256; ++byte) {
    const auto is_in = [byte](std::string_view bytes) { return bytes.find(static_cast<char>(byte)) != bytes.npos; };
    table[byte] = static_cast<std::uint8_t>((is_in(kNotBefore) ? 0 : 1) | (is_in(kNotBehind) ? 0 : 2));
  }
  return table;
}();

constexpr std::array<std::string_view, 8> kAtWords = {"at",          "arobase",    "ät",     "Ät",
                                                      "klammeraffe", "chiocciola", "arroba", "アット"};
constexpr std::array<std::string_view, 5> kDotWords = {"dot", "point", "punkt", "punto", "ドット"};
constexpr std::size_t kWordsApart = 256;   // bytes of the page, tags and all, from a word for "at" to one for "dot"
constexpr std::size_t kBlanksApart = 256;  // from a bracket to the word in it

bool MayBeginAtWord(char c) {
  const char small = ToLower(c);
  return small == 'a' || small == 'k' || small == 'c' || static_cast<unsigned char>(c) >= 0x80;
}
bool IsWordByte(char c) { return IsLetter(c) || IsDigit(c); }

// Whether one of the words stands at page[at], and no letter of ASCII behind it.
template <std::size_t N>
bool IsWordAt(std::string_view page, std::size_t at, const std::array<std::string_view, N>& words) {
  for (const std::string_view word : words) {
    if (!EqualsIgnoreCase(page.substr(at, word.size()), word)) continue;
    const std::size_t end = at + word.size();
    if (end >= page.size() || !IsWordByte(page[end])) return true;
  }
  return false;
}

// Behind blanks, tags and references to blanks.
std::size_t PassBlanks(std::string_view page, std::size_t at) {
  const std::size_t most = std::min(page.size(), at + kBlanksApart);
  while (at < most) {
    const std::string_view rest = page.substr(at, most - at);
    if (IsHtmlBlank(rest[0])) {
      ++at;
    } else if (rest.starts_with("\u00A0")) {
      at += 2;
    } else if (rest.starts_with("\u3000")) {
      at += 3;
    } else if (rest[0] == '<' && rest.find('>') != kNone) {
      at += rest.find('>') + 1;
    } else if (rest[0] == '&') {
      const Reference reference = ReadReference(rest, ReferencePlace::kText);
      const char32_t code = reference.codes[0];
      if (reference.length == 0 || (code != 0xA0 && code != 0x3000 && (code > ' ' || code == 0))) break;
      at += reference.length;
    } else {
      break;
    }
  }
  return at;
}

bool IsBracketedAt(std::string_view page, std::size_t behind_bracket) {
  return IsWordAt(page, PassBlanks(page, behind_bracket), kAtWords);
}

bool IsReferenceSign(std::string_view page, std::size_t at) {
  const Reference reference = ReadReference(page.substr(at), ReferencePlace::kText);
  switch (reference.codes[0]) {
    case '@':
    case '%':
    case '[':
    case '(':
    case '{':
      return true;
    case '<':
      return IsBracketedAt(page, at + reference.length);
    default:
      return false;
  }
}

// Whether the name of a domain may begin at `at`, which is the place behind an "@": a dot has to come before the first
// byte that ends the domain wherever it stands. Text goes on behind tags, so some of them are passed over, and other
// bytes may become a dot. What is not seen within 256 bytes may be there.
bool MayBeginDomain(std::string_view page, std::size_t at) {
  constexpr std::size_t kFar = 256;
  const std::string_view near = page.substr(0, at + kFar);
  bool has_dot = false;
  while (at < near.size()) {
    const char c = near[at];
    if (c == '<') {
      const std::size_t name = at + 1 < near.size() && near[at + 1] == '/' ? at + 2 : at + 1;
      if (name >= near.size() || !IsLetter(near[name])) return true;
      const std::size_t behind_name = FindEndOfName(near, name, '>');
      if (behind_name >= near.size()) return true;
      const std::size_t close = near[behind_name] == '>' ? behind_name : FindUsualTagEnd(near, behind_name);
      if (close == kNone) return true;
      at = close + 1;
      continue;
    }
    if (!IsWordByte(c) && c != '-' && c != '.') {
      return c == '&' || c == '%' || c == '\\' || c == '\0' || static_cast<unsigned char>(c) >= 0x80;
    }
    if (has_dot) return true;
    has_dot = c == '.';
    ++at;
  }
  return near.size() < page.size();
}

// Whether an address may stand around an "@", or around a reference to one, in page[at, end).
bool MayBeAddress(std::string_view page, std::size_t at, std::size_t end) {
  if (at == 0 || end >= page.size()) return false;
  const auto before = static_cast<unsigned char>(page[at - 1]), behind = static_cast<unsigned char>(page[end]);
  return (kBeside[before] & 1) != 0 && (kBeside[behind] & 2) != 0 && MayBeginDomain(page, end);
}

// Whether "40" may stand at `at`, perhaps as references.
bool MayBeForty(std::string_view page, std::size_t at) {
  return at < page.size() && (page[at] == '4' || page[at] == '&');
}

}  // namespace

bool PageSigns::IsDot(std::size_t at) {
  if (at == 0 || IsWordByte(page_[at - 1]) || !IsWordAt(page_, at, kDotWords)) return false;
  const std::size_t first = at > kWordsApart ? at - kWordsApart : 0;
  for (std::size_t word = std::max(first, words_looked_for_); word < at; ++word) {
    if (!MayBeginAtWord(page_[word]) || (word > 0 && IsWordByte(page_[word - 1]))) continue;
    if (IsWordAt(page_, word, kAtWords)) last_at_word_ = word;
  }
  words_looked_for_ = std::max(words_looked_for_, at);
  return last_at_word_ != kNone && last_at_word_ >= first;
}

bool PageSigns::IsPlainSign(std::size_t at) const {
  if (page_[at] == '@') return MayBeAddress(page_, at, at + 1);
  const std::string_view rest = page_.substr(at);
  if (!rest.starts_with("&#") && !rest.starts_with("&commat;") && !rest.starts_with("&percnt;")) return false;
  const Reference reference = ReadReference(rest, ReferencePlace::kText);
  const std::size_t end = at + reference.length;
  if (reference.codes[0] == '%') return MayBeForty(page_, end);
  return reference.codes[0] == '@' && MayBeAddress(page_, at, end);
}

bool PageSigns::IsSign(std::size_t at) {
  const std::string_view rest = page_.substr(at);
  if (kind_ == PageSignKind::kPlain && (rest[0] == '@' || rest[0] == '&')) return IsPlainSign(at);
  switch (rest[0]) {
    case '@':
      return true;
    case '&':
      return IsReferenceSign(page_, at);
    case '%':
      return rest.starts_with("%40");
    case '\\':
      return rest.starts_with("\\u0040") || rest.starts_with("\\x40");
    case 'c':
    case 'C':
      return StartsWithIgnoreCase(rest, "cfemail");
    case '[':
    case '(':
    case '{':
      return IsBracketedAt(page_, at + 1);
    default:
      return IsDot(at);
  }
}

void PageSigns::Find(std::size_t from) {
  const std::uint8_t wanted = kind_ == PageSignKind::kPlain ? kPlainBeginnings : kAllBeginnings;
  for (next_ = NextBeginning(page_, from, wanted); next_ < page_.size();
       next_ = NextBeginning(page_, next_ + 1, wanted)) {
    if (IsSign(next_)) return;
  }
  next_ = kNone;
}

bool MayHoldPlainAddress(std::string_view bytes) {
  return PageSigns(bytes, PageSignKind::kPlain).next() != std::string_view::npos;
}

}  // namespace quenlar
