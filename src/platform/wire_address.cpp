#include "platform/wire_address.h"

#include <vector>

#include "base/ascii.h"
#include "platform/punycode.h"
#include "platform/utf8.h"

namespace quenlar {
namespace {

constexpr std::size_t kMaxHostBytes = 253;
constexpr std::size_t kMaxLabelBytes = 63;

// A percent sign stays, because the author of the address has encoded what follows it.
std::string EncodeTarget(std::string_view text) {
  std::string encoded;
  encoded.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= 0x20 || byte >= 0x7F || std::string_view("\"'<>\\^`{|}").find(c) != std::string_view::npos) {
      encoded += PercentCode(c);
    } else {
      encoded += c;
    }
  }
  return encoded;
}

// Removes dot segments by RFC 3986, 5.2.4, from a path that begins with "/". It reads each byte once.
std::string RemoveDotSegments(std::string_view path) {
  std::vector<std::string_view> kept;
  const std::vector<std::string_view> segments = Split(path.substr(1), "/");
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const bool last = i + 1 == segments.size();
    if (segments[i] == "..") {
      if (!kept.empty()) kept.pop_back();
      if (last) kept.emplace_back();
    } else if (segments[i] == ".") {
      if (last) kept.emplace_back();
    } else {
      kept.push_back(segments[i]);
    }
  }
  std::string result;
  for (const std::string_view segment : kept) (result += '/') += segment;
  return result.empty() ? "/" : result;
}

bool IsAsciiHost(std::string_view host) {
  for (const char c : host) {
    if (!IsWord(c) && c != '-' && c != '.' && c != '~') return false;
  }
  return true;
}

// Returns "www.M\u00FCller.de" as "www.xn--mller-kva.de", or nothing when the text is not a host.
std::string WireHost(std::string_view host) {
  std::string wire;
  for (const std::string_view label : Split(host, ".")) {
    std::string plain = Lower(label);
    const bool ascii = plain.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-_~") == std::string::npos;
    if (!ascii) {
      std::size_t at = 0;
      while (at < plain.size() && (static_cast<unsigned char>(plain[at]) >= 0x80 || IsAsciiHost(plain.substr(at, 1)))) {
        ++at;
      }
      auto coded = at < plain.size() ? std::nullopt : PunycodeLabel(label);
      if (!coded) return "";
      plain = std::move(*coded);
    }
    if (plain.size() > kMaxLabelBytes) return "";
    if (!wire.empty() || label.data() != host.data()) wire += '.';
    wire += plain;
  }
  return wire.size() <= kMaxHostBytes && wire.find_first_not_of('.') != std::string::npos ? wire : "";
}

// Accepts "[::1]" when all characters are possible ones. The resolver checks the rest.
bool IsBracketed(std::string_view host) {
  return host.size() > 3 && host.size() < 50 && host.ends_with(']') &&
         host.substr(1, host.size() - 2).find_first_not_of("0123456789abcdefABCDEF:.") == host.npos;
}

std::optional<std::uint16_t> ParsePort(std::string_view digits, std::uint16_t standard) {
  if (digits.empty()) return standard;
  std::uint32_t port = 0;
  for (const char c : digits) {
    if (!IsDigit(c)) return std::nullopt;
    port = port * 10 + static_cast<std::uint32_t>(c - '0');
    if (port > 65535) return std::nullopt;
  }
  return port > 0 ? std::optional(static_cast<std::uint16_t>(port)) : std::nullopt;
}

// Host and port of "user:password@host:port".
bool ParseAuthority(std::string_view authority, WireAddress& address) {
  if (const std::size_t at = authority.rfind('@'); at != authority.npos) authority.remove_prefix(at + 1);
  const bool bracketed = authority.starts_with('[');
  const std::size_t host_end = bracketed ? authority.find(']') : authority.find(':');
  if (bracketed && host_end == authority.npos) return false;
  const std::size_t length = bracketed ? host_end + 1 : std::min(host_end, authority.size());
  const std::string_view host = authority.substr(0, length);
  std::string_view rest = authority.substr(length);
  if (!rest.empty() && rest.front() != ':') return false;
  if (!rest.empty()) rest.remove_prefix(1);

  const auto port = ParsePort(rest, address.secure ? 443 : 80);
  if (bracketed && !IsBracketed(host)) return false;
  address.host = bracketed ? Lower(host) : WireHost(host);
  address.port = port.value_or(0);
  return port && !address.host.empty();
}

// The length of "name:" at the beginning, or 0.
std::size_t SchemeLength(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && (IsLetter(text[at]) || (at > 0 && (IsDigit(text[at]) || text[at] == '+' ||
                                                                text[at] == '-' || text[at] == '.')))) {
    ++at;
  }
  return at > 0 && at < text.size() && text[at] == ':' ? at + 1 : 0;
}

// Returns any bytes as one line of UTF-8.
std::string CleanHeaderText(std::string_view text) {
  std::string clean;
  while (!text.empty()) {
    const Utf8Character character = DecodeUtf8(text);
    if (character.bytes == 0 || character.code < 0x20 || character.code == 0x7F) {
      clean += PercentCode(text.front());
      text.remove_prefix(1);
    } else {
      clean += text.substr(0, character.bytes);
      text.remove_prefix(character.bytes);
    }
  }
  return clean;
}

}  // namespace

std::string WireAddress::Url() const {
  const std::string shown_port = port == (secure ? 443 : 80) ? "" : ":" + std::to_string(port);
  return (secure ? "https://" : "http://") + host + shown_port + target;
}

std::optional<WireAddress> ParseWireAddress(std::string_view address) {
  if (address.size() > kMaxAddressBytes) return std::nullopt;
  WireAddress wire;
  wire.secure = StartsWithIgnoreCase(address, "https://");
  if (!wire.secure && !StartsWithIgnoreCase(address, "http://")) return std::nullopt;
  address.remove_prefix(wire.secure ? 8 : 7);
  address = address.substr(0, address.find('#'));
  const std::size_t authority_end = std::min(address.find_first_of("/?"), address.size());
  if (!ParseAuthority(address.substr(0, authority_end), wire)) return std::nullopt;

  address.remove_prefix(authority_end);
  const std::size_t query = std::min(address.find('?'), address.size());
  const std::string_view path = address.substr(0, query);
  wire.target = EncodeTarget(path.empty() ? "/" : RemoveDotSegments(path)) + EncodeTarget(address.substr(query));
  return wire;
}

std::string ResolveRedirect(std::string_view base, std::string_view location) {
  const std::string target = CleanHeaderText(TrimBlanks(location));
  if (SchemeLength(target) > 0) return target;
  base = base.substr(0, base.find('#'));
  const std::size_t scheme = SchemeLength(base);
  if (target.starts_with("//")) return std::string(base.substr(0, scheme)) + target;

  const std::size_t root = std::min(base.find_first_of("/?", scheme + 2), base.size());
  const std::string_view query_free = base.substr(0, std::min(base.find('?', root), base.size()));
  if (target.empty() || target.front() == '#') return std::string(base) + target;
  if (target.front() == '?') return std::string(query_free) + target;
  const std::string_view folder = query_free.substr(root, query_free.substr(root).rfind('/') + 1);
  const std::string merged = target.front() == '/' ? target
                             : folder.empty()      ? "/" + target
                                                   : std::string(folder) + target;
  const std::size_t path_end = std::min(merged.find_first_of("?#"), merged.size());
  return std::string(base.substr(0, root)) + RemoveDotSegments(std::string_view(merged).substr(0, path_end)) +
         merged.substr(path_end);
}

}  // namespace quenlar
