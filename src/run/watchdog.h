// The on-line and stalled-download watchdog that the alarm timer ticks once a second.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/interface_table.h"
#include "state/run_state.h"
#include "state/run_view.h"
#include "state/settings.h"

namespace quenlar {

class Watchdog {
 public:
  // `cancel_stalled` is RunDriver::CancelStalled; `start_upgrade_check` starts the download of the upgrade page.
  Watchdog(RunState& run, const Settings& settings, InterfaceTable& interfaces, RunView& view,
           std::function<void()> cancel_stalled, std::function<void()> start_upgrade_check);

  // One tick of tmrAlarm. Off line it ends a run through its flags. On line it cancels the downloads of a run in which
  // no page has finished or failed for eleven ticks, and asks for the upgrade page once.
  void Tick();

  // Every finished or failed page calls this: downloads are still moving.
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
