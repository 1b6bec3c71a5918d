// The invented web of the demonstration: a search engine and a few sites under reserved names.
#pragma once

#include <string_view>

#include "platform/loopback_server.h"

namespace quenlar {

inline constexpr const char* kDemoSearchEngine = "http://search.example";
inline constexpr const char* kDemoKeyword = "garden tools";
inline constexpr const char* kDemoAddress = "museum.example";

// What is collected: a host whose robots.txt keeps programs away from kDemoForbidden, and one more of its site.
inline constexpr const char* kDemoHost = "www.library.example";
inline constexpr const char* kDemoForbidden = "/stacks/";
// An address that stands on a page there, and that the demonstration suppresses before.
inline constexpr const char* kDemoSuppressed = "reader@library.test";

// Returns the answer to a request for `url` ("http://host/path?query", https too). A page that does not exist gives 404
// and a page that says so. May be called from several threads.
[[nodiscard]] ServedAnswer DemoAnswer(std::string_view url);

}  // namespace quenlar
