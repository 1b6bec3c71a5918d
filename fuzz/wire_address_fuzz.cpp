// What goes over the wire: an address that is accepted is one clean request and means the same when it is read again, a
// redirect's target is one line, and a host beyond ASCII can be decoded back.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/ascii.h"
#include "fuzz/target.h"
#include "platform/punycode.h"
#include "platform/utf8.h"
#include "platform/wire_address.h"

using namespace quenlar;

namespace {

bool IsPrintable(std::string_view text) {
  for (const char c : text) {
    if (c <= 0x20 || c >= 0x7F) return false;
  }
  return true;
}

void CheckAddress(std::string_view text) {
  const std::optional<WireAddress> wire = ParseWireAddress(text);
  if (!wire) return;
  FUZZ_CHECK(text.size() <= kMaxAddressBytes);
  FUZZ_CHECK(wire->port != 0);
  FUZZ_CHECK(!wire->host.empty() && wire->host == Lower(wire->host));
  FUZZ_CHECK(IsPrintable(wire->host) && wire->host.find_first_of("/?#@\\%\"<>") == std::string::npos);
  FUZZ_CHECK(wire->host.find(':') == std::string::npos || wire->host.front() == '[');
  FUZZ_CHECK(wire->target.starts_with('/') && IsPrintable(wire->target));
  FUZZ_CHECK(wire->target.find_first_of("#\\\"<>") == std::string::npos);
  const std::string url = wire->Url();
  if (url.size() > kMaxAddressBytes) return;  // percent-encoding has made it too long to be read again
  const std::optional<WireAddress> again = ParseWireAddress(url);
  FUZZ_CHECK(again && again->Url() == url);
  FUZZ_CHECK(again->secure == wire->secure && again->host == wire->host && again->port == wire->port &&
             again->target == wire->target);
}

void CheckRedirect(std::string_view base, std::string_view location) {
  const std::string target = ResolveRedirect(base, location);
  for (std::string_view rest = target; !rest.empty();) {
    const Utf8Character character = DecodeUtf8(rest);
    FUZZ_CHECK(character.bytes > 0 && character.code >= 0x20 && character.code != 0x7F);
    rest.remove_prefix(character.bytes);
  }
  // An absolute target stays what it is, whatever page it stands on.
  if (StartsWithIgnoreCase(location, "http://")) FUZZ_CHECK(target == ResolveRedirect("http://b.example/", location));
  FUZZ_CHECK(ResolveRedirect(base, target) == target || target.find(':') == std::string::npos);
  CheckAddress(target);
}

// The codes of an "xn--" label by the decoding procedure of RFC 3492; empty when it is none.
std::optional<std::vector<std::uint32_t>> Decoded(std::string_view label) {
  if (!label.starts_with("xn--")) return std::nullopt;
  label.remove_prefix(4);
  std::vector<std::uint32_t> codes;
  if (const std::size_t hyphen = label.rfind('-'); hyphen != label.npos) {
    for (const char c : label.substr(0, hyphen)) codes.push_back(static_cast<unsigned char>(c));
    label.remove_prefix(hyphen + 1);
  }
  std::uint64_t code = 128, place = 0, bias = 72;
  for (bool first = true; !label.empty(); first = false) {
    const std::uint64_t old_place = place;
    std::uint64_t weight = 1;
    for (std::uint64_t k = 36;; k += 36) {
      if (label.empty()) return std::nullopt;
      const char c = label.front();
      label.remove_prefix(1);
      const std::uint64_t digit =
          IsDigit(c) ? static_cast<std::uint64_t>(c - '0' + 26) : static_cast<std::uint64_t>(c - 'a');
      if (digit > 35) return std::nullopt;
      place += digit * weight;
      const std::uint64_t threshold = k <= bias ? 1 : k >= bias + 26 ? 26 : k - bias;
      if (digit < threshold) break;
      weight *= 36 - threshold;
    }
    const std::uint64_t length = codes.size() + 1;
    std::uint64_t delta = (place - old_place) / (first ? 700 : 2), steps = 0;
    for (delta += delta / length; delta > 455; steps += 36) delta /= 35;
    bias = steps + 36 * delta / (delta + 38);
    code += place / length;
    place %= length;
    codes.insert(codes.begin() + static_cast<std::ptrdiff_t>(place), static_cast<std::uint32_t>(code));
    ++place;
  }
  return codes;
}

void AppendUtf8(std::uint32_t code, std::string& out) {
  const auto continuation = [&](int shift) { out += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    continuation(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    continuation(6), continuation(0);
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    continuation(12), continuation(6), continuation(0);
  }
}

void CheckLabel(std::string_view label) {
  const std::optional<std::string> coded = PunycodeLabel(label);
  if (!coded) return;
  FUZZ_CHECK(coded->size() <= 63);
  const auto codes = Decoded(*coded);
  FUZZ_CHECK(codes.has_value());
  std::string small;
  std::string_view rest = label;
  for (const std::uint32_t code : *codes) {
    const Utf8Character character = DecodeUtf8(rest);
    FUZZ_CHECK(character.bytes > 0);
    rest.remove_prefix(character.bytes);
    if (character.code < 0x80)
      FUZZ_CHECK(code == static_cast<unsigned char>(ToLower(static_cast<char>(character.code))));
    AppendUtf8(code, small);
  }
  FUZZ_CHECK(rest.empty());
  FUZZ_CHECK(PunycodeLabel(small) == coded);  // what is small already stays
}

}  // namespace

QUENLAR_FUZZ_TARGET(wire_address) {
  fuzz::Feed feed(bytes);
  const std::string_view address = feed.Text();
  CheckAddress(address);
  CheckAddress("http://" + std::string(address));
  CheckLabel(address);
  const std::optional<WireAddress> base = ParseWireAddress(address);
  CheckRedirect(base ? base->Url() : "http://www.a.example/b/c?d", feed.Rest());
}
