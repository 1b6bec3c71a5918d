// What people ask of a collection: its addresses, its figures, and why something is or is not in it. Reads only, also
// while a run writes.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "collection/collection.h"
#include "collection/database.h"
#include "collection/page_keys.h"
#include "page/unwanted_addresses.h"
#include "page/url.h"

namespace quenlar {

// One address in one place of one page. The views live during the call that gives them.
struct Sighting {
  std::string_view address, page, title, place, written, site;
  PageId page_id = 0;
  std::int64_t first_seen = 0, last_seen = 0;  // seconds since 1970 UTC
  bool gone = false;                           // it did not stand there any more when the page was read again
};

// Which sightings are wanted; empty: all.
struct SightingChoice {
  std::string place = {};
  std::string site = {};                   // of the page, in any letter case
  std::optional<std::int64_t> since = {};  // addresses that were first seen at this time or later
};

struct CollectionFigures {
  std::int64_t addresses = 0, pages = 0, left = 0;  // `pages` were read, `left` are still to visit
  std::int64_t last_run = 0;                        // when the last run began; 0: there was none
};

// An address as a list shows it. The views live during the call that gives them.
struct ListedAddress {
  std::string_view address, page, title;
};

// Pages that were not visited, by the reason.
struct Refusals {
  std::string reason;
  std::int64_t pages = 0;
};

// What is known of one page.
struct PageFacts {
  std::string url, parent, state, reason, rule, type, title, moved_to;
  std::string host_reason;  // why pages of its host are left for now; empty: they are visited
  int depth = 0, line = 0, status = 0;
  std::int64_t time = 0;
  std::int64_t addresses = 0, protected_count = 0, filtered_count = 0;
};

class CollectionReader {
 public:
  // `each` gives false to end the list.
  using Each = std::function<bool(const Sighting&)>;

  // kNotFound where there is no such file, or nothing in it yet, kLimit where a newer program has made it, kFormat
  // where it is damaged.
  [[nodiscard]] static Result<std::unique_ptr<CollectionReader>> Open(const std::string& path);

  // From now on addresses for which `keeps` is false are left out of Addresses, Listed and Sightings, and what names
  // one of them is shown as after an erasure: no title, and "(erased)" behind the host.
  void LeaveOut(AddressTest keeps) { keeps_ = std::move(keeps); }

  [[nodiscard]] Result<CollectionFigures> Figures();
  // The addresses in the order in which they were found, each with its first sighting among those chosen. What is gone
  // is left out.
  Status Addresses(const SightingChoice& choice, const Each& each);
  // The same addresses for a list that shows all of them, in a fraction of the time. However many there are, the first
  // one comes at once.
  Status Listed(const std::function<bool(const ListedAddress&)>& each);
  // Every sighting, address by address; what is gone too.
  Status Sightings(const SightingChoice& choice, const Each& each);
  // Those of one address, in any letter case; what is gone too.
  Status SightingsOf(std::string_view address, const Each& each);
  // Empty where the collection does not know the page. The scheme makes no difference.
  [[nodiscard]] Result<std::optional<PageFacts>> Page(const Url& url);
  // What the program remembers under that name; "" where it does not.
  [[nodiscard]] Result<std::string> Fact(std::string_view name);
  [[nodiscard]] Result<std::vector<StartRow>> Starts();
  [[nodiscard]] Result<std::vector<RunRecord>> Runs();
  [[nodiscard]] Result<std::vector<Refusals>> PagesRefused();

 private:
  explicit CollectionReader(std::unique_ptr<Database> database) : database_(std::move(database)) {}
  Status Check();
  [[nodiscard]] bool IsLeftOut(std::string_view address) const { return keeps_ && !keeps_(address); }
  [[nodiscard]] bool NamesLeftOut(std::string_view text) const { return keeps_ && NextUnwanted(text, keeps_); }
  [[nodiscard]] std::string_view ShownUrl(std::string_view url, std::string& room) const;
  Status GiveRows(Statement& row, bool once, const Each& each);
  Status GiveSightings(const SightingChoice& choice, bool once, const Each& each);

  std::unique_ptr<Database> database_;
  PageKeys keys_;
  AddressTest keeps_;
};

}  // namespace quenlar
