// IP addresses, and which of them belong to the public internet.
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

struct IpAddress {
  bool v6 = false;
  std::array<std::uint8_t, 16> bytes = {};  // in network order; IPv4 has the first four, the others are 0

  // "192.0.2.1" or, by RFC 5952, "2001:db8::1".
  [[nodiscard]] std::string Text() const;
  auto operator<=>(const IpAddress&) const = default;
};

// From the strict written form of one address: four decimal numbers, or IPv6 by RFC 4291, in brackets or without. Other
// spellings of IPv4 ("2130706433", "0x7f.1") are names as far as this function goes.
[[nodiscard]] std::optional<IpAddress> ParseIpAddress(std::string_view text);

enum class AddressKind { kPublic, kLoopback, kLinkLocal, kPrivate, kReserved };

// By the IANA registries of special-purpose addresses (RFC 6890 and its updates). An IPv6 address that carries an IPv4
// one (mapped, NAT64, 6to4) is of that one's kind.
[[nodiscard]] AddressKind KindOf(const IpAddress& address);
[[nodiscard]] inline bool IsPublicAddress(const IpAddress& address) { return KindOf(address) == AddressKind::kPublic; }

// "localhost" and the names below it (RFC 6761), with or without a dot at the end. `host` is in lower case.
[[nodiscard]] bool IsLoopbackName(std::string_view host);

}  // namespace quenlar
