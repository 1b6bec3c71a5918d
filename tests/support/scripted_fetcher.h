// Downloads whose answers a test gives: beforehand by address, or by key at a moment of its choice.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/page_fetcher.h"
#include "support/fake_event_loop.h"

namespace quenlar {

struct ScriptedAnswer {
  std::string body;
  bool failed = false;
  std::vector<std::string> redirects = {};  // told one after the other before the body or the failure
  std::chrono::milliseconds delay{0};       // until the first notification
};

inline ScriptedAnswer Failure() { return {.body = "", .failed = true}; }

// A download without an answer stays in flight for ever. Every notification is made inside a pump of the loop.
class ScriptedFetcher : public PageFetcher {
 public:
  explicit ScriptedFetcher(FakeEventLoop& loop) : loop_(loop) {}
  ScriptedFetcher(const ScriptedFetcher&) = delete;
  ScriptedFetcher& operator=(const ScriptedFetcher&) = delete;

  void SetListener(FetchListener* listener) override { listener_ = listener; }
  void Start(const std::string& address, const std::string& key) override;
  void Cancel(const std::string& key) override;

  // Answers for downloads that start from now on.
  void Serve(const std::string& address, ScriptedAnswer answer) { answers_[address] = std::move(answer); }
  void Serve(const std::string& address, std::string body) { answers_[address] = {.body = std::move(body)}; }
  // For addresses that Serve does not know; empty: no answer.
  using Answerer = std::function<std::optional<ScriptedAnswer>(const std::string& address)>;
  void ServeOthers(Answerer answerer) { others_ = std::move(answerer); }

  // Answers for the oldest unanswered download of `key`, delivered by the next pump; false when there is none.
  bool Complete(const std::string& key, std::string body);
  bool Fail(const std::string& key);
  bool Progress(const std::string& key, FetchCode code, const std::string& text = "");
  bool Redirect(const std::string& key, const std::string& address) {
    return Progress(key, FetchCode::kRedirecting, address);
  }

  struct Request {
    std::string address, key;
    bool operator==(const Request&) const = default;
  };
  // Everything ever started, in order.
  [[nodiscard]] const std::vector<Request>& started() const { return started_; }
  // Started, and neither finished, failed nor cancelled.
  [[nodiscard]] std::vector<Request> in_flight() const;
  [[nodiscard]] std::size_t most_in_flight() const { return most_in_flight_; }
  // The keys of Cancel's calls, in order.
  [[nodiscard]] const std::vector<std::string>& cancelled() const { return cancelled_; }

 private:
  struct Download {
    std::uint64_t id;
    Request request;
    bool answered;
  };
  Download* Unanswered(const std::string& key);
  void Deliver(std::uint64_t id, std::chrono::milliseconds delay, std::function<void(const std::string& key)> call,
               bool last);
  void Answer(Download& download, const ScriptedAnswer& answer);

  FakeEventLoop& loop_;
  FetchListener* listener_ = nullptr;
  std::map<std::string, ScriptedAnswer> answers_;
  Answerer others_;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // scheduled notifications hold it weakly
  std::vector<Download> downloads_;
  std::uint64_t next_id_ = 0;
  std::size_t most_in_flight_ = 0;
  std::vector<Request> started_;
  std::vector<std::string> cancelled_;
};

}  // namespace quenlar
