// The links that a divided crawl is handed: one JSON object a line.
#pragma once

#include <string_view>
#include <vector>

#include "base/status.h"
#include "crawl/crawl_options.h"

namespace quenlar {

// Reads lines of {"url", "depth", "private", "https_first"}. Only "url" must be there; a member that is not known is
// passed over, and so is an empty line. kFormat, with the line's number, where a line is something else.
[[nodiscard]] Result<std::vector<HandedLink>> ParseLinkRows(std::string_view text);

}  // namespace quenlar
