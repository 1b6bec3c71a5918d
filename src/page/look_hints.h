// Finds where a tag may say that an element is not shown.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace quenlar {

// Finds where the names of the attributes "hidden" and "style" come next, which tags need a closer look for.
class LookHints {
 public:
  explicit LookHints(std::string_view page) : page_(page) {}
  // The first place in page[begin, limit) where one of the two stands; at least `limit` without one. A later call may
  // ask for an earlier place only if none of the two stood between the two places.
  std::size_t Next(std::size_t begin, std::size_t limit) {
    if (next_ < begin) {
      next_ = begin;
      found_ = false;
    }
    if (!found_ && next_ < limit) Find(std::max(limit, begin + kAhead));
    return found_ ? next_ : limit;
  }

 private:
  static constexpr std::size_t kAhead = 4096;  // bytes to look through at least, because a search has a cost of its own

  void Find(std::size_t limit);

  std::string_view page_;
  std::size_t next_ = 0;  // so far they have been looked for
  bool found_ = false;    // and there one stands
};

}  // namespace quenlar
