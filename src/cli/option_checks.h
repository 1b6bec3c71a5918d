// Checks and tidies the values of options. A check returns what is wrong in words for the user, or "".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quenlar {

// "http://host", "https://host:8080", also with one trailing "/".
[[nodiscard]] std::string CheckHostUrl(const std::string& value);
// "http://host:port".
[[nodiscard]] std::string CheckProxyUrl(const std::string& value);

// A number above 0.
[[nodiscard]] std::string CheckPositive(const std::string& value);

// A date or a time, see ParseTime.
[[nodiscard]] std::string CheckTime(const std::string& value);

// Any text except "".
[[nodiscard]] std::string CheckNotEmpty(const std::string& value);
// A text without line ends.
[[nodiscard]] std::string CheckOneLine(const std::string& value);

// Digits alone, and a number within the bounds.
[[nodiscard]] std::string CheckNumber(const std::string& value, std::uint64_t lowest, std::uint64_t highest);
// A number of seconds from 0 to `highest`, with or without a fraction.
[[nodiscard]] std::string CheckSeconds(const std::string& value, int highest);

// Returns filter words as the options dialog tidies its boxes: trimmed, without empty and repeated ones. An empty word
// would match every address.
[[nodiscard]] std::vector<std::string> TidyWords(const std::vector<std::string>& words);

[[nodiscard]] std::string WithoutTrailingSlash(const std::string& value);

}  // namespace quenlar
