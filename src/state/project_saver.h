// How a run saves its project, while it goes on and at its end.
#pragma once

#include "base/status.h"

namespace quenlar {

// Saves the project while a run goes on. The implementation shows a failure to the user; it never ends the run.
class PeriodicSaver {
 public:
  virtual ~PeriodicSaver() = default;
  // Both pump. A call during a save of the same file returns at once, and the file is saved once more after that save.
  virtual void SaveProjectData() = 0;
  virtual void SaveProjectReport() = 0;
};

// Saves at the end of a run as well. What comes of that save is for the caller to show: the message of a failure is
// complete.
class ProjectSaver : public PeriodicSaver {
 public:
  // Pump. Do nothing while no project is open.
  virtual Status WriteData() = 0;
  virtual Status WriteReport() = 0;
};

}  // namespace quenlar
