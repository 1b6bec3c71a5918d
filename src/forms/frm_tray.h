// The hidden form that lives as long as the program: notification icon and its menu, and the timers that drive the
// program in the background.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/product.h"
#include "engine/engine.h"
#include "forms/e_tray.h"
#include "forms/frm_about.h"
#include "forms/frm_extract.h"
#include "forms/frm_help.h"
#include "netstat/interfaces.h"
#include "ui/controls.h"

namespace quenlar {

// It is never shown and has no window of its own.
class frmTray final : public ui::Form {
 public:
  // Nothing of these is used before Load, so they may be constructed later than the form. `end` ends the program.
  struct Context {
    Engine& engine;
    frmExtract& extract;
    frmHelp& help;
    frmAbout& about;
    std::function<void()> end;
  };

  // `icon` must outlive the form.
  frmTray(Context context, TrayIcon& icon);

  // tmrExtract starts a run a tenth of a second after the button, outside of the button's own event. tmrFormatFlux
  // reads the interface table, tmrFlux shows the rate of the traffic, and tmrAlarm is the watchdog's clock.
  ui::Timer tmrExtract{"tmrExtract", std::chrono::milliseconds(100), false};
  ui::Timer tmrFormatFlux{"tmrFormatFlux", std::chrono::milliseconds(10), true};
  ui::Timer tmrFlux{"tmrFlux", std::chrono::milliseconds(500), true};
  ui::Timer tmrAlarm{"tmrAlarm", std::chrono::milliseconds(1000), false};

  // The menu of the icon. mnuExtractor shows the main window again; mnuExit ends the program and is disabled during a
  // run.
  ui::PopupMenu mnuPopup{"SysTray Popup Menu"};
  ui::MenuItem mnuExtractor{"mnuExtractor", std::string("&") + kProductName};
  ui::MenuItem sep2{"sep2", "-"};
  ui::MenuItem mnuHelp{"mnuHelp", "&Help"};
  ui::MenuItem mnuAbout{"mnuAbout", "A&bout..."};
  ui::MenuItem mnuExit{"mnuExit", "E&xit"};

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;

  // A download has finished or failed.
  void ResetStallCounter() { context_.engine.watchdog.ResetStallCounter(); }

 private:
  void tmrExtract_Tick();
  void tmrFormatFlux_Tick();
  void tmrFlux_Tick();
  void mnuExtractor_Click();
  void mnuExit_Click();

  Context context_;
  eTray tray_;
  std::unique_ptr<CIpHelper> ip_helper_;
  std::optional<CInterface> first_interface_;  // of the last reading
  TrafficMeter meter_;
};

}  // namespace quenlar
