// Takes the result links out of a search engine's result page.
#pragma once

#include <string_view>

#include "state/link_queue.h"

namespace quenlar {

// Appends the target of every result to the level-0 queue, one a site; the engine's own pages are left out. Finds
// exactly what the pattern <h3 class=[\s\S]*?r[\s\S]*?>[\s\S]*?href="[\s\S]*?" finds (case-insensitive, all
// matches), in linear time.
void CollectResultLinks(std::string_view page, LinkQueue& level_zero);

}  // namespace quenlar
