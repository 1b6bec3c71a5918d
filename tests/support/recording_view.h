// What a run shows, written down.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "state/run_view.h"

namespace quenlar {

class RecordingView : public RunView {
 public:
  std::vector<std::string> stages;        // panel 1, in order
  std::string address_count, scan_count;  // panels 2 and 3, as they stand
  struct Row {
    std::uint32_t index;
    bool red;
    bool operator==(const Row&) const = default;
  };
  std::vector<Row> rows;
  int clears = 0;

  void ShowStage(const std::string& text) override { stages.push_back(text); }
  void ShowAddressCount(std::uint32_t count) override { address_count = std::to_string(count) + " Address"; }
  void ShowScanCount(std::int64_t count) override { scan_count = "Scan " + std::to_string(count); }
  void AddRow(std::uint32_t index, bool red) override { rows.push_back({index, red}); }
  void ClearRows() override {
    rows.clear();
    ++clears;
  }

  [[nodiscard]] std::string last_stage() const { return stages.empty() ? "" : stages.back(); }
};

}  // namespace quenlar
