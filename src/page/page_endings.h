// Endings of addresses that name no page: pictures, archives, programs and their like.
#pragma once

#include <string_view>

namespace quenlar {

// Whether the path of a URL (without its query) has such an ending, in any letter case.
[[nodiscard]] bool HasEndingOfNoPage(std::string_view path);

}  // namespace quenlar
