// Reads the page that names the latest published version.
#pragma once

#include <string_view>

namespace quenlar {

// True when the number at the beginning of the page's first line (up to the first CR LF) is above this program's own
// version, kProductVersion. A page that begins with no number names none, and
// so does a number beyond all bounds, which no publisher wrote.
[[nodiscard]] bool NewerVersionPublished(std::string_view page);

}  // namespace quenlar
