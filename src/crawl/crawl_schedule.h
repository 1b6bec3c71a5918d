// Which host is asked next. Every step costs the logarithm of the number of hosts, however many there are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <queue>
#include <unordered_map>
#include <utility>
#include <vector>

#include "collection/collection.h"
#include "crawl/host_pace.h"

namespace quenlar {

// Hosts with pages to visit are either queued, or active (visited at the same time as others), or parked until a time.
// Those that are queued become active in the order of their nearest page's depth, then as they were queued, so that the
// crawl goes breadth first over all hosts.
class CrawlSchedule {
 public:
  explicit CrawlSchedule(std::size_t most_active) : most_active_(most_active) {}

  // The host has a page that waits at `depth`, and may be asked from `ready` on. An active host stays active; a queued
  // one moves forward where the page is nearer. A parked one stays parked.
  void Queue(HostId host, int depth, CrawlTime ready, CrawlTime now);

  // Makes the next queued host active, if fewer than the most are. Empty: nothing to do now.
  [[nodiscard]] std::optional<HostId> Activate(CrawlTime now);
  // An active host may be asked at `time`. Once for each page.
  void AskAt(HostId host, CrawlTime time) { asks_.emplace(time, host); }
  // The next active host that may be asked now.
  [[nodiscard]] std::optional<HostId> NextToAsk(CrawlTime now);
  // The host is not active any more. Queue brings it back.
  void Deactivate(HostId host);

  // Whether a queued host could use the place of an active one whose next page is at `depth`.
  [[nodiscard]] bool IsNearerQueued(int depth);

  [[nodiscard]] std::size_t active() const { return active_; }
  // The next time at which Activate or NextToAsk may give a host; empty where nothing but answers can change anything.
  [[nodiscard]] std::optional<CrawlTime> NextTime();
  // Hosts that wait for their time, in no order.
  [[nodiscard]] std::vector<std::pair<HostId, CrawlTime>> Parked() const;
  [[nodiscard]] bool HasQueued();

 private:
  enum class State : std::uint8_t { kQueued, kActive, kParked };
  struct Host {
    State state;
    std::int32_t depth;
    CrawlTime ready;
  };
  struct Place {
    int depth;
    std::uint64_t order;
    HostId host;
    bool operator>(const Place& other) const {
      return depth != other.depth ? depth > other.depth : order > other.order;
    }
  };
  using Time = std::pair<CrawlTime, HostId>;
  template <typename T>
  using Least = std::priority_queue<T, std::vector<T>, std::greater<>>;

  void Push(HostId host, Host& entry, int depth);
  void WakeParked(CrawlTime now);
  void DropStale();

  std::size_t most_active_, active_ = 0;
  std::uint64_t order_ = 0;
  std::unordered_map<HostId, Host> hosts_;  // queued, active and parked ones alone
  Least<Place> queued_;                     // places that a host has left are dropped when they come to the front
  Least<Time> parked_, asks_;
};

}  // namespace quenlar
