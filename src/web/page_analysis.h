// Analyses a downloaded page: its addresses, then its anchors and frames.
#pragma once

#include <string_view>

#include "web/harvest.h"

namespace quenlar {

struct PageOutcome {
  // The parser's own result: false when a stop request cut the tag walk short.
  bool result = false;
  // A stop dropped a part of the page: the walk was cut, or the harvest ended at the stop number.
  bool cut_short = false;
};

// ParsePage and ParseExpand1Page to ParseExpand10Page. `request_name` is the request letter, one digit, the page's
// address; its letter picks the level ("M" is level 0). Pumps at every tag and address.
PageOutcome ParsePage(AnalysisContext& context, std::string_view page, std::string_view request_name);

// The level of a request letter (0 for 'M' to 10 for 'T'), or -1 for any other character.
[[nodiscard]] int LevelOfLetter(char letter);

}  // namespace quenlar
