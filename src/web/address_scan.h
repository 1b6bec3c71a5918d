// Finds e-mail addresses in text, in one forward pass anchored on "@".
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// Returns the first match of \b[a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4}\b in `text` at or after `from`, letter case
// ignored, as a view into `text`. Empty when there is none. A caller finds all matches when it goes on behind each one.
// The time is linear in the length of the text, whatever the text holds.
[[nodiscard]] std::string_view NextAddress(std::string_view text, std::size_t from = 0);

// An "@" around which [a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4} matches, letter case ignored. Unlike NextAddress, this
// pattern asks for no word boundary at its ends.
struct AddressSign {
  std::size_t at = std::string_view::npos;  // npos: there is none
  std::string_view address;                 // what NextAddress finds around it; empty when a word boundary is missing
};

// Returns the first such "@" in `text` at or after `from`, in linear time.
[[nodiscard]] AddressSign FindAddressSign(std::string_view text, std::size_t from);

}  // namespace quenlar
