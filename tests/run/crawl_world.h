// A whole engine over fakes, with a front end that writes everything down.
#pragma once

#include <string>
#include <vector>

#include "engine/engine.h"
#include "support/fake_platform.h"
#include "support/recording_view.h"

namespace quenlar {

class CrawlWorld : private RunHost {
 public:
  CrawlWorld();
  CrawlWorld(const CrawlWorld&) = delete;
  CrawlWorld& operator=(const CrawlWorld&) = delete;

  FakePlatform fakes;
  RecordingView view;
  ProjectView project_view;
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
  [[nodiscard]] bool StopPressed() const override { return stop_pressed_; }
  void RunEnded(const std::string& reason) override { calls.push_back("end: " + reason); }
  void DataSaved(const Status& saved) override { NoteSave("data", saved); }
  void ReportSaved(const Status& saved) override { NoteSave("report", saved); }
  void Idle(bool links_visited) override;
  void RunOver() override { calls.emplace_back("over"); }

  void NoteSave(const std::string& file, const Status& saved);

  bool stop_pressed_ = false;
  std::unique_ptr<LoopTimer> tmrAlarm_;
};

}  // namespace quenlar
