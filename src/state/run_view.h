// What a run shows while it goes on. Implemented by the main window, the command line and tests.
#pragma once

#include <cstdint>
#include <string>

namespace quenlar {

class RunView {
 public:
  virtual ~RunView() = default;
  // The stage text (panel 1 of the status bar).
  virtual void ShowStage(const std::string& text) = 0;
  // The address count (panel 2, the count followed by " Address").
  virtual void ShowAddressCount(std::uint32_t count) = 0;
  // The pages scanned (panel 3, "Scan " followed by the count).
  virtual void ShowScanCount(std::int64_t count) = 0;
  // The record at `index` of the found-address table has been added; `red` when its address is to be drawn red.
  virtual void AddRow(std::uint32_t index, bool red) = 0;
  // The table has been emptied.
  virtual void ClearRows() = 0;
};

}  // namespace quenlar
