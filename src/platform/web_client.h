// Asynchronous GETs for a crawler: status, head and body of one answer, with nothing followed and nothing kept.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quenlar {

struct WebRequest {
  // An absolute http or https URL in its serialised form: ASCII, the host in lower case. It goes over the wire as it
  // stands, without its fragment and without a user name or password.
  std::string url = {};
  std::string user_agent = {};
  // The headers If-None-Match and If-Modified-Since; empty: not sent.
  std::string if_none_match = {}, if_modified_since = {};
  // Decoded bytes of the body. What lies behind is not read, and the answer says `truncated`.
  std::size_t body_limit = 8u << 20;
  // Whether the request may go to a loopback, link-local, private or otherwise reserved address.
  bool private_addresses = false;
  // Whether the answer brings the bytes of the wire. HTTP/1.1 is spoken then.
  bool keep_wire = false;
  // What takes longer is a failure. They run from the moment when the request gets its connection; waiting for other
  // requests of the same host or address is not counted.
  std::chrono::milliseconds connect_limit{15'000};  // for each address of the host, TLS included
  std::chrono::milliseconds silence_limit{30'000};  // without a single byte, the head's first one included
  std::chrono::milliseconds whole_limit{300'000};   // from the connection to the last byte
};

using WebField = std::pair<std::string, std::string>;  // name as sent, value without blanks around it

struct WebHead {
  int status = 0;                     // of the final answer, 200 to 999
  std::vector<WebField> fields = {};  // in the order of the answer
  std::string ip = {};                // whom the answer came from, "192.0.2.1" or "2001:db8::1"; empty behind a proxy

  // The value of the first field of that name, in any letter case; null when there is none.
  [[nodiscard]] const std::string* Find(std::string_view name) const;
};

enum class WebFailure {
  kNone,
  kBadUrl,          // not http or https, no host, or bytes that no request line can hold
  kNoName,          // the host's name has no address
  kPrivateAddress,  // all its addresses are ones that the request may not go to; nothing was sent
  kNoConnection,    // refused, unreachable, or not made in time; a proxy may say so too
  kNoTls,           // connected, but TLS failed for another reason than the certificate
  kCertificate,     // expired, for another name, of an authority that is not trusted, or of a server without its key
  kTimeout,         // connected, then too slow
  kBroken,          // cut short, malformed, or in an encoding that was not asked for
  kProxy,           // the proxy cannot be reached, wants a password or refuses the host
  kNoMemory,
};

// The bytes of one exchange as they went over the wire.
struct WebWire {
  std::string request = {};  // head
  std::string head = {};     // of the final answer, with the empty line behind it
  std::string body = {};     // still compressed
  // The transport has joined the chunks of a body whose head says "Transfer-Encoding: chunked".
  bool chunks_joined = false;
};

struct WebAnswer {
  WebFailure failure = WebFailure::kNone;
  std::string message = {};  // of a failure: what happened, for a person; empty otherwise
  WebHead head = {};         // status 0 when no head has arrived
  std::string body = {};     // decoded; what has arrived when the failure came
  bool truncated = false;
  std::uint64_t bytes_received = 0;       // head and body as they came, before decoding
  std::chrono::milliseconds duration{0};  // from the request's connection to its end; waiting is not counted
  std::optional<WebWire> wire = {};       // with WebRequest::keep_wire, once a request has been sent
};

// Who hears of the answers. Every call is made inside EventLoop::Yield or Wait, never inside a member of WebClient.
// `key` outlives the call, whatever the call does. The listener may start and cancel requests and may pump.
class WebListener {
 public:
  virtual ~WebListener() = default;
  // The head of the final answer has arrived. False: the body is not wanted. What is left of it is dropped at once, and
  // OnEnd follows without it.
  [[nodiscard]] virtual bool OnHead(const std::string& key, const WebHead& head) = 0;
  // The last call for this key. It may be started again from here on.
  virtual void OnEnd(const std::string& key, WebAnswer answer) = 0;
};

// A host is scheme, name and port. One connection a host at most, which is kept for the next request; an idle one
// counts. The requests of a host wait for each other in their order. Without a proxy at most four connections go to
// one IP address, whatever the hosts: a request that would need a fifth waits until one of them is free, and an idle
// one of another host is closed for it.
//
// An address is judged each time before a connection is made, so a name that changes its meaning changes nothing.
// Behind a proxy, which resolves names itself, names and literal addresses are judged. Redirects are not followed.
// Certificates are checked. No cookie is kept, no Referer and no password is sent.
class WebClient {
 public:
  virtual ~WebClient() = default;

  virtual void SetListener(WebListener* listener) = 0;

  // Starts one GET and returns at once; whatever fails, fails inside a pump. `key` must not be under way. Thousands may
  // be under way or waiting; the cost of each does not grow with their number.
  virtual void Start(WebRequest request, const std::string& key) = 0;

  // Forgets the request at once: no call is made for its key any more. Unknown keys are ignored.
  virtual void Cancel(const std::string& key) = 0;

  // How many connections may be open at a time, idle ones included; fewer where the system allows fewer. For one more
  // the longest idle one is closed. A crawl of many hosts sets it, so that connections to hosts that it has left do not
  // pile up.
  virtual void LimitConnections(std::size_t most) = 0;

  // Connections that are open now, idle ones included.
  [[nodiscard]] virtual std::size_t connections() const = 0;
};

// Connections to one IP address at a time.
inline constexpr std::size_t kConnectionsPerAddress = 4;

}  // namespace quenlar
