// One connection of the misbehaving server: raw bytes in and out.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar::hostile {

struct Request {
  std::string head;  // as it came, with the empty line
  std::string method;
  std::string target;  // as it came: "http://host/path" from a client that takes us for its proxy
  std::string path;    // without scheme, host and query
  std::string query;
};

// Closes its socket. Sending to a client that has gone away is false, and harmless.
class Connection {
 public:
  explicit Connection(int socket) : socket_(socket) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  // Waits for a request; empty when the client has closed the connection or sends no request.
  [[nodiscard]] std::optional<Request> Read();

  bool Send(std::string_view bytes);
  // "HTTP/1.1 200 OK" with the lines (each without its line end), Content-Length and the body.
  bool SendPage(std::string_view body, std::string_view more_lines = "", std::string_view status = "200 OK");

  // Returns when the client has closed the connection.
  void WaitForClose();
  // False when the client closes the connection in the meantime.
  bool Pause(std::chrono::milliseconds time);
  // Ends with a reset instead of an orderly close.
  void Reset();

  int number = 0;  // of all connections of this server

  // The next request on this connection is read and left without an answer.
  bool deaf_to_next = false;

 private:
  int socket_;
  std::string rest_;  // bytes after the last request's head
};

// "a=1&b=2"
[[nodiscard]] std::map<std::string, std::string> Parameters(std::string_view query);
[[nodiscard]] long Number(const Request& request, const std::string& name, long otherwise);

}  // namespace quenlar::hostile
