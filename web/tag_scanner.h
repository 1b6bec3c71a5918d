// The tags of a page, from each "<" to the next ">".
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/byte_masks.h"

namespace quenlar {

// A tag begins at the first "<" behind the tag before it and ends at the first ">" behind that; what lies in it,
// another "<" too, belongs to it. Looks at sixty-four bytes at a time. The page must stay as it is.
class TagScanner {
 public:
  explicit TagScanner(std::string_view page) : page_(page) {}

  struct Tag {
    std::size_t open, close;  // the positions of "<" and ">"
  };
  // False where there is no further "<" with a ">" behind it; then never call it again.
  [[nodiscard]] bool Next(Tag& tag) {
    while (opens_ == 0) {
      if (!NextBlock()) return false;
    }
    const int open = std::countr_zero(opens_);
    tag.open = block_ + static_cast<std::size_t>(open);
    closes_ &= ~std::uint64_t{0} << open;
    while (closes_ == 0) {
      if (!NextBlock()) return false;
    }
    const int close = std::countr_zero(closes_);
    tag.close = block_ + static_cast<std::size_t>(close);
    opens_ &= ~std::uint64_t{0} << close;
    return true;
  }

 private:
  bool NextBlock() {
    if (next_ >= page_.size()) return false;
    block_ = next_;
    next_ += kMaskBytes;
    ByteMasks masks;
    if (page_.size() - block_ >= kMaskBytes) {
      masks = MasksOf(page_.data() + block_, '<', '>');
    } else {
      char rest[kMaskBytes] = {};
      std::memcpy(rest, page_.data() + block_, page_.size() - block_);
      masks = MasksOf(rest, '<', '>');
    }
    opens_ = masks.first;
    closes_ = masks.second;
    return true;
  }

  std::string_view page_;
  std::size_t block_ = 0, next_ = 0;  // the block that the masks are of, and the one behind it
  std::uint64_t opens_ = 0, closes_ = 0;
};

}  // namespace quenlar
