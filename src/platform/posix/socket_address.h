// IP addresses as the system's sockets know them.
#pragma once

#include <cstring>
#include <optional>

#include <netinet/in.h>
#include <sys/socket.h>

#include "platform/ip_address.h"

namespace quenlar {

// Empty when it is of another family.
[[nodiscard]] inline std::optional<IpAddress> IpAddressOf(const sockaddr& from) {
  IpAddress address;
  if (from.sa_family == AF_INET) {
    std::memcpy(address.bytes.data(), &reinterpret_cast<const sockaddr_in&>(from).sin_addr, 4);
    return address;
  }
  if (from.sa_family != AF_INET6) return std::nullopt;
  address.v6 = true;
  std::memcpy(address.bytes.data(), &reinterpret_cast<const sockaddr_in6&>(from).sin6_addr, 16);
  return address;
}

}  // namespace quenlar
