// Character references: "&amp;", "&#64;", "&#x40;", as the HTML Standard's tokenizer reads them.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace quenlar {

// Where a reference stands: in an attribute value, a name without its ";" is plain text before "=", letters and digits.
enum class ReferencePlace { kText, kAttribute };

struct Reference {
  std::size_t length = 0;           // bytes of the page; 0: there is no reference here
  std::array<char32_t, 2> codes{};  // what it stands for; the second one is 0 for nearly all
};

// The reference at the beginning of `text`, which begins with "&".
[[nodiscard]] Reference ReadReference(std::string_view text, ReferencePlace place);

// Appends `text` with its references decoded. `text` is UTF-8, or whatever is wanted in `to`: other bytes are copied.
void AppendDecoded(std::string_view text, ReferencePlace place, std::string& to);

// `text` itself where it has no "&", otherwise a view of `scratch`, which is filled anew.
[[nodiscard]] std::string_view Decoded(std::string_view text, ReferencePlace place, std::string& scratch);

}  // namespace quenlar
