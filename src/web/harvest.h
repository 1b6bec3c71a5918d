// Harvests the addresses of a page into the found-address table.
#pragma once

#include <string_view>

#include "platform/pump.h"
#include "state/address_filter.h"
#include "state/project_saver.h"
#include "state/run_state.h"
#include "state/run_view.h"
#include "state/settings.h"

namespace quenlar {

// Everything that page analysis works on. The objects must outlive every analysis. They may change in every pump.
struct AnalysisContext {
  RunState& run;
  Project& project;
  const Settings& settings;
  AddressFilter& filter;
  PeriodicSaver& saver;
  RunView& view;
  Pump& pump;
};

// How a harvest has ended. kStopNumberReached: the stop number was reached before the page's last address, and the
// addresses that were left are dropped.
enum class HarvestEnd { kWholePage, kStopNumberReached };

// Adds each address of the page that is new to the project to the found-address table, and shows it. Saves the project
// at every save interval, and requests a stop when the stop number is reached. docs/harvest.md explains how addresses
// are found.
//
// Pumps at the start, at every match and before every insertion. `page` (UTF-8) and `page_address` must stay valid
// during the whole call. May throw std::bad_alloc; what has been added by then stays.
HarvestEnd ExtractAddresses(AnalysisContext& context, std::string_view page, std::string_view page_address);

}  // namespace quenlar
