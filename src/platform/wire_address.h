// Web addresses as they go over the wire (RFC 3986, RFC 9112).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// A longer address is refused, in bytes of the text that was found on a page.
inline constexpr std::size_t kMaxAddressBytes = 64 * 1024;

struct WireAddress {
  bool secure = false;     // https
  std::string host;        // ASCII, lower case; an IPv6 address in its brackets
  std::uint16_t port = 0;  // never 0
  std::string target;      // path and query: begins with "/", printable ASCII without blanks

  // Returns "http://host/path?query". A port that is not the usual one of the scheme stands behind the host.
  [[nodiscard]] std::string Url() const;
};

// Turns an address (UTF-8) as it was found on a page into one for the wire. What a request line cannot hold is
// percent-encoded, so no address can end the line or begin another one. Dot segments are resolved. User name, password
// and fragment are left out. A host beyond ASCII is written in punycode.
//
// Empty when there is no such address: the scheme is not http or https, the host is missing or impossible, the port is
// not a number from 1 to 65535, or the address is longer than kMaxAddressBytes.
[[nodiscard]] std::optional<WireAddress> ParseWireAddress(std::string_view address);

// Returns the absolute address that the header `Location: <location>` names in an answer from `base`. Control
// characters and bytes that are not UTF-8 come back percent-encoded, so the result is one line of UTF-8. It may have
// any scheme.
[[nodiscard]] std::string ResolveRedirect(std::string_view base, std::string_view location);

}  // namespace quenlar
