#include "reference_addresses.h"

#include <algorithm>
#include <optional>
#include <set>

#include "base/ascii.h"
#include "page/site.h"
#include "platform/utf8.h"
#include "support/fake_idna.h"

namespace quenlar {
namespace {

// A character, or a byte that is none (its code is then above all characters), and where it stands in the text.
struct Character {
  char32_t code;
  std::size_t at;
};
using Characters = std::vector<Character>;

struct Range {
  std::size_t begin, end;  // characters
  std::string address;
};

const std::u32string kParted = U"üÜéп\u0308", kUnparted = U"までー公司中国メ한ภアッドト",
                     kUnseen = U"\u00AD\u200B\uFE0F";
const std::u32string kLocal = U".!#$%&'*+/=?^_`{|}~-", kOdd = U"='`{}|/?&#", kBlank = U" \n\t\r\f\u00A0\u3000";

bool Has(const std::u32string& set, char32_t code) { return set.find(code) != set.npos; }
bool IsAsciiLetter(char32_t code) { return code < 0x80 && IsLetter(static_cast<char>(code)); }
bool IsAsciiDigit(char32_t code) { return code < 0x80 && IsDigit(static_cast<char>(code)); }
bool IsAlphanumeric(char32_t code) { return IsAsciiLetter(code) || IsAsciiDigit(code); }
bool IsLocal(char32_t code) { return IsAlphanumeric(code) || Has(kLocal, code); }
bool IsOfDomain(char32_t code) {
  return IsAlphanumeric(code) || code == '.' || code == '-' || Has(kParted, code) || Has(kUnparted, code);
}

Characters Take(std::string_view text) {
  Characters characters;
  for (std::size_t at = 0; at < text.size();) {
    const Utf8Character one = DecodeUtf8(text.substr(at));
    characters.push_back({one.bytes == 0 ? 0x110000u + static_cast<unsigned char>(text[at]) : one.code, at});
    at += std::max<std::size_t>(one.bytes, 1);
  }
  return characters;
}

// A stretch of a text by itself, as if nothing stood around it.
class Stretch {
 public:
  explicit Stretch(std::string_view text) : text_(text), all_(Take(text)) {}

  [[nodiscard]] std::size_t size() const { return all_.size(); }
  [[nodiscard]] char32_t operator[](std::size_t i) const { return i < all_.size() ? all_[i].code : U'\0'; }
  [[nodiscard]] std::size_t Byte(std::size_t i) const { return i < all_.size() ? all_[i].at : text_.size(); }
  [[nodiscard]] std::size_t IndexOf(std::size_t byte) const {
    std::size_t i = 0;
    while (Byte(i) < byte) ++i;
    return i;
  }
  [[nodiscard]] std::string Bytes(std::size_t begin, std::size_t end) const {
    return std::string(text_.substr(Byte(begin), Byte(end) - Byte(begin)));
  }

  // The local part before `end`.
  [[nodiscard]] std::optional<std::size_t> Local(std::size_t end) const {
    std::size_t run = end;
    while (run > 0 && IsLocal((*this)[run - 1])) --run;
    std::size_t begin = run;
    for (std::size_t i = run; i < end; ++i) {
      const bool between_letters = (*this)[i] == '\'' && i > 0 && i + 1 < size() && IsAsciiLetter((*this)[i + 1]) &&
                                   (IsAsciiLetter((*this)[i - 1]) || Has(kParted, (*this)[i - 1]));
      if (Has(kOdd, (*this)[i]) && !between_letters) begin = i + 1;
    }
    const std::size_t word = begin;
    while (begin < end && (*this)[begin] == '.') ++begin;
    const std::string local = Bytes(begin, end);
    if (local.empty() || local.size() > 64 || local.back() == '.' || local.find("..") != local.npos) return {};
    if (word == run && GoesOnBefore(word)) return {};
    if (IsUser(word)) return {};
    return begin;
  }

  struct Run {
    std::size_t end;
    bool goes_on;
  };
  [[nodiscard]] Run DomainRun(std::size_t begin) const {
    std::size_t end = begin;
    while (end < size() && Byte(end) - Byte(begin) < 1024 && IsOfDomain((*this)[end])) {
      if ((*this)[end] == '.' && (*this)[end + 1] == '.') break;
      ++end;
    }
    bool goes_on = Byte(end) - Byte(begin) >= 1024;
    std::size_t next = end;
    while (next < size() && Has(kUnseen, (*this)[next])) ++next;
    const char32_t behind = (*this)[next];
    if (next < size()) goes_on |= behind == '@' || behind == '_' || IsAlphanumeric(behind) || Has(kParted, behind);
    return {end, goes_on};
  }

 private:
  [[nodiscard]] bool GoesOnBefore(std::size_t word) const {
    std::size_t at = word;
    while (at > 0 && Has(kUnseen, (*this)[at - 1])) --at;
    if (at == 0) return false;
    const char32_t before = (*this)[at - 1];
    return before == '@' || Has(kParted, before) || (at < word && IsLocal(before) && !Has(kOdd, before));
  }
  [[nodiscard]] bool IsUser(std::size_t word) const {
    const std::string before = Bytes(0, word);
    const std::size_t scheme = before.rfind("://");
    if (scheme == before.npos || scheme == 0 || !IsAlphanumeric(static_cast<unsigned char>(before[scheme - 1]))) {
      return false;
    }
    const std::string user = before.substr(scheme + 3);
    return user.size() <= 256 && std::none_of(user.begin(), user.end(), [](char c) {
             return static_cast<unsigned char>(c) <= ' ' ||
                    std::string_view("/?#\\\"<>@").find(c) != std::string_view::npos;
           });
  }

  std::string_view text_;
  Characters all_;
};

struct Domain {
  std::string ascii;
  std::size_t characters;  // of what it was read from
};

bool Passes(const std::string& ascii) {
  std::vector<std::string_view> labels = Split(ascii, ".");
  if (labels.size() < 2) return false;
  for (const std::string_view label : labels) {
    if (label.empty() || label.size() > 63 || label.front() == '-' || label.back() == '-') return false;
    for (const char c : label) {
      if (!IsLetter(c) && !IsDigit(c) && c != '-') return false;
    }
  }
  for (const char* const reserved : {"example.com", "example.net", "example.org"}) {
    if (("." + ascii).ends_with(std::string(".") + reserved)) return false;
  }
  return IsTopLevelDomain(labels.back());
}

// The longest domain at the beginning of `written`, of more than `fewest` characters.
std::optional<Domain> LongestDomain(const std::string& written, bool goes_on, std::size_t fewest) {
  const Stretch characters(written);
  for (std::size_t cut = characters.size() + 1; cut-- > 0;) {
    if (cut == characters.size() ? goes_on : !Has(kUnparted, characters[cut])) continue;
    std::size_t end = cut;
    while (end > 0 && (characters[end - 1] == '.' || characters[end - 1] == '-')) --end;
    if (end <= fewest) continue;
    const auto ascii = FakeIdna().ToAscii(characters.Bytes(0, end));
    if (ascii.ok() && Passes(ascii.value())) return Domain{ascii.value(), end};
  }
  return {};
}

std::optional<Range> Complete(const Stretch& text, std::size_t begin, std::size_t local_end, std::size_t end,
                              const std::string& domain) {
  const std::string address = text.Bytes(begin, local_end) + "@" + domain;
  if (address.size() > 254) return {};
  return Range{begin, end, address};
}

std::optional<Range> Plain(const Stretch& text, std::size_t sign) {
  const auto begin = text.Local(sign);
  if (!begin) return {};
  const Stretch::Run run = text.DomainRun(sign + 1);
  const auto domain = LongestDomain(text.Bytes(sign + 1, run.end), run.goes_on, 0);
  if (!domain) return {};
  const std::size_t end = sign + 1 + domain->characters;
  const bool path = text[end] == ':' && end + 1 < text.size() && text[end + 1] > ' ';
  if (path && Lower(text.Bytes(*begin, sign)) == "git") return {};
  return Complete(text, *begin, sign, end, domain->ascii);
}

// Words for the signs, all in small letters.
const std::vector<std::string> kAt = {"at", "arobase", "ät", "Ät", "klammeraffe", "chiocciola", "arroba", "アット"};
const std::vector<std::string> kDot = {"dot", "point", "punkt", "punto", "ドット"};

std::size_t SkipBlanks(const Stretch& text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && end < at + 32 && Has(kBlank, text[end])) ++end;
  return end;
}

std::size_t SkipBlanksBack(const Stretch& text, std::size_t at) {
  std::size_t begin = at;
  while (begin > 0 && begin + 32 > at && Has(kBlank, text[begin - 1])) --begin;
  return begin;
}

std::optional<std::size_t> BehindWord(const Stretch& text, std::size_t at, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    const std::size_t end = at + Take(word).size();
    if (end <= text.size() && Lower(text.Bytes(at, end)) == Lower(word)) return end;
  }
  return {};
}

std::optional<std::size_t> BehindBrackets(const Stretch& text, std::size_t at, const std::vector<std::string>& words) {
  const std::u32string open = U"[({<", close = U"])}>";
  if (at >= text.size() || !Has(open, text[at])) return {};
  const auto word = BehindWord(text, SkipBlanks(text, at + 1), words);
  if (!word) return {};
  const std::size_t end = SkipBlanks(text, *word);
  if (end >= text.size() || text[end] != close[open.find(text[at])]) return {};
  return end + 1;
}

std::optional<Range> Written(const Stretch& text, std::size_t local_end, std::size_t domain_begin, bool needs_word,
                             bool blanks_part) {
  const auto begin = text.Local(local_end);
  if (!begin) return {};
  struct Step {
    std::string domain;
    std::size_t from, end;
    bool goes_on;
  };
  std::vector<Step> steps;
  std::string domain;
  std::optional<std::size_t> at = domain_begin;
  while (at && domain.size() < 1024) {
    const Stretch::Run run = text.DomainRun(*at);
    if (run.end == *at) break;
    const std::size_t from = Take(domain).size();
    domain += text.Bytes(*at, run.end);
    steps.push_back({domain, from, run.end, run.goes_on});
    domain += '.';
    const std::size_t gap = SkipBlanks(text, run.end);
    at = BehindBrackets(text, gap, kDot);
    if (at) {
      at = SkipBlanks(text, *at);
    } else if (blanks_part && gap > run.end) {
      const auto word = BehindWord(text, gap, kDot);
      if (word && SkipBlanks(text, *word) > *word) at = SkipBlanks(text, *word);
    }
  }
  while (steps.size() > (needs_word ? 1u : 0u)) {
    const Step step = steps.back();
    steps.pop_back();
    const auto found = LongestDomain(step.domain, step.goes_on, step.from);
    if (!found) continue;
    return Complete(text, *begin, local_end, step.end - (Take(step.domain).size() - found->characters), found->ascii);
  }
  return {};
}

std::optional<Range> InWords(const Stretch& text, std::size_t sign) {
  if (text[sign] == '@') return Written(text, sign, sign + 1, true, false);
  if (const auto behind = BehindBrackets(text, sign, kAt)) {
    return Written(text, SkipBlanksBack(text, sign), SkipBlanks(text, *behind), false, true);
  }
  // A word for "dot"; "name at host" in front of it.
  std::size_t host_end = sign;
  if (Has(kBlank, text[sign])) {
    const auto word = BehindWord(text, sign + 1, kDot);
    if (!word || SkipBlanks(text, *word) == *word) return {};
    ++host_end;
  } else if (!BehindBrackets(text, sign, kDot)) {
    return {};
  }
  host_end = SkipBlanksBack(text, host_end);
  std::size_t host = host_end;
  while (host > 0 && IsOfDomain(text[host - 1]) && text.Byte(host_end) - text.Byte(host) < 1024) --host;
  const std::size_t at_end = SkipBlanksBack(text, host);
  if (host == host_end || at_end == host) return {};
  for (std::size_t at = at_end; at-- > 0 && at + 16 > at_end;) {
    if (BehindWord(text, at, kAt) != at_end) continue;
    const std::size_t local_end = SkipBlanksBack(text, at);
    if (local_end < at) return Written(text, local_end, host, true, true);
  }
  return {};
}

// A run of text with what tags do to it. All places are bytes.
class Run {
 public:
  Run(std::string_view text, const std::vector<Joint>& joints) : text_(text), joints_(joints) {}

  using Rule = std::optional<Range> (*)(const Stretch&, std::size_t);

  // What the rule finds around the sign in text[begin, end) alone.
  [[nodiscard]] std::optional<Range> In(std::size_t begin, std::size_t end, std::size_t sign, Rule rule) const {
    const Stretch part(text_.substr(begin, end - begin));
    const std::size_t at = part.IndexOf(sign - begin);
    if (part.Byte(at) != sign - begin) return {};
    auto range = rule(part, at);
    if (!range) return {};
    return Range{begin + part.Byte(range->begin), begin + part.Byte(range->end), range->address};
  }
  // The ends of the piece around the sign.
  [[nodiscard]] std::pair<std::size_t, std::size_t> Piece(std::size_t sign, bool with_hidden) const {
    std::size_t begin = 0, end = text_.size();
    for (const Joint& joint : joints_) {
      if (joint.hidden && !with_hidden) continue;
      if (joint.at <= sign) begin = std::max<std::size_t>(begin, joint.at);
      if (joint.at > sign) end = std::min<std::size_t>(end, joint.at);
    }
    return {begin, end};
  }
  [[nodiscard]] std::optional<Range> Whole(std::size_t sign) const {
    for (const bool with_hidden : {false, true}) {
      const auto [begin, end] = Piece(sign, with_hidden);
      if (auto range = In(begin, end, sign, Plain)) return range;
    }
    return {};
  }
  [[nodiscard]] std::optional<Range> Address(std::size_t sign, std::size_t floor) const {
    if (auto range = Whole(sign)) return range;
    const std::size_t next = text_.find('@', sign + 1);
    const auto behind = next == text_.npos ? std::nullopt : Whole(next);
    return HasTags() ? In(floor, behind ? behind->begin : text_.size(), sign, Plain) : std::nullopt;
  }
  [[nodiscard]] std::optional<Range> Words(std::size_t sign, std::size_t floor) const {
    const auto [begin, end] = Piece(sign, false);
    if (auto range = In(std::max(begin, floor), end, sign, InWords)) return range;
    return HasTags() ? In(floor, text_.size(), sign, InWords) : std::nullopt;
  }
  [[nodiscard]] bool Hides(std::size_t begin, std::size_t end) const {
    return std::any_of(joints_.begin(), joints_.end(),
                       [&](const Joint& joint) { return joint.hidden && joint.at > begin && joint.at < end; });
  }

 private:
  [[nodiscard]] bool HasTags() const {
    return std::any_of(joints_.begin(), joints_.end(), [](const Joint& joint) { return !joint.hidden; });
  }

  std::string_view text_;
  const std::vector<Joint>& joints_;
};

int Digit(char c) { return IsDigit(c) ? c - '0' : ToLower(c) >= 'a' && ToLower(c) <= 'f' ? ToLower(c) - 'a' + 10 : -1; }

// The number of `count` hexadecimal digits, or -1.
int Hex(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (at + i >= text.size() || Digit(text[at + i]) < 0) return -1;
    number = number * 16 + Digit(text[at + i]);
  }
  return number;
}

std::string Percent(const std::string& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int code = text[i] == '%' ? Hex(text, i + 1, 2) : -1;
    out += code < 0 ? text[i] : static_cast<char>(code);
    if (code >= 0) i += 2;
  }
  return out;
}

// Characters of the basic plane only.
std::string Encode(int code) {
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) return {static_cast<char>(0xC0 + code / 64), static_cast<char>(0x80 + code % 64)};
  if (code >= 0xD800 && code < 0xE000) return "\uFFFD";
  return {static_cast<char>(0xE0 + code / 4096), static_cast<char>(0x80 + code / 64 % 64),
          static_cast<char>(0x80 + code % 64)};
}

std::string Unescape(std::string_view piece) {
  std::string out;
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const char next = piece[i] == '\\' && i + 1 < piece.size() ? piece[i + 1] : '\0';
    if (next == 'u' && Hex(piece, i + 2, 4) >= 0) {
      out += Encode(Hex(piece, i + 2, 4));
      i += 5;
    } else if (next == 'x' && Hex(piece, i + 2, 2) >= 0) {
      out += Encode(Hex(piece, i + 2, 2));
      i += 3;
    } else if (next == '/' || next == '\'' || next == '\\') {
      out += next;
      ++i;
    } else if (next != '\0' && std::string_view("nrtbfv").find(next) != std::string_view::npos) {
      out += ' ';
      ++i;
    } else {
      out += piece[i];
    }
  }
  return out;
}

}  // namespace

void ReferenceFinder::Text(const TextRun& run) {
  if (run.hidden) return;
  if (!run.reversed) return Find(run.text, {run.joints.begin(), run.joints.end()}, AddressPlace::kText);
  const Stretch stretch(run.text);
  std::string turned;
  for (std::size_t i = stretch.size(); i-- > 0;) turned += stretch.Bytes(i, i + 1);
  Find(turned, {}, AddressPlace::kProtected);
}

void ReferenceFinder::Attribute(std::string_view value) {
  const std::size_t begin = std::min(value.size(), value.find_first_not_of(" \t\n\r\f"));
  if (Lower(value.substr(begin, 7)) == "mailto:") return Target(std::string(value), AddressPlace::kAttribute);
  Find(value, {}, AddressPlace::kAttribute);
}

void ReferenceFinder::Target(std::string target, AddressPlace place) {
  target = target.substr(std::min(target.size(), target.find_first_not_of(" \t\n\r\f")));
  if (Lower(target.substr(0, 7)) != "mailto:") return;
  target = target.substr(7, std::min(target.find('#'), target.size()) - 7);
  const std::size_t question = std::min(target.find('?'), target.size());
  std::string to = target.substr(0, question);
  Find(Percent(to.substr(std::min(to.size(), to.find_first_not_of('/')))), {}, place);
  if (question == target.size()) return;
  const std::string headers = target.substr(question + 1);
  for (const std::string_view header : Split(headers, "&")) {
    const std::size_t equals = header.find('=');
    if (equals == header.npos) continue;
    const std::string name = Lower(Percent(std::string(header.substr(0, equals))));
    if (name != "to" && name != "cc" && name != "bcc") continue;
    Find(Percent(std::string(header.substr(equals + 1))), {}, place);
  }
}

void ReferenceFinder::Script(std::string_view raw) {
  for (const std::string_view line : Split(raw, "\n")) {
    for (const std::string_view piece : Split(line, "\"")) Find(Unescape(piece), {}, AddressPlace::kScript);
  }
}

void ReferenceFinder::CfEmail(std::string_view hex) {
  std::string decoded;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    if (Hex(hex, i, 2) < 0) return;
    if (i > 0) decoded += static_cast<char>(Hex(hex, i, 2) ^ Hex(hex, 0, 2));
  }
  Find(decoded, {}, AddressPlace::kProtected);
}

void ReferenceFinder::Find(std::string_view text, const std::vector<Joint>& joints, AddressPlace place) {
  const Run run(text, joints);
  std::size_t floor = 0;
  for (std::size_t sign = 0; sign < text.size(); ++sign) {
    if (sign < floor) continue;
    bool is_protected = true;
    auto range = run.Words(sign, floor);
    if (!range && text[sign] == '@') {
      range = run.Address(sign, floor);
      is_protected = range && run.Hides(range->begin, range->end);
    }
    if (!range) continue;
    floor = range->end;
    seen_.push_back({range->address, std::string(text.substr(range->begin, range->end - range->begin)),
                     is_protected ? AddressPlace::kProtected : place});
  }
}

std::vector<ReferenceAddress> ReferenceFinder::Addresses() const {
  std::vector<ReferenceAddress> listed;
  std::set<std::pair<std::string, AddressPlace>> known;
  for (const ReferenceAddress& sighting : seen_) {
    const std::string lower = Lower(sighting.address);
    const auto same = [&](const ReferenceAddress& other) { return Lower(other.address) == lower; };
    const auto plainly = std::find_if(seen_.begin(), seen_.end(), [&](const ReferenceAddress& other) {
      return same(other) && other.place != AddressPlace::kProtected;
    });
    if (sighting.place == AddressPlace::kProtected && plainly != seen_.end()) continue;
    if (!known.insert({lower, sighting.place}).second) continue;
    const auto& first = plainly != seen_.end() ? *plainly : *std::find_if(seen_.begin(), seen_.end(), same);
    listed.push_back({first.address, sighting.written, sighting.place});
  }
  return listed;
}

}  // namespace quenlar
