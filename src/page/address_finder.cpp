#include "page/address_finder.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/byte_search.h"
#include "page/address_signs.h"
#include "page/jointed_text.h"
#include "page/protected_words.h"
#include "page/text_codes.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::string_view kMailto = "mailto:";

std::string_view WithoutBlanksBefore(std::string_view target) {
  while (!target.empty() && static_cast<unsigned char>(target.front()) <= ' ') target.remove_prefix(1);
  return target;
}

// Whether an address can stand around a sign in a script. Most signs there are something else ("@type", "(a").
bool IsScriptSign(std::string_view raw, std::size_t sign) {
  if (raw[sign] == '@') return sign > 0 && raw[sign - 1] != '"' && static_cast<unsigned char>(raw[sign - 1]) > ' ';
  if (raw[sign] == '\\') {
    const std::string_view escape = raw.substr(sign + 1, 5);
    return escape == "u0040" || escape.starts_with("x40");
  }
  return IsWordSign(raw, sign);
}

// The next sign that is more than it seems.
std::size_t NextSign(std::string_view text, std::size_t from) {
  std::size_t sign = FindMailSign(text, from);
  while (sign != kNone && !(text[sign] == '@' ? MayBeAddress(text, sign) : IsWordSign(text, sign))) {
    sign = FindMailSign(text, sign + 1);
  }
  return sign;
}

// Where text[at] of a run stands in the page; `place` is where the run begins.
std::size_t PlaceOf(std::size_t at, std::span<const Joint> joints, std::size_t place) {
  const auto behind = std::upper_bound(joints.begin(), joints.end(), at,
                                       [](std::size_t byte, const Joint& joint) { return byte < joint.at; });
  return behind == joints.begin() ? place : behind[-1].page;
}

bool EndsPiece(char c) { return c == '"' || c == '\n'; }

}  // namespace

AddressFinder::AddressFinder(const Idna& idna, const Settings& settings)
    : settings_(settings), rules_(idna, settings.reserved_names) {}

void AddressFinder::Text(const TextRun& run) {
  if (run.hidden) return;
  if (run.reversed) {
    Reverse(run.text, decoded_);
    return Scan(decoded_, {}, AddressPlace::kProtected);
  }
  Scan(run.text, run.joints, AddressPlace::kText);
}

void AddressFinder::Mailto(std::string_view target) { Recipients(target, AddressPlace::kMailto); }

void AddressFinder::Attribute(std::string_view value) {
  if (IsMailto(value)) return Recipients(value, AddressPlace::kAttribute);
  Scan(value, {}, AddressPlace::kAttribute);
}

void AddressFinder::Script(std::string_view raw) {
  std::size_t floor = 0;  // where the piece before ended
  for (std::size_t sign = FindScriptSign(raw, 0); sign != kNone;) {
    std::size_t next = sign + 1;
    if (IsScriptSign(raw, sign)) {
      std::size_t begin = sign + (EndsPiece(raw[sign]) ? 1 : 0);
      while (begin > floor && !EndsPiece(raw[begin - 1])) --begin;
      const std::size_t close = FindOneOf(raw, {'"', '\n', '"'}, next);
      const std::size_t end = close == kNone ? raw.size() : close;
      const std::string_view piece = raw.substr(begin, end - begin);
      if (FindByte(piece, '\\') == kNone) {
        Scan(piece, {}, AddressPlace::kScript);
      } else {
        DecodeEscapes(piece, decoded_);
        Scan(decoded_, {}, AddressPlace::kScript);
      }
      floor = next = end;
    }
    sign = FindScriptSign(raw, next);
  }
}

void AddressFinder::Comment(std::string_view raw) { Scan(raw, {}, AddressPlace::kComment); }

void AddressFinder::CfEmail(std::string_view hex) {
  if (DecodeKeyedHex(hex, decoded_)) Scan(decoded_, {}, AddressPlace::kProtected);
}

// RFC 6068: recipients, then headers behind "?", parted by "&". Recipients are looked for as in any text, whatever
// parts them.
void AddressFinder::Recipients(std::string_view target, AddressPlace place) {
  target = WithoutBlanksBefore(target);
  if (!IsMailto(target)) return;
  target.remove_prefix(kMailto.size());
  target = target.substr(0, target.find('#'));
  const std::size_t question = target.find('?');
  std::string_view recipients = target.substr(0, question);
  while (recipients.starts_with('/')) recipients.remove_prefix(1);  // "mailto://" is a common mistake
  DecodePercentSigns(recipients, decoded_);
  Scan(decoded_, {}, place);
  std::string_view headers = question == kNone ? std::string_view() : target.substr(question + 1);
  while (!headers.empty()) {
    const std::string_view header = headers.substr(0, headers.find('&'));
    headers.remove_prefix(std::min(headers.size(), header.size() + 1));
    const std::size_t equals = header.find('=');
    if (equals == kNone) continue;
    DecodePercentSigns(header.substr(0, equals), decoded_);
    const std::string name = Lower(decoded_);
    if (name != "to" && name != "cc" && name != "bcc") continue;
    DecodePercentSigns(header.substr(equals + 1), decoded_);
    Scan(decoded_, {}, place);
  }
}

void AddressFinder::Scan(std::string_view text, std::span<const Joint> joints, AddressPlace place) {
  std::size_t sign = NextSign(text, 0);
  if (sign == kNone) return;
  const JointedText joined(text, joints);
  std::size_t floor = 0;  // where the address before ended
  for (; sign != kNone; sign = NextSign(text, sign + 1)) {
    if (sign < floor) continue;
    bool is_protected = true;
    std::optional<AddressMatch> match = joined.InWords(sign, floor, rules_);
    if (!match && text[sign] == '@') {
      match = joined.AddressAt(sign, floor, rules_);
      is_protected = match && joined.HidesWithin(match->begin, match->end);
    }
    if (!match) continue;
    const std::string_view written = text.substr(match->begin, match->end - match->begin);
    list_.Add({match->address, written, is_protected ? AddressPlace::kProtected : place},
              PlaceOf(match->begin, joints, place_));
    floor = match->end;
  }
}

bool IsMailto(std::string_view target) { return StartsWithIgnoreCase(WithoutBlanksBefore(target), kMailto); }

bool MayHoldReservedNames(std::string_view host) {
  if (host.ends_with('.')) host.remove_suffix(1);
  const bool is_ipv4 = host.find_first_not_of("0123456789.") == kNone;
  return IsReservedName(Lower(host)) || host == "[::1]" || (is_ipv4 && host.starts_with("127."));
}

}  // namespace quenlar
