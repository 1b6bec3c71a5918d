// Checks of what people type as settings of collections. A check returns what is wrong in words for the user, or "".
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// An http or https URL with a host, short enough to be stored.
[[nodiscard]] std::string CheckServiceUrl(const std::string& value);
// Who collects: one line of ASCII without parentheses, as a comment of the User-Agent takes it.
[[nodiscard]] std::string CheckContact(const std::string& value);

// "host" or "host:port"; the host is a name, an IPv4 address or an IPv6 address in brackets.
[[nodiscard]] bool IsHostAndPort(std::string_view text);

}  // namespace quenlar
