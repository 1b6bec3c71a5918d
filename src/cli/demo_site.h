// The invented web of the demonstration: a search engine and a few sites under reserved names.
#pragma once

#include <string_view>

#include "platform/loopback_server.h"

namespace quenlar {

inline constexpr const char* kDemoSearchEngine = "http://search.example";
inline constexpr const char* kDemoKeyword = "garden tools";
inline constexpr const char* kDemoAddress = "museum.example";

// The answer of the host that `url` ("http://host/path?query") names; 404 with a page for what does not exist. Safe
// to call from several threads.
[[nodiscard]] ServedAnswer DemoAnswer(std::string_view url);

}  // namespace quenlar
