// A classic project as the main window's job.
#pragma once

#include "engine/engine.h"
#include "engine/job.h"

namespace quenlar {

class ClassicJob final : public Job {
 public:
  // The engine must outlive the job; it may be constructed later.
  explicit ClassicJob(Engine& engine) : engine_(engine) {}

  [[nodiscard]] std::vector<std::string> Texts() const override { return engine_.project_list.entries(); }
  bool AddText(std::string_view text) override {
    return engine_.project_list.Add(text, engine_.project.IsKeywordProject);
  }
  void PickText(std::string_view text) override { engine_.project_list.Pick(text); }
  void RemoveText(std::string_view text) override { engine_.project_list.Remove(text); }
  void StoreTexts() override { engine_.project_list.WriteProjectKey(false); }

  void Open(std::string_view text) override { engine_.projects.OpenProject(text); }
  void FinishLoading() override { engine_.projects.FinishLoading(); }
  // Not from the files, which may know less of an address than the table does.
  [[nodiscard]] bool TakeOutSuppressed() override;
  [[nodiscard]] bool HasFiles() const override { return !engine_.project.DataFile.empty(); }
  [[nodiscard]] const FoundAddresses& found() const override { return engine_.project.found; }
  [[nodiscard]] std::int64_t scanned() const override;

  [[nodiscard]] Status CheckCanBeSaved() override;
  [[nodiscard]] std::string report() const override { return engine_.project.ReportFile; }
  Status WriteReport() override { return engine_.projects.WriteReport(); }
  Status DeleteFiles() override { return engine_.projects.DeleteFiles(); }

  void Run() override { engine_.driver.Run(); }
  void Stop() override { engine_.run.stop_requested = true; }
  [[nodiscard]] bool running() const override { return engine_.run.running; }
  void SaveAtOnce() override { engine_.projects.SaveAtOnce(); }

 private:
  Engine& engine_;
};

}  // namespace quenlar
