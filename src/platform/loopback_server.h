// A small HTTP server on a free loopback port, for the demonstration site. It must not be reachable from outside.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/status.h"

namespace quenlar {

struct ServedRequest {
  std::string url;  // the request target as it came: "http://host/path?query" from a client that takes us for its proxy
};

struct ServedAnswer {
  int status = 200;
  std::string content_type = "text/html";
  std::string location = {};  // sent when not empty
  std::string body = {};
};

// Serves from its own threads until destroyed; `handler` is called on those threads.
class LoopbackServer {
 public:
  virtual ~LoopbackServer() = default;
  [[nodiscard]] virtual std::uint16_t port() const = 0;
};

using ServeHandler = std::function<ServedAnswer(const ServedRequest&)>;

}  // namespace quenlar
