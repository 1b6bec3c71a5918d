// The dates of WARC records.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace quenlar {

// Seconds since 1970 UTC of "2026-11-22T13:20:32Z", cut to the second. Also of a date with a fraction of a second, with
// an offset in the place of "Z" or without either, of one that ends at the minute, the hour, the day, the month or the
// year, and of the fourteen digits of older archives. Empty where the text is none of these, or no such day or time
// exists.
[[nodiscard]] std::optional<std::int64_t> ParseWarcDate(std::string_view text);

}  // namespace quenlar
