// Bodies that are slow, endless, short, torn, or not as long as announced.
#include "endpoints.h"

namespace quenlar::hostile {
namespace {

using std::chrono::milliseconds;

const std::string kStart = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n";

// A page whose announced length is this text.
Endpoint Announced(const std::string& length_lines, const std::string& body) {
  return Bytes(kStart + length_lines + "\r\n" + body);
}

bool Never(Connection& connection, const Request&) {
  connection.WaitForClose();
  return false;
}

// One byte of a page every `ms` milliseconds, for ever.
bool Trickle(Connection& connection, const Request& request) {
  const milliseconds pause(Number(request, "ms", 1000));
  connection.Send(kStart + "\r\n");
  while (connection.Send("x") && connection.Pause(pause)) {
  }
  return false;
}

bool TrickleHead(Connection& connection, const Request& request) {
  const milliseconds pause(Number(request, "ms", 1000));
  connection.Send(kStart + "X-Slow: ");
  while (connection.Send("x") && connection.Pause(pause)) {
  }
  return false;
}

// A body of `mb` megabytes (0: without an end) under these headers, for as long as the client takes it.
Endpoint Flood(const std::string& lines) {
  return [lines](Connection& connection, const Request& request) {
    const std::string block(256 * 1024, 'e');
    const long blocks = Number(request, "mb", 0) * 4;
    connection.Send(kStart + lines + "\r\n");
    for (long i = 0; (blocks == 0 || i < blocks) && connection.Send(block); ++i) {
    }
    return false;
  };
}

bool Exactly(Connection& connection, const Request& request) {
  const auto bytes = static_cast<std::size_t>(Number(request, "bytes", 1000));
  connection.Send(kStart + "Content-Length: " + std::to_string(bytes) + "\r\n\r\n");
  const std::string block(64 * 1024, 'b');
  std::size_t sent = 0;
  while (sent < bytes && connection.Send(std::string_view(block).substr(0, bytes - sent))) sent += block.size();
  return true;
}

bool ResetInBody(Connection& connection, const Request& request) {
  const bool has_length = Number(request, "length", 1) != 0;
  connection.Send(kStart + (has_length ? "Content-Length: 100000\r\n" : "") + "\r\n" + std::string(5000, 'r'));
  connection.Pause(milliseconds(50));  // so that the bytes are not lost with the connection
  connection.Reset();
  return false;
}

bool Binary(Connection& connection, const Request&) {
  std::string bytes;
  unsigned state = 12345;
  for (int i = 0; i < (1 << 20); ++i) {
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
  return connection.SendPage(bytes);
}

}  // namespace

void AddBodies(Endpoints& endpoints) {
  endpoints["/never"] = Never;
  endpoints["/trickle"] = Trickle;
  endpoints["/trickle-head"] = TrickleHead;
  endpoints["/endless"] = Flood("");
  endpoints["/two-gigabytes"] = Flood("Content-Length: 2147483648\r\n");
  endpoints["/exactly"] = Exactly;
  endpoints["/binary"] = Binary;

  const std::string body(1000, 'l');
  endpoints["/length/negative"] = Announced("Content-Length: -1\r\n", body);
  endpoints["/length/plus"] = Announced("Content-Length: +1000\r\n", body);
  endpoints["/length/huge"] = Announced("Content-Length: 99999999999999999999\r\n", body);
  endpoints["/length/wrapping"] = Announced("Content-Length: 18446744073709552616\r\n", body);  // 2^64 + 1000
  endpoints["/length/word"] = Announced("Content-Length: many\r\n", body);
  endpoints["/length/none"] = Announced("Content-Length:\r\n", body);
  endpoints["/length/list"] = Announced("Content-Length: 1000, 1000\r\n", body);
  endpoints["/length/two-different"] = Announced("Content-Length: 1000\r\nContent-Length: 10\r\n", body);
  endpoints["/length/two-alike"] = Announced("Content-Length: 1000\r\nContent-Length: 1000\r\n", body);

  endpoints["/short"] = Announced("Content-Length: 1000\r\n", std::string(500, 's'));
  endpoints["/reset"] = ResetInBody;
  endpoints["/until-close"] = Bytes(kStart + "\r\nto the end");
  endpoints["/length/not-all-read"] = Announced("Content-Length: 4\r\nConnection: close\r\n", "pageand more");
}

}  // namespace quenlar::hostile
