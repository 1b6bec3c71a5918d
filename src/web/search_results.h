// Takes the result links out of a search engine's result page.
#pragma once

#include <string_view>

#include "state/link_queue.h"

namespace quenlar {

// Appends the target of every result on `page` (UTF-8) to the queue of level 0. Only the first result of each site is
// appended, and pages of the search engine itself are left out. Does not pump.
//
// A result is a match of <h3 class=[\s\S]*?r[\s\S]*?>[\s\S]*?href="[\s\S]*?" with letter case ignored. All matches are
// found, in linear time, without a regular-expression engine.
void CollectResultLinks(std::string_view page, LinkQueue& level_zero);

}  // namespace quenlar
