#include "project/save_check.h"

namespace quenlar {

Status CheckCanBeSaved(Files& files, const Project& project) {
  if (project.DataFile.empty()) return {StatusKind::kFailed, "Please choose a search language in the options"};
  return files.Replace(project.DataFile).status();  // given up again, with nothing written
}

}  // namespace quenlar
