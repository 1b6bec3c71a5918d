#include "page/url_host.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/ascii.h"
#include "base/windows1252.h"
#include "page/url_bytes.h"

namespace quenlar {
namespace {

// ---- IPv4 ----

// Larger numbers are all alike: too large.
constexpr std::uint64_t kTooLarge = std::uint64_t{1} << 40;

// One part of an IPv4 address: decimal, "0x" hexadecimal or "0" octal.
std::optional<std::uint64_t> ParseIpv4Number(std::string_view part) {
  if (part.empty()) return std::nullopt;
  std::uint64_t radix = 10;
  if (part.size() >= 2 && part[0] == '0') {
    const bool hexadecimal = ToLower(part[1]) == 'x';
    radix = hexadecimal ? 16 : 8;
    part.remove_prefix(hexadecimal ? 2 : 1);
  }
  std::uint64_t number = 0;
  for (const char c : part) {
    const int digit = HexDigit(c);
    if (digit < 0 || static_cast<std::uint64_t>(digit) >= radix) return std::nullopt;
    number = std::min(number * radix + static_cast<std::uint64_t>(digit), kTooLarge);
  }
  return number;
}

bool IsAllDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), IsDigit); }

// A domain whose last label is a number has to be an IPv4 address.
bool EndsInNumber(std::string_view domain) {
  if (domain.ends_with('.')) domain.remove_suffix(1);
  const std::string_view last = domain.substr(domain.rfind('.') + 1);
  return !last.empty() && IsDigit(last.front()) && (IsAllDigits(last) || ParseIpv4Number(last));
}

std::optional<std::uint32_t> ParseIpv4(std::string_view domain) {
  if (domain.ends_with('.')) domain.remove_suffix(1);
  std::uint64_t address = 0;
  for (int place = 3;; --place) {
    const std::size_t dot = domain.find('.');
    const std::optional<std::uint64_t> number = ParseIpv4Number(domain.substr(0, dot));
    if (!number || place < 0) return std::nullopt;
    if (dot == domain.npos) {
      // The last number fills all places that are left.
      if (*number >= std::uint64_t{1} << (8 * (place + 1))) return std::nullopt;
      return static_cast<std::uint32_t>(address + *number);
    }
    if (*number > 255) return std::nullopt;
    address += *number << (8 * place);
    domain.remove_prefix(dot + 1);
  }
}

void AppendIpv4(std::uint32_t address, std::string& out) {
  char text[16];
  for (int shift = 24; shift >= 0; shift -= 8) {
    out.append(text, std::to_chars(text, std::end(text), (address >> shift) & 255).ptr);
    if (shift > 0) out += '.';
  }
}

// ---- IPv6 ----

using Pieces = std::array<std::uint16_t, 8>;

// "1.2.3.4" at the end of an IPv6 address: four decimal numbers without leading zeros.
bool ParseDottedPieces(std::string_view text, std::uint16_t* pieces) {
  for (int part = 0; part < 4; ++part) {
    if (part > 0) {
      if (!text.starts_with('.')) return false;
      text.remove_prefix(1);
    }
    int number = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && IsDigit(text[digits]); ++digits) {
      if (digits > 0 && number == 0) return false;
      number = number * 10 + (text[digits] - '0');
      if (number > 255) return false;
    }
    if (digits == 0) return false;
    text.remove_prefix(digits);
    pieces[part / 2] = static_cast<std::uint16_t>(pieces[part / 2] * 256 + number);
  }
  return text.empty();
}

// One run over the text. `gap` is the piece at which "::" stands, or -1.
bool ReadPieces(std::string_view text, Pieces& pieces, std::size_t& count, int& gap) {
  if (text.starts_with(':')) {
    if (!text.starts_with("::")) return false;
    text.remove_prefix(2);
    gap = 0;
  }
  while (!text.empty()) {
    if (count == pieces.size()) return false;
    if (text.front() == ':') {
      if (gap >= 0) return false;
      gap = static_cast<int>(count);
      text.remove_prefix(1);
      continue;
    }
    std::size_t digits = 0;
    unsigned value = 0;
    for (; digits < std::min<std::size_t>(4, text.size()) && HexDigit(text[digits]) >= 0; ++digits) {
      value = value * 16 + static_cast<unsigned>(HexDigit(text[digits]));
    }
    if (digits < text.size() && text[digits] == '.') {
      if (digits == 0 || count > pieces.size() - 2 || !ParseDottedPieces(text, &pieces[count])) return false;
      count += 2;
      return true;
    }
    pieces[count++] = static_cast<std::uint16_t>(value);
    text.remove_prefix(digits);
    if (text.empty()) break;
    if (text.front() != ':' || text.size() == 1) return false;
    text.remove_prefix(1);
  }
  return true;
}

std::optional<Pieces> ParseIpv6(std::string_view text) {
  Pieces pieces{};
  std::size_t count = 0;
  int gap = -1;
  if (!ReadPieces(text, pieces, count, gap)) return std::nullopt;
  if (gap < 0) return count == pieces.size() ? std::optional(pieces) : std::nullopt;
  if (count == pieces.size()) return std::nullopt;
  // What stands behind the gap moves to the end.
  std::rotate(pieces.begin() + gap, pieces.begin() + static_cast<std::ptrdiff_t>(count), pieces.end());
  return pieces;
}

void AppendIpv6(const Pieces& pieces, std::string& out) {
  // The first longest run of zeros, two at least, is written "::".
  int gap = -1, gap_length = 1;
  for (int at = 0; at < 8; ++at) {
    int zeros = 0;
    while (at + zeros < 8 && pieces[static_cast<std::size_t>(at + zeros)] == 0) ++zeros;
    if (zeros > gap_length) gap = at, gap_length = zeros;
    at += zeros;
  }
  out += '[';
  for (int at = 0; at < 8; ++at) {
    if (at == gap) {
      out += at == 0 ? "::" : ":";
      at += gap_length - 1;
      continue;
    }
    char text[8];
    out.append(text, std::to_chars(text, std::end(text), pieces[static_cast<std::size_t>(at)], 16).ptr);
    if (at < 7) out += ':';
  }
  out += ']';
}

// ---- Domains ----

// A domain of the common kind is appended as it stands.
bool IsPlainDomain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return IsUrlByte(c, kPlainDomainByte); });
}

std::string PercentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const int high = text[at] == '%' && at + 2 < text.size() ? HexDigit(text[at + 1]) : -1;
    const int low = high >= 0 ? HexDigit(text[at + 2]) : -1;
    if (low >= 0) {
      decoded += static_cast<char>(high * 16 + low);
      at += 2;
    } else {
      decoded += text[at];
    }
  }
  return decoded;
}

// The lower-case ASCII form; empty where there is none.
std::string DomainToAscii(std::string_view text, const Idna& idna) {
  std::string domain = text.find('%') == text.npos ? std::string(text) : PercentDecoded(text);
  if (IsAscii(domain)) {
    domain = Lower(domain);
  } else {
    Result<std::string> coded = idna.ToAscii(domain);
    if (!coded.ok()) return "";
    domain = coded.take();
  }
  const auto forbidden = [](char c) { return IsUrlByte(c, kForbiddenInDomain); };
  return std::any_of(domain.begin(), domain.end(), forbidden) ? "" : domain;
}

}  // namespace

bool AppendHost(std::string_view text, const Idna& idna, std::string& out) {
  if (text.starts_with('[')) {
    if (!text.ends_with(']')) return false;
    const auto pieces = ParseIpv6(text.substr(1, text.size() - 2));
    if (pieces) AppendIpv6(*pieces, out);
    return pieces.has_value();
  }
  std::string coded;
  if (!IsPlainDomain(text)) text = coded = DomainToAscii(text, idna);
  if (text.empty()) return false;
  if (!EndsInNumber(text)) {
    out += text;
    return true;
  }
  const auto address = ParseIpv4(text);
  if (address) AppendIpv4(*address, out);
  return address.has_value();
}

}  // namespace quenlar
