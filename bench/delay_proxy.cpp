// Passes bytes between clients and a server on loopback and holds each answer back for a number of milliseconds.
// usage: delay_proxy LISTEN-PORT SERVER-PORT MILLISECONDS
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

sockaddr_in Loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

bool Pass(int from, int to) {
  char bytes[65536];
  const ssize_t count = read(from, bytes, sizeof bytes);
  return count > 0 && write(to, bytes, static_cast<std::size_t>(count)) == count;
}

// One connection: requests go through at once, the first bytes of each answer after the delay.
void Serve(int client, int server_port, int delay_ms) {
  const int server = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Loopback(server_port);
  if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(client);
    close(server);
    return;
  }
  bool waiting = false;
  for (;;) {
    pollfd ends[2] = {{client, POLLIN, 0}, {server, POLLIN, 0}};
    if (poll(ends, 2, -1) < 0) break;
    if ((ends[0].revents & (POLLIN | POLLHUP)) != 0) {
      if (!Pass(client, server)) break;
      waiting = true;
    }
    if ((ends[1].revents & (POLLIN | POLLHUP)) != 0) {
      if (waiting) poll(nullptr, 0, delay_ms);
      waiting = false;
      if (!Pass(server, client)) break;
    }
  }
  close(client);
  close(server);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return std::fprintf(stderr, "usage: delay_proxy LISTEN-PORT SERVER-PORT MILLISECONDS\n"), 2;
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  const int yes = 1;
  setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  const sockaddr_in address = Loopback(std::atoi(argv[1]));
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || listen(listener, 64) != 0)
    return 1;
  for (;;) {
    const int client = accept(listener, nullptr, nullptr);
    if (client >= 0) std::thread(Serve, client, std::atoi(argv[2]), std::atoi(argv[3])).detach();
  }
}
