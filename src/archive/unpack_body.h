// Takes one coding off the body of an HTTP answer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "archive/http_message.h"

namespace quenlar {

enum class UnpackOutcome {
  kUnpacked,   // `out` has the text, or what could be had of it
  kNotPacked,  // the bytes are not of the coding
  kUnknown,    // the coding is not known on this system
};

// Gives at most `limit` bytes.
[[nodiscard]] UnpackOutcome UnpackBody(BodyCoding coding, std::string_view body, std::size_t limit, std::string& out);

}  // namespace quenlar
