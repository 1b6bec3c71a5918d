// Checks of the values of options. A check returns what is wrong, or "".
#pragma once

#include <string>

namespace quenlar {

// "http://host", "https://host:8080", also with one trailing "/".
[[nodiscard]] std::string CheckHostUrl(const std::string& value);
// "http://host:port".
[[nodiscard]] std::string CheckProxyUrl(const std::string& value);

// "1" to "99999".
[[nodiscard]] std::string CheckStopNumber(const std::string& value);

[[nodiscard]] std::string WithoutTrailingSlash(const std::string& value);

}  // namespace quenlar
