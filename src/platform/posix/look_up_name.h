// The addresses of a host name, by the C library's resolver.
#pragma once

#include <string>
#include <vector>

#include "platform/ip_address.h"

namespace quenlar {

// Takes its time. No addresses when the name has none. See LookUpName.
[[nodiscard]] std::vector<IpAddress> LookUpByGetaddrinfo(const std::string& host);

}  // namespace quenlar
