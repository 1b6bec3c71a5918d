#include "page/address_rules.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "page/letters.h"
#include "page/site.h"
#include "platform/punycode.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kLongestLabel = 63;
constexpr std::size_t kLongestRun = 1024;      // the longest domain, all of it in characters of four bytes
constexpr std::size_t kLongestUserName = 256;  // of a URL, as far as it is looked for

constexpr std::uint8_t kLocal = 1, kOdd = 2, kDomain = 4;

constexpr std::array<std::uint8_t, 256> MakeKinds() {
  std::array<std::uint8_t, 256> kinds{};
  const auto add = [&](std::string_view characters, std::uint8_t kind) {
    for (const char c : characters) kinds[static_cast<unsigned char>(c)] |= kind;
  };
  for (int i = 0; i < 128; ++i) {
    const char c = static_cast<char>(i);
    if (IsLetter(c) || IsDigit(c)) kinds[static_cast<std::size_t>(i)] = kLocal | kDomain;
  }
  add(".!#$%&'*+/=?^_`{|}~-", kLocal);
  add("='`{}|/?&#", kOdd);
  add(".-", kDomain);
  return kinds;
}

constexpr std::array<std::uint8_t, 256> kKinds = MakeKinds();

bool Is(char c, std::uint8_t kind) { return (kKinds[static_cast<unsigned char>(c)] & kind) != 0; }
bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool IsLetterOrDigit(char c) { return IsLetter(c) || IsDigit(c); }

bool LetterStandsBefore(std::string_view text, std::size_t end) {
  if (end == 0) return false;
  return IsAscii(text[end - 1]) ? IsLetter(text[end - 1]) : LetterBefore(text, end).kind == LetterKind::kParted;
}

// Whether text[at] can be part of a local part that goes on behind it.
bool IsPart(std::string_view text, std::size_t at) {
  if (!Is(text[at], kLocal)) return false;
  if (!Is(text[at], kOdd)) return true;
  return text[at] == '\'' && at + 1 < text.size() && IsLetter(text[at + 1]) && LetterStandsBefore(text, at);
}

// Whether the word that begins at `begin` goes on before it.
bool WordGoesOnBefore(std::string_view text, std::size_t begin) {
  std::size_t at = begin;
  while (at > 0 && !IsAscii(text[at - 1])) {
    const Letter letter = LetterBefore(text, at);
    if (letter.kind != LetterKind::kInvisible) return letter.kind == LetterKind::kParted;
    at -= letter.bytes;
  }
  if (at == 0) return false;
  if (text[at - 1] == '@') return true;
  return at < begin && Is(text[at - 1], kLocal) && !Is(text[at - 1], kOdd);
}

// Whether what begins at `begin` belongs to the user name or the password of a URL.
bool IsUserOfUrl(std::string_view text, std::size_t begin) {
  const std::size_t floor = begin > kLongestUserName ? begin - kLongestUserName : 0;
  const std::size_t slash = FindLastByte(text, '/', floor, begin);
  if (slash == kNone || slash < 3 || text.substr(slash - 2, 2) != ":/" || !IsLetterOrDigit(text[slash - 3]))
    return false;
  const std::string_view user = text.substr(slash + 1, begin - slash - 1);
  return std::none_of(user.begin(), user.end(), [](char c) {
    return static_cast<unsigned char>(c) <= ' ' || std::string_view("?#\\\"<>@").find(c) != kNone;
  });
}

std::string_view WithoutStrays(std::string_view run) {
  while (!run.empty() && (run.back() == '.' || run.back() == '-')) run.remove_suffix(1);
  return run;
}

std::string_view LastLabel(std::string_view run) {
  const std::size_t dot = run.rfind('.');
  return dot == kNone ? run : run.substr(dot + 1);
}

bool IsAllAscii(std::string_view text) { return std::all_of(text.begin(), text.end(), IsAscii); }

bool IsLabel(std::string_view label) {
  if (label.empty() || label.size() > kLongestLabel || label.front() == '-' || label.back() == '-') return false;
  return std::all_of(label.begin(), label.end(), [](char c) { return IsLetterOrDigit(c) || c == '-'; });
}

}  // namespace

std::size_t LocalPartBegin(std::string_view text, std::size_t end) {
  if (end == 0 || !Is(text[end - 1], kLocal) || text[end - 1] == '.') return kNone;
  std::size_t begin = end;
  bool stray_dots = false;
  while (begin > 0 && IsPart(text, begin - 1)) {
    stray_dots = text[begin - 1] == '.' && text[begin] == '.';
    if (stray_dots) break;
    --begin;
    if (end - begin > kLongestLocalPart + 1) return kNone;
  }
  std::size_t outer = begin;
  if (stray_dots) {
    while (outer > 0 && text[outer - 1] == '.') --outer;
    if (outer > 0 && IsPart(text, outer - 1)) return kNone;
  }
  if (begin < end && text[begin] == '.') ++begin;
  if (begin == end || end - begin > kLongestLocalPart) return kNone;
  return WordGoesOnBefore(text, outer) || IsUserOfUrl(text, outer) ? kNone : begin;
}

DomainRun ReadDomainRun(std::string_view text, std::size_t begin) {
  DomainRun run{begin};
  std::size_t& at = run.end;
  while (at < text.size() && at - begin < kLongestRun) {
    if (IsAscii(text[at])) {
      const bool ellipsis = text[at] == '.' && at + 1 < text.size() && text[at + 1] == '.';
      if (!Is(text[at], kDomain) || ellipsis) break;
      ++at;
      continue;
    }
    const Letter letter = LetterAt(text, at);
    if (letter.kind != LetterKind::kParted && letter.kind != LetterKind::kUnparted) break;
    run.beyond_ascii = true;
    at += letter.bytes;
  }
  if (at - begin >= kLongestRun) run.goes_on = true;
  // What is not seen does not end a word.
  std::size_t next = at;
  while (next < text.size() && !IsAscii(text[next])) {
    const Letter letter = LetterAt(text, next);
    if (letter.kind != LetterKind::kInvisible) {
      run.goes_on = run.goes_on || letter.kind == LetterKind::kParted;
      return run;
    }
    next += letter.bytes;
  }
  if (next == text.size()) return run;
  const char c = text[next];
  run.goes_on = run.goes_on || c == '@' || c == '_' || IsLetterOrDigit(c);
  return run;
}

std::optional<Domain> DomainRules::DomainOf(std::string_view run, bool goes_on, std::size_t floor) const {
  const std::string_view whole = WithoutStrays(run);
  if (!goes_on && whole.size() > floor) {
    if (auto domain = WholeRun(whole)) return domain;
  }
  if (IsAllAscii(run.substr(floor))) return std::nullopt;
  for (std::size_t end = run.size(); end > floor;) {
    if (IsAscii(run[end - 1])) {
      --end;
      continue;
    }
    const Letter letter = LetterBefore(run, end);
    end -= letter.bytes;
    if (letter.kind != LetterKind::kUnparted) continue;
    const std::string_view part = WithoutStrays(run.substr(0, end));
    if (part.size() <= floor) break;
    if (LastLabel(part).size() > kLongestLabel) continue;
    if (auto domain = WholeRun(part)) return domain;
  }
  return std::nullopt;
}

std::optional<Domain> DomainRules::WholeRun(std::string_view run) const {
  if (run.find('.') == kNone) return std::nullopt;
  Domain domain;
  domain.bytes = run.size();
  if (IsAllAscii(run)) {
    if (run.size() >= kLongestAddress) return std::nullopt;
    domain.ascii = Lower(run);
  } else {
    // The last label tells of nearly all runs that they are not domains, and this is much faster than all of IDNA,
    // which makes the same of the names that there are.
    const std::string_view last = LastLabel(run);
    const std::optional<std::string> label = IsAllAscii(last) ? Lower(last) : PunycodeLabel(last);
    if (!label || !IsTopLevel(*label)) return std::nullopt;
    Result<std::string> ascii = idna_.ToAscii(run);
    if (!ascii.ok()) return std::nullopt;
    domain.ascii = ascii.take();
  }
  if (!IsDomain(domain.ascii)) return std::nullopt;
  return domain;
}

bool DomainRules::IsTopLevel(std::string_view label) const {
  return IsTopLevelDomain(label) || (reserved_names_ && IsReservedName(label));
}

bool DomainRules::IsDomain(std::string_view ascii) const {
  if (ascii.size() >= kLongestAddress) return false;
  std::size_t labels = 0;
  for (std::size_t begin = 0; begin <= ascii.size(); ++labels) {
    const std::string_view label = ascii.substr(begin, ascii.find('.', begin) - begin);
    if (!IsLabel(label)) return false;
    begin += label.size() + 1;
  }
  return labels >= 2 && IsTopLevel(LastLabel(ascii)) && (reserved_names_ || !IsReservedName(ascii));
}

bool MayBeAddress(std::string_view text, std::size_t sign) {
  if (sign == 0 || sign + 1 >= text.size() || !Is(text[sign - 1], kLocal)) return false;
  return IsLetterOrDigit(text[sign + 1]) || !IsAscii(text[sign + 1]);
}

std::optional<AddressMatch> AddressAtSign(std::string_view text, std::size_t sign, const DomainRules& rules) {
  const std::size_t begin = LocalPartBegin(text, sign);
  if (begin == kNone) return std::nullopt;
  const DomainRun run = ReadDomainRun(text, sign + 1);
  const auto domain = rules.DomainOf(text.substr(sign + 1, run.end - sign - 1), run.goes_on);
  if (!domain) return std::nullopt;
  const std::size_t end = sign + 1 + domain->bytes;
  const std::string_view local = text.substr(begin, sign - begin);
  // A name on a server, as programs for versions of sources write it: "git@host:path".
  const bool path = end + 1 < text.size() && text[end] == ':' && static_cast<unsigned char>(text[end + 1]) > ' ';
  if (path && EqualsIgnoreCase(local, "git")) return std::nullopt;
  auto address = JoinAddress(local, domain->ascii);
  if (!address) return std::nullopt;
  return AddressMatch{begin, end, std::move(*address)};
}

std::optional<std::string> JoinAddress(std::string_view local, std::string_view domain) {
  if (local.size() + 1 + domain.size() > kLongestAddress) return std::nullopt;
  std::string address;
  address.reserve(local.size() + 1 + domain.size());
  address.append(local).append(1, '@').append(domain);
  return address;
}

bool IsReservedName(std::string_view host) {
  constexpr std::array<std::string_view, 7> kNames = {"example.com", "example.net", "example.org", "test",
                                                      "example",     "invalid",     "localhost"};
  return std::any_of(kNames.begin(), kNames.end(), [&](std::string_view name) {
    return host.ends_with(name) && (host.size() == name.size() || host[host.size() - name.size() - 1] == '.');
  });
}

}  // namespace quenlar
