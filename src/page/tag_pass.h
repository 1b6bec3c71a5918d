// Passes over tags that do not matter and are written in the usual way, 64 bytes at a time.
#pragma once

#include <cstddef>
#include <string_view>

#include "page/tag_names.h"

namespace quenlar {

// A place from which the reading goes on, and a tag at or not far before it that is certainly not inline.
struct TagPass {
  std::size_t at = 0;
  std::size_t marked = 0;
};

// `from.at` stands in text, no raw text and not in svg or math. The answer stands in text again, or at a "<", at or
// behind it and before `limit`. Between the two are texts, and tags whose names do not begin like one of `wanted` and
// whose ends FindUsualTagEnd could tell. The AttributeReader has to read what stands at the answer. Passes over nothing
// where the processor cannot do it fast.
[[nodiscard]] TagPass PassUsualTags(std::string_view page, const TagPass& from, std::size_t limit,
                                    const tag_names::Beginnings& wanted);

}  // namespace quenlar
