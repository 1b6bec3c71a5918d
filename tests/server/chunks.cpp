// Chunked bodies.
#include "endpoints.h"

namespace quenlar::hostile {
namespace {

Endpoint Chunked(const std::string& chunks) {
  return Bytes("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks);
}

bool Endless(Connection& connection, const Request&) {
  const std::string chunk = "10000\r\n" + std::string(0x10000, 'c') + "\r\n";
  connection.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n");
  while (connection.Send(chunk)) {
  }
  return false;
}

bool EndlessTrailers(Connection& connection, const Request&) {
  connection.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n4\r\npage\r\n0\r\n");
  while (connection.Send("X-Trailer: " + std::string(1000, 't') + "\r\n")) {
  }
  return false;
}

}  // namespace

void AddChunks(Endpoints& endpoints) {
  endpoints["/chunks/right"] = Chunked("5\r\nhello\r\n6\r\n world\r\n0\r\n\r\n");
  endpoints["/chunks/extensions"] = Chunked("5;name=\"value\"\r\nhello\r\n0;x\r\n\r\n");
  endpoints["/chunks/trailers"] = Chunked("5\r\nhello\r\n0\r\nX-Sum: 1\r\nContent-Length: 7\r\n\r\n");
  endpoints["/chunks/one-byte"] = [](Connection& connection, const Request&) {
    std::string chunks;
    for (int i = 0; i < 10'000; ++i) chunks += "1\r\nx\r\n";
    connection.Send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks + "0\r\n\r\n");
    return true;
  };
  endpoints["/chunks/bad-size"] = Chunked("5\r\nhello\r\nxyz\r\nworld\r\n0\r\n\r\n");
  endpoints["/chunks/negative-size"] = Chunked("-5\r\nhello\r\n0\r\n\r\n");
  endpoints["/chunks/overflow"] = Chunked("FFFFFFFFFFFFFFFFFFFF\r\nhello\r\n0\r\n\r\n");
  endpoints["/chunks/wrapping"] = Chunked("10000000000000005\r\nhello\r\n0\r\n\r\n");  // 2^64 + 5
  endpoints["/chunks/size-too-small"] = Chunked("2\r\nhello\r\n0\r\n\r\n");
  endpoints["/chunks/no-last"] = Chunked("5\r\nhello\r\n");
  endpoints["/chunks/cut"] = Chunked("64\r\nhello");
  endpoints["/chunks/no-chunks"] = Chunked("");
  endpoints["/chunks/endless"] = Endless;
  endpoints["/chunks/endless-trailers"] = EndlessTrailers;
}

}  // namespace quenlar::hostile
