// The proxy that the environment names for an address.
#pragma once

#include <string>

#include "platform/wire_address.h"

namespace quenlar {

// http_proxy for http, https_proxy or HTTPS_PROXY for https, then all_proxy or ALL_PROXY; empty where none is set or
// no_proxy or NO_PROXY names the host: "*", or names and domains parted by commas or blanks.
[[nodiscard]] std::string ProxyFromEnvironment(const WireAddress& target);

}  // namespace quenlar
