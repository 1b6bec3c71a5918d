#include "window/site.h"

#include <algorithm>
#include <stdexcept>

#include <winsock2.h>

namespace quenlar::window_test {

Site::Site() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  sockaddr_in place{};
  place.sin_family = AF_INET;
  place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  int size = sizeof place;
  if (bind(listener_, reinterpret_cast<sockaddr*>(&place), size) != 0 || listen(listener_, SOMAXCONN) != 0 ||
      getsockname(listener_, reinterpret_cast<sockaddr*>(&place), &size) != 0) {
    throw std::runtime_error("no loopback port for the test site");
  }
  port_ = ntohs(place.sin_port);
  accepting_ = std::thread([this] { Accept(); });
}

Site::~Site() {
  ending_ = true;
  closesocket(listener_);
  accepting_.join();
  {
    const std::lock_guard lock(mutex_);
    for (const std::uintptr_t client : clients_) closesocket(client);
  }
  for (std::thread& thread : serving_) thread.join();
  WSACleanup();
}

std::string Site::Address(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }

void Site::SetPage(const std::string& target, const std::string& body) {
  const std::lock_guard lock(mutex_);
  pages_[target] = body;
}

void Site::SetSilent(const std::string& target) {
  const std::lock_guard lock(mutex_);
  silent_.push_back(target);
}

std::vector<std::string> Site::Requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

bool Site::WasAskedFor(const std::string& target) const {
  const auto requests = Requests();
  return std::find(requests.begin(), requests.end(), target) != requests.end();
}

void Site::Accept() {
  while (true) {
    const std::uintptr_t client = accept(listener_, nullptr, nullptr);
    if (client == INVALID_SOCKET) return;
    const std::lock_guard lock(mutex_);
    if (ending_) {
      closesocket(client);
      return;
    }
    clients_.push_back(client);
    serving_.emplace_back([this, client] { Serve(client); });
  }
}

// One request a connection.
void Site::Serve(std::uintptr_t client) {
  std::string request;
  char block[4096];
  while (request.find("\r\n\r\n") == std::string::npos) {
    const int count = recv(client, block, sizeof block, 0);
    if (count <= 0) return;
    request.append(block, static_cast<std::size_t>(count));
  }
  const std::size_t begin = request.find(' ') + 1;
  const std::string answer = Answer(request.substr(begin, request.find(' ', begin) - begin));
  if (answer.empty()) return;  // the connection stays open until the site goes
  send(client, answer.data(), static_cast<int>(answer.size()), 0);
  shutdown(client, SD_SEND);
}

// `asked` as it came; a proxy's client may name the usual port.
std::string Site::Answer(const std::string& asked) {
  std::string target = asked;
  if (const std::size_t port = target.find(":80/"); port != std::string::npos) target.erase(port, 3);
  const std::lock_guard lock(mutex_);
  requests_.push_back(target);
  if (std::find(silent_.begin(), silent_.end(), target) != silent_.end()) return {};
  const auto found = pages_.find(target);
  const std::string body = found == pages_.end() ? "no such page" : found->second;
  return std::string("HTTP/1.1 ") + (found == pages_.end() ? "404 Not Found" : "200 OK") +
         "\r\nContent-Type: text/html\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + body;
}

}  // namespace quenlar::window_test
