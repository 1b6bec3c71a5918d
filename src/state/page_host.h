// What page analysis asks of the rest of the program.
#pragma once

#include <string_view>

namespace quenlar {

// Decides which addresses are kept. The filters may change between two calls.
class AddressFilter {
 public:
  virtual ~AddressFilter() = default;
  [[nodiscard]] virtual bool Keeps(std::string_view address) = 0;
};

// Saves the project while a run goes on; failures are shown by the implementation and never end the run.
class PeriodicSaver {
 public:
  virtual ~PeriodicSaver() = default;
  // Pumps. Asked for during a save of the same file, it happens once, after it.
  virtual void SaveProjectData() = 0;
  virtual void SaveProjectReport() = 0;
};

}  // namespace quenlar
