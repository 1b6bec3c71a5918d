// The system's error numbers as statuses.
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar {

// "what: No such file or directory", with the kind that callers tell apart.
[[nodiscard]] Status StatusOfErrno(int error, const std::string& what);

}  // namespace quenlar
