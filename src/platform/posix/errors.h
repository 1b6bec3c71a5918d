// Turns the system's error numbers into statuses.
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar {

// Returns a failure with a message such as "what: No such file or directory" and the kind that fits `error`.
[[nodiscard]] Status StatusOfErrno(int error, const std::string& what);

}  // namespace quenlar
