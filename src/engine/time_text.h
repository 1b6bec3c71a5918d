// Times as commands read and print them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// "2026-11-22T13:20:32Z" (RFC 3339) of seconds since 1970 UTC.
[[nodiscard]] std::string TimeText(std::int64_t seconds);

// From "2026-11-22" (its first second), "2026-11-22T13:20", "2026-11-22T13:20:32", all in UTC, with or without "Z", a
// blank in the place of "T". Empty where the text is none of these, or no such day or time exists.
[[nodiscard]] std::optional<std::int64_t> ParseTime(std::string_view text);

}  // namespace quenlar
