// A web server that misbehaves on request, for the tests of whatever downloads pages. Each path is one misbehaviour;
// what is no path of these is an ordinary page. It takes itself for a proxy as well: http://anything.example/path is
// answered as /path, so that a test has as many hosts as it likes. Prints its address, "127.0.0.1:4711", and serves
// until it is killed.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include "endpoints.h"
#include "listener.h"
#include "open_connections.h"
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

// Other ports of the same server, so that one address has many hosts.
constexpr int kMorePorts = 12;

struct Doors {
  OpenConnections& open;
  const Endpoints& endpoints;
};

void Serve(const Doors& doors, int socket, int number) {
  const Endpoints& endpoints = doors.endpoints;
  Connection connection(socket);
  connection.number = number;
  const struct Leaving {  // before the socket is closed and its number given to another one
    ~Leaving() { open.Leave(socket); }
    OpenConnections& open;
    int socket;
  } leaving{doors.open, socket};
  while (const auto request = connection.Read()) {
    if (connection.deaf_to_next) return;
    if (request->method == "CONNECT") {
      // "504.example:443" gets this status.
      const int status = std::atoi(request->target.c_str());
      connection.SendPage("<p>no way through</p>", "",
                          status == 0 ? "403 Forbidden" : std::to_string(status) + " Words");
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
  endpoints["/tls/not-yet"] = text(std::to_string(ports.not_yet));
  endpoints["/tls/self-signed"] = text(std::to_string(ports.self_signed));
  endpoints["/tls/forged"] = text(std::to_string(ports.forged));
  endpoints["/tls/keyless"] = text(std::to_string(ports.keyless));
  endpoints["/tls/keyless-tls12"] = text(std::to_string(ports.keyless_tls12));
  endpoints["/tls/old"] = text(std::to_string(ports.old));
  endpoints["/tls/garbage"] = text(std::to_string(ports.garbage));
  endpoints["/tls/downgrade"] = text(std::to_string(ports.downgrade));
  endpoints["/tls/site"] = text(std::to_string(ports.site));
  endpoints["/tls/counting"] = text(std::to_string(ports.counting));
  endpoints["/tls/authority"] = text(ports.authority);
}

void AddCounts(OpenConnections& open, const std::string& ports, Endpoints& endpoints) {
  endpoints["/ports"] = [ports](Connection& connection, const Request&) { return connection.SendPage(ports); };
  endpoints["/peaks/forget"] = [&open](Connection& connection, const Request&) {
    open.ForgetPeaks();
    return connection.SendPage("forgotten");
  };
  endpoints["/peaks/all"] = [&open](Connection& connection, const Request&) {
    return connection.SendPage(std::to_string(open.Peak()));
  };
  endpoints["/peaks/port"] = [&open](Connection& connection, const Request&) {
    return connection.SendPage(std::to_string(open.PeakOfOnePort()));
  };
}

void Attend(const Doors& doors, const Listener& listener) {
  static std::atomic<int> number = 0;
  while (true) {
    const int connection = Accept(listener);
    doors.open.Enter(connection, listener.port);
    std::thread([&doors, connection, its = ++number] { Serve(doors, connection, its); }).detach();
  }
}

int Main() {
  ::signal(SIGPIPE, SIG_IGN);
  const Listener listener = Listen();
  OpenConnections open;
  Endpoints endpoints;
  AddBodies(endpoints);
  AddChunks(endpoints);
  AddCompression(endpoints);
  AddHeads(endpoints);
  AddRedirects(endpoints);
  AddConnections(endpoints);
  AddTls(ServeTls(listener.port), endpoints);
  std::vector<Listener> more;
  std::string ports;
  for (int i = 0; i < kMorePorts; ++i) {
    more.push_back(Listen());
    ports += std::to_string(more.back().port) + " ";
  }
  AddCounts(open, ports, endpoints);
  const Doors doors{open, endpoints};
  for (const Listener& other : more) {
    std::thread([&doors, other] { Attend(doors, other); }).detach();
  }
  std::printf("127.0.0.1:%d\n", listener.port);
  std::fflush(stdout);
  Attend(doors, listener);
  return 0;
}

}  // namespace
}  // namespace quenlar::hostile

int main() { return quenlar::hostile::Main(); }
