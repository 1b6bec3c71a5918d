// A whole engine over fakes, with a front end that writes everything down.
#pragma once

#include <string>
#include <vector>

#include "engine/engine.h"
#include "support/fake_platform.h"
#include "support/recording_view.h"

namespace quenlar {

class CrawlWorld : private RunHost, private ProjectView {
 public:
  CrawlWorld();
  CrawlWorld(const CrawlWorld&) = delete;
  CrawlWorld& operator=(const CrawlWorld&) = delete;

  FakePlatform fakes;
  RecordingView view;
  std::vector<std::string> calls;  // of the driver's host, in order
  Engine engine;

  void Open(const std::string& text) { engine.projects.OpenProject(text); }
  void Run();
  void Stop();

  // What can be expected, as lines.
  [[nodiscard]] std::vector<std::string> Requests() const;
  [[nodiscard]] std::vector<std::string> Addresses() const;
  [[nodiscard]] std::vector<std::string> Queues() const;

 private:
  [[nodiscard]] bool StopButtonShown() const override { return stop_shown_; }
  void ShowEnd(const std::string& reason) override { calls.push_back("end: " + reason); }
  void SaveDataAtEnd() override;
  void SaveReportAtEnd() override;
  void RestoreIdle(bool enable_export) override { calls.emplace_back(enable_export ? "idle, export" : "idle"); }
  void ShowEndTime() override { view.ShowStage("Extract process ended at " + fakes.clock.TimeText()); }
  void EnableExit() override { calls.emplace_back("exit"); }

  void EnableDelete(bool) override {}
  void EnableExport(bool) override {}
  void EnableExtract() override {}
  [[nodiscard]] bool Ready() const override { return false; }
  void SetInputText(const std::string& text) override { Open(text); }

  bool stop_shown_ = true;
  std::unique_ptr<LoopTimer> tmrAlarm_;
};

}  // namespace quenlar
