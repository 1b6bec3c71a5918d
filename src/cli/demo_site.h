// The invented web of the demonstration: a search engine and a few sites under reserved names.
#pragma once

#include <string_view>

#include "platform/loopback_server.h"

namespace quenlar {

inline constexpr const char* kDemoSearchEngine = "http://search.example";
inline constexpr const char* kDemoKeyword = "garden tools";
inline constexpr const char* kDemoAddress = "museum.example";

// Returns the answer to a request for `url` ("http://host/path?query"). A page that does not exist gives 404 and a page
// that says so. May be called from several threads.
[[nodiscard]] ServedAnswer DemoAnswer(std::string_view url);

}  // namespace quenlar
