// What makes the connections below a WebDispatcher: one for each system.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "platform/ip_address.h"
#include "platform/web_client.h"
#include "platform/wire_address.h"

namespace quenlar {

using WebExchangeId = std::uint64_t;
using WebHostId = std::uint64_t;

// One request on its way; all of it must outlive the exchange.
struct WebExchange {
  WebExchangeId id = 0;
  WebHostId host = 0;  // exchanges of one host follow each other, and share its connection
  const WebRequest& request;
  const WireAddress& target;
  std::optional<IpAddress> address;  // where to connect to; empty behind a proxy
};

// Every call is made inside a pump.
class WebTransportListener {
 public:
  virtual ~WebTransportListener() = default;
  virtual void OnTransportHead(WebExchangeId id, const WebHead& head) = 0;
  // Nothing more comes; Take gives what there is.
  virtual void OnTransportEnd(WebExchangeId id) = 0;
  // A host's connection was closed while it was idle.
  virtual void OnIdleClosed(WebHostId host) = 0;
};

class WebTransport {
 public:
  virtual ~WebTransport() = default;
  virtual void SetTransportListener(WebTransportListener* listener) = 0;

  // Whether a request to there goes through a proxy.
  [[nodiscard]] virtual bool UsesProxy(const WireAddress& target) const = 0;

  // Whether a connection to there goes to whichever of the name's addresses the system chooses; the transport then
  // judges that address itself, and is not asked to try another one.
  [[nodiscard]] virtual bool ChoosesAddress(const WireAddress&) const { return false; }

  // Sends the request, over the host's kept connection or a new one to `address` and nowhere else. WebRequest's
  // connect_limit is kept here, the other limits are the caller's. Whatever fails, fails in a later pump.
  virtual void Begin(const WebExchange& exchange) = 0;

  // When the last bytes of the exchange arrived; its beginning, when none have.
  [[nodiscard]] virtual std::chrono::steady_clock::time_point LastByte(WebExchangeId id) const = 0;

  struct Outcome {
    WebAnswer answer;   // without `duration`
    bool kept = false;  // the host's connection stays open
  };
  // Takes the exchange out, at its end or before it, and gives what has arrived so far. No call is made for it
  // afterwards. Before its end its connection is closed, and the answer's failure is kNone: the caller knows why it
  // does not wait. `id` must be under way.
  [[nodiscard]] virtual Outcome Take(WebExchangeId id) = 0;

  // Closes the connection that the host keeps.
  virtual void CloseIdle(WebHostId host) = 0;
};

}  // namespace quenlar
