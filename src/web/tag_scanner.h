// Finds the tags of a page that may be anchors or frames, and counts all others.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/byte_search.h"
#include "web/tag_masks.h"

namespace quenlar {

// A tag begins at the first "<" behind the tag before it, and ends at the first ">" behind that. Another "<" in between
// belongs to the tag. So a "<" begins a tag unless the nearest "<" or ">" before it is a "<". That rule can be applied
// to sixty-four bytes at once, so tags of no interest are not visited one by one.
class TagScanner {
 public:
  // `page` must stay valid and unchanged while the scanner lives.
  explicit TagScanner(std::string_view page) : page_(page) {}

  struct Tag {
    std::size_t open, close;  // the positions of "<" and ">"
  };
  // Puts the next tag whose text begins with "a", "f" (in either case) or a blank into `tag`. Returns false at the end
  // of the page, or when `passed` has returned false; the scanner must not be called again then.
  //
  // Every tag of the page is reported to `passed(first, tags)` once and in order, including the one that is returned:
  // `first` is the position of the first tag of a group, and `tags` has one bit for each tag of the group. The last tag
  // of the page is reported even when it has no ">".
  template <typename Passed>
  [[nodiscard]] bool Next(Tag& tag, Passed passed) {
    for (;;) {
      if (wanted_ != 0) {
        const std::uint64_t bit = wanted_ & (~wanted_ + 1);
        wanted_ &= ~bit;
        if (!Tell(bit | (bit - 1), passed)) return false;
        tag.open = Place(bit);
        const std::uint64_t closes = closes_ & ~(bit - 1);
        tag.close = closes != 0 ? Place(closes) : FindByte(page_, '>', next_);
        return tag.close != std::string_view::npos;
      }
      if (!Tell(~std::uint64_t{0}, passed)) return false;
      if (!NextBlock()) return false;
    }
  }

 private:
  [[nodiscard]] std::size_t Place(std::uint64_t bits) const {
    return block_ + static_cast<std::size_t>(std::countr_zero(bits));
  }

  template <typename Passed>
  bool Tell(std::uint64_t bits, Passed& passed) {
    const std::uint64_t tags = untold_ & bits;
    if (tags == 0) return true;
    untold_ &= ~bits;
    return passed(Place(tags), tags);
  }

  bool NextBlock() {
    if (next_ >= page_.size()) return false;
    block_ = next_;
    next_ += kMaskBytes;
    TagMasks masks;
    if (page_.size() - block_ > kMaskBytes) {
      masks = TagMasksOf(page_.data() + block_);
    } else {
      char rest[kMaskBytes + 1] = {};
      std::memcpy(rest, page_.data() + block_, page_.size() - block_);
      masks = TagMasksOf(rest);
    }
    closes_ = masks.closes;
    untold_ = TagsAmong(masks);
    wanted_ = masks.wanted & untold_;
    if ((masks.opens | masks.closes) != 0) in_tag_ = masks.opens > masks.closes;
    return true;
  }

  // The "<" that begin a tag. An addition finds them all at once: a bit behind every ">" (and at the front, outside of
  // a tag) is carried over all bytes that are neither "<" nor ">", and stops at the next one that is. If that is a "<",
  // it begins a tag. For example, with the first byte, which is bit 0, at the left:
  //
  //   page      x<a b<c>y>z<b>
  //   opens     .1...1.....1..
  //   closes    .......1.1...1
  //   outside   1.......1.1...   the front, and behind every ">"
  //   neither   1.111.1.1.1.1.   ~(opens | closes)
  //   sum       .1111.1..1.11.   the bit at the front went to a "<", that at "y" to a ">", that at "z" to a "<"
  //   tags      .1.........1..   sum & opens; no bit came to the "<" within the first tag
  //
  // Bytes within a tag keep their bits of `neither` in the sum. They are not "<", so the last step removes them.
  [[nodiscard]] std::uint64_t TagsAmong(const TagMasks& masks) const {
    const std::uint64_t outside = masks.closes << 1 | (in_tag_ ? 0u : 1u);
    return (outside + ~(masks.opens | masks.closes)) & masks.opens;
  }

  std::string_view page_;
  std::size_t block_ = 0, next_ = 0;  // where the block of the masks begins, and the block behind it
  std::uint64_t closes_ = 0;
  std::uint64_t wanted_ = 0;  // tags of interest, not yet returned
  std::uint64_t untold_ = 0;  // tags that have not been reported yet
  bool in_tag_ = false;       // whether the next block begins within a tag
};

}  // namespace quenlar
