// Reads the page that names the latest published version.
#pragma once

#include <string_view>

namespace quenlar {

// Returns whether the page names a newer version than this program's: whether the number at the beginning of its first
// line (up to the first CR LF) is larger than kProductVersion. A page that does not begin with a number names no
// version, and neither does one that begins with a number too large for a double.
[[nodiscard]] bool NewerVersionPublished(std::string_view page);

}  // namespace quenlar
