// Web answers that a test gives: beforehand by URL, or by key at a moment of its choice.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/web_client.h"
#include "support/fake_event_loop.h"

namespace quenlar {

struct ScriptedWebAnswer {
  int status = 200;  // 0: the request fails before a head arrives
  std::vector<WebField> fields = {{"Content-Type", "text/html"}};
  std::string body = {};
  WebFailure failure = WebFailure::kNone;  // comes behind the head and the body
  std::string message = {};
  std::string ip = "192.0.2.1";
  std::chrono::milliseconds delay{0};  // from the start of the exchange to its end
};

// A request that fails before a head arrives.
inline ScriptedWebAnswer WebFails(WebFailure failure, std::string message = "it failed") {
  return {.status = 0, .fields = {}, .failure = failure, .message = std::move(message)};
}
inline ScriptedWebAnswer WebRedirect(std::string location, int status = 301) {
  return {.status = status, .fields = {{"Location", std::move(location)}}};
}

// Keeps the order of one host's requests: one at a time, the others wait. A request without an answer stays under way
// for ever. Every call to the listener is made inside a pump of the loop.
class ScriptedWebClient : public WebClient {
 public:
  explicit ScriptedWebClient(FakeEventLoop& loop) : loop_(loop) {}
  ScriptedWebClient(const ScriptedWebClient&) = delete;
  ScriptedWebClient& operator=(const ScriptedWebClient&) = delete;

  void SetListener(WebListener* listener) override { listener_ = listener; }
  void Start(WebRequest request, const std::string& key) override;
  void Cancel(const std::string& key) override;
  void LimitConnections(std::size_t) override {}
  // One for each host that has been asked for.
  [[nodiscard]] std::size_t connections() const override { return hosts_.size(); }

  // Answers for exchanges that begin from now on. Served by the whole URL; the answerer sees what Serve does not know,
  // and gives nothing where the request is to stay under way.
  void Serve(const std::string& url, ScriptedWebAnswer answer) { answers_[url] = std::move(answer); }
  void Serve(const std::string& url, std::string body) { answers_[url] = {.body = std::move(body)}; }
  using Answerer = std::function<std::optional<ScriptedWebAnswer>(const WebRequest& request)>;
  void ServeOthers(Answerer answerer) { others_ = std::move(answerer); }

  // Answers the request of `key`, which must be under way without an answer; false when it is not.
  bool Complete(const std::string& key, const ScriptedWebAnswer& answer);

  struct Exchange {
    WebRequest request;
    std::string key;
    FakeEventLoop::Milliseconds at{0};  // when it began
  };
  // Everything that was ever sent, in the order in which it was: what waits for its host is not yet among it.
  [[nodiscard]] const std::vector<Exchange>& sent() const { return sent_; }
  // The URLs of sent().
  [[nodiscard]] std::vector<std::string> urls() const;
  // Started, and neither ended nor cancelled; waiting ones included.
  [[nodiscard]] std::size_t under_way() const { return requests_.size(); }
  // The most hosts that were being asked at the same time.
  [[nodiscard]] std::size_t most_hosts_at_once() const { return most_hosts_at_once_; }

 private:
  using Id = std::uint64_t;
  struct Request {
    WebRequest request;
    std::string key, host;
    bool sent = false, answered = false;
  };
  struct Host {
    std::deque<Id> waiting;  // may hold ids that have been cancelled
    Id current = 0;          // 0: idle
  };

  void Next(const std::string& host);
  void Answer(Id id, const ScriptedWebAnswer& answer);
  void Deliver(Id id, const ScriptedWebAnswer& answer);
  void Release(const Request& request, Id id);

  FakeEventLoop& loop_;
  WebListener* listener_ = nullptr;
  std::map<std::string, ScriptedWebAnswer> answers_;
  Answerer others_;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // scheduled calls hold it weakly
  std::map<Id, Request> requests_;
  std::map<std::string, Id> by_key_;
  std::map<std::string, Host> hosts_;
  std::size_t hosts_busy_ = 0, most_hosts_at_once_ = 0;
  Id next_id_ = 1;
  std::vector<Exchange> sent_;
};

}  // namespace quenlar
