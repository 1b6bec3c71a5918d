#include "platform/posix/loopback_server.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/socket.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/errors.h"
#include "platform/posix/loopback_authority.h"
#include "platform/served_http.h"

namespace quenlar {
namespace {

// One client's connection: plain, and from a tunnel on in TLS.
class Connection {
 public:
  explicit Connection(int socket) : socket_(socket) {}

  // False where the client has gone, or says what cannot be a head.
  [[nodiscard]] bool Read(ServedHead& head) {
    std::array<char, 16 * 1024> block;
    while (!TakeServedHead(received_, head)) {
      if (received_.size() > kMostServedHeadBytes) return false;
      const long count = tls_ ? SSL_read(tls_.get(), block.data(), static_cast<int>(block.size()))
                              : recv(socket_, block.data(), block.size(), 0);
      if (count <= 0) return false;
      received_.append(block.data(), static_cast<std::size_t>(count));
    }
    return true;
  }

  [[nodiscard]] bool Write(std::string_view bytes) {
    while (!bytes.empty()) {
      const long count = tls_ ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                              : send(socket_, bytes.data(), bytes.size(), 0);
      if (count <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

  [[nodiscard]] bool SpeakTls(SSL_CTX* context) {
    tls_.reset(SSL_new(context));
    return tls_ && SSL_set_fd(tls_.get(), socket_) == 1 && SSL_accept(tls_.get()) == 1;
  }

 private:
  const int socket_;
  std::string received_;
  OpenSslPointer<SSL> tls_;
};

// "https://host" for the target of a tunnel, "host:443".
std::string PrefixOf(const std::string& target) {
  constexpr std::string_view kUsualPort = ":443";
  std::string_view host = target;
  if (host.ends_with(kUsualPort)) host.remove_suffix(kUsualPort.size());
  return "https://" + std::string(host);
}

class Server final : public LoopbackServer {
 public:
  Server(ServeHandler handler, Descriptor listener, std::uint16_t port)
      : handler_(std::move(handler)),
        listener_(std::move(listener)),
        port_(port),
        authority_text_(authority_.Certificate()),
        thread_([this] { Accept(); }) {}
  // On Linux a shutdown ends the call that waits on the socket, that of a listener too.
  ~Server() override {
    shutdown(listener_.get(), SHUT_RDWR);
    thread_.join();
    std::unique_lock lock(mutex_);
    for (const int socket : open_) shutdown(socket, SHUT_RDWR);
    all_closed_.wait(lock, [this] { return open_.empty(); });
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  [[nodiscard]] std::uint16_t port() const override { return port_; }
  [[nodiscard]] std::string authority() const override { return authority_text_; }

 private:
  void Accept() {
    for (;;) {
      Descriptor socket(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      if (!socket.valid()) {
        if (errno == EINTR || errno == ECONNABORTED) continue;
        return;
      }
      const int at_once = 1;
      setsockopt(socket.get(), IPPROTO_TCP, TCP_NODELAY, &at_once, sizeof at_once);
      Begin(std::move(socket));
    }
  }

  // Without another thread the client finds its connection closed.
  void Begin(Descriptor socket) {
    const int number = socket.get();
    {
      const std::lock_guard lock(mutex_);
      open_.insert(number);
    }
    try {
      std::thread([this, its = std::move(socket)]() mutable {
        Serve(its.get());
        End(std::move(its));
      }).detach();
    } catch (const std::system_error&) {
      const std::lock_guard lock(mutex_);
      open_.erase(number);
    }
  }

  // The number of a closed socket may be another one's at once, so it is closed and forgotten in one step.
  void End(Descriptor socket) {
    const std::lock_guard lock(mutex_);
    open_.erase(socket.get());
    socket.Close();
    all_closed_.notify_all();
  }

  void Serve(int socket) const {
    // A write to a client that has gone is a failure of that write and nothing more.
    sigset_t broken_pipe;
    sigemptyset(&broken_pipe);
    sigaddset(&broken_pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &broken_pipe, nullptr);
    Connection connection(socket);
    std::string prefix;
    for (ServedHead head; connection.Read(head);) {
      if (head.method == "CONNECT" && prefix.empty()) {
        prefix = PrefixOf(head.target);
        const auto context = authority_.ContextFor(head.target.substr(0, head.target.rfind(':')));
        if (!context || !connection.Write("HTTP/1.1 200 OK\r\n\r\n") || !connection.SpeakTls(context.get())) return;
      } else if (!connection.Write(ServedBytes(head, prefix, handler_)) || head.closes || head.method != "GET") {
        return;
      }
    }
  }

  const ServeHandler handler_;
  const Descriptor listener_;
  const std::uint16_t port_;
  const LoopbackAuthority authority_;
  const std::string authority_text_;
  std::mutex mutex_;
  std::condition_variable all_closed_;
  std::set<int> open_;  // sockets of clients, each with a thread of its own
  std::thread thread_;
};

}  // namespace

Result<std::unique_ptr<LoopbackServer>> MakePosixLoopbackServer(ServeHandler handler) {
  Descriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (!listener.valid() || bind(listener.get(), generic, size) != 0 || listen(listener.get(), SOMAXCONN) != 0 ||
      getsockname(listener.get(), generic, &size) != 0) {
    return Status(StatusKind::kFailed, "127.0.0.1: no free port");
  }
  return std::unique_ptr<LoopbackServer>(
      std::make_unique<Server>(std::move(handler), std::move(listener), ntohs(address.sin_port)));
}

}  // namespace quenlar
