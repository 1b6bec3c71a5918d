#include "platform/posix/httplib_loopback_server.h"

#include <thread>
#include <utility>

#include <httplib.h>
#include <sys/socket.h>

namespace quenlar {
namespace {

constexpr std::size_t kThreads = 64;
constexpr std::size_t kRequestsPerConnection = 1'000'000;
constexpr time_t kIdleSeconds = 1;  // of a connection; stopping waits for as long at most

class HttplibLoopbackServer : public LoopbackServer {
 public:
  explicit HttplibLoopbackServer(ServeHandler handler) : handler_(std::move(handler)) {
    server_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server_.set_tcp_nodelay(true);
    server_.set_keep_alive_max_count(kRequestsPerConnection);
    server_.set_keep_alive_timeout(kIdleSeconds);
    // Answers before the server's own matching of paths, which knows no addresses with a host.
    server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
      Answer(request, response);
      return httplib::Server::HandlerResponse::Handled;
    });
    server_.set_socket_options([this](socket_t listener) { listener_ = listener; });
    port_ = server_.bind_to_any_port("127.0.0.1");
    if (port_ <= 0) return;
    listen(listener_, SOMAXCONN);  // the library's own queue is five connections long, and others would wait a second
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();  // a stop before that would not be noticed
  }
  HttplibLoopbackServer(const HttplibLoopbackServer&) = delete;
  HttplibLoopbackServer& operator=(const HttplibLoopbackServer&) = delete;
  ~HttplibLoopbackServer() override {
    if (!thread_.joinable()) return;
    server_.stop();
    thread_.join();
  }

  [[nodiscard]] bool works() const { return port_ > 0; }
  [[nodiscard]] std::uint16_t port() const override { return static_cast<std::uint16_t>(port_); }

 private:
  void Answer(const httplib::Request& request, httplib::Response& response) const {
    const ServedAnswer answer = handler_({request.target});
    response.status = answer.status;
    if (!answer.location.empty()) response.set_header("Location", answer.location);
    response.set_content(answer.body, answer.content_type);
  }

  const ServeHandler handler_;
  httplib::Server server_;
  socket_t listener_ = -1;
  int port_ = 0;
  std::thread thread_;
};

}  // namespace

Result<std::unique_ptr<LoopbackServer>> MakeHttplibLoopbackServer(ServeHandler handler) {
  auto server = std::make_unique<HttplibLoopbackServer>(std::move(handler));
  if (!server->works()) return Status(StatusKind::kFailed, "127.0.0.1: no free port");
  return std::unique_ptr<LoopbackServer>(std::move(server));
}

}  // namespace quenlar
