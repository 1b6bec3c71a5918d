#include "run/watchdog.h"

#include <utility>

#include "run/end_reasons.h"

namespace quenlar {
namespace {

constexpr int kStallLimit = 10;  // so many ticks without a finished page are allowed

}  // namespace

Watchdog::Watchdog(RunState& run, const Settings& settings, InterfaceTable& interfaces, RunView& view,
                   std::function<void()> cancel_stalled, std::function<void()> start_upgrade_check)
    : run_(run),
      settings_(settings),
      interfaces_(interfaces),
      view_(view),
      cancel_stalled_(std::move(cancel_stalled)),
      start_upgrade_check_(std::move(start_upgrade_check)) {}

void Watchdog::Tick() {
  if (interfaces_.IsOnline()) {
    WatchRun();
    CheckForUpgradeOnce();
    return;
  }
  if (run_.running) run_.stop_requested = true;
  run_.off_line = true;
  view_.ShowStage(kEndOffLine);
}

void Watchdog::WatchRun() {
  if (!run_.running) {
    stallSeconds_ = 0;  // each run counts from the start
    return;
  }
  if (++stallSeconds_ <= kStallLimit) return;
  stallSeconds_ = 0;
  cancel_stalled_();
}

void Watchdog::CheckForUpgradeOnce() {
  if (upgradeChecked_) return;
  upgradeChecked_ = true;
  if (settings_.NeverUpgradeFlag == 0) start_upgrade_check_();
}

}  // namespace quenlar
