// Harvests the addresses of a page into the found-address table.
#pragma once

#include <string_view>

#include "platform/pump.h"
#include "state/page_host.h"
#include "state/run_state.h"
#include "state/run_view.h"
#include "state/settings.h"

namespace quenlar {

// What page analysis works on. References to objects that outlive every analysis.
struct AnalysisContext {
  RunState& run;
  Project& project;
  const Settings& settings;
  AddressFilter& filter;
  PeriodicSaver& saver;
  RunView& view;
  Pump& pump;
};

// kStopNumberReached: addresses of the page were left over when the stop number was reached, and are dropped.
enum class HarvestEnd { kWholePage, kStopNumberReached };

// Pumps, at the start, at every match and before every insertion. Adds each new address of the page, shows it, saves
// the project at every save interval, and requests a stop when the stop number is reached. `page` and `page_address`
// must stay valid during the call, whatever runs inside its pumps.
HarvestEnd ExtractAddresses(AnalysisContext& context, std::string_view page, std::string_view page_address);

}  // namespace quenlar
