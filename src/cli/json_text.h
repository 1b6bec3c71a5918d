// JSON as the program writes it.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "state/found_addresses.h"

namespace quenlar {

// JSON whose members keep the order in which they were added.
using Json = nlohmann::ordered_json;

// Returns `value` as one line with its line feed. The line is always valid UTF-8: bytes that are not become U+FFFD. It
// is one line for every reader, because control characters and the line separators of Unicode are escaped. `value` may
// be nested 64 deep.
[[nodiscard]] std::string JsonLine(const Json& value);

// {"URL", "Address", "Title", "TagOnly"}
[[nodiscard]] Json FoundAddressJson(const FoundAddress& record);

}  // namespace quenlar
