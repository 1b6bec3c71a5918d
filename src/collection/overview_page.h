// The page of an overview without its data, as the build makes it of the files in collection/overview.
#pragma once

#include <string_view>

namespace quenlar::overview_page {

// What stands before the data and behind it. ASCII alone.
[[nodiscard]] std::string_view Head();
[[nodiscard]] std::string_view Tail();

}  // namespace quenlar::overview_page
