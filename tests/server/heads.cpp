// Status lines and headers that are wrong, many or huge.
#include "endpoints.h"

namespace quenlar::hostile {
namespace {

const std::string kRest = "\r\nContent-Length: 4\r\n\r\npage";

Endpoint StatusLine(const std::string& line) { return Bytes(line + kRest); }

Endpoint WithHeaders(const std::string& lines) {
  return Bytes("HTTP/1.1 200 OK\r\n" + lines + "Content-Length: 4\r\n\r\npage");
}

bool Status(Connection& connection, const Request& request) {
  const std::string code = std::to_string(Number(request, "code", 200));
  return connection.SendPage("<p>status " + code + " of a@b.example</p>", "", code + " Some Words");
}

bool ManyHeaders(Connection& connection, const Request& request) {
  std::string lines;
  for (long i = Number(request, "count", 10'000); i > 0; --i)
    lines += "X-Header-" + std::to_string(i) + ": some value\r\n";
  return WithHeaders(lines)(connection, request);
}

bool EndlessHeaders(Connection& connection, const Request&) {
  std::string lines;
  while (lines.size() < 64 * 1024) lines += "X-Header: some value\r\n";
  connection.Send("HTTP/1.1 200 OK\r\n");
  while (connection.Send(lines)) {
  }
  return false;
}

bool EndlessHeaderLine(Connection& connection, const Request&) {
  connection.Send("HTTP/1.1 200 OK\r\nX-Header: ");
  while (connection.Send(std::string(64 * 1024, 'h'))) {
  }
  return false;
}

bool EndlessInterimAnswers(Connection& connection, const Request&) {
  std::string answers;
  while (answers.size() < 64 * 1024) answers += "HTTP/1.1 103 Early Hints\r\nLink: </style.css>\r\n\r\n";
  while (connection.Send(answers)) {
  }
  return false;
}

}  // namespace

void AddHeads(Endpoints& endpoints) {
  endpoints["/status"] = Status;
  endpoints["/no-content"] = Bytes("HTTP/1.1 204 No Content\r\n\r\n");
  endpoints["/interim"] =
      Bytes("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 Early Hints\r\nLink: <x>\r\n\r\nHTTP/1.1 200 OK" + kRest);
  endpoints["/interim/endless"] = EndlessInterimAnswers;

  endpoints["/start/garbage"] = StatusLine("\x01\x02 this is no answer \xff");
  endpoints["/start/http09"] = Bytes("<html><body>an answer without a head</body></html>");
  endpoints["/start/other-protocol"] = StatusLine("SSH-2.0-OpenSSH_9.2");
  endpoints["/start/no-code"] = StatusLine("HTTP/1.1 abc OK");
  endpoints["/start/code-too-long"] = StatusLine("HTTP/1.1 20000 OK");
  endpoints["/start/no-version"] = StatusLine("HTTP/ 200 OK");
  endpoints["/start/nothing"] = Bytes("");
  endpoints["/start/cut-in-line"] = Bytes("HTTP/1.1 20");
  endpoints["/start/cut-in-head"] = Bytes("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n");
  endpoints["/start/without-words"] = StatusLine("HTTP/1.1 200");
  endpoints["/start/line-feeds-only"] = Bytes("HTTP/1.1 200 OK\nContent-Length: 4\n\npage");
  endpoints["/start/http10"] = Bytes("HTTP/1.0 200 OK\r\n\r\npage");

  endpoints["/header/line-of-a-megabyte"] = WithHeaders("X-Header: " + std::string(1 << 20, 'h') + "\r\n");
  endpoints["/header/many"] = ManyHeaders;
  endpoints["/header/endless"] = EndlessHeaders;
  endpoints["/header/endless-line"] = EndlessHeaderLine;
  endpoints["/header/no-colon"] = WithHeaders("this line is no header\r\n");
  endpoints["/header/folded"] = WithHeaders("X-Header: first\r\n and second\r\n\tand third\r\n");
  endpoints["/header/nul"] = WithHeaders(std::string("X-Header: a\0b\r\n", 15));

  endpoints["/cookie"] = WithHeaders("Set-Cookie: visit=1; Path=/; Max-Age=3600\r\n");
  endpoints["/401"] = [](Connection& connection, const Request&) {
    return connection.SendPage("<p>who are you?</p>", "WWW-Authenticate: Basic realm=\"x\"\r\nWWW-Authenticate: NTLM",
                               "401 Unauthorized");
  };
  endpoints["/401/no-challenge"] = [](Connection& connection, const Request&) {
    return connection.SendPage("<p>who are you?</p>", "", "401 Unauthorized");
  };
  endpoints["/407"] = [](Connection& connection, const Request&) {
    return connection.SendPage("<p>who are you?</p>", "Proxy-Authenticate: Basic realm=\"x\"",
                               "407 Proxy Authentication Required");
  };
  endpoints["/407/huge"] = [](Connection& connection, const Request&) {
    connection.Send("HTTP/1.1 407 Proxy Authentication Required\r\nProxy-Authenticate: Basic realm=\"x\"\r\n\r\n");
    while (connection.Send(std::string(64 * 1024, 'c'))) {
    }
    return false;
  };
}

}  // namespace quenlar::hostile
