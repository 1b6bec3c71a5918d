#include "platform/served_http.h"

#include "base/ascii.h"

namespace quenlar {
namespace {

const char* Reason(int status) {
  switch (status) {
    case 200:
      return "OK";
    case 301:
      return "Moved Permanently";
    case 302:
      return "Found";
    case 400:
      return "Bad Request";
    case 404:
      return "Not Found";
    case 500:
      return "Internal Server Error";
    default:
      return "Status";
  }
}

}  // namespace

bool TakeServedHead(std::string& received, ServedHead& head) {
  const std::size_t end = received.find("\r\n\r\n");
  if (end == std::string::npos) return false;
  const std::string text = received.substr(0, end + 2);
  received.erase(0, end + 4);
  // "GET /path HTTP/1.1"
  const std::string_view line = std::string_view(text).substr(0, text.find("\r\n"));
  const std::size_t first = line.find(' '), last = line.rfind(' ');
  const bool good = first < last && line.substr(last + 1).starts_with("HTTP/1.");
  head = {};
  if (good) {
    head.method = line.substr(0, first);
    head.target = line.substr(first + 1, last - first - 1);
  }
  head.closes = !good || line.ends_with("HTTP/1.0") || ContainsIgnoreCase(text, "\r\nconnection: close\r\n");
  return true;
}

std::string ServedBytes(const ServedHead& head, const std::string& prefix, const ServeHandler& handler) {
  ServedAnswer answer;
  const bool good = head.method == "GET";
  if (good) {
    answer = handler({prefix + head.target});
  } else {
    answer.status = 400;
  }
  std::string text = "HTTP/1.1 " + std::to_string(answer.status) + " " + Reason(answer.status) + "\r\n";
  text += "Content-Type: " + answer.content_type + "\r\n";
  if (!answer.location.empty()) text += "Location: " + answer.location + "\r\n";
  text += "Content-Length: " + std::to_string(answer.body.size()) + "\r\n";
  text += head.closes || !good ? "Connection: close\r\n\r\n" : "\r\n";
  return text + answer.body;
}

}  // namespace quenlar
