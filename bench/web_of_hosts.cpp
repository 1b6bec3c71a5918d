// A made-up web for crawlers: every address of 127.0.0.0/8 is a host with the same number of pages on one port. Each
// answer comes after a delay. usage: web_of_hosts PORT PAGES-A-HOST MILLISECONDS
//
// Page n (the start page is 0) links to pages 8n+1 to 8n+8 and has an address of its own; robots.txt allows everything.
// It ends at SIGTERM and prints: answers, and how many connections were open at the same time at most.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

volatile std::sig_atomic_t stopped = 0;

struct Connection {
  std::string input;
  unsigned generation = 0;  // an answer for an earlier connection of this number is dropped
  bool open = false;
};

struct Answer {
  Clock::time_point due;
  int connection;
  unsigned generation;
  std::string bytes;
};

std::string HostOf(int connection) {
  sockaddr_in name{};
  socklen_t size = sizeof name;
  getsockname(connection, reinterpret_cast<sockaddr*>(&name), &size);
  const std::uint32_t ip = ntohl(name.sin_addr.s_addr);
  return std::to_string(ip >> 16 & 255) + "-" + std::to_string(ip >> 8 & 255) + "-" + std::to_string(ip & 255);
}

std::string Response(const char* status, const char* type, const std::string& body) {
  return std::string("HTTP/1.1 ") + status + "\r\nContent-Type: " + type +
         "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string PageOf(long number, long pages, int connection) {
  const std::string n = std::to_string(number);
  std::string body =
      "<!DOCTYPE html><html><head><title>Page " + n + "</title></head><body><h1>Page " + n + "</h1>\n<ul>";
  for (long child = 8 * number + 1; child <= 8 * number + 8 && child < pages; ++child) {
    const std::string c = std::to_string(child);
    body += "<li class=\"entry\"><a class=\"reference\" href=\"/p" + c + ".html\">Page " + c + "</a></li>\n";
  }
  body += "</ul>\n";
  for (int i = 0; i < 8; ++i)
    body += "<p class=\"text\">Some words of a page that is about <b>nothing</b>, and some more.</p>\n";
  return body + "<p>Write to person" + n + "@host" + HostOf(connection) + ".de</p></body></html>\n";
}

std::string AnswerTo(std::string_view target, long pages, int connection) {
  if (target == "/robots.txt") return Response("200 OK", "text/plain", "User-agent: *\nDisallow: /no\n");
  long number = target == "/" ? 0 : -1;
  if (target.substr(0, 2) == "/p") number = std::strtol(std::string(target.substr(2)).c_str(), nullptr, 10);
  if (number < 0 || number >= pages) return Response("404 Not Found", "text/html", "");
  return Response("200 OK", "text/html", PageOf(number, pages, connection));
}

class Server {
 public:
  Server(int listener, long pages, int delay_ms)
      : listener_(listener), epoll_(epoll_create1(0)), pages_(pages), delay_(std::chrono::milliseconds(delay_ms)) {
    Watch(listener_, EPOLL_CTL_ADD, EPOLLIN);
  }

  void Run() {
    std::vector<epoll_event> events(1024);
    while (stopped == 0) {
      auto wait = std::chrono::nanoseconds(std::chrono::seconds(1));
      if (!answers_.empty()) wait = std::max(std::chrono::nanoseconds(0), answers_.front().due - Clock::now());
      const timespec limit{wait.count() / 1'000'000'000, wait.count() % 1'000'000'000};
      const int count = epoll_pwait2(epoll_, events.data(), static_cast<int>(events.size()), &limit, nullptr);
      for (int i = 0; i < count; ++i) {
        const int file = events[static_cast<std::size_t>(i)].data.fd;
        if (file == listener_)
          Accept();
        else
          Serve(file);
      }
      while (!answers_.empty() && answers_.front().due <= Clock::now()) {
        Send(answers_.front());
        answers_.pop_front();
      }
    }
    std::printf("%ld answers, %ld connections at most\n", answered_, most_open_);
  }

 private:
  void Watch(int file, int operation, std::uint32_t events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = file;
    epoll_ctl(epoll_, operation, file, &event);
  }

  void Accept() {
    for (;;) {
      const int file = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK);
      if (file < 0) return;
      const int on = 1;
      setsockopt(file, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
      if (static_cast<std::size_t>(file) >= connections_.size())
        connections_.resize(static_cast<std::size_t>(file) + 1);
      Connection& connection = connections_[static_cast<std::size_t>(file)];
      connection.input.clear();
      ++connection.generation;
      connection.open = true;
      most_open_ = std::max(most_open_, ++open_);
      Watch(file, EPOLL_CTL_ADD, EPOLLIN);
    }
  }

  void Serve(int file) {
    Connection& connection = connections_[static_cast<std::size_t>(file)];
    char bytes[16384];
    const ssize_t count = read(file, bytes, sizeof bytes);
    if (count < 0 && errno == EAGAIN) return;
    if (count <= 0) {
      close(file);
      connection.open = false;
      --open_;
      return;
    }
    connection.input.append(bytes, static_cast<std::size_t>(count));
    for (std::size_t end = connection.input.find("\r\n\r\n"); end != std::string::npos;
         end = connection.input.find("\r\n\r\n")) {
      const std::string_view head = std::string_view(connection.input).substr(0, end);
      const std::size_t begin = std::min(head.find(' ') + 1, head.size());
      const std::string_view target = head.substr(begin, head.find(' ', begin) - begin);
      answers_.push_back({Clock::now() + delay_, file, connection.generation, AnswerTo(target, pages_, file)});
      connection.input.erase(0, end + 4);
    }
  }

  // An answer is small enough for the socket's buffer.
  void Send(const Answer& answer) {
    const Connection& connection = connections_[static_cast<std::size_t>(answer.connection)];
    if (!connection.open || connection.generation != answer.generation) return;
    if (write(answer.connection, answer.bytes.data(), answer.bytes.size()) > 0) ++answered_;
  }

  int listener_, epoll_;
  long pages_;
  std::chrono::milliseconds delay_;
  std::vector<Connection> connections_;  // by file number
  std::deque<Answer> answers_;           // in the order in which they are due
  long answered_ = 0, open_ = 0, most_open_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return std::fprintf(stderr, "usage: web_of_hosts PORT PAGES-A-HOST MILLISECONDS\n"), 2;
  std::signal(SIGPIPE, SIG_IGN);
  struct sigaction stop {};
  stop.sa_handler = [](int) { stopped = 1; };
  sigaction(SIGTERM, &stop, nullptr);
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
  const int on = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(argv[1])));
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || listen(listener, 4096) != 0)
    return std::fprintf(stderr, "web_of_hosts: %s\n", std::strerror(errno)), 1;
  Server(listener, std::atol(argv[2]), std::atoi(argv[3])).Run();
}
