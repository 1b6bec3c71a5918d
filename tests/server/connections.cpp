// Requests told back, and connections that end at a bad moment.
#include <map>
#include <memory>
#include <mutex>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "endpoints.h"

namespace quenlar::hostile {
namespace {

// A port of 127.0.0.1 on which nobody listens.
int ClosedPort() {
  const int probe = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  bind(probe, reinterpret_cast<sockaddr*>(&address), size);
  getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
  close(probe);
  return ntohs(address.sin_port);
}

// How often each name has been asked for: /hit?name counts, /hits?name tells.
class Hits {
 public:
  int Add(const std::string& name, int count) {
    const std::lock_guard lock(mutex_);
    return hits_[name] += count;
  }

 private:
  std::mutex mutex_;
  std::map<std::string, int> hits_;
};

}  // namespace

void AddConnections(Endpoints& endpoints) {
  endpoints["/page"] = [](Connection& connection, const Request&) {
    return connection.SendPage("<html><title>Page</title>a page</html>");
  };
  endpoints["/slow-page"] = [](Connection& connection, const Request& request) {
    return connection.Pause(std::chrono::milliseconds(Number(request, "ms", 100))) && connection.SendPage("slow");
  };
  // The request's head as it came.
  endpoints["/echo"] = [](Connection& connection, const Request& request) { return connection.SendPage(request.head); };
  endpoints["/connection"] = [](Connection& connection, const Request&) {
    return connection.SendPage(std::to_string(connection.number));
  };
  endpoints["/closed-port"] = [](Connection& connection, const Request&) {
    return connection.SendPage(std::to_string(ClosedPort()));
  };
  // The connection looks as if it would carry another request, and is closed when that arrives.
  endpoints["/closed-on-next"] = [](Connection& connection, const Request&) {
    connection.deaf_to_next = true;
    return connection.SendPage("first");
  };
  // Closed at once, although nothing in the head says so.
  endpoints["/closed-after"] = [](Connection& connection, const Request&) {
    connection.SendPage("first");
    return false;
  };
  const auto hits = std::make_shared<Hits>();
  endpoints["/hit-and-close"] = [hits](Connection&, const Request& request) {
    hits->Add(request.query, 1);
    return false;
  };
  endpoints["/hits"] = [hits](Connection& connection, const Request& request) {
    return connection.SendPage(std::to_string(hits->Add(request.query, 0)));
  };
}

}  // namespace quenlar::hostile
