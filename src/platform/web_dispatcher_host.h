// What the dispatcher of web requests knows of a host and of an address. For its own files alone.
#pragma once

#include <algorithm>
#include <deque>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "platform/web_dispatcher.h"

namespace quenlar {

struct WebDispatcher::Host {
  enum class Stage {
    kAtRest,
    kResolving,
    kQueued,   // for a connection to be free
    kSending,  // the transport has the current request
  };
  WebHostId id = 0;
  std::string key;   // in hosts_
  std::string name;  // in DNS
  std::optional<IpAddress> literal;
  bool behind_proxy = false;
  Stage stage = Stage::kAtRest;
  std::deque<WebExchangeId> waiting;  // may hold requests that have been cancelled
  WebExchangeId current = 0;          // 0: none, also of a stage other than kAtRest when it was cancelled
  std::vector<IpAddress> addresses;
  Instant resolved = {};
  bool connected = false;
  std::optional<IpAddress> connected_to;  // empty behind a proxy
  bool idle = false;                      // connected, in idle_ at idle_place
  std::list<Host*>::iterator idle_place = {};
  Instant idle_since = {}, quiet_since = {};
  bool in_quiet = false;  // stands in quiet_

  [[nodiscard]] bool IsQuiet() const { return stage == Stage::kAtRest && !connected && waiting.empty(); }
};

struct WebDispatcher::Address {
  std::vector<Host*> connected;  // at most kConnectionsPerAddress
  std::deque<Host*> waiting;

  [[nodiscard]] Host* Idle() const {
    const auto found = std::find_if(connected.begin(), connected.end(), [](const Host* host) { return host->idle; });
    return found == connected.end() ? nullptr : *found;
  }
};

}  // namespace quenlar
