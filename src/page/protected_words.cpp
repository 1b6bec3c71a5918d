#include "page/protected_words.h"

#include <array>
#include <span>
#include <string>
#include <vector>

#include "base/ascii.h"
#include "page/html_blanks.h"
#include "page/letters.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kMostBlanks = 32;       // in a row
constexpr std::size_t kLongestDomain = 1024;  // as far as it is read

using Words = std::span<const std::string_view>;
constexpr std::array<std::string_view, 8> kAt = {"at",          "arobase",    "ät",     "Ät",
                                                 "klammeraffe", "chiocciola", "arroba", "アット"};
constexpr std::string_view kNoBreak = "\u00A0", kWide = "\u3000";
constexpr std::array<std::string_view, 5> kDot = {"dot", "point", "punkt", "punto", "ドット"};

// Bytes of the blank that begins at `at`, or ends before `end`: those of HTML, the one that does not break and the wide
// one. 0 where there is none.
std::size_t BlankAt(std::string_view text, std::size_t at) {
  if (at >= text.size()) return 0;
  if (IsHtmlBlank(text[at])) return 1;
  if (text[at] == kNoBreak.front() && text.substr(at).starts_with(kNoBreak)) return kNoBreak.size();
  return text[at] == kWide.front() && text.substr(at).starts_with(kWide) ? kWide.size() : 0;
}
std::size_t BlankBefore(std::string_view text, std::size_t end) {
  if (end == 0) return 0;
  if (IsHtmlBlank(text[end - 1])) return 1;
  if (text[end - 1] == kNoBreak.back() && text.substr(0, end).ends_with(kNoBreak)) return kNoBreak.size();
  return text[end - 1] == kWide.back() && text.substr(0, end).ends_with(kWide) ? kWide.size() : 0;
}

std::size_t AfterBlanks(std::string_view text, std::size_t at) {
  for (std::size_t count = 0; count < kMostBlanks; ++count) {
    const std::size_t bytes = BlankAt(text, at);
    if (bytes == 0) break;
    at += bytes;
  }
  return at;
}

std::size_t BeforeBlanks(std::string_view text, std::size_t at) {
  for (std::size_t count = 0; count < kMostBlanks; ++count) {
    const std::size_t bytes = BlankBefore(text, at);
    if (bytes == 0) break;
    at -= bytes;
  }
  return at;
}

// Behind the word that begins at `at`; npos when it is none of these.
std::size_t AfterWord(std::string_view text, std::size_t at, Words words) {
  if (at >= text.size()) return kNone;
  const char first = ToLower(text[at]);
  for (const std::string_view word : words) {
    if (word.front() == first && EqualsIgnoreCase(text.substr(at, word.size()), word)) return at + word.size();
  }
  return kNone;
}

// Behind the bracket that closes what `open` opens, when one of the words and nothing else stands between them.
std::size_t AfterBracketedWord(std::string_view text, std::size_t open, Words words) {
  constexpr std::string_view kOpening = "[({<", kClosing = "])}>";
  if (open >= text.size()) return kNone;
  const std::size_t kind = kOpening.find(text[open]);
  if (kind == kNone) return kNone;
  const std::size_t behind_word = AfterWord(text, AfterBlanks(text, open + 1), words);
  if (behind_word == kNone) return kNone;
  const std::size_t close = AfterBlanks(text, behind_word);
  return close < text.size() && text[close] == kClosing[kind] ? close + 1 : kNone;
}

// Behind the blanks behind the word that the blanks at `at` part from what stands before.
std::size_t AfterBlankWord(std::string_view text, std::size_t at, Words words) {
  const std::size_t begin = AfterBlanks(text, at);
  if (begin == at) return kNone;
  const std::size_t behind_word = AfterWord(text, begin, words);
  if (behind_word == kNone) return kNone;
  const std::size_t end = AfterBlanks(text, behind_word);
  return end == behind_word ? kNone : end;
}

// Where the next label begins when a word for "dot" stands behind the label that ends at `at`.
std::size_t AfterDot(std::string_view text, std::size_t at, bool blanks_part) {
  const std::size_t behind = AfterBracketedWord(text, AfterBlanks(text, at), kDot);
  if (behind != kNone) return AfterBlanks(text, behind);
  return blanks_part ? AfterBlankWord(text, at, kDot) : kNone;
}

// How the domain of an address is written.
struct DomainStyle {
  bool needs_word = false;   // one "dot" at least is a word
  bool blanks_part = false;  // such a word can stand between blanks
};

struct WrittenDomain {
  std::string ascii;
  std::size_t end = 0;
};

// The longest domain that begins at `begin`.
std::optional<WrittenDomain> ReadDomain(std::string_view text, std::size_t begin, DomainStyle style,
                                        const DomainRules& rules) {
  // What stands between two words for "dot", and how much of the domain there is with it.
  struct Part {
    std::size_t domain_begin, domain_end, text_end;
    bool goes_on;
  };
  std::vector<Part> parts;
  std::string domain;
  for (std::size_t at = begin; at != kNone && domain.size() < kLongestDomain;) {
    const DomainRun run = ReadDomainRun(text, at);
    if (run.end == at) break;
    const std::size_t next = AfterDot(text, run.end, style.blanks_part);
    if (parts.empty() && next == kNone && style.needs_word) return std::nullopt;
    const std::size_t domain_begin = domain.size();
    domain.append(text.substr(at, run.end - at));
    parts.push_back({domain_begin, domain.size(), run.end, run.goes_on});
    domain += '.';
    at = next;
  }
  const std::size_t fewest = style.needs_word ? 2 : 1;
  for (std::size_t count = parts.size(); count >= fewest; --count) {
    const Part& last = parts[count - 1];
    const std::string_view run = std::string_view(domain).substr(0, last.domain_end);
    if (auto found = rules.DomainOf(run, last.goes_on, last.domain_begin)) {
      return WrittenDomain{std::move(found->ascii), last.text_end - (run.size() - found->bytes)};
    }
  }
  return std::nullopt;
}

std::optional<AddressMatch> Join(std::string_view text, std::size_t local_end, std::size_t domain_begin,
                                 DomainStyle style, const DomainRules& rules) {
  const std::size_t begin = LocalPartBegin(text, local_end);
  if (begin == kNone) return std::nullopt;
  const auto domain = ReadDomain(text, domain_begin, style, rules);
  if (!domain) return std::nullopt;
  auto address = JoinAddress(text.substr(begin, local_end - begin), domain->ascii);
  if (!address) return std::nullopt;
  return AddressMatch{begin, domain->end, std::move(*address)};
}

// Where the run of characters of a domain begins that ends before `end`.
std::size_t DomainRunBegin(std::string_view text, std::size_t end) {
  std::size_t begin = end;
  while (begin > 0 && end - begin < kLongestDomain) {
    const char c = text[begin - 1];
    if (static_cast<unsigned char>(c) < 0x80) {
      if (!IsLetter(c) && !IsDigit(c) && c != '-' && c != '.') break;
      --begin;
      continue;
    }
    const Letter letter = LetterBefore(text, begin);
    if (letter.kind != LetterKind::kParted && letter.kind != LetterKind::kUnparted) break;
    begin -= letter.bytes;
  }
  return begin;
}

// "name at host", where "host" ends before `host_end` and a word for "dot" follows.
std::optional<AddressMatch> BehindBlankAt(std::string_view text, std::size_t host_end, const DomainRules& rules) {
  const std::size_t host = DomainRunBegin(text, host_end);
  const std::size_t word_end = BeforeBlanks(text, host);
  if (host == host_end || word_end == host) return std::nullopt;
  for (const std::string_view word : kAt) {
    if (word_end < word.size() || !EqualsIgnoreCase(text.substr(word_end - word.size(), word.size()), word)) continue;
    const std::size_t word_begin = word_end - word.size();
    const std::size_t local_end = BeforeBlanks(text, word_begin);
    if (local_end == word_begin) continue;
    return Join(text, local_end, host, {.needs_word = true, .blanks_part = true}, rules);
  }
  return std::nullopt;
}

// Whether a word for "dot" and a blank stand behind the blank that ends at `sign`.
bool IsBlankDot(std::string_view text, std::size_t sign) {
  const std::size_t behind_word = AfterWord(text, sign + 1, kDot);
  return behind_word != kNone && BlankBefore(text, sign + 1) > 0 && BlankAt(text, behind_word) > 0;
}

// Whether the first two bytes of a word may be at `at`; most brackets and blanks stand before something else.
bool MayBeWord(std::string_view text, std::size_t at) {
  if (at + 1 >= text.size()) return false;
  const char second = ToLower(text[at + 1]);
  switch (ToLower(text[at])) {
    case 'a':
      return second == 't' || second == 'r';
    case 'd':
      return second == 'o';
    case 'p':
      return second == 'o' || second == 'u';
    case 'k':
      return second == 'l';
    case 'c':
      return second == 'h';
    default:
      return !IsLetter(text[at]);
  }
}

}  // namespace

bool IsWordSign(std::string_view text, std::size_t sign) {
  if (!MayBeWord(text, sign + 1)) return false;
  return AfterBracketedWord(text, sign, kAt) != kNone || AfterBracketedWord(text, sign, kDot) != kNone ||
         IsBlankDot(text, sign);
}

std::optional<AddressMatch> AddressInWords(std::string_view text, std::size_t sign, const DomainRules& rules) {
  if (text[sign] == '@') return Join(text, sign, sign + 1, {.needs_word = true, .blanks_part = false}, rules);
  const std::size_t behind_at = AfterBracketedWord(text, sign, kAt);
  if (behind_at != kNone) {
    return Join(text, BeforeBlanks(text, sign), AfterBlanks(text, behind_at),
                {.needs_word = false, .blanks_part = true}, rules);
  }
  if (AfterBracketedWord(text, sign, kDot) != kNone) return BehindBlankAt(text, BeforeBlanks(text, sign), rules);
  if (IsBlankDot(text, sign)) return BehindBlankAt(text, BeforeBlanks(text, sign + 1), rules);
  return std::nullopt;
}

}  // namespace quenlar
