// The places of a page in which an address may stand: inside a tag, and between two tags.
#pragma once

#include <cstddef>
#include <string_view>

#include "web/address_scan.h"

namespace quenlar {

// What one of the two patterns matches, and the first address in the match. Views into the page.
struct PageMatch {
  enum class Place { kInTag, kBetweenTags };
  Place place = Place::kInTag;
  std::string_view text;
  std::string_view address;  // as NextAddress(text) finds it; may be empty
};

// Goes once through a page and finds all matches of
//   <[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4}[^<]*?>    (in a tag)
//   >[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4}[^<]*?<    (between tags)
// case-insensitively, each pattern's matches in order of position. Neither can cross a "<", so what lies between two
// "<" holds at most one match of each, and only an "@" can make one. Linear time, no memory. The page must stay as
// it is.
class PageMatches {
 public:
  explicit PageMatches(std::string_view page) : page_(page) {}

  // False at the end of the page.
  [[nodiscard]] bool Next(PageMatch& match);

 private:
  bool NextSegment(PageMatch& match);
  bool TagMatch(PageMatch& match) const;
  bool BetweenMatch(PageMatch& match) const;

  std::string_view page_;
  // The segment at hand: it begins with its "<" (or with the page, `opened_` then is false) and ends before the next
  // "<" (or with the page).
  std::size_t begin_ = 0, end_ = 0;
  bool opened_ = false;
  AddressSign sign_;            // its first one
  bool between_waits_ = false;  // its text between tags is still to be looked at
};

}  // namespace quenlar
