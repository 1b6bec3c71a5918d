// A web server that misbehaves on request, for the tests of whatever downloads pages. Each path is one misbehaviour;
// what is no path of these is an ordinary page. It takes itself for a proxy as well: http://anything.example/path is
// answered as /path, so that a test has as many hosts as it likes. Prints its address, "127.0.0.1:4711", and serves
// until it is killed.
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include "endpoints.h"
#include "listener.h"
#include "tls.h"

namespace quenlar::hostile {

Listener Listen() {
  Listener listener{.socket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(listener.socket, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener.socket, 1024) != 0 ||
      getsockname(listener.socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    std::perror("hostile_server");
    std::exit(1);
  }
  listener.port = ntohs(address.sin_port);
  return listener;
}

int Accept(const Listener& listener) {
  int connection = -1;
  while (connection < 0) connection = accept4(listener.socket, nullptr, nullptr, SOCK_CLOEXEC);
  const int on = 1;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  return connection;
}

namespace {

// "/echo/caf%C3%A9" is answered by "/echo", when nothing stands at the longer path.
const Endpoint* Find(const Endpoints& endpoints, std::string path) {
  while (!path.empty()) {
    const auto endpoint = endpoints.find(path);
    if (endpoint != endpoints.end()) return &endpoint->second;
    path.resize(path.rfind('/') == std::string::npos ? 0 : path.rfind('/'));
  }
  return nullptr;
}

void Serve(const Endpoints& endpoints, int socket, int number) {
  Connection connection(socket);
  connection.number = number;
  while (const auto request = connection.Read()) {
    if (connection.deaf_to_next) return;
    if (request->method == "CONNECT") {
      connection.SendPage("<p>no way through</p>", "", "403 Forbidden");
      return;
    }
    const Endpoint* endpoint = Find(endpoints, request->path);
    const bool goes_on = endpoint != nullptr
                             ? (*endpoint)(connection, *request)
                             : connection.SendPage("<html><title>Anything</title>" + request->target + "</html>");
    if (!goes_on) return;
  }
}

void AddTls(const TlsPorts& ports, Endpoints& endpoints) {
  const auto text = [](std::string body) {
    return [body = std::move(body)](Connection& connection, const Request&) { return connection.SendPage(body); };
  };
  endpoints["/tls/right"] = text(std::to_string(ports.right));
  endpoints["/tls/asks"] = text(std::to_string(ports.asks));
  endpoints["/tls/expired"] = text(std::to_string(ports.expired));
  endpoints["/tls/wrong-name"] = text(std::to_string(ports.wrong_name));
  endpoints["/tls/stranger"] = text(std::to_string(ports.stranger));
  endpoints["/tls/downgrade"] = text(std::to_string(ports.downgrade));
  endpoints["/tls/authority"] = text(ports.authority);
}

int Main() {
  ::signal(SIGPIPE, SIG_IGN);
  const Listener listener = Listen();
  Endpoints endpoints;
  AddBodies(endpoints);
  AddChunks(endpoints);
  AddCompression(endpoints);
  AddHeads(endpoints);
  AddRedirects(endpoints);
  AddConnections(endpoints);
  AddTls(ServeTls(listener.port), endpoints);
  std::printf("127.0.0.1:%d\n", listener.port);
  std::fflush(stdout);
  for (int number = 1;; ++number) {
    const int connection = Accept(listener);
    std::thread([&endpoints, connection, number] { Serve(endpoints, connection, number); }).detach();
  }
}

}  // namespace
}  // namespace quenlar::hostile

int main() { return quenlar::hostile::Main(); }
