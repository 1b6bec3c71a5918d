// What the misbehaving server answers, by path.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "connection.h"

namespace quenlar::hostile {

// Answers one request; true when the connection may carry another one.
using Endpoint = std::function<bool(Connection&, const Request&)>;
using Endpoints = std::map<std::string, Endpoint>;

void AddBodies(Endpoints& endpoints);       // slow, endless, short, torn, lying about their length
void AddChunks(Endpoints& endpoints);       // chunked bodies, right and wrong
void AddCompression(Endpoints& endpoints);  // encodings, bombs
void AddHeads(Endpoints& endpoints);        // status lines and headers
void AddRedirects(Endpoints& endpoints);    // loops, foreign schemes, strange targets
void AddConnections(Endpoints& endpoints);  // requests told back, connections that end at bad moments

// An answer that is the same bytes whatever is asked, after which the connection is closed.
[[nodiscard]] inline Endpoint Bytes(std::string bytes) {
  return [bytes = std::move(bytes)](Connection& connection, const Request&) {
    connection.Send(bytes);
    return false;
  };
}

}  // namespace quenlar::hostile
