// The WebClient over any transport: who may connect to where and when.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <queue>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/event_loop.h"
#include "platform/ip_address.h"
#include "platform/name_lookups.h"
#include "platform/web_client.h"
#include "platform/web_transport.h"
#include "platform/wire_address.h"

namespace quenlar {

// Keeps a queue for each host and one for each crowded address, so that every step looks at one host and at most four
// connections. What a name resolves to is asked for again after a minute; each address is judged for each request.
class WebDispatcher final : public WebClient, private WebTransportListener {
 public:
  // At most `most_connections` are open at a time, idle ones included, whatever LimitConnections asks for. `loop` must
  // outlive the dispatcher.
  WebDispatcher(EventLoop& loop, std::unique_ptr<WebTransport> transport, LookUpName look_up,
                std::size_t most_connections);
  WebDispatcher(const WebDispatcher&) = delete;
  WebDispatcher& operator=(const WebDispatcher&) = delete;
  ~WebDispatcher() override;

  void SetListener(WebListener* listener) override { listener_ = listener; }
  void Start(WebRequest request, const std::string& key) override;
  void Cancel(const std::string& key) override;
  void LimitConnections(std::size_t most) override;
  [[nodiscard]] std::size_t connections() const override { return connections_; }

 private:
  using Instant = std::chrono::steady_clock::time_point;
  struct Host;
  struct Address;
  struct Request {
    WebRequest request;
    std::string key;
    WireAddress target = {};
    Host* host = nullptr;
    bool sending = false;   // the transport has it
    std::size_t tried = 0;  // addresses of the host that it has been to, or may not go to
    Instant began = {};
    WebAnswer answer = {};  // of the last address that was tried, or of a request that has ended and is to be told
  };
  using Addresses = std::map<IpAddress, Address>;

  void OnTransportHead(WebExchangeId id, const WebHead& head) override;
  void OnTransportEnd(WebExchangeId id) override;
  void OnIdleClosed(WebHostId host) override;

  [[nodiscard]] Host& HostOf(const WireAddress& target);
  // The host's way from its next request to the wire: Advance, Prepare, (Resolve, OnFound,) Connect, Send. Each step
  // may end with the host waiting for something, which then calls the next one.
  void Advance(Host& host);
  void Prepare(Host& host);
  void Resolve(Host& host);
  void OnFound(Host& host, const std::vector<IpAddress>& found);
  void Connect(Host& host);
  [[nodiscard]] bool GetConnection(Host& host, const std::optional<IpAddress>& address);
  void Send(Host& host, const std::optional<IpAddress>& address);
  void Resume(Host& host);
  // The current request fails without having been sent.
  void Refuse(Host& host, WebFailure failure, std::string message);
  void TellLater(WebExchangeId id);
  void Tell(WebExchangeId id);

  [[nodiscard]] WebTransport::Outcome TakeOutcome(WebExchangeId id);
  void Finish(WebExchangeId id, WebTransport::Outcome outcome);
  void FailProxy(WebExchangeId id);
  void LeaveConnection(Host& host, bool kept);
  // Takes the host's connection off the books. Nobody is served with what that leaves free.
  void Release(Host& host);
  void Close(Host& host);
  void CloseLongestIdle();
  void ServeWaiting(const std::optional<IpAddress>& address);
  [[nodiscard]] bool HasRoom(const Address& address) const;

  void Tick();
  void EndSlowOnes(Instant now);
  void NoteQuiet(Host& host);
  void ForgetQuietHosts(Instant now);

  EventLoop& loop_;
  const std::size_t system_limit_;
  std::size_t most_connections_;
  const std::unique_ptr<WebTransport> transport_;
  NameLookups lookups_;
  WebListener* listener_ = nullptr;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // posted calls hold it weakly

  std::unordered_map<WebExchangeId, Request> requests_;
  std::unordered_map<std::string, WebExchangeId> by_key_;
  std::unordered_map<std::string, std::unique_ptr<Host>> hosts_;
  std::unordered_map<WebHostId, Host*> hosts_by_id_;
  Addresses addresses_;  // those that have connections or hosts that wait for one
  std::uint64_t next_id_ = 1;
  std::size_t connections_ = 0;
  std::list<Host*> idle_;      // with a connection and without a request, the longest idle first
  std::deque<Host*> waiting_;  // for any connection to be closed
  std::deque<Host*> quiet_;    // without connection and requests, or have been since they came here
  using Deadline = std::pair<Instant, WebExchangeId>;
  std::priority_queue<Deadline, std::vector<Deadline>, std::greater<>> deadlines_;
  std::unique_ptr<LoopTimer> tick_;  // while there are deadlines or idle connections
};

}  // namespace quenlar
