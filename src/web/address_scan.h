// Finds e-mail addresses in text, in one forward pass anchored on "@".
#pragma once

#include <cstddef>
#include <string_view>

namespace quenlar {

// The first match, at or after `from`, of \b[a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4}\b (case-insensitive) in `text`,
// as a find-all that goes on at `from` would find it; empty when there is none. A view into `text`. Linear.
[[nodiscard]] std::string_view NextAddress(std::string_view text, std::size_t from = 0);

// An "@" around which [a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4} (case-insensitive) matches somewhere.
struct AddressSign {
  std::size_t at = std::string_view::npos;  // npos: there is none
  std::string_view address;                 // what NextAddress finds around it; may be empty: NextAddress asks for more
};

// The first one in `text` at or after `from`. Linear.
[[nodiscard]] AddressSign FindAddressSign(std::string_view text, std::size_t from);

}  // namespace quenlar
