// Host names beyond ASCII as the domain name system spells them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// One label (the text between two dots) in UTF-8 as "xn--...": RFC 3492. Letters are made small first, as far as the
// Latin, Greek and Cyrillic alphabets go; nothing else is normalised, whatever the locale. Empty when the label is not
// UTF-8 or the result is longer than the 63 bytes of a label.
[[nodiscard]] std::optional<std::string> PunycodeLabel(std::string_view label);

}  // namespace quenlar
