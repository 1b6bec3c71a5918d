// What a run shows while it goes on. The main window, the command line and tests each implement it.
#pragma once

#include <cstdint>
#include <string>

namespace quenlar {

// An implementation overrides the functions whose fact it shows; the others show nothing.
//
// Every call comes from the thread of the event loop, at times from deep inside an analysis. An implementation returns
// quickly and does not pump.
class RunView {
 public:
  virtual ~RunView() = default;
  // Shows what the run is doing. The window shows `text` in panel 1 of its status bar.
  virtual void ShowStage(const std::string& /*text*/) {}
  // Shows how many addresses the project has. The window shows the count and " Address" in panel 2.
  virtual void ShowAddressCount(std::uint32_t /*count*/) {}
  // Shows how many pages have been scanned. The window shows "Scan " and the count in panel 3.
  virtual void ShowScanCount(std::int64_t /*count*/) {}
  // Shows the record at `index` of the found-address table, which has just been added. `red`: the address was the only
  // one of its page and stood inside a tag, so it is drawn in red.
  virtual void AddRow(std::uint32_t /*index*/, bool /*red*/) {}
  // Shows an empty list: the table has just been cleared.
  virtual void ClearRows() {}
};

}  // namespace quenlar
