// What the implementations of Idna share: a domain label by label.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "base/status.h"

namespace quenlar {

using LabelCoder = std::function<Result<std::string>(std::string_view label)>;

// Parts a domain at its dots, those of other scripts too (U+3002, U+FF0E, U+FF61), makes ASCII labels small, has `code`
// make the others and every "xn--" label ASCII, and joins all with full stops.
[[nodiscard]] Result<std::string> CodeLabels(std::string_view domain, const LabelCoder& code);

}  // namespace quenlar
