// Text of a page as a browser shows it, and where tags stood in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace quenlar {

// A place in a run of text at which a tag or a comment stood that does not end a word.
struct Joint {
  std::uint32_t at = 0;  // before this byte of the text
  bool hidden = false;   // an element stood here that a browser does not show
  std::size_t page = 0;  // where the text behind it begins in the page
};

// Text that a browser shows in one go: words do not go on beyond it. Views into memory of the caller.
struct TextRun {
  std::string_view text;  // UTF-8; references are decoded, tags and comments are taken out, hidden elements too
  std::span<const Joint> joints{};  // ascending
  bool reversed = false;            // shown from the last character to the first
  bool hidden = false;              // not shown at all: a trap, so addresses in it are neither listed nor counted
};

}  // namespace quenlar
