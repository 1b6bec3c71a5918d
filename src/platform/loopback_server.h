// A small HTTP server on a free loopback port, for the demonstration. It must not be reachable from outside.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/status.h"

namespace quenlar {

struct ServedRequest {
  // The request target as it came: "http://host/path?query" from a client that takes us for its proxy, and
  // "https://host/path?query" from one that has asked for a tunnel before.
  std::string url;
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
  // The certificate (PEM) of an authority that was made for this server alone: it vouches for every host of https. Its
  // key has never left the server. Empty where the server speaks no TLS; it refuses tunnels then.
  [[nodiscard]] virtual std::string authority() const = 0;
};

using ServeHandler = std::function<ServedAnswer(const ServedRequest&)>;

}  // namespace quenlar
