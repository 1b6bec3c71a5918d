// A generated web of any size behind one loopback port, to be used as an HTTP proxy: hosts www.h0.example,
// www.h1.example, ... each with a start page that links to its own pages and to two other hosts, and pages that hold
// addresses. Nothing is stored; every page is made from its address. One thread, poll. usage: farm_server HOSTS
// PAGES-PER-HOST ADDRESSES-PER-PAGE DELAY-MILLISECONDS [LOG] Prints its port and serves until its standard input ends.
// To each byte of its input it prints how many pages it has answered so far. Each address that is asked for becomes a
// line of the file LOG, before it is answered.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

struct Farm {
  long hosts, pages, addresses, delay_ms;
  int log = -1;
  long answered = 0;

  [[nodiscard]] std::string Page(std::string_view url) const {
    const std::size_t at = url.find("://www.h");
    if (at == url.npos) return "<html><title>elsewhere</title></html>";
    const long host = std::strtol(std::string(url.substr(at + 8, 12)).c_str(), nullptr, 10);
    const std::size_t slash = url.find('/', at + 3);
    const std::string path(slash == url.npos ? "/" : url.substr(slash));
    const long page = path.compare(0, 2, "/p") == 0 ? std::strtol(path.c_str() + 2, nullptr, 10) : -1;
    const std::string h = std::to_string(host);
    std::string text = "<html><head><title>Host " + h + "</title></head><body>\n";
    if (page < 0) {
      for (long i = 0; i < pages; ++i) text += "<a href=\"/p" + std::to_string(i) + ".html\">page</a>\n";
      for (const long next : {host * 2 + 1, host * 2 + 2}) {
        if (next < hosts) text += "<a href=\"http://www.h" + std::to_string(next) + ".example/\">neighbour</a>\n";
      }
    }
    for (long i = 0; i < addresses; ++i) {
      text += "<p>u" + h + "p" + std::to_string(page + 1) + "n" + std::to_string(i) + "@h" + h + ".example.org</p>\n";
    }
    return text + "</body></html>\n";
  }
};

struct Connection {
  std::string in, out;
  Clock::time_point ready;
};

int Listen(int& port) {
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 128) != 0) std::exit(1);
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  port = ntohs(address.sin_port);
  return listener;
}

void Answer(Farm& farm, Connection& connection) {
  const std::size_t end = connection.in.find("\r\n\r\n");
  if (end == std::string::npos || !connection.out.empty()) return;
  const std::size_t first = connection.in.find(' ');
  const std::size_t last = connection.in.find(' ', first + 1);
  const std::string url = connection.in.substr(first + 1, last - first - 1);
  const std::string line = url + "\n";
  if (farm.log >= 0 && write(farm.log, line.data(), line.size()) < 0) std::exit(1);
  const std::string body = farm.Page(url);
  connection.in.erase(0, end + 4);
  ++farm.answered;
  connection.out = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: " + std::to_string(body.size()) +
                   "\r\n\r\n" + body;
  connection.ready = Clock::now() + std::chrono::milliseconds(farm.delay_ms);
}

// False when the connection is over.
bool Move(Farm& farm, int socket, Connection& connection, short events) {
  if ((events & (POLLIN | POLLHUP | POLLERR)) != 0) {
    char bytes[16384];
    const ssize_t count = read(socket, bytes, sizeof bytes);
    if (count <= 0) return false;
    connection.in.append(bytes, static_cast<std::size_t>(count));
    Answer(farm, connection);
  }
  if (!connection.out.empty() && Clock::now() >= connection.ready) {
    const ssize_t count = send(socket, connection.out.data(), connection.out.size(), MSG_NOSIGNAL);
    if (count <= 0) return false;
    connection.out.erase(0, static_cast<std::size_t>(count));
    if (connection.out.empty()) Answer(farm, connection);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5 && argc != 6)
    return std::fprintf(stderr, "usage: farm_server HOSTS PAGES-PER-HOST ADDRESSES-PER-PAGE DELAY-MS [LOG]\n"), 2;
  Farm farm{std::atol(argv[1]), std::atol(argv[2]), std::atol(argv[3]), std::atol(argv[4])};
  if (argc == 6) farm.log = open(argv[5], O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  int port = 0;
  const int listener = Listen(port);
  std::printf("%d\n", port);
  std::fflush(stdout);

  std::map<int, Connection> connections;
  for (;;) {
    std::vector<pollfd> ends = {{0, POLLIN, 0}, {listener, POLLIN, 0}};
    int wait = -1;
    for (const auto& [socket, connection] : connections) {
      const bool sending = !connection.out.empty() && Clock::now() >= connection.ready;
      ends.push_back({socket, static_cast<short>(POLLIN | (sending ? POLLOUT : 0)), 0});
      if (!connection.out.empty() && !sending) wait = 1;
    }
    if (poll(ends.data(), ends.size(), wait) < 0) return 1;
    if (ends[0].revents != 0) {
      char byte;
      if (read(0, &byte, 1) <= 0) return 0;
      std::printf("%ld\n", farm.answered);
      std::fflush(stdout);
    }
    if ((ends[1].revents & POLLIN) != 0) connections[accept(listener, nullptr, nullptr)] = {};
    for (std::size_t i = 2; i < ends.size(); ++i) {
      if (Move(farm, ends[i].fd, connections[ends[i].fd], ends[i].revents)) continue;
      close(ends[i].fd);
      connections.erase(ends[i].fd);
    }
  }
}
