// Base64 as RFC 4648 defines it: the standard alphabet, padded, no line breaks.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quenlar {

// Returns the decoded bytes, or nothing when the text is not base64.
[[nodiscard]] std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace quenlar
