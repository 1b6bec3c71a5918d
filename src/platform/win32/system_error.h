// Turns the system's error numbers into statuses.
#pragma once

#include <string>

#include "base/status.h"

namespace quenlar::win32 {

// Returns a failure with the message "object: the system's words". `error` is a result of GetLastError.
[[nodiscard]] Status SystemError(const std::string& object, unsigned long error);

}  // namespace quenlar::win32
