// The elements that are open at a place of a page, as far as it matters whether and how their text is shown.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "page/tag_names.h"

namespace quenlar {

// What an element's own attributes say about how its content is shown.
struct ElementLook {
  bool hidden = false;    // not at all
  bool reversed = false;  // from the last character to the first
};

// What the attributes `hidden` and `style` make of an element; both as they are written, references decoded. Knows of
// CSS what hides a text or turns it round: display, visibility, unicode-bidi and direction.
[[nodiscard]] ElementLook LookOfStyle(std::string_view style);

// Elements end as the HTML Standard ends them in well-formed pages and the usual sloppy ones: a block ends an open <p>,
// an item of a list ends the one before it, an end tag ends what was opened in its element. A search for the element
// that a tag ends goes through so many open ones and no more, so every tag takes constant time.
class OpenElements {
 public:
  // `text` is the tag's name as written. `self_closing` means an element of foreign content that has no end tag.
  void Start(TagName name, std::string_view text, ElementLook look, bool self_closing);
  void End(TagName name, std::string_view text);

  [[nodiscard]] bool hidden() const { return hidden_ > 0; }
  [[nodiscard]] bool reversed() const { return reversed_ > 0; }

 private:
  static constexpr std::size_t kDeepest = 256;  // how far a search goes

  struct Element {
    std::uint32_t id;  // see TagId
    TagName name;
    ElementLook look;
  };

  void CloseImplied(TagName starting);
  template <typename Ends, typename Stops>
  void CloseInnermost(Ends ends, Stops stops);
  void Pop();
  void Count(const Element& element, int change);

  std::vector<Element> open_;
  std::array<std::uint32_t, 256> open_of_{};  // how many are open of the names that share the last byte of their id
  std::uint32_t hidden_ = 0, reversed_ = 0;
};

}  // namespace quenlar
