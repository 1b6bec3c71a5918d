// The window program as a whole: the engine and the forms, from start-up to exit.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/engine.h"
#include "forms/frm_about.h"
#include "forms/frm_dialog.h"
#include "forms/frm_email_merge_tool.h"
#include "forms/frm_extract.h"
#include "forms/frm_help.h"
#include "forms/frm_option.h"
#include "forms/frm_tray.h"
#include "ui/timer_binding.h"

namespace quenlar {

class Program {
 public:
  // What only the operating system's main function knows.
  struct System {
    // Whether another window program runs already. Asked once, first of all.
    std::function<bool()> another_instance_runs;
    // Ends the message loop, and the program with it. May be called from deep inside nested pumps; called once.
    std::function<void()> end;
  };

  // All references must outlive the program.
  Program(const Platform& platform, const DesktopPlatform& desktop, Installation installation, System system,
          Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Start-up. Pumps (message boxes, opening the newest project). False when the program is to end at once, because
  // another one is at work; nothing has been written then, and `end` is not called.
  [[nodiscard]] bool Start();

  // Writes down what the run at hand has found and has still to visit; nothing without one. For the end of the session,
  // which waits for no pump. Does not pump.
  void SaveRun();

  // `end` has been called.
  [[nodiscard]] bool ended() const { return ended_; }

  // The forms that have windows, for the binder.
  [[nodiscard]] std::vector<ui::Form*> Windows();

 private:
  void End();

 public:
  // In the order of construction: the forms and the engine know each other.
  frmTray tray;
  frmExtract extract;
  Engine engine;
  frmOption option;
  frmEmailMergeTool tool;
  frmDialog dialog;
  frmAbout about;
  frmHelp help;

 private:
  System system_;
  std::unique_ptr<FolderLock> lock_;
  std::vector<std::unique_ptr<ui::TimerBinding>> timers_;
  bool ended_ = false;
};

}  // namespace quenlar
