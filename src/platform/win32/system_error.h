// The system's error numbers as statuses.
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar::win32 {

// "object: the system's words". `error` is what GetLastError gave.
[[nodiscard]] Status SystemError(const std::string& object, unsigned long error);

}  // namespace quenlar::win32
