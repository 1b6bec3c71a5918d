// Everything of the program that has no window: the objects that both front ends drive.
#pragma once

#include <functional>
#include <string>

#include "mailtool/email_book_merge.h"
#include "platform/platform.h"
#include "project/project_list.h"
#include "project/project_store.h"
#include "run/run_driver.h"
#include "run/watchdog.h"
#include "settings/filter_words.h"
#include "settings/settings_store.h"
#include "web/ocx_parse_web.h"

namespace quenlar {

// What a front end implements.
struct FrontEnd {
  RunView& view;
  RunHost& host;
  ProjectView& project_view;
};

// Owns the state and the objects that work on it; all references handed in must outlive it.
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
  SettingsStore settings_store;
  ProjectList project_list;
  ProjectStore projects;
  Pump pump;
  ocxParseWeb web;
  RunDriver driver;
  Watchdog watchdog;
  eMailBookMerge books;

  // Start-up up to the point at which a front end appears: the folders `data` and `report`, the filter file, the
  // settings and the project list. A folder that cannot be made is the failure; notes hold what is worth telling
  // (an invalid filter word).
  struct StartNotes {
    Status folders;
    std::string notes;
  };
  [[nodiscard]] StartNotes Start();

  // The upgrade check: done once per start, by the watchdog's first on-line tick; the arrived page is judged, and
  // `show` called (inside a pump) when it names a newer version. Without `show` the answer is dropped.
  void OnNewerVersion(std::function<void()> show) { show_newer_version_ = std::move(show); }
  bool upgradeDone = false;  // the check has ended, with or without an answer

 private:
  // The address of a result page in the language of the settings, "" where they name none.
  [[nodiscard]] std::string SearchAddressAt(int result_offset) const;
  // Starts the download of the upgrade page and counts it in the level-0 counter.
  void StartUpgradeCheck();
  void ParseUpgradeHtml(const std::string& page);

  std::function<void()> show_newer_version_;
};

}  // namespace quenlar
