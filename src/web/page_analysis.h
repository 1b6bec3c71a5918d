// Analyses a downloaded page: harvests its addresses, then queues the targets of its anchors and frames.
#pragma once

#include <string_view>

#include "web/harvest.h"

namespace quenlar {

// What an analysis has done.
struct PageOutcome {
  // The result of the parser: false when a stop request ended the tag walk before the last tag.
  bool result = false;
  // A part of the page was dropped: by the end of the walk, or because the harvest ended at the stop number. Such a
  // page is visited again when the project goes on.
  bool cut_short = false;
};

// Analyses one page: ParsePage for level 0, and ParseExpand1Page to ParseExpand10Page for the others. `page` is UTF-8.
// `request_name` is the request letter, one digit and the page's address, such as "M1http://host/page"; the letter
// gives the level. Both must stay valid during the call.
//
// Pumps at every tag and every address, so another page may be analysed inside. May throw std::bad_alloc.
PageOutcome ParsePage(AnalysisContext& context, std::string_view page, std::string_view request_name);

// Returns the level of a request letter, 0 for 'M' to 10 for 'T', or -1 for any other character.
[[nodiscard]] int LevelOfLetter(char letter);

}  // namespace quenlar
