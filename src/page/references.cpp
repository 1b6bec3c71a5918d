#include "page/references.h"

#include <algorithm>
#include <cstdint>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "page/reference_list.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr std::string_view kList = kReferenceList;
constexpr std::size_t kNames = 2125;
constexpr std::size_t kLongestName = 31;      // without the semicolon
constexpr std::size_t kLongestLooseName = 6;  // of those known without it
constexpr std::size_t kShortestLooseName = 2;

// Where the names begin in kList.
constexpr auto kNameStarts = [] {
  std::array<std::uint16_t, kNames> starts{};
  std::size_t count = 0;
  for (std::size_t at = 0; at < kList.size(); ++at) {
    if (at == 0 || kList[at - 1] == ' ') starts[count++] = static_cast<std::uint16_t>(at);
  }
  return starts;
}();
static_assert(kNameStarts.back() != 0 && kList.size() <= 0xFFFF);

// The names that begin with a letter: from kFirstOf[letter] to kFirstOf[letter + 1].
constexpr auto kFirstOf = [] {
  std::array<std::uint16_t, 129> first{};
  std::uint16_t name = 0;
  for (unsigned letter = 0; letter < first.size(); ++letter) {
    while (name < kNames && static_cast<unsigned char>(kList[kNameStarts[name]]) < letter) ++name;
    first[letter] = name;
  }
  return first;
}();

constexpr bool EndsName(char c) { return c == ';' || c == '!'; }
constexpr bool IsAlphanumeric(char c) { return IsLetter(c) || IsDigit(c); }

// Below 0 where the name in the list comes before `name`, above 0 where it comes behind it.
int Order(std::size_t start, std::string_view name) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char listed = kList[start + i];
    if (EndsName(listed)) return -1;
    if (listed != name[i]) return listed < name[i] ? -1 : 1;
  }
  return EndsName(kList[start + name.size()]) ? 0 : 1;
}

// The place in kList behind the name, where ";" or "!" stands; npos when there is no such name.
std::size_t FindName(std::string_view name) {
  const auto letter = static_cast<unsigned char>(name.front());
  const auto* const end = kNameStarts.data() + kFirstOf[letter + 1];
  const auto* const found = std::lower_bound(kNameStarts.data() + kFirstOf[letter], end, name,
                                             [](std::size_t start, std::string_view n) { return Order(start, n) < 0; });
  if (found == end || Order(*found, name) != 0) return std::string_view::npos;
  return *found + name.size();
}

std::uint32_t HexValue(char c) { return static_cast<std::uint32_t>(IsDigit(c) ? c - '0' : ToLower(c) - 'a' + 10); }
bool IsHexDigit(char c) { return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'f'); }

// The code points written at kList[at].
Reference Listed(std::size_t at, std::size_t length) {
  Reference reference{length, {}};
  std::size_t code = 0;
  for (; kList[at] != ' '; ++at) {
    if (kList[at] == '+')
      ++code;
    else
      reference.codes[code] = reference.codes[code] * 16 + HexValue(kList[at]);
  }
  return reference;
}

Reference ReadNamed(std::string_view text, ReferencePlace place) {
  std::size_t end = 1;
  while (end < text.size() && end <= kLongestName && IsAlphanumeric(text[end])) ++end;
  const std::string_view word = text.substr(1, end - 1);
  if (end < text.size() && text[end] == ';') {
    const std::size_t found = FindName(word);
    if (found != std::string_view::npos) return Listed(found + 1, end + 1);
  }
  for (std::size_t size = std::min(word.size(), kLongestLooseName); size >= kShortestLooseName; --size) {
    const std::size_t found = FindName(word.substr(0, size));
    if (found == std::string_view::npos || kList[found] != '!') continue;
    const char next = size + 1 < text.size() ? text[size + 1] : '\0';
    if (place == ReferencePlace::kAttribute && (next == '=' || IsAlphanumeric(next))) return {};
    return Listed(found + 1, size + 1);
  }
  return {};
}

// The code points that the bytes 0x80 to 0x9F are in Windows-1252; 0 where it has none. A page that was written by
// the number of such a byte means its character.
constexpr std::array<char16_t, 32> kOfControl = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                                 0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char32_t NumericCode(std::uint32_t number) {
  if (number == 0 || number > 0x10FFFF || (number >= 0xD800 && number <= 0xDFFF)) return 0xFFFD;
  if (number >= 0x80 && number <= 0x9F && kOfControl[number - 0x80] != 0) return kOfControl[number - 0x80];
  return number;
}

Reference ReadNumeric(std::string_view text) {
  const bool hexadecimal = text.size() > 2 && ToLower(text[2]) == 'x';
  const std::size_t begin = hexadecimal ? 3 : 2;
  std::size_t end = begin;
  std::uint32_t number = 0;
  for (; end < text.size() && (hexadecimal ? IsHexDigit(text[end]) : IsDigit(text[end])); ++end) {
    number = std::min<std::uint32_t>(number * (hexadecimal ? 16 : 10) + HexValue(text[end]), 0x110000);
  }
  if (end == begin) return {};
  if (end < text.size() && text[end] == ';') ++end;
  return {end, {NumericCode(number), 0}};
}

}  // namespace

Reference ReadReference(std::string_view text, ReferencePlace place) {
  if (text.size() < 3) return {};
  if (text[1] == '#') return ReadNumeric(text);
  return IsLetter(text[1]) ? ReadNamed(text, place) : Reference{};
}

void AppendDecoded(std::string_view text, ReferencePlace place, std::string& to) {
  std::size_t copied = 0;
  for (std::size_t at = FindByte(text, '&'); at < text.size();) {
    const Reference reference = ReadReference(text.substr(at), place);
    if (reference.length == 0) {
      at = FindByte(text, '&', at + 1);
      continue;
    }
    to.append(text, copied, at - copied);
    for (const char32_t code : reference.codes) {
      if (code != 0) AppendUtf8(code, to);
    }
    copied = at + reference.length;
    at = FindByte(text, '&', copied);
  }
  to.append(text, copied);
}

std::string_view Decoded(std::string_view text, ReferencePlace place, std::string& scratch) {
  if (FindByte(text, '&') == std::string_view::npos) return text;
  scratch.clear();
  AppendDecoded(text, place, scratch);
  return scratch;
}

}  // namespace quenlar
