// The dispatcher's books of connections and hosts: who has one, who waits, what is closed and forgotten.
#include <algorithm>
#include <utility>

#include "platform/web_dispatcher_host.h"

namespace quenlar {
namespace {

constexpr std::chrono::seconds kQuietAge{60};
constexpr std::size_t kMostQuietHosts = 10'000;

}  // namespace

void WebDispatcher::LimitConnections(std::size_t most) {
  most_connections_ = std::clamp<std::size_t>(most, 1, system_limit_);
  while (connections_ > most_connections_ && !idle_.empty()) CloseLongestIdle();
}

void WebDispatcher::CloseLongestIdle() {
  Host& idle = *idle_.front();
  Close(idle);
  NoteQuiet(idle);
}

// False: the host waits until Resume.
bool WebDispatcher::GetConnection(Host& host, const std::optional<IpAddress>& address) {
  if (address && addresses_[*address].connected.size() >= kConnectionsPerAddress) {
    Host* idle = addresses_[*address].Idle();
    if (idle == nullptr) {
      addresses_[*address].waiting.push_back(&host);
      host.stage = Host::Stage::kQueued;
      return false;
    }
    Close(*idle);
    NoteQuiet(*idle);
  }
  if (connections_ >= most_connections_) {
    if (idle_.empty()) {
      waiting_.push_back(&host);
      host.stage = Host::Stage::kQueued;
      return false;
    }
    CloseLongestIdle();
  }
  if (address) addresses_[*address].connected.push_back(&host);
  host.connected = true;
  host.connected_to = address;
  ++connections_;
  return true;
}

// The current request is done with the host's connection. A kept one is given up where others wait for their turn.
void WebDispatcher::LeaveConnection(Host& host, bool kept) {
  host.stage = Host::Stage::kAtRest;
  host.current = 0;
  const auto address = host.connected_to;
  if (!kept) {
    Release(host);
  } else if (!waiting_.empty() || (address && !addresses_.at(*address).waiting.empty())) {
    Close(host);
  } else {
    host.idle = true;
    host.idle_since = loop_.Now();
    host.idle_place = idle_.insert(idle_.end(), &host);
  }
  ServeWaiting(address);
}

void WebDispatcher::Release(Host& host) {
  if (std::exchange(host.idle, false)) idle_.erase(host.idle_place);
  host.connected = false;
  --connections_;
  const auto address = std::exchange(host.connected_to, std::nullopt);
  if (!address) return;
  const auto entry = addresses_.find(*address);
  std::erase(entry->second.connected, &host);
  if (entry->second.connected.empty() && entry->second.waiting.empty()) addresses_.erase(entry);
}

void WebDispatcher::Close(Host& host) {
  Release(host);
  transport_->CloseIdle(host.id);
}

bool WebDispatcher::HasRoom(const Address& address) const {
  if (address.Idle() != nullptr) return true;
  const bool here = address.connected.size() < kConnectionsPerAddress;
  return here && (connections_ < most_connections_ || !idle_.empty());
}

// Gives what has become free at an address, or anywhere, to those that wait for it, in their order.
void WebDispatcher::ServeWaiting(const std::optional<IpAddress>& address) {
  const auto next = [](std::deque<Host*>& waiting) {
    Host& host = *waiting.front();
    waiting.pop_front();
    return &host;
  };
  while (address) {
    const auto entry = addresses_.find(*address);
    if (entry == addresses_.end()) break;
    if (entry->second.waiting.empty() || !HasRoom(entry->second)) break;
    Resume(*next(entry->second.waiting));
  }
  while (!waiting_.empty() && (connections_ < most_connections_ || !idle_.empty())) Resume(*next(waiting_));
}

void WebDispatcher::OnIdleClosed(WebHostId id) {
  const auto host = hosts_by_id_.find(id);
  if (host == hosts_by_id_.end() || !host->second->idle) return;
  const auto address = host->second->connected_to;
  Release(*host->second);
  NoteQuiet(*host->second);
  ServeWaiting(address);
}

void WebDispatcher::NoteQuiet(Host& host) {
  host.quiet_since = loop_.Now();
  if (!std::exchange(host.in_quiet, true)) quiet_.push_back(&host);
}

// Looks at two hosts at a time: no more than one becomes quiet a step.
void WebDispatcher::ForgetQuietHosts(Instant now) {
  for (int looks = 0; looks < 2 && !quiet_.empty(); ++looks) {
    Host& host = *quiet_.front();
    quiet_.pop_front();
    host.in_quiet = host.IsQuiet() && now - host.quiet_since <= kQuietAge && quiet_.size() < kMostQuietHosts;
    if (host.in_quiet) {
      quiet_.push_back(&host);
    } else if (host.IsQuiet()) {
      hosts_by_id_.erase(host.id);
      hosts_.erase(hosts_.find(host.key));
    }
  }
}

}  // namespace quenlar
