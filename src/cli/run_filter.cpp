#include "cli/run_filter.h"

#include "cli/workplace.h"
#include "settings/filter_file.h"

namespace quenlar {

Status LoadRunFilter(const Platform& platform, const Installation& installation,
                     const std::vector<std::string>& remove_words, const std::vector<std::string>& extract_words,
                     Settings& settings, FilterWords& filter,
                     const std::function<void(const std::string& message)>& tell) {
  const auto loaded = LoadStored(platform.registry, settings);
  if (!loaded.ok()) return loaded.status();
  const std::string path = FilterFilePath(installation);
  for (const std::string& message : ReadFilterFile(platform.files, platform.code_page, path, filter)) tell(message);
  if (!remove_words.empty()) {
    settings.RemoveFilterOn = 1;
    filter.RemoveFilterWords = remove_words;
  }
  if (!extract_words.empty()) {
    settings.ExtractFilterOn = 1;
    filter.ExtractFilterWords = extract_words;
  }
  filter.OnStepLimit(tell);
  for (const std::string& message : filter.BuildFilterPatterns()) tell(message);
  return Status::Ok();
}

}  // namespace quenlar
