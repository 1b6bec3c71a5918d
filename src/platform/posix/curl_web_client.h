// The crawler's web client over libcurl.
#pragma once

#include <memory>
#include <string>

#include "platform/name_lookups.h"
#include "platform/posix/event_loop.h"
#include "platform/proxy_choice.h"
#include "platform/web_client.h"

namespace quenlar {

struct CurlWebOptions {
  ProxyChoice proxy = {};
  std::string authorities = {};  // a file of certificates (PEM) to trust; empty: the system's
  LookUpName look_up = {};       // empty: the system's resolver
};

// Bodies are asked for with gzip and deflate; HTTP/2 is spoken over TLS where the server offers it. Raises the
// process's soft limit of descriptors, which bounds the number of connections. The loop must outlive the client.
[[nodiscard]] std::unique_ptr<WebClient> MakeCurlWebClient(PosixEventLoop& loop, CurlWebOptions options);

}  // namespace quenlar
