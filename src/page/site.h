// Sites: the registrable domain of a host by the public suffix list (https://publicsuffix.org/list/), its private
// section included. The list is that of the machine that built the program.
#pragma once

#include <string_view>

namespace quenlar {

// The site of a host as a URL has it (lower-case ASCII, A-labels): the public suffix and the label before it, as a view
// into `host`; a full stop at the end of the host is left out. Empty where there is none: a public suffix itself, an IP
// address, an empty label. A name whose last label is not in the list has that label as its suffix.
[[nodiscard]] std::string_view RegistrableDomain(std::string_view host);

// True for a label that a rule of the list ends with; lower-case ASCII, "xn--..." beyond ASCII.
[[nodiscard]] bool IsTopLevelDomain(std::string_view label);

}  // namespace quenlar
