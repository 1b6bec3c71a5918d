#include "window/fetch.h"

#include <cstdlib>
#include <stdexcept>

#include <winsock2.h>

namespace quenlar::window_test {

std::string FetchFromServer(const std::string& path) {
  const char* const place = std::getenv("QUENLAR_TEST_SERVER");
  if (!place) throw std::runtime_error("QUENLAR_TEST_SERVER names no server");
  const std::string server = place;
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  const SOCKET connection = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<u_short>(std::atoi(server.c_str() + server.find(':') + 1)));
  std::string answer;
  if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
    const std::string request = "GET " + path + " HTTP/1.1\r\nHost: " + server + "\r\nConnection: close\r\n\r\n";
    send(connection, request.data(), static_cast<int>(request.size()), 0);
    shutdown(connection, SD_SEND);
    char block[4096];
    for (int count; (count = recv(connection, block, sizeof block, 0)) > 0;) {
      answer.append(block, static_cast<std::size_t>(count));
    }
  }
  closesocket(connection);
  WSACleanup();
  const std::size_t body = answer.find("\r\n\r\n");
  return body == std::string::npos ? "" : answer.substr(body + 4);
}

}  // namespace quenlar::window_test
