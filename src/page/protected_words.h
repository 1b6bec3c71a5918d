// Addresses that are written out in words so that programs do not find them: "name [at] host [dot] org".
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "page/address_rules.h"

namespace quenlar {

// Whether a word for "at" or "dot" stands in brackets at `sign`, or one for "dot" between the blank at `sign` and
// another one. The words are English, French, German, Italian, Spanish and Japanese.
[[nodiscard]] bool IsWordSign(std::string_view text, std::size_t sign);

// The address around `sign`, which is "@" or a place as above. "At" and "dot" stand in brackets, or, when both words
// stand there, between blanks; other dots may be plain, and with "@" one "dot" at least is in brackets.
[[nodiscard]] std::optional<AddressMatch> AddressInWords(std::string_view text, std::size_t sign,
                                                         const DomainRules& rules);

}  // namespace quenlar
