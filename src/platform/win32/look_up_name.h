// The addresses of a host name, by the system's resolver.
#pragma once

#include <string>
#include <vector>

#include "platform/ip_address.h"

namespace quenlar::win32 {

// Takes its time. No addresses when the name has none. See LookUpName.
[[nodiscard]] std::vector<IpAddress> LookUpByGetAddrInfo(const std::string& host);

}  // namespace quenlar::win32
