#include "connection.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quenlar::hostile {
namespace {

constexpr std::size_t kMaxHeadBytes = 1 << 20;

Request Parse(std::string head) {
  Request request;
  request.head = std::move(head);
  const std::string_view line = std::string_view(request.head).substr(0, request.head.find("\r\n"));
  const std::size_t first = line.find(' ');
  const std::size_t second = line.rfind(' ');
  if (first == line.npos || second <= first) return request;
  request.method = line.substr(0, first);
  request.target = line.substr(first + 1, second - first - 1);
  std::string_view path = request.target;
  if (path.starts_with("http://")) path.remove_prefix(std::min(path.find('/', 7), path.size()));
  const std::size_t question = path.find('?');
  request.path = path.substr(0, question);
  if (question != path.npos) request.query = path.substr(question + 1);
  return request;
}

}  // namespace

Connection::~Connection() {
  if (socket_ >= 0) close(socket_);
}

std::optional<Request> Connection::Read() {
  char block[16 * 1024];
  for (std::size_t end = rest_.find("\r\n\r\n"); end == std::string::npos; end = rest_.find("\r\n\r\n")) {
    const ssize_t size = recv(socket_, block, sizeof block, 0);
    if (size <= 0 || rest_.size() > kMaxHeadBytes) return std::nullopt;
    rest_.append(block, static_cast<std::size_t>(size));
    if (rest_.front() < 'A' || rest_.front() > 'Z') return std::nullopt;  // a greeting in TLS, for one
  }
  const std::size_t end = rest_.find("\r\n\r\n") + 4;
  std::string head = rest_.substr(0, end);
  rest_.erase(0, end);
  return Parse(std::move(head));
}

bool Connection::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t size = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (size <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(size));
  }
  return true;
}

bool Connection::SendPage(std::string_view body, std::string_view more_lines, std::string_view status) {
  std::string answer = "HTTP/1.1 ";
  answer.append(status).append("\r\nContent-Type: text/html\r\nContent-Length: ").append(std::to_string(body.size()));
  answer.append("\r\n").append(more_lines).append(more_lines.empty() ? "" : "\r\n").append("\r\n").append(body);
  return Send(answer);
}

void Connection::WaitForClose() {
  char block[4096];
  while (recv(socket_, block, sizeof block, 0) > 0) {
  }
}

bool Connection::Pause(std::chrono::milliseconds time) {
  pollfd closed{.fd = socket_, .events = POLLRDHUP, .revents = 0};
  return poll(&closed, 1, static_cast<int>(time.count())) == 0;
}

void Connection::Reset() {
  const linger at_once{.l_onoff = 1, .l_linger = 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  close(std::exchange(socket_, -1));
}

std::map<std::string, std::string> Parameters(std::string_view query) {
  std::map<std::string, std::string> parameters;
  while (!query.empty()) {
    const std::string_view part = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(part.size() + 1, query.size()));
    const std::size_t equals = std::min(part.find('='), part.size());
    parameters[std::string(part.substr(0, equals))] = part.substr(std::min(equals + 1, part.size()));
  }
  return parameters;
}

long Number(const Request& request, const std::string& name, long otherwise) {
  const auto parameters = Parameters(request.query);
  const auto value = parameters.find(name);
  return value == parameters.end() ? otherwise : std::atol(value->second.c_str());
}

}  // namespace quenlar::hostile
