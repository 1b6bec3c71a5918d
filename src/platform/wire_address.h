// Web addresses as they go over the wire.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// A longer address is refused.
inline constexpr std::size_t kMaxAddressBytes = 64 * 1024;

struct WireAddress {
  bool secure = false;     // https
  std::string host;        // ASCII, lower case; an IPv6 address in its brackets
  std::uint16_t port = 0;  // never 0
  std::string target;      // path and query: begins with "/", printable ASCII without blanks

  // "http://host/path?query", with a port other than the scheme's own behind the host.
  [[nodiscard]] std::string Url() const;
};

// From an address as found on a page, in UTF-8. Everything that a request line cannot hold is percent-encoded, so no
// address can end the line or begin another; dot segments are resolved; user name, password and fragment are left out;
// a host beyond ASCII is written in punycode. Empty when the address cannot be spoken: a scheme other than http and
// https, no host or an impossible one, a port that is none, more than kMaxAddressBytes.
[[nodiscard]] std::optional<WireAddress> ParseWireAddress(std::string_view address);

// The absolute address that the header `Location: <location>` of an answer from `base` names. Control characters and
// bytes that are not UTF-8 come back percent-encoded, so the result is one line of UTF-8. The scheme may be any.
[[nodiscard]] std::string ResolveRedirect(std::string_view base, std::string_view location);

}  // namespace quenlar
