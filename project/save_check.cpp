#include "project/save_check.h"

namespace quenlar {

Status CheckCanBeSaved(Files& files, const Project& project, const Settings& settings) {
  if (project.DataFile.empty()) {
    const bool has_language = *LanguageCode(settings.SearchLanguage) != '\0';
    return {StatusKind::kFailed,
            has_language ? "There is not enough memory" : "Please choose a search language in the options"};
  }
  return files.Replace(project.DataFile).status();  // given up again, with nothing written
}

}  // namespace quenlar
