#include "engine/classic_job.h"

#include "page/unwanted_addresses.h"
#include "project/save_check.h"

namespace quenlar {

// The count after opening the window leaves out levels 6 to 10. It is what the window has always shown here; a run
// counts its own pages. Kept: MainWindow.Panel3SumsTheNextIndicesOfLevels0To5Alone.
std::int64_t ClassicJob::scanned() const {
  constexpr std::size_t kScannedLevels = 6;
  std::int64_t started = 0;
  for (std::size_t level = 0; level < kScannedLevels; ++level) started += engine_.project.queues[level].Next();
  return started;
}

bool ClassicJob::TakeOutSuppressed() {
  if (engine_.suppression.empty()) return true;
  engine_.projects.TakeOutSuppressed([this](std::string_view text) {
    return WithoutUnwanted(text, [this](std::string_view address) { return engine_.suppression.Keeps(address); });
  });
  return true;
}

Status ClassicJob::CheckCanBeSaved() { return quenlar::CheckCanBeSaved(engine_.platform.files, engine_.project); }

}  // namespace quenlar
