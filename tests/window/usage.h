// What Quenlar.exe takes of the machine. Wine tells a process about nothing but itself: the times that it gives for
// another one are the caller's own. There Linux is asked, whose files about processes Wine shows on drive Z:.
#pragma once

#include <filesystem>
#include <vector>

#include "ui/win32/windows_api.h"

namespace quenlar::window_test {

// Megabytes. Windows tells `alone` only, and the others are 0.
struct Memory {
  double resident = 0;      // all that is in memory of the process
  double proportional = 0;  // the same, with each page divided by the processes that share it
  double alone = 0;         // what no other process shares
};

// Of the program with this handle; under Wine, where there may be only one such program, of that one.
[[nodiscard]] Memory MemoryOf(HANDLE program);

struct ProcessorTime {
  double program = 0;   // seconds
  double services = 0;  // what Wine's own processes have taken, which work for every program; 0 on Windows
};

// Tells the time that the program with this handle has taken so far. The looking for processes, which Wine's server
// has to work for, is done at the start and not counted.
class ProcessorClock {
 public:
  explicit ProcessorClock(HANDLE program);
  [[nodiscard]] ProcessorTime Read() const;

 private:
  HANDLE program_;
  std::vector<std::filesystem::path> own_, services_;  // Linux's folders about the processes; none on Windows
};

}  // namespace quenlar::window_test
