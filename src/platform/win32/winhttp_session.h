// Sessions of the system's HTTP client, as HttpCall wants them.
#pragma once

#include <string_view>

#include "platform/proxy_choice.h"
#include "platform/win32/windows_api.h"

namespace quenlar::win32 {

// `agent` is sent where a request names none; empty: nothing. Null when the system cannot open one.
[[nodiscard]] HINTERNET OpenSession(std::string_view agent, const ProxyChoice& proxy);

}  // namespace quenlar::win32
