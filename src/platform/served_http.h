// The bytes that the servers of the demonstration read and write: HTTP/1.1 with as little of it as they need.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/loopback_server.h"

namespace quenlar {

inline constexpr std::size_t kMostServedHeadBytes = 64 * 1024;

// A head that has arrived whole.
struct ServedHead {
  std::string method, target;  // both empty where the head is not one of HTTP/1
  bool closes = false;         // the client wants no other answer on this connection, or could not understand one
};

// Takes the first head, up to its empty line, off the front of `received`. False where none is there yet.
[[nodiscard]] bool TakeServedHead(std::string& received, ServedHead& head);

// The answer to a GET comes from `handler`, under `prefix` and the target; anything else gets status 400.
[[nodiscard]] std::string ServedBytes(const ServedHead& head, const std::string& prefix, const ServeHandler& handler);

}  // namespace quenlar
