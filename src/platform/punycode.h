// Host names beyond ASCII as the domain name system spells them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// Returns one label of a host name (the text between two dots, in UTF-8) as "xn--..." by RFC 3492. Capitals of the
// Latin, Greek and Cyrillic alphabets are made small first. Nothing else is normalised, and the locale makes no
// difference. Empty when the label is not UTF-8, or when the result is longer than 63 bytes, the limit for a label.
[[nodiscard]] std::optional<std::string> PunycodeLabel(std::string_view label);

}  // namespace quenlar
