// The loopback server over cpp-httplib.
#pragma once

#include <memory>

#include "base/status.h"
#include "platform/loopback_server.h"

namespace quenlar {

// Serves `handler` on a free port of 127.0.0.1, with one thread for each of up to 64 connections at a time.
[[nodiscard]] Result<std::unique_ptr<LoopbackServer>> MakeHttplibLoopbackServer(ServeHandler handler);

}  // namespace quenlar
