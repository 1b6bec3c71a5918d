// JSON as the program writes it.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "state/found_addresses.h"

namespace quenlar {

// Members stand in the order in which they are put in.
using Json = nlohmann::ordered_json;

// One line, with its line feed. Always valid UTF-8, whatever the texts hold (what is no UTF-8 becomes U+FFFD), and one
// line for every reader: control characters and the Unicode line separators are escaped. `value` may be nested 64 deep.
[[nodiscard]] std::string JsonLine(const Json& value);

// {"URL", "Address", "Title", "TagOnly"}
[[nodiscard]] Json FoundAddressJson(const FoundAddress& record);

}  // namespace quenlar
