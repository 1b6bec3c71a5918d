// A run driver over the real web control, with scripted downloads and a host that writes down what it is told.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "run/run_driver.h"
#include "run/watchdog.h"
#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"
#include "support/recording_view.h"
#include "support/scripted_fetcher.h"
#include "web/ocx_parse_web.h"

namespace quenlar {

using Strings = std::vector<std::string>;

class KeepAll : public AddressFilter {
 public:
  [[nodiscard]] bool Keeps(std::string_view) override { return true; }
};

// Everything that the driver asks its surroundings for, in one list.
class RecordingHost : public RunHost, public ProjectSaver {
 public:
  explicit RecordingHost(const RunState& run) : run_(run) {}

  Strings calls;
  bool stop_pressed = false;
  Status save_result;  // of the saves at the end
  std::function<void()> while_end_shown, while_saving;

  [[nodiscard]] bool StopPressed() const override { return stop_pressed; }
  void RunEnded(const std::string& reason) override {
    calls.push_back("end: " + reason);
    if (while_end_shown) while_end_shown();
  }
  void DataSaved(const Status& saved) override { NoteSave(saved); }
  void ReportSaved(const Status& saved) override { NoteSave(saved); }
  void Idle(bool links_visited) override {
    calls.emplace_back(links_visited ? "idle, links visited" : "idle");
    EXPECT_TRUE(run_.running);
  }
  void RunOver() override {
    calls.emplace_back("over");
    EXPECT_FALSE(run_.running);
  }

  Status WriteData() override {
    calls.emplace_back("data");
    return save_result;
  }
  Status WriteReport() override {
    calls.emplace_back("report");
    return save_result;
  }
  void SaveProjectData() override {
    calls.emplace_back("periodic data");
    if (while_saving) while_saving();
  }
  void SaveProjectReport() override { calls.emplace_back("periodic report"); }

  [[nodiscard]] std::string reason() const {
    for (const std::string& call : calls) {
      if (call.starts_with("end: ")) return call.substr(5);
    }
    return "";
  }

 private:
  void NoteSave(const Status& saved) {
    if (!saved.ok()) calls.push_back(saved.message());
  }

  const RunState& run_;
};

// The parts, so that a test can make many of them in a loop.
struct DriverWorld {
  FakeEventLoop loop;
  ScriptedFetcher fetcher{loop};
  InMemoryFiles files;
  FakeCodePage code_page;
  FakeInterfaceTable interfaces;
  RunState run;
  Project project;
  Settings settings;
  KeepAll filter;
  RecordingView view;
  RecordingHost host{run};
  Pump pump{loop, Pump::Pace::kAlways};
  ocxParseWeb web{fetcher, code_page, AnalysisContext{run, project, settings, filter, host, view, pump}};
  RunDriver driver{loop, run, project, [this](int offset) { return SearchAddressAt(offset); }, web, files, host, host};
  Watchdog watchdog{run, settings, interfaces, view, [this] { driver.CancelStalled(); }, [this] { StartCheck(); }};
  std::unique_ptr<LoopTimer> tmrAlarm;

  DriverWorld() {
    web.SetEvents(&driver);
    web.SetResetStallCounter([this] { watchdog.ResetStallCounter(); });
    settings.NeverUpgradeFlag = 1;
    project.DataFile = "/data";
  }
  DriverWorld(const DriverWorld&) = delete;
  DriverWorld& operator=(const DriverWorld&) = delete;

  void OpenAddress(const std::string& start_url) {
    project.IsKeywordProject = false;
    project.StartURL = start_url;
  }
  // As opening a new keyword project leaves it.
  void OpenKeyword() {
    project.IsKeywordProject = true;
    project.StartURL = SearchAddressAt(0);
    project.search_page = project.StartURL;
    project.queues[0].AddIfNew(project.StartURL);
  }
  void EnableAlarm() {
    tmrAlarm = loop.MakeTimer(std::chrono::seconds(1), [this] { watchdog.Tick(); });
    tmrAlarm->SetEnabled(true);
  }
  void Queue(int level, const Strings& urls) {
    for (const std::string& url : urls) project.queues[static_cast<std::size_t>(level)].AddIfNew(url);
  }
  void Stop() {
    host.stop_pressed = true;
    run.stop_requested = true;
  }
  // The Extract button again, after a run has ended.
  void RunAgain() {
    host.calls.clear();
    host.stop_pressed = false;
    driver.Run();
  }

  [[nodiscard]] std::string SearchAddressAt(int offset) const {
    const std::string language = LanguageCode(settings.SearchLanguage);
    return language.empty() ? "" : "http://search.test/?hl=" + language + "&start=" + std::to_string(offset);
  }
  [[nodiscard]] Strings Keys() const {
    Strings keys;
    for (const auto& request : fetcher.started()) keys.push_back(request.key);
    return keys;
  }
  [[nodiscard]] Strings Found() const {
    Strings found;
    for (std::uint32_t i = 0; i < project.found.Count(); ++i) found.emplace_back(project.found.At(i).Address);
    return found;
  }
  [[nodiscard]] Strings Urls(int level) const {
    const LinkQueue& queue = project.queues[static_cast<std::size_t>(level)];
    Strings urls;
    for (std::uint32_t i = 0; i < queue.Count(); ++i) urls.emplace_back(queue.At(i).URL);
    return urls;
  }
  // Links that a saved file would hold.
  [[nodiscard]] Strings Unvisited() const {
    Strings urls;
    for (const LinkQueue& queue : project.queues) {
      for (const std::uint32_t i : queue.InFlight()) urls.emplace_back(queue.At(i).URL);
      for (std::uint32_t i = queue.Next(); i < queue.Count(); ++i) urls.emplace_back(queue.At(i).URL);
    }
    return urls;
  }

 private:
  void StartCheck() {
    web.BeginDownload("http://upgrade.test/", "Uhttp://upgrade.test/");
    ++run.pending[0];
    ++run.upgrade_share;
  }
};

class DriverTest : public testing::Test, public DriverWorld {};

// A page of anchors and one address.
inline std::string PageOf(const Strings& links, const std::string& address = "") {
  std::string page = "<html><body>";
  for (const std::string& link : links) page += "<a href=\"" + link + "\">x</a>\n";
  return page + address + "</body></html>";
}

inline std::string ResultsOf(const Strings& links) {
  std::string page = "<html>";
  for (const std::string& link : links) page += "<h3 class=\"r\"><a href=\"" + link + "\">x</a></h3>\n";
  return page + "</html>";
}

inline const Strings kEndOfUnfinished = {"data", "report", "idle, links visited", "over"};

}  // namespace quenlar
