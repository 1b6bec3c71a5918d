// The title of a page.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

// What the content of a <title> shows: references decoded, each row of blanks one space, none at the ends, 500
// characters (code points) at most. Reads no further than that. UTF-8.
[[nodiscard]] std::string ShownTitle(std::string_view raw);

}  // namespace quenlar
