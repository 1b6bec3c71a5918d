// The site that an address belongs to.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// Returns the site of `address`: "http://" and everything up to the first "/" behind it, without a trailing "/". The
// scheme is always written in lower case; the host keeps its letter case and its port. "http://Shop.de:81/a/b" gives
// "http://Shop.de:81". Never fails: an empty address gives "http://".
//
// An address that does not begin with "http://" is read as if it did, so "https://host/x" gives "http://https:". No
// site is ever lost by that: the link builders drop https links before they ask for a site.
// Kept: GetHost.GivesSchemeAndHostAlone.
[[nodiscard]] std::string GetHost(std::string_view address);

// Returns the same without the "http://" and without a copy. The result is a view into `address`.
[[nodiscard]] std::string_view HostPart(std::string_view address);

}  // namespace quenlar
