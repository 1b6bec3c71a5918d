// What the parts of a run share: flags, counters and the open project. Plain values that the engine owns. They change
// in every pump, so a function that pumps reads them again.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "state/found_addresses.h"
#include "state/link_queue.h"

namespace quenlar {

struct RunState {
  bool running = false;         // from the start of a run until everything at its end has been saved and shown
  bool stop_requested = false;  // the run is to end in order: by the user, the stop number or the watchdog
  bool off_line = false;        // the watchdog has found no network connection

  // The downloads that were started and have not completed, by level. Level 0 also counts search pages. The upgrade
  // check adds one to level 0 that its own end does not take off again; the start of the next keyword run does.
  std::array<std::int16_t, kLevels> pending{};
  std::int16_t upgrade_share = 0;  // the part of pending[0] that the upgrade check added

  // Whether level 0 waits for a page of the run itself.
  [[nodiscard]] bool LevelZeroPending() const { return pending[0] > upgrade_share; }

  std::int32_t ScanCount = 0;  // pages analysed in the run
  std::int32_t baseline = 0;   // the address count when the run started
  // The links of an expansion page are followed when its own link number is below this one. Nothing changes the value
  // and every link is queued with 1 or more, so only pages of level 0 feed the queues. A run stays that small on
  // purpose: within one click of the start page of each site.
  // Kept: PageAnalysis.AnExpansionPageIsHarvestedAndItsLinksAreNotFollowed.
  std::int16_t LinkDepth = 1;
};

// The open project. The text of the input box names it (project/project_name.h), its files fill the queues and the
// table (project/project_store.h), and a run works through them.
struct Project {
  bool IsKeywordProject = false;   // false: the text is an address
  std::string Keyword;             // blanks replaced by "+"
  std::string StartURL;            // the first page to download
  std::string DataFile;            // full path
  std::string ReportFile;          // full path
  std::string ProjectLanguage;     // the code that a keyword's text ends in, if any
  bool ProjectLoaded = false;      // its files have been read
  std::int16_t result_offset = 0;  // the first result of the search page that is asked for next: 0, 100, 200, ...

  LinkQueues queues;
  std::uint32_t secure_links = 0;  // links to https on pages of level 0 since the project was opened; none is followed
  FoundAddresses found;
  bool report_holds_more = false;  // the report on the disk: addresses that were left out when it was loaded
  std::string search_page;         // the search-page list: at most one entry
};

}  // namespace quenlar
