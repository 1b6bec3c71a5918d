// What the parts of a run share: flags, counters and the project at hand. Plain values with one owner.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "state/found_addresses.h"
#include "state/link_queue.h"

namespace quenlar {

struct RunState {
  bool running = false;
  bool stop_requested = false;
  bool off_line = false;

  // Downloads started and not yet completed, by level. Level 0 also counts search pages, and the upgrade check once
  // (nothing but the start of a keyword run takes that one off).
  std::array<std::int16_t, kLevels> pending{};
  std::int16_t upgrade_share = 0;  // the part of pending[0] that the upgrade check added
  [[nodiscard]] bool LevelZeroPending() const { return pending[0] > upgrade_share; }

  std::int32_t ScanCount = 0;  // pages analysed in the run
  std::int32_t baseline = 0;   // the address count when the run started
  // The links of an expansion page are followed when its own link number is below this one. Nothing changes the value
  // and every link is queued with 1 or more, so only pages of level 0 feed the queues. A run stays that small on
  // purpose: it ends at the pages next to the start pages.
  // Kept: PageAnalysis.AnExpansionPageIsHarvestedAndItsLinksAreNotFollowed.
  std::int16_t LinkDepth = 1;
};

// The project named by the text of the input box.
struct Project {
  bool IsKeywordProject = false;  // false: the text is an address
  std::string Keyword;            // blanks replaced by "+"
  std::string StartURL;           // the first page to download
  std::string DataFile;           // full path
  std::string ReportFile;         // full path
  std::string ProjectLanguage;    // the code that a keyword's text ends in, if any
  bool ProjectLoaded = false;     // its files have been read
  std::int16_t result_offset = 0;

  LinkQueues queues;
  FoundAddresses found;
  std::string search_page;  // the search-page list: at most one entry
};

}  // namespace quenlar
