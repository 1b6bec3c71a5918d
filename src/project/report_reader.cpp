// Reads a report back. Every pattern begins with an address, so each pass goes from "@" to "@". The characters that it
// looks at around one "@" are not looked at again for the next one, so the time is linear on any input.
//
// A page address that ends in an e-mail address gives one record more when a URL stands on the next line: white space
// may hold line ends in the patterns. Kept: ReportReader.PageAddressThatEndsInAnAddressGivesOneExtraRecord.
#include <algorithm>
#include <array>

#include "base/ascii.h"
#include "project/report_file.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::size_t kFewestBlanks = 7;  // white space behind a padded address, its line end apart

// The classes of the patterns, one bit each. A character may belong to several.
enum Class : unsigned char { kSpace = 1, kLocal = 2, kDomain = 4, kLabel = 8, kPath = 16 };

constexpr auto kClasses = [] {
  std::array<unsigned char, 256> classes{};
  const auto add = [&](std::string_view characters, unsigned char bits) {
    for (const char c : characters) classes[static_cast<unsigned char>(c)] |= bits;
  };
  add(" \t\n\v\f\r", kSpace);
  for (int c = 0; c < 128; ++c) {
    if (IsWord(static_cast<char>(c))) classes[c] |= kLocal | kLabel | kPath;
    if (IsLetter(static_cast<char>(c)) || IsDigit(static_cast<char>(c))) classes[c] |= kDomain;
  }
  add(".%+-", kLocal);
  add(".-", kDomain);
  add("-", kLabel);
  add("-./?%&=;~", kPath);
  return classes;
}();

bool Is(Class wanted, char c) { return (kClasses[static_cast<unsigned char>(c)] & wanted) != 0; }

std::size_t Skip(Class wanted, std::string_view text, std::size_t at) {
  while (at < text.size() && Is(wanted, text[at])) ++at;
  return at;
}

// Returns the end of an address with its "@" at `at` and white space behind it, or kNone. White space cannot belong to
// an address, so the domain is the whole run of domain characters. Its last label has 2 to 4 letters.
std::size_t AddressEnd(std::string_view text, std::size_t at) {
  const std::size_t end = Skip(kDomain, text, at + 1);
  if (end == text.size() || !Is(kSpace, text[end])) return kNone;
  std::size_t dot = end;
  while (dot > at + 1 && end - dot < 5 && IsLetter(text[dot - 1])) --dot;
  const std::size_t letters = end - dot;
  if (letters < 2 || letters > 4 || dot < at + 3 || text[dot - 1] != '.') return kNone;
  return end;
}

// The position behind "http://", "https://" or "ftp://" at `at`, or kNone.
std::size_t SchemeEnd(std::string_view text, std::size_t at) {
  for (const std::string_view scheme : {"http://", "https://", "ftp://"}) {
    if (StartsWithIgnoreCase(text.substr(at), scheme)) return at + scheme.size();
  }
  return kNone;
}

// Whether a host of at least two labels begins at `at`: label characters, ".", a label character.
bool HostBegins(std::string_view text, std::size_t at) {
  const std::size_t dot = Skip(kLabel, text, at);
  return dot > at && dot + 1 < text.size() && text[dot] == '.' && Is(kLabel, text[dot + 1]);
}

// The web address at the beginning of `text`, which begins with a scheme and a host.
std::string_view LeadingUrl(std::string_view text) {
  std::size_t end = Skip(kLabel, text, SchemeEnd(text, 0));
  while (end + 1 < text.size() && text[end] == '.' && Is(kLabel, text[end + 1])) end = Skip(kLabel, text, end + 1);
  if (end < text.size() && text[end] == '/') end = Skip(kPath, text, end);
  return text.substr(0, end);
}

// Returns `text` without the occurrences of `needle`. The character `anchor` occurs in the needle exactly once. So what
// is compared around one anchor of the text does not reach beyond the next one, and the time is linear.
std::string Without(std::string_view text, std::string_view needle, char anchor) {
  const std::size_t anchor_at = needle.find(anchor);
  std::string result;
  std::size_t kept = 0;  // up to here the text has been dealt with
  for (std::size_t at = text.find(anchor); at != kNone; at = text.find(anchor, at + 1)) {
    if (at < kept + anchor_at || text.size() - at < needle.size() - anchor_at) continue;
    const std::size_t from = at - anchor_at;
    const auto before = std::make_reverse_iterator(needle.begin() + anchor_at);
    if (!std::equal(before, needle.rend(), std::make_reverse_iterator(text.begin() + at))) continue;
    if (!std::equal(needle.begin() + anchor_at, needle.end(), text.begin() + at)) continue;
    result.append(text, kept, from - kept);
    kept = from + needle.size();
  }
  return result.append(text, kept);
}

}  // namespace

bool ReportReader::Advance() {
  held_ = false;
  while (pass_ != Pass::kDone && !held_) {
    held_ = FindInPass();
    if (!held_) NextPass();
  }
  any_ = any_ || held_;
  return held_;
}

void ReportReader::NextPass() {
  at_ = 0;
  switch (pass_) {
    case Pass::kTableRows:
      pass_ = Pass::kPaddedLines;
      break;
    case Pass::kPaddedLines:
      pass_ = any_ ? Pass::kDone : Pass::kPlainLines;
      break;
    default:
      pass_ = Pass::kDone;
  }
}

// The next match of the pass's pattern at or after at_, which is moved behind it.
bool ReportReader::FindInPass() {
  std::size_t lowest = at_;  // no match begins before it
  for (;;) {
    const std::size_t at = text_.find('@', at_);
    if (at == kNone) return false;
    at_ = at + 1;
    Match match{at, AddressEnd(text_, at), kNone, kNone};
    while (match.from > lowest && Is(kLocal, text_[match.from - 1])) --match.from;
    lowest = at + 1;
    if (match.from == at || match.address_end == kNone) continue;
    const bool found = pass_ == Pass::kTableRows     ? RowAt(match)
                       : pass_ == Pass::kPaddedLines ? PaddedLineAt(match)
                                                     : PlainLineAt(match);
    if (!found) continue;
    match_ = match;
    at_ = match.end;
    return true;
  }
}

// White space, a web address, and anything up to the first line end behind it. White space may hold line ends, so a
// row may begin on one line and have its web address on a later one.
bool ReportReader::RowAt(Match& match) {
  match.url = Skip(kSpace, text_, match.address_end);
  const std::size_t host = SchemeEnd(text_, std::min(match.url, text_.size()));
  if (host == kNone || !HostBegins(text_, host)) return false;
  const std::size_t line_end = text_.find(kLineEnd, host);
  if (line_end == kNone) {
    at_ = text_.size();  // no later row has a line end either
    return false;
  }
  match.end = line_end + kLineEnd.size();
  return true;
}

// At least seven white-space characters, then a line end: the last one that the run of white space holds.
bool ReportReader::PaddedLineAt(Match& match) const {
  const std::size_t space_end = Skip(kSpace, text_, match.address_end);
  const std::string_view space = text_.substr(match.address_end, space_end - match.address_end);
  const std::size_t line_end = space.rfind(kLineEnd);
  if (line_end == kNone || line_end < kFewestBlanks) return false;
  match.end = match.address_end + line_end + kLineEnd.size();
  return true;
}

bool ReportReader::PlainLineAt(Match& match) const {
  if (!text_.substr(match.address_end).starts_with(kLineEnd)) return false;
  match.end = match.address_end + kLineEnd.size();
  return true;
}

void ReportReader::Take(FoundAddresses& found) {
  if (!held_) return;
  held_ = false;
  if (IsKept()) {
    AddRow(found);
  } else {
    passed_over_ = true;
  }
}

bool ReportReader::IsKept() const {
  return filter_ == nullptr || filter_->Keeps(text_.substr(match_.from, match_.address_end - match_.from));
}

void ReportReader::AddRow(FoundAddresses& found) const {
  const std::string_view whole = text_.substr(match_.from, match_.end - match_.from);
  if (match_.url == kNone) {
    const std::string line = ReplaceAll(whole, kLineEnd, "");
    found.Add({"", TrimBlanks(line), "", false});
    return;
  }
  const std::string_view address = whole.substr(0, match_.address_end - match_.from);
  const std::string_view url = LeadingUrl(whole.substr(match_.url - match_.from));
  const std::size_t space = match_.url - match_.address_end;
  const std::string_view behind =
      whole.substr(address.size() + space + url.size(), match_.end - match_.url - url.size() - kLineEnd.size());
  const bool may_repeat = behind.find('@') != kNone || behind.find(':') != kNone;
  if (!may_repeat && text_.substr(match_.address_end, space).find_first_not_of(' ') == kNone) {
    found.Add({url, address, TrimBlanks(behind), false});  // the common row, without a copy
    return;
  }
  const std::string rest = ReplaceAll(Without(Without(whole, address, '@'), url, ':'), kLineEnd, "");
  found.Add({url, address, TrimBlanks(rest), false});
}

void ReportReader::FinishNow(FoundAddresses& found) {
  Take(found);
  while (Advance()) Take(found);
}

void ReadReport(std::string_view text, FoundAddresses& found, const std::function<bool()>& pump) {
  ReportReader reader(text);
  while (reader.Advance()) {
    if (!pump()) return;
    reader.Take(found);
  }
}

}  // namespace quenlar
