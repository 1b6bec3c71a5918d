// One host of a crawl: what is kept of it while it is visited, and between two visits.
#pragma once

#include <optional>
#include <string>

#include "collection/collection.h"
#include "crawl/host_pace.h"
#include "page/robots.h"
#include "page/url.h"

namespace quenlar {

// After so many answers in a row that were none, 5xx or 429, a host is given up for the run.
inline constexpr int kMostFailures = 5;

// Kept for every host that a run has asked, so small.
struct HostMemory {
  HostPace pace;
  int failures = 0;         // answers in a row that were none, 5xx or 429
  int refusals = 0;         // robots.txt that could not be had, connections that could not be made
  bool answered = false;    // there was an answer of any kind in this run
  bool given_up = false;    // for this run
  bool asked = false;       // a request is under way there
  std::string reason = {};  // why its pages are left for now; empty: they are visited
};

// An active host.
struct HostVisit {
  HostRow row;
  HostMemory& memory;

  bool rules_known = false;  // robots.txt has been read, or is not asked for
  RobotsRules rules = {};
  // Where robots.txt is asked for, once it has redirected there.
  std::optional<Url> robots_url = {};
  HostId robots_host = 0;              // of that URL
  bool robots_may_be_private = false;  // whether that request may go to a place that is not public
  int robots_hops = 0;

  enum class UnderWay { kNothing, kRobots, kPage };
  UnderWay under_way = UnderWay::kNothing;
  HostMemory* asked_of = nullptr;  // of the host that the request at hand goes to: this one, but for redirects
  CrawlTime asked_at = {};
  std::optional<WaitingPage> page = {};  // the one that is asked for
  std::optional<Url> url = {};           // of the request at hand
};

}  // namespace quenlar
