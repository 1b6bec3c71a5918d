// The loopback server over sockets, with TLS by OpenSSL.
#pragma once

#include <memory>

#include "base/status.h"
#include "platform/loopback_server.h"

namespace quenlar {

// Answers to "CONNECT host:443" with a tunnel that ends here.
[[nodiscard]] Result<std::unique_ptr<LoopbackServer>> MakePosixLoopbackServer(ServeHandler handler);

}  // namespace quenlar
