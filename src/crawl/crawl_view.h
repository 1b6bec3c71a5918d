// What a crawl tells while it goes on. The command line, the window and tests each implement it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "page/address_place.h"

namespace quenlar {

// An address that the collection did not hold. The views live during the call.
struct NewAddress {
  std::string_view address, page, title;
  AddressPlace place;
  std::int64_t seen;  // seconds since 1970 UTC
};

class CrawlView {
 public:
  virtual ~CrawlView() = default;
  virtual void OnNewAddress(const NewAddress& found) = 0;
  // Something a person should know, as a sentence without its end: a start that robots.txt forbids, a search that
  // failed.
  virtual void OnNotice(const std::string& text) = 0;
};

// Figures of the run at hand.
struct CrawlFigures {
  std::uint64_t pages = 0;            // read to the end, "not modified" too
  std::uint64_t failed = 0;           // by status, transport or redirects
  std::uint64_t refused = 0;          // by robots.txt, and private places
  std::uint64_t fresh = 0;            // addresses that are new to the collection
  std::uint64_t protected_count = 0;  // addresses that their owners hide from programs
  std::uint64_t filtered = 0;         // addresses that the filters dropped
  std::uint64_t suppressed = 0;       // addresses of the suppression list
  std::uint64_t bytes = 0;            // received
};

enum class CrawlEnd {
  kFinished,
  kPages,
  kAddresses,
  kMinutes,
  kStopped,
  kOffLine,
  kNothingToDo,
  kFailed,  // no start could be visited, or the collection could not be written
};
// As summaries and the collection spell it.
[[nodiscard]] std::string_view NameOf(CrawlEnd end);

// A host in the live view.
struct HostUnderWay {
  std::string origin;
  double seconds = 0;  // since the request at hand has begun; 0: it waits for its pause
};

}  // namespace quenlar
