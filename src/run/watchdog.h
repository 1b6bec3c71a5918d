// Watches the network connection and stalled downloads once a second.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/interface_table.h"
#include "state/run_state.h"
#include "state/run_view.h"
#include "state/settings.h"

namespace quenlar {

// Ends a run when the computer goes off line, and gives up the pages in flight when none of them makes progress. It
// also starts the upgrade check, because it is the first to know that the computer is on line.
class Watchdog {
 public:
  // `cancel_stalled` is RunDriver::CancelStalled. `start_upgrade_check` starts the download of the upgrade page. All
  // references must outlive the watchdog.
  Watchdog(RunState& run, const Settings& settings, InterfaceTable& interfaces, RunView& view,
           std::function<void()> cancel_stalled, std::function<void()> start_upgrade_check);

  // One tick of the alarm timer, which ticks once a second. Off line it sets the flags of the run that end it. On line
  // it cancels the downloads of a run in which no page has finished or failed for eleven ticks; at its first tick on
  // line it asks for the upgrade page, unless the settings say never.
  void Tick();

  // Says that a page has finished or failed, so downloads are still moving. Bytes that arrive do not count.
  void ResetStallCounter() { stallSeconds_ = 0; }

 private:
  void WatchRun();
  void CheckForUpgradeOnce();

  RunState& run_;
  const Settings& settings_;
  InterfaceTable& interfaces_;
  RunView& view_;
  std::function<void()> cancel_stalled_;
  std::function<void()> start_upgrade_check_;
  std::int16_t stallSeconds_ = 0;
  bool upgradeChecked_ = false;
};

}  // namespace quenlar
