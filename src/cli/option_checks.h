// Checks of the values of options, and what becomes of them. A check returns what is wrong, or "".
#pragma once

#include <string>
#include <vector>

namespace quenlar {

// "http://host", "https://host:8080", also with one trailing "/".
[[nodiscard]] std::string CheckHostUrl(const std::string& value);
// "http://host:port".
[[nodiscard]] std::string CheckProxyUrl(const std::string& value);

// Anything but "".
[[nodiscard]] std::string CheckNotEmpty(const std::string& value);
// A text without line ends.
[[nodiscard]] std::string CheckOneLine(const std::string& value);

// "1" to "99999".
[[nodiscard]] std::string CheckStopNumber(const std::string& value);

// Filter words as the options dialog tidies its boxes: trimmed, without empty and repeated ones. (An empty word would
// match every address.)
[[nodiscard]] std::vector<std::string> TidyWords(const std::vector<std::string>& words);

[[nodiscard]] std::string WithoutTrailingSlash(const std::string& value);

}  // namespace quenlar
