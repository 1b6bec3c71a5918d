// The host of a URL as the WHATWG URL Standard parses and serialises it: a domain, an IPv4 or an IPv6 address.
#pragma once

#include <string>
#include <string_view>

#include "platform/idna.h"

namespace quenlar {

// Appends the host that `text` spells: percent signs decoded, domains in lower-case ASCII, "0x7F.1" as "127.0.0.1",
// IPv6 addresses in brackets, shortened. False where it is not a host; `out` then has whatever was appended so far.
[[nodiscard]] bool AppendHost(std::string_view text, const Idna& idna, std::string& out);

}  // namespace quenlar
