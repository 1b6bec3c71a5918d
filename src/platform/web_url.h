// Serialised URLs, taken apart without changing them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/wire_address.h"

namespace quenlar {

// The parts of an absolute http or https URL, as they stand; user name, password and fragment are left out. Empty when
// the scheme is another one, there is no host, the port is none, or a byte is no printable ASCII (so no URL can end a
// request's line or begin another).
[[nodiscard]] std::optional<WireAddress> SplitUrl(std::string_view url);

// "https://host:port", the port always written: what has one connection and one queue.
[[nodiscard]] std::string HostNameOf(const WireAddress& address);

}  // namespace quenlar
