#include "platform/web_dispatcher.h"

#include <algorithm>
#include <utility>

#include "base/ascii.h"
#include "platform/web_dispatcher_host.h"
#include "platform/web_url.h"

namespace quenlar {
namespace {

using std::chrono::seconds;

constexpr std::chrono::milliseconds kTick{250};
constexpr seconds kNameAge{60};        // after which a name is looked up again
constexpr seconds kIdleAge{60};        // after which an idle connection is closed
constexpr std::size_t kMostTries = 4;  // addresses of one host for one request

// Behind a proxy nothing but the name is known. A name that ends in a number is another spelling of an address.
bool IsPublicHost(const std::string& host) {
  if (const auto address = ParseIpAddress(host)) return IsPublicAddress(*address);
  std::string_view name = host;
  if (name.ends_with('.')) name.remove_suffix(1);
  const std::size_t dot = name.rfind('.');
  const std::string_view last = name.substr(dot == name.npos ? 0 : dot + 1);
  return !last.empty() && !IsDigit(last.front()) && !IsLoopbackName(name);
}

bool Permits(const WebRequest& request, const IpAddress& address) {
  return request.private_addresses || IsPublicAddress(address);
}

}  // namespace

WebDispatcher::WebDispatcher(EventLoop& loop, std::unique_ptr<WebTransport> transport, LookUpName look_up,
                             std::size_t most_connections)
    : loop_(loop),
      system_limit_(std::max<std::size_t>(most_connections, 1)),
      most_connections_(system_limit_),
      transport_(std::move(transport)),
      lookups_(loop, std::move(look_up)),
      tick_(loop.MakeTimer(kTick, [this] { Tick(); })) {
  transport_->SetTransportListener(this);
}

WebDispatcher::~WebDispatcher() = default;

void WebDispatcher::Start(WebRequest request, const std::string& key) {
  const WebExchangeId id = next_id_++;
  Request& started = requests_.emplace(id, Request{.request = std::move(request), .key = key}).first->second;
  by_key_[key] = id;
  auto target = SplitUrl(started.request.url);
  if (!target) {
    started.answer.failure = WebFailure::kBadUrl;
    started.answer.message = "the address cannot be asked for";
    return TellLater(id);
  }
  started.target = *std::move(target);
  Host& host = HostOf(started.target);
  started.host = &host;
  host.waiting.push_back(id);
  Advance(host);
}

void WebDispatcher::Cancel(const std::string& key) {
  const auto found = by_key_.find(key);
  if (found == by_key_.end()) return;
  const WebExchangeId id = found->second;
  const auto request = requests_.find(id);
  Host* host = request->second.host;
  const bool kept = request->second.sending && transport_->Take(id).kept;
  const bool was_sending = request->second.sending;
  by_key_.erase(found);
  requests_.erase(request);
  if (host == nullptr || host->current != id) return;
  host->current = 0;
  if (!was_sending) return;  // what the host waits for comes to it later
  LeaveConnection(*host, kept);
  Advance(*host);
}

WebDispatcher::Host& WebDispatcher::HostOf(const WireAddress& target) {
  ForgetQuietHosts(loop_.Now());
  std::string key = HostNameOf(target);
  auto& host = hosts_[key];
  if (host) return *host;
  host = std::make_unique<Host>();
  host->key = std::move(key);
  host->id = next_id_++;
  host->name = target.host;
  host->literal = ParseIpAddress(target.host);
  host->behind_proxy = transport_->UsesProxy(target);
  hosts_by_id_[host->id] = host.get();
  return *host;
}

// Goes on to the host's next request, when it has none.
void WebDispatcher::Advance(Host& host) {
  while (host.stage == Host::Stage::kAtRest && !host.waiting.empty()) {
    const WebExchangeId id = host.waiting.front();
    host.waiting.pop_front();
    if (!requests_.contains(id)) continue;
    host.current = id;
    Prepare(host);
  }
  if (host.IsQuiet()) NoteQuiet(host);
}

void WebDispatcher::Prepare(Host& host) {
  const Request& request = requests_.at(host.current);
  if (host.behind_proxy) {
    if (!request.request.private_addresses && !IsPublicHost(host.name)) {
      return Refuse(host, WebFailure::kPrivateAddress, host.name + " is not a public host");
    }
    if (host.connected || GetConnection(host, std::nullopt)) Send(host, std::nullopt);
    return;
  }
  if (host.connected) {
    const IpAddress address = *host.connected_to;
    if (Permits(request.request, address)) return Send(host, address);
    Close(host);
    ServeWaiting(address);
  }
  if (host.literal) {
    host.addresses.assign(1, *host.literal);
  } else if (host.addresses.empty() || loop_.Now() - host.resolved > kNameAge) {
    return Resolve(host);
  }
  Connect(host);
}

void WebDispatcher::Resolve(Host& host) {
  host.stage = Host::Stage::kResolving;
  lookups_.Find(host.name, [this, &host](const std::vector<IpAddress>& found) { OnFound(host, found); });
}

void WebDispatcher::OnFound(Host& host, const std::vector<IpAddress>& found) {
  host.addresses = found;
  host.resolved = loop_.Now();
  host.stage = Host::Stage::kAtRest;
  if (host.current != 0 && found.empty()) Refuse(host, WebFailure::kNoName, host.name + " has no address");
  Resume(host);
}

// What the host has waited for is there.
void WebDispatcher::Resume(Host& host) {
  host.stage = Host::Stage::kAtRest;
  if (host.current != 0) {
    if (host.behind_proxy) {
      Prepare(host);
    } else {
      Connect(host);
    }
  }
  Advance(host);
}

// To the next address that the request has not been to.
void WebDispatcher::Connect(Host& host) {
  Request& request = requests_.at(host.current);
  for (; request.tried < std::min(host.addresses.size(), kMostTries); ++request.tried) {
    const IpAddress address = host.addresses[request.tried];
    if (!Permits(request.request, address)) continue;
    if (!GetConnection(host, address)) return;
    ++request.tried;
    return Send(host, address);
  }
  if (request.answer.failure != WebFailure::kNone) {
    return Refuse(host, request.answer.failure, std::move(request.answer.message));
  }
  std::string names;
  for (const IpAddress& address : host.addresses) names += " " + address.Text();
  Refuse(host, WebFailure::kPrivateAddress, "not a public address:" + names);
}

void WebDispatcher::Send(Host& host, const std::optional<IpAddress>& address) {
  if (std::exchange(host.idle, false)) idle_.erase(host.idle_place);
  host.stage = Host::Stage::kSending;
  Request& request = requests_.at(host.current);
  request.sending = true;
  request.began = loop_.Now();
  deadlines_.emplace(request.began + std::min(request.request.silence_limit, request.request.whole_limit),
                     host.current);
  tick_->SetEnabled(true);
  transport_->Begin({host.current, host.id, request.request, request.target, address});
}

void WebDispatcher::Refuse(Host& host, WebFailure failure, std::string message) {
  WebAnswer& answer = requests_.at(host.current).answer;
  answer.failure = failure;
  answer.message = std::move(message);
  TellLater(std::exchange(host.current, 0));
}

void WebDispatcher::TellLater(WebExchangeId id) {
  loop_.Post([this, alive = std::weak_ptr(alive_), id] {
    if (!alive.expired()) Tell(id);
  });
}

void WebDispatcher::Tell(WebExchangeId id) {
  auto node = requests_.extract(id);
  if (node.empty()) return;
  Request& request = node.mapped();
  by_key_.erase(request.key);
  if (listener_ != nullptr) listener_->OnEnd(request.key, std::move(request.answer));
}

void WebDispatcher::OnTransportHead(WebExchangeId id, const WebHead& head) {
  const auto request = requests_.find(id);
  if (request == requests_.end()) return;
  if (head.status == 407 && request->second.host->behind_proxy) return FailProxy(id);
  const std::string key = request->second.key;
  const std::weak_ptr alive(alive_);
  if (listener_ != nullptr && listener_->OnHead(key, head)) return;
  if (alive.expired() || !requests_.contains(id)) return;
  WebTransport::Outcome outcome = TakeOutcome(id);
  outcome.answer.failure = WebFailure::kNone;
  outcome.answer.message.clear();
  outcome.answer.body.clear();
  outcome.answer.truncated = false;
  Finish(id, std::move(outcome));
}

void WebDispatcher::FailProxy(WebExchangeId id) {
  WebTransport::Outcome outcome = TakeOutcome(id);
  outcome.answer.failure = WebFailure::kProxy;
  outcome.answer.message = "the proxy wants a password";
  Finish(id, std::move(outcome));
}

void WebDispatcher::OnTransportEnd(WebExchangeId id) {
  const auto found = requests_.find(id);
  if (found == requests_.end()) return;
  Request& request = found->second;
  WebTransport::Outcome outcome = TakeOutcome(id);
  const bool may_retry = !request.host->behind_proxy && !transport_->ChoosesAddress(request.target);
  if (outcome.answer.failure != WebFailure::kNoConnection || !may_retry) {
    return Finish(id, std::move(outcome));
  }
  // The host may have another address.
  request.answer = std::move(outcome.answer);
  Host& host = *request.host;
  LeaveConnection(host, false);
  host.current = id;
  Prepare(host);
  Advance(host);
}

WebTransport::Outcome WebDispatcher::TakeOutcome(WebExchangeId id) {
  Request& request = requests_.at(id);
  request.sending = false;
  WebTransport::Outcome outcome = transport_->Take(id);
  outcome.answer.duration = std::chrono::duration_cast<std::chrono::milliseconds>(loop_.Now() - request.began);
  return outcome;
}

// The host is on its way to its next request before the listener hears of this one.
void WebDispatcher::Finish(WebExchangeId id, WebTransport::Outcome outcome) {
  const auto node = requests_.extract(id);
  const Request& request = node.mapped();
  by_key_.erase(request.key);
  LeaveConnection(*request.host, outcome.kept);
  Advance(*request.host);
  if (listener_ != nullptr) listener_->OnEnd(request.key, std::move(outcome.answer));
}

void WebDispatcher::Tick() {
  const std::weak_ptr alive(alive_);
  const Instant now = loop_.Now();
  while (!idle_.empty() && now - idle_.front()->idle_since > kIdleAge) {
    Host& host = *idle_.front();
    const auto address = host.connected_to;
    Close(host);
    NoteQuiet(host);
    ServeWaiting(address);
  }
  ForgetQuietHosts(now);
  EndSlowOnes(now);
  if (!alive.expired()) tick_->SetEnabled(!idle_.empty() || !deadlines_.empty());
}

void WebDispatcher::EndSlowOnes(Instant now) {
  const std::weak_ptr alive(alive_);
  while (!alive.expired() && !deadlines_.empty() && deadlines_.top().first <= now) {
    const WebExchangeId id = deadlines_.top().second;
    deadlines_.pop();
    const auto found = requests_.find(id);
    if (found == requests_.end() || !found->second.sending) continue;
    const WebRequest& request = found->second.request;
    const Instant whole = found->second.began + request.whole_limit;
    const Instant silent = transport_->LastByte(id) + request.silence_limit;
    if (std::min(whole, silent) > now) {
      deadlines_.emplace(std::min(whole, silent), id);
      continue;
    }
    WebTransport::Outcome outcome = TakeOutcome(id);
    outcome.answer.failure = WebFailure::kTimeout;
    outcome.answer.message = silent <= now ? "nothing came for too long" : "it took too long";
    Finish(id, std::move(outcome));
  }
}

}  // namespace quenlar
