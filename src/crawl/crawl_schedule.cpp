#include "crawl/crawl_schedule.h"

#include <algorithm>

namespace quenlar {

void CrawlSchedule::Push(HostId host, Host& entry, int depth) {
  entry.state = State::kQueued;
  entry.depth = depth;
  queued_.push({depth, order_++, host});
}

void CrawlSchedule::Queue(HostId host, int depth, CrawlTime ready, CrawlTime now) {
  const auto [found, is_new] = hosts_.try_emplace(host, Host{State::kParked, depth, ready});
  Host& entry = found->second;
  if (!is_new) {
    if (entry.state == State::kActive || depth >= entry.depth) return;
    entry.depth = depth;
    if (entry.state == State::kQueued) Push(host, entry, depth);
    return;
  }
  if (ready <= now) {
    Push(host, entry, depth);
  } else {
    parked_.emplace(ready, host);
  }
}

void CrawlSchedule::WakeParked(CrawlTime now) {
  while (!parked_.empty() && parked_.top().first <= now) {
    const HostId host = parked_.top().second;
    parked_.pop();
    const auto found = hosts_.find(host);
    if (found != hosts_.end() && found->second.state == State::kParked) Push(host, found->second, found->second.depth);
  }
}

void CrawlSchedule::DropStale() {
  while (!queued_.empty()) {
    const Place& place = queued_.top();
    const auto found = hosts_.find(place.host);
    if (found != hosts_.end() && found->second.state == State::kQueued && found->second.depth == place.depth) return;
    queued_.pop();
  }
}

std::optional<HostId> CrawlSchedule::Activate(CrawlTime now) {
  WakeParked(now);
  DropStale();
  if (active_ >= most_active_ || queued_.empty()) return std::nullopt;
  const HostId host = queued_.top().host;
  queued_.pop();
  hosts_.find(host)->second.state = State::kActive;
  ++active_;
  return host;
}

std::optional<HostId> CrawlSchedule::NextToAsk(CrawlTime now) {
  if (asks_.empty() || asks_.top().first > now) return std::nullopt;
  const HostId host = asks_.top().second;
  asks_.pop();
  return host;
}

void CrawlSchedule::Deactivate(HostId host) {
  const auto found = hosts_.find(host);
  if (found == hosts_.end() || found->second.state != State::kActive) return;
  hosts_.erase(found);
  --active_;
}

bool CrawlSchedule::IsNearerQueued(int depth) {
  if (active_ < most_active_) return false;
  DropStale();
  return !queued_.empty() && queued_.top().depth < depth;
}

std::optional<CrawlTime> CrawlSchedule::NextTime() {
  std::optional<CrawlTime> next;
  const auto consider = [&](CrawlTime time) { next = next ? std::min(*next, time) : time; };
  if (!asks_.empty()) consider(asks_.top().first);
  if (active_ < most_active_) {
    if (!parked_.empty()) consider(parked_.top().first);
    DropStale();
    if (!queued_.empty()) consider(CrawlTime{});
  }
  return next;
}

std::vector<std::pair<HostId, CrawlTime>> CrawlSchedule::Parked() const {
  std::vector<std::pair<HostId, CrawlTime>> parked;
  for (const auto& [host, entry] : hosts_) {
    if (entry.state == State::kParked) parked.emplace_back(host, entry.ready);
  }
  return parked;
}

bool CrawlSchedule::HasQueued() {
  DropStale();
  return !queued_.empty();
}

}  // namespace quenlar
