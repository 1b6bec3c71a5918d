// A loopback HTTP server on Winsock.
#pragma once

#include <memory>

#include "platform/loopback_server.h"

namespace quenlar {

// Serves `handler` on a free port of 127.0.0.1, from one thread of its own.
[[nodiscard]] Result<std::unique_ptr<LoopbackServer>> MakeWinsockLoopbackServer(ServeHandler handler);

}  // namespace quenlar
