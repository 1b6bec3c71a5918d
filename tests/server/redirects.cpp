// Redirects.
#include "endpoints.h"

namespace quenlar::hostile {
namespace {

// `location` is sent byte for byte.
Endpoint To(const std::string& location, const std::string& status = "302 Found") {
  return [location, status](Connection& connection, const Request&) {
    return connection.SendPage("<p>moved</p>", "Location: " + location, status);
  };
}

// /redirect/hops?n=3 leads over n=2 and n=1 to n=0, which is a page.
bool Hops(Connection& connection, const Request& request) {
  const long left = Number(request, "n", 0);
  if (left <= 0) return connection.SendPage("the end of the hops");
  return connection.SendPage("", "Location: /redirect/hops?n=" + std::to_string(left - 1), "301 Moved Permanently");
}

// /redirect/to?anything leads to "anything".
bool Anywhere(Connection& connection, const Request& request) {
  return connection.SendPage("", "Location: " + request.query, "302 Found");
}

bool EndlessBody(Connection& connection, const Request&) {
  connection.Send("HTTP/1.1 302 Found\r\nLocation: /page\r\n\r\n");
  while (connection.Send(std::string(64 * 1024, 'r'))) {
  }
  return false;
}

}  // namespace

void AddRedirects(Endpoints& endpoints) {
  endpoints["/redirect/loop"] = To("/redirect/loop");
  endpoints["/redirect/ping"] = To("/redirect/pong");
  endpoints["/redirect/pong"] = To("/redirect/ping");
  endpoints["/redirect/hops"] = Hops;
  endpoints["/redirect/to"] = Anywhere;
  for (const char* status : {"301 Moved", "302 Found", "303 See Other", "307 Temporary", "308 Permanent"}) {
    endpoints["/redirect/" + std::string(status, 3)] = To("/page", status);
  }
  endpoints["/redirect/300"] = To("/page", "300 Multiple Choices");
  endpoints["/redirect/200"] = To("/page", "200 OK");
  endpoints["/redirect/no-location"] = [](Connection& connection, const Request&) {
    return connection.SendPage("<p>nowhere</p>", "", "302 Found");
  };
  endpoints["/redirect/empty"] = To("");
  endpoints["/redirect/relative"] = To("../page?from=relative");
  endpoints["/redirect/file"] = To("file:///etc/passwd");
  endpoints["/redirect/javascript"] = To("javascript:alert(1)");
  endpoints["/redirect/data"] = To("data:text/html,a@b.example");
  endpoints["/redirect/ftp"] = To("ftp://127.0.0.1/file");
  endpoints["/redirect/device"] = To("\\\\.\\COM1");
  endpoints["/redirect/megabyte"] = To("/" + std::string(1 << 20, 'm'));
  endpoints["/redirect/carriage-return"] = To("/echo/a\rX-Injected: yes");
  endpoints["/redirect/tab"] = To("/echo/a\tb");
  endpoints["/redirect/nul"] = To(std::string("/echo/a\0b", 9));
  endpoints["/redirect/utf8"] = To("/echo/caf\xC3\xA9");
  endpoints["/redirect/latin1"] = To("/echo/caf\xE9");
  endpoints["/redirect/blanks"] = To("/echo/a b\"c");
  endpoints["/redirect/endless-body"] = EndlessBody;
  endpoints["/redirect/short-body"] =
      Bytes("HTTP/1.1 302 Found\r\nLocation: /page\r\nContent-Length: 100\r\n\r\nmoved");
}

}  // namespace quenlar::hostile
