#include "settings/web_checks.h"

#include <algorithm>

#include "base/ascii.h"
#include "base/number.h"

namespace quenlar {
namespace {

constexpr std::size_t kLongestStored = 254;  // bytes of a text that a registry gives back

bool IsPort(std::string_view text) {
  if (text.empty() || text.size() > 5) return false;
  for (const char c : text) {
    if (!IsDigit(c)) return false;
  }
  const double port = LeadingNumber(text);
  return port >= 1 && port <= 65535;
}

}  // namespace

bool IsHostAndPort(std::string_view text) {
  std::string_view host = text, port;
  const std::size_t bracket = text.rfind(']');
  const std::size_t colon = text.find(':', bracket == std::string_view::npos ? 0 : bracket);
  if (colon != std::string_view::npos) {
    host = text.substr(0, colon);
    port = text.substr(colon + 1);
    if (!IsPort(port)) return false;
  }
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    return host.find_first_not_of("0123456789abcdefABCDEF:.", 1) == host.size() - 1;
  }
  for (const char c : host) {
    if (!IsLetter(c) && !IsDigit(c) && c != '-' && c != '.' && c != '_') return false;
  }
  return !host.empty();
}

std::string CheckServiceUrl(const std::string& value) {
  std::string_view rest = value;
  if (value.size() > kLongestStored) return "must not be longer than 254 bytes";
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (!StartsWithIgnoreCase(value, scheme)) continue;
    rest.remove_prefix(scheme.size());
    return IsHostAndPort(rest.substr(0, rest.find('/'))) ? "" : "must name a host";
  }
  return "must be an address that begins with http:// or https://";
}

std::string CheckContact(const std::string& value) {
  constexpr std::size_t kLongest = 200;
  const bool plain = std::all_of(value.begin(), value.end(), [](char c) { return c > ' ' && c < 0x7F; });
  if (value.empty() || value.size() > kLongest || !plain || value.find_first_of("()\\") != std::string::npos) {
    return "must be a web or mail address in ASCII, without blanks and parentheses";
  }
  return "";
}

}  // namespace quenlar
