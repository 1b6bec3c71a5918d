// Asks the system for the addresses of host names, many names at a time, without holding up the event loop.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/event_loop.h"
#include "platform/ip_address.h"

namespace quenlar {

// The system's resolver, which takes its time: the addresses in the order in which they are to be tried; none when the
// name has none. `host` may be any spelling of an address too. Called on threads of NameLookups; throws nothing.
using LookUpName = std::function<std::vector<IpAddress>(const std::string& host)>;

// Each name has a thread while it is looked up, up to kMaxThreads; more names wait. The threads end when nothing is
// left to look up. One that hangs in the system's resolver outlives this object, and its answer is dropped.
class NameLookups {
 public:
  static constexpr std::size_t kMaxThreads = 128;
  using Found = std::function<void(const std::vector<IpAddress>& addresses)>;

  // `loop` must outlive every pump after this object's end.
  NameLookups(EventLoop& loop, LookUpName look_up);
  NameLookups(const NameLookups&) = delete;
  NameLookups& operator=(const NameLookups&) = delete;
  ~NameLookups();

  // Calls `found` once, inside a later pump; with no addresses also when no thread can be had.
  void Find(std::string host, Found found);

 private:
  struct Shared;
  static void Work(const std::shared_ptr<Shared>& shared);
  const std::shared_ptr<Shared> shared_;
};

}  // namespace quenlar
