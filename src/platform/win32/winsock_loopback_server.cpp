#include "platform/win32/winsock_loopback_server.h"

#include <array>
#include <list>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/served_http.h"
#include "platform/win32/system_error.h"
#include "platform/win32/windows_api.h"

namespace quenlar {
namespace {

constexpr const char* kName = "The loopback server";

class Socket {
 public:
  Socket() = default;
  explicit Socket(SOCKET socket) : socket_(socket) {}
  ~Socket() {
    if (socket_ != INVALID_SOCKET) closesocket(socket_);
  }
  Socket(Socket&& other) noexcept : socket_(std::exchange(other.socket_, INVALID_SOCKET)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(socket_, other.socket_);
    return *this;
  }
  [[nodiscard]] SOCKET get() const { return socket_; }

 private:
  SOCKET socket_ = INVALID_SOCKET;
};

struct Connection {
  Socket socket;
  std::string received;
  std::string to_send;
  bool closes = false;  // once everything is sent
  bool broken = false;

  [[nodiscard]] bool done() const { return broken || (closes && to_send.empty()); }
};

class WinsockStart {
 public:
  WinsockStart() : started_(WSAStartup(MAKEWORD(2, 2), &data_) == 0) {}
  ~WinsockStart() {
    if (started_) WSACleanup();
  }
  WinsockStart(const WinsockStart&) = delete;
  WinsockStart& operator=(const WinsockStart&) = delete;

 private:
  WSADATA data_;
  bool started_;
};

// Bound to a free port of the loopback address; empty where the system refuses.
std::optional<Socket> BoundSocket(int type, sockaddr_in& address) {
  Socket made(socket(AF_INET, type, 0));
  address = {};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof address;
  auto* generic = reinterpret_cast<sockaddr*>(&address);
  if (made.get() == INVALID_SOCKET || bind(made.get(), generic, size) != 0 ||
      getsockname(made.get(), generic, &size) != 0) {
    return std::nullopt;
  }
  u_long no_blocking = 1;
  ioctlsocket(made.get(), FIONBIO, &no_blocking);
  return made;
}

class Server final : public LoopbackServer {
 public:
  Server(ServeHandler handler, Socket listener, std::uint16_t port, Socket bell, const sockaddr_in& bell_address)
      : handler_(std::move(handler)),
        listener_(std::move(listener)),
        port_(port),
        bell_(std::move(bell)),
        bell_address_(bell_address),
        thread_([this] { Run(); }) {}
  ~Server() override {
    // A datagram to ourselves ends the thread's sleep.
    sendto(bell_.get(), "", 1, 0, reinterpret_cast<const sockaddr*>(&bell_address_), sizeof bell_address_);
    thread_.join();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  [[nodiscard]] std::uint16_t port() const override { return port_; }
  [[nodiscard]] std::string authority() const override { return {}; }

 private:
  void Run() {
    for (;;) {
      std::vector<WSAPOLLFD> waits = {{bell_.get(), POLLRDNORM, 0}, {listener_.get(), POLLRDNORM, 0}};
      for (const Connection& connection : connections_) {
        const SHORT wanted = connection.to_send.empty() ? POLLRDNORM : POLLWRNORM;
        waits.push_back({connection.socket.get(), wanted, 0});
      }
      if (WSAPoll(waits.data(), static_cast<ULONG>(waits.size()), -1) == SOCKET_ERROR || waits[0].revents != 0) return;
      std::size_t at = 2;
      for (Connection& connection : connections_) {
        if (waits[at++].revents != 0) Serve(connection);
      }
      connections_.remove_if([](const Connection& connection) { return connection.done(); });
      if (waits[1].revents != 0) Accept();
    }
  }

  void Accept() {
    for (;;) {
      Socket accepted(accept(listener_.get(), nullptr, nullptr));
      if (accepted.get() == INVALID_SOCKET) return;
      u_long no_blocking = 1;
      ioctlsocket(accepted.get(), FIONBIO, &no_blocking);
      const BOOL at_once = TRUE;
      setsockopt(accepted.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&at_once), sizeof at_once);
      connections_.push_back({std::move(accepted), {}, {}});
    }
  }

  void Serve(Connection& connection) {
    if (connection.to_send.empty()) {
      Receive(connection);
    } else {
      Send(connection);
    }
    while (connection.to_send.empty() && !connection.closes && !connection.broken && AnswerNext(connection)) {
    }
  }

  static void Receive(Connection& connection) {
    std::array<char, 16 * 1024> buffer;
    const int bytes = recv(connection.socket.get(), buffer.data(), static_cast<int>(buffer.size()), 0);
    if (bytes > 0) {
      connection.received.append(buffer.data(), static_cast<std::size_t>(bytes));
    } else if (bytes == 0 || WSAGetLastError() != WSAEWOULDBLOCK) {
      connection.broken = true;
    }
  }

  // Answers the next request; false when it has not come whole yet.
  bool AnswerNext(Connection& connection) {
    ServedHead head;
    if (!TakeServedHead(connection.received, head)) {
      connection.broken = connection.received.size() > kMostServedHeadBytes;
      return false;
    }
    connection.to_send = ServedBytes(head, "", handler_);
    connection.closes = head.closes || head.method != "GET";
    Send(connection);
    return true;
  }

  static void Send(Connection& connection) {
    const int bytes =
        send(connection.socket.get(), connection.to_send.data(), static_cast<int>(connection.to_send.size()), 0);
    if (bytes > 0) {
      connection.to_send.erase(0, static_cast<std::size_t>(bytes));
    } else if (WSAGetLastError() != WSAEWOULDBLOCK) {
      connection.broken = true;
    }
  }

  const WinsockStart winsock_;
  const ServeHandler handler_;
  const Socket listener_;
  const std::uint16_t port_;
  const Socket bell_;
  const sockaddr_in bell_address_;
  std::list<Connection> connections_;  // of the thread alone
  std::thread thread_;
};

}  // namespace

Result<std::unique_ptr<LoopbackServer>> MakeWinsockLoopbackServer(ServeHandler handler) {
  const WinsockStart winsock;
  sockaddr_in address, bell_address;
  auto listener = BoundSocket(SOCK_STREAM, address);
  auto bell = BoundSocket(SOCK_DGRAM, bell_address);
  if (!listener || !bell || listen(listener->get(), SOMAXCONN) != 0) {
    return win32::SystemError(kName, static_cast<DWORD>(WSAGetLastError()));
  }
  return std::unique_ptr<LoopbackServer>(std::make_unique<Server>(
      std::move(handler), *std::move(listener), ntohs(address.sin_port), *std::move(bell), bell_address));
}

}  // namespace quenlar
