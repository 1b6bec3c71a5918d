#include "support/scripted_web_client.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace quenlar {
namespace {

// "https://host:port" of a URL; empty when it has no such beginning.
std::string HostOf(const std::string& url) {
  const std::size_t scheme = url.find("://");
  if (scheme == std::string::npos || (!url.starts_with("http://") && !url.starts_with("https://"))) return "";
  const std::size_t name_end = url.find_first_of(":/?#", scheme + 3);
  return name_end == scheme + 3 || scheme + 3 == url.size() ? "" : url.substr(0, url.find_first_of("/?#", name_end));
}

}  // namespace

void ScriptedWebClient::Start(WebRequest request, const std::string& key) {
  if (by_key_.contains(key)) throw std::logic_error("the key is under way: " + key);
  const Id id = next_id_++;
  std::string host = HostOf(request.url);
  requests_.emplace(id, Request{std::move(request), key, host});
  by_key_[key] = id;
  if (host.empty()) return Answer(id, WebFails(WebFailure::kBadUrl));
  hosts_[host].waiting.push_back(id);
  Next(host);
}

void ScriptedWebClient::Cancel(const std::string& key) {
  const auto found = by_key_.find(key);
  if (found == by_key_.end()) return;
  const Id id = found->second;
  by_key_.erase(found);
  Release(requests_.extract(id).mapped(), id);
}

bool ScriptedWebClient::Complete(const std::string& key, const ScriptedWebAnswer& answer) {
  const auto found = by_key_.find(key);
  if (found == by_key_.end()) return false;
  const Request& request = requests_.at(found->second);
  if (!request.sent || request.answered) return false;
  Answer(found->second, answer);
  return true;
}

std::vector<std::string> ScriptedWebClient::urls() const {
  std::vector<std::string> urls;
  for (const Exchange& exchange : sent_) urls.push_back(exchange.request.url);
  return urls;
}

// Sends the host's next request, if it is idle.
void ScriptedWebClient::Next(const std::string& name) {
  Host& host = hosts_.at(name);
  if (host.current != 0) return;
  while (!host.waiting.empty() && !requests_.contains(host.waiting.front())) host.waiting.pop_front();
  if (host.waiting.empty()) return;
  const Id id = host.waiting.front();
  host.waiting.pop_front();
  host.current = id;
  most_hosts_at_once_ = std::max(most_hosts_at_once_, ++hosts_busy_);
  Request& request = requests_.at(id);
  request.sent = true;
  sent_.push_back({request.request, request.key, loop_.now()});
  if (const auto known = answers_.find(request.request.url); known != answers_.end()) {
    Answer(id, known->second);
  } else if (others_) {
    const WebRequest asked = request.request;
    if (const auto answer = others_(asked); answer && requests_.contains(id)) Answer(id, *answer);
  }
}

void ScriptedWebClient::Answer(Id id, const ScriptedWebAnswer& answer) {
  requests_.at(id).answered = true;
  loop_.Schedule(answer.delay, [this, alive = std::weak_ptr(alive_), id, answer] {
    if (!alive.expired() && requests_.contains(id) && listener_ != nullptr) Deliver(id, answer);
  });
}

void ScriptedWebClient::Deliver(Id id, const ScriptedWebAnswer& answer) {
  const std::string key = requests_.at(id).key;
  WebAnswer out{.failure = answer.failure, .message = answer.message, .duration = answer.delay};
  out.head = {.status = answer.status, .fields = answer.fields, .ip = answer.status == 0 ? "" : answer.ip};
  bool wanted = false;
  if (answer.status != 0) {
    const std::weak_ptr alive(alive_);
    wanted = listener_->OnHead(key, out.head);
    if (alive.expired() || !requests_.contains(id)) return;
  }
  // Both go together: nothing may fail in between.
  const auto node = requests_.extract(id);
  const Request& request = node.mapped();
  by_key_.erase(key);
  if (wanted) {
    out.body = answer.body.substr(0, request.request.body_limit);
    out.truncated = out.body.size() < answer.body.size();
  } else if (answer.status != 0) {
    out.failure = WebFailure::kNone;  // it was dropped before it failed
    out.message.clear();
  }
  out.bytes_received = out.body.size();
  if (request.request.keep_wire && answer.status != 0) {
    out.wire = WebWire{.request = "GET " + request.request.url + "\r\n\r\n", .head = "HTTP/1.1\r\n\r\n"};
    out.wire->body = out.body;
  }
  Release(request, id);
  listener_->OnEnd(key, std::move(out));
}

// The host goes on to its next request, from a later pump.
void ScriptedWebClient::Release(const Request& request, Id id) {
  const auto host = hosts_.find(request.host);
  if (host == hosts_.end() || host->second.current != id) return;
  host->second.current = 0;
  --hosts_busy_;
  try {
    loop_.Post([this, alive = std::weak_ptr(alive_), name = request.host] {
      if (!alive.expired()) Next(name);
    });
  } catch (const std::bad_alloc&) {
    // Cancel never fails; a program that is out of memory asks for nothing more.
  }
}

}  // namespace quenlar
