// The window program as a whole: the engine and the forms, from start-up to exit.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "engine/classic_job.h"
#include "engine/collection_job.h"
#include "engine/engine.h"
#include "engine/never_list.h"
#include "forms/frm_about.h"
#include "forms/frm_dialog.h"
#include "forms/frm_email_merge_tool.h"
#include "forms/frm_extract.h"
#include "forms/frm_help.h"
#include "forms/frm_option.h"
#include "forms/frm_tray.h"
#include "forms/frm_web.h"
#include "settings/web_settings.h"
#include "ui/timer_binding.h"

namespace quenlar {

class Program {
 public:
  // What only the main function of the operating system knows.
  struct System {
    // Returns whether another window program runs already. Called once, before anything else.
    std::function<bool()> another_instance_runs;
    // Ends the message loop, and with it the program. It is called once, perhaps from deep inside nested pumps.
    std::function<void()> end;
  };

  // All references must outlive the program.
  Program(const Platform& platform, const DesktopPlatform& desktop, Installation installation, System system,
          Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Starts the program: loads the settings, shows the main window and opens the newest project. Pumps. Returns false
  // when another program is at work, so that this one must end at once; it has written nothing then and does not call
  // `end`.
  [[nodiscard]] bool Start();

  // Saves what the current run has found and has still to visit. Does nothing when no run goes on. It is for the end of
  // the user's session, which does not wait for pumps. Does not pump.
  void SaveRun();

  // Whether `end` has been called.
  [[nodiscard]] bool ended() const { return ended_; }

  // The forms that have windows, which the binder ties to native ones.
  [[nodiscard]] std::vector<ui::Form*> Windows();

 private:
  void End();
  void TakeOutErased();

 public:
  // In the order of construction: the forms and the engine know each other.
  frmTray tray;
  frmExtract extract;
  Engine engine;
  WebSettings web_settings;
  ClassicJob classic;
  CollectionJob collection;
  NeverList never;
  frmOption option;
  frmWeb web;
  frmEmailMergeTool tool;
  frmSightings sightings;
  frmWhy why;
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
