// A loopback HTTP server on Winsock.
#pragma once

#include <memory>

#include "platform/loopback_server.h"

namespace quenlar {

// Serves from one thread of its own, which calls `handler`.
[[nodiscard]] Result<std::unique_ptr<LoopbackServer>> MakeWinsockLoopbackServer(ServeHandler handler);

}  // namespace quenlar
