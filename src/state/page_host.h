// What page analysis asks of the rest of the program.
#pragma once

#include <string_view>

namespace quenlar {

// Decides which addresses are kept. The user may change the filters between two calls.
class AddressFilter {
 public:
  virtual ~AddressFilter() = default;
  // Returns whether `address` is to be recorded. Does not pump.
  [[nodiscard]] virtual bool Keeps(std::string_view address) = 0;
};

// Saves the project while a run goes on. The implementation shows a failure to the user; it never ends the run.
class PeriodicSaver {
 public:
  virtual ~PeriodicSaver() = default;
  // Both pump. A call during a save of the same file returns at once, and the file is saved once more after that save.
  virtual void SaveProjectData() = 0;
  virtual void SaveProjectReport() = 0;
};

}  // namespace quenlar
