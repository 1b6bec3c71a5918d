// Finds the places of a page in which an address stands: inside a tag, and between two tags.
#pragma once

#include <cstddef>
#include <string_view>

#include "web/address_scan.h"

namespace quenlar {

// A match of one of the two patterns, with the first address in it. Both are views into the page.
struct PageMatch {
  enum class Place { kInTag, kBetweenTags };
  Place place = Place::kInTag;
  std::string_view text;
  std::string_view address;  // what NextAddress(text) finds; may be empty
};

// Goes through a page once and finds all matches of
//   <[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4}[^<]*?>    (in a tag)
//   >[^<]*?[a-z0-9._%+-]+@[a-z0-9.-]+\.[a-z]{2,4}[^<]*?<    (between tags)
// with letter case ignored. The matches of each pattern come in the order of their positions. No match can cross a "<",
// so a segment from one "<" to the next holds at most one match of each pattern, and only when it holds an "@". The
// time is linear, and no memory is allocated.
//
//   PageMatches matches(page);
//   for (PageMatch match; matches.Next(match);) Use(match);
class PageMatches {
 public:
  // `page` must stay valid and unchanged while the object lives.
  explicit PageMatches(std::string_view page) : page_(page) {}

  // Puts the next match into `match`. Returns false when there are no more.
  [[nodiscard]] bool Next(PageMatch& match);

 private:
  bool NextSegment(PageMatch& match);
  bool TagMatch(PageMatch& match) const;
  bool BetweenMatch(PageMatch& match) const;

  std::string_view page_;
  // The current segment. It begins with a "<", or with the page, and then `opened_` is false. It ends before the next
  // "<", or with the page.
  std::size_t begin_ = 0, end_ = 0;
  bool opened_ = false;
  AddressSign sign_;            // the first "@" of the segment that makes a match
  bool between_waits_ = false;  // the segment's text between tags has not been searched yet
};

}  // namespace quenlar
