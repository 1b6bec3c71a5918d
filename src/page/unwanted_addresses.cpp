#include "page/unwanted_addresses.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "page/address_rules.h"
#include "page/site.h"
#include "page/url_bytes.h"
#include "platform/punycode.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kSignCode = "%40";

// A character of a text, as it stands or as the percent code that it stands for.
struct Character {
  char value = '\0';
  std::size_t bytes = 0;  // 0: there is none
};

std::optional<char> DecodedAt(std::string_view text, std::size_t at) {
  if (text.size() < kSignCode.size() || at > text.size() - kSignCode.size() || text[at] != '%') return std::nullopt;
  const int high = HexDigit(text[at + 1]), low = HexDigit(text[at + 2]);
  if (high < 0 || low < 0) return std::nullopt;
  return static_cast<char>(high * 16 + low);
}

Character CharacterAt(std::string_view text, std::size_t at) {
  if (at >= text.size()) return {};
  if (const auto decoded = DecodedAt(text, at)) return {*decoded, kSignCode.size()};
  return {text[at], 1};
}

Character CharacterBefore(std::string_view text, std::size_t end) {
  if (end == 0) return {};
  if (end >= kSignCode.size()) {
    if (const auto decoded = DecodedAt(text, end - kSignCode.size())) return {*decoded, kSignCode.size()};
  }
  return {text[end - 1], 1};
}

// What a name is made of, and what may stand in one as well as before one.
bool IsNamePart(char c) { return IsWord(c) || c == '.' || c == '-' || c == '+'; }
bool IsOddPart(char c) { return std::string_view("!#$%&'*/=?^`{|}~").find(c) != kNone; }
bool IsDomainPart(char c) { return IsLetter(c) || IsDigit(c) || c == '-' || c == '.'; }
bool IsBeyondAscii(char c) { return static_cast<unsigned char>(c) >= 0x80; }

// The domain as addresses have it, all labels in ASCII. Empty where one is no UTF-8, or too long.
std::string AsciiDomain(std::string_view domain) {
  if (IsAscii(domain)) return std::string(domain);
  std::string ascii;
  for (const std::string_view label : Split(domain, ".")) {
    const std::optional<std::string> code = IsAscii(label) ? std::string(label) : PunycodeLabel(label);
    if (!code) return {};
    ascii.append(ascii.empty() ? "" : ".").append(*code);
  }
  return ascii;
}

// Where a part of an address may begin or end, and the part.
struct Part {
  std::size_t at = 0;
  std::string text;
};

// The local parts that may end before `end`, the longest first.
std::vector<Part> LocalParts(std::string_view text, std::size_t end) {
  std::string reversed;
  std::vector<std::pair<std::size_t, std::size_t>> begins;  // in the text; length of the part
  std::size_t at = end;
  for (;;) {
    const Character c = CharacterBefore(text, at);
    const bool goes_on = c.bytes > 0 && (IsNamePart(c.value) || IsOddPart(c.value));
    if (!reversed.empty() && (!goes_on || IsOddPart(c.value))) begins.emplace_back(at, reversed.size());
    if (!goes_on || reversed.size() == kLongestLocalPart) break;
    reversed += c.value;
    at -= c.bytes;
  }
  std::vector<Part> parts;
  for (auto begin = begins.rbegin(); begin != begins.rend(); ++begin) {
    parts.push_back(
        {begin->first, std::string(reversed.rend() - static_cast<std::ptrdiff_t>(begin->second), reversed.rend())});
  }
  return parts;
}

// The domains that may begin at `begin`, the longest first. One that ends in a top-level domain is the only one.
// Letters beyond ASCII are a part of a domain ("info@müller.de") or stand behind one ("info@firma.de–Home"), as the
// caller asks.
std::vector<Part> Domains(std::string_view text, std::size_t begin, bool beyond_ascii) {
  std::string run;
  std::vector<std::size_t> ends;  // in the text, behind each character of the run
  for (std::size_t at = begin; run.size() < kLongestAddress;) {
    const Character c = CharacterAt(text, at);
    if (c.bytes == 0 || !(IsDomainPart(c.value) || (beyond_ascii && IsBeyondAscii(c.value)))) break;
    run += ToLower(c.value);
    ends.push_back(at += c.bytes);
  }
  const auto trim = [&run] {
    while (!run.empty() && (run.back() == '.' || run.back() == '-')) run.pop_back();
  };
  std::vector<Part> domains;
  for (trim(); !run.empty(); trim()) {
    domains.push_back({ends[run.size() - 1], AsciiDomain(run)});
    const std::size_t dot = run.rfind('.');
    if (dot == kNone || IsTopLevelDomain(AsciiDomain(std::string_view(run).substr(dot + 1)))) break;
    run.resize(dot);
  }
  return domains;
}

std::optional<UnwantedPlace> UnwantedAt(std::string_view text, std::size_t sign, const AddressTest& keeps,
                                        std::size_t floor) {
  const std::vector<Part> locals = LocalParts(text, sign);
  if (locals.empty()) return std::nullopt;
  const std::size_t begin = sign + CharacterAt(text, sign).bytes;
  std::vector<Part> domains = Domains(text, begin, false);
  std::ranges::move(Domains(text, begin, true), std::back_inserter(domains));
  for (const Part& domain : domains) {
    if (domain.text.empty()) continue;
    for (const Part& local : locals) {
      std::string address = local.text + "@" + domain.text;
      if (local.at >= floor && !keeps(address)) return UnwantedPlace{local.at, sign, domain.at, std::move(address)};
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<UnwantedPlace> NextUnwanted(std::string_view text, const AddressTest& keeps, std::size_t from) {
  std::size_t plain = text.find('@', from), code = text.find(kSignCode, from);
  while (plain != kNone || code != kNone) {
    std::size_t& next = plain < code ? plain : code;
    if (auto place = UnwantedAt(text, next, keeps, from)) return place;
    next = &next == &plain ? text.find('@', next + 1) : text.find(kSignCode, next + 1);
  }
  return std::nullopt;
}

std::string WithoutUnwanted(std::string_view text, const AddressTest& keeps) {
  std::string left;
  std::size_t taken = 0;
  while (const auto place = NextUnwanted(text, keeps, taken)) {
    left.append(text, taken, place->begin - taken);
    taken = place->end;
  }
  return left.append(text, taken);
}

}  // namespace quenlar
