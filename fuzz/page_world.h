// What a page analysis needs around it, with nothing behind it.
#pragma once

#include <set>
#include <string>

#include "base/ascii.h"
#include "state/run_state.h"
#include "support/fake_event_loop.h"
#include "web/page_analysis.h"

namespace quenlar::fuzz {

class PageWorld : private AddressFilter, private PeriodicSaver, private RunView {
 public:
  AnalysisContext& context() { return context_; }
  RunState run;
  Project project;
  Settings settings;
  int saves = 0;

  // The promises that hold after any analysis.
  [[nodiscard]] bool TableIsSound() const {
    std::set<std::string> seen;
    for (std::uint32_t i = 0; i < project.found.Count(); ++i) {
      const FoundAddress record = project.found.At(i);
      if (record.Address.find('@') == std::string_view::npos) return false;
      if (record.Address.find_first_of(std::string_view(" \r\n\t\0<>", 7)) != std::string_view::npos) return false;
      if (record.Title.find_first_of("\r\n\t") != std::string_view::npos) return false;
      if (!seen.insert(Lower(record.Address)).second) return false;
    }
    return rows_ == project.found.Count();
  }

 private:
  bool Keeps(std::string_view) override { return true; }
  void SaveProjectData() override { ++saves; }
  void SaveProjectReport() override { ++saves; }
  void AddRow(std::uint32_t, bool) override { ++rows_; }
  void ClearRows() override { rows_ = 0; }

  std::uint32_t rows_ = 0;
  FakeEventLoop loop_;
  Pump pump_{loop_};
  AnalysisContext context_{run, project, settings, *this, *this, *this, pump_};
};

}  // namespace quenlar::fuzz
