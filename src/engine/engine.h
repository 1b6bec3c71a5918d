// Everything of the program that has no face, as one object. The window and the command line both drive it.
//
//   struct Printer : RunView, RunHost, ProjectView { ... };  // what is shown and answered
//   Printer printer;
//   Engine engine(platform, installation, {printer, printer, printer});
//   const Engine::StartNotes notes = engine.Start();          // folders, filter file, settings, project list
//   engine.projects.OpenProject("garden tools");
//   engine.driver.Run();                                      // to the end of the run
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "mailtool/email_book_merge.h"
#include "platform/platform.h"
#include "project/project_list.h"
#include "project/project_store.h"
#include "run/run_driver.h"
#include "run/watchdog.h"
#include "settings/filter_words.h"
#include "settings/settings_store.h"
#include "settings/suppression_list.h"
#include "state/address_filter.h"
#include "state/run_state.h"
#include "web/ocx_parse_web.h"

namespace quenlar {

// The three interfaces that a front end implements. One object may implement all of them.
struct FrontEnd {
  RunView& view;
  RunHost& host;
  ProjectView& project_view;
};

// Owns the state and the objects that work on it, in the order in which they need each other. The platform and the
// front end must outlive the engine. Two engines may live side by side.
class Engine {
 public:
  Engine(const Platform& platform, Installation installation, FrontEnd front_end,
         Pump::Pace pace = Pump::Pace::kWhenTimeHasPassed);

  Platform platform;
  Installation installation;
  RunState run;
  Project project;
  Settings settings;
  FilterWords filter;
  SuppressionList suppression;
  BothFilters wanted{filter, suppression};
  SettingsStore settings_store;
  ProjectList project_list;
  ProjectStore projects;
  Pump pump;
  ocxParseWeb web;
  RunDriver driver;
  Watchdog watchdog;
  eMailBookMerge books;

  // Does what comes before a front end appears: makes the folders `data` and `report`, reads the filter file, and loads
  // the settings and the project list. The front end shows the result and goes on: `folders` is the first failure to
  // make a folder, `suppression` is that of ReadSuppression, and `notes` holds messages such as those about invalid
  // filter words, one a line.
  struct StartNotes {
    Status folders;
    Status suppression;
    std::string notes;
  };
  [[nodiscard]] StartNotes Start();

  // Reads the suppression list, which another program may have changed: before a run begins and before books are
  // merged. What is open may hold addresses then that are suppressed by now. After a failure nothing may be listed, and
  // the list is the one that was read before.
  [[nodiscard]] Status ReadSuppression();
  std::uint64_t suppression_changes = 0;  // how often another list was read than the one before

  // Sets what happens when a newer version has been published: `show` is called inside a pump. The watchdog starts the
  // upgrade check at its first tick on line, once in each start of the program. Without `show` the answer is dropped.
  void OnNewerVersion(std::function<void()> show) { show_newer_version_ = std::move(show); }
  bool upgradeDone = false;  // the check has ended, with or without an answer

 private:
  [[nodiscard]] Status ReadSuppression(std::vector<std::string>& strange_lines);
  // See RunDriver::SearchAddressAt.
  [[nodiscard]] std::string SearchAddressAt(int result_offset) const;
  // Starts the download of the upgrade page and counts it in the level-0 counter.
  void StartUpgradeCheck();
  void ParseUpgradeHtml(const std::string& page);

  std::function<void()> show_newer_version_;
};

}  // namespace quenlar
