// The site that an address belongs to.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// "http://" and the host part of the address (everything up to the first "/"), no trailing "/". An address without
// "http://" in front counts as if it had it, so "https://host/x" gives "http://https:": meant, such links are dropped
// elsewhere. The host keeps its letter case; the scheme is always "http://" in lower case.
[[nodiscard]] std::string GetHost(std::string_view address);

// The same without the "http://" and without a copy: a view into `address`.
[[nodiscard]] std::string_view HostPart(std::string_view address);

}  // namespace quenlar
