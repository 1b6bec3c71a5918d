// Requests of `quenlar analyze` that ask one pure function about today's web: addresses, sites, robots rules, pages.
// They need no session, and change none. docs/analyze.md tells each with its reply.
#pragma once

#include <string_view>

#include <nlohmann/json.hpp>

#include "cli/json_text.h"
#include "platform/platform.h"

namespace quenlar {

// The reply to a request, or {"error": ...} where a member is of the wrong type.
using PageFunction = Json (*)(const nlohmann::json& request, const Platform& platform);

// What answers a request with these members (their names in alphabetical order, with blanks between); null where
// nothing here does.
[[nodiscard]] PageFunction FindPageFunction(std::string_view members);

}  // namespace quenlar
