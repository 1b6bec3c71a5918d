#include "project/project_list.h"

#include <algorithm>

namespace quenlar {

bool ProjectList::Add(std::string_view text, bool is_keyword) {
  std::string name(text);
  if (is_keyword && name.find('_') == std::string::npos) {
    const std::string language = LanguageCode(settings_.SearchLanguage);
    if (!language.empty()) name += "_" + language;
  }
  if (std::find(entries_.begin(), entries_.end(), name) != entries_.end()) return false;
  entries_.insert(entries_.begin(), std::move(name));
  WriteProjectKey(true);
  return true;
}

void ProjectList::Pick(std::string_view text) {
  const auto picked = std::find(entries_.begin(), entries_.end(), text);
  if (picked != entries_.end()) std::rotate(entries_.begin(), picked, picked + 1);
}

void ProjectList::Remove(std::string_view text) {
  if (entries_.empty()) return;
  // The search stops before the last entry and drops that one without comparing it. So a text that is not in the list
  // costs the oldest entry; users rely on Delete making the list shorter by one.
  // Kept: ProjectListTest.DeletingAProjectThatIsNotInTheListRemovesTheOldestEntry.
  entries_.erase(std::find(entries_.begin(), entries_.end() - 1, text));
}

void ProjectList::WriteProjectKey(bool with_filters) {
  const auto write = [this](const std::string& name, std::int64_t value) {
    registry_.SaveRegValue(kProjectKey, name, std::to_string(value));
  };
  registry_.DeleteRegKey(kProjectKey);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    registry_.SaveRegValue(kProjectKey, "Project" + std::to_string(i + 1), entries_[i]);
  }
  write("ProjectNum", static_cast<std::int64_t>(entries_.size()));
  // Every rewrite of the key takes the choice "never upgrade" back: the question for a newer version comes again.
  // Kept: ProjectListTest.AddingRewritesTheKeyInItsOrder.
  write("NeverUpgrade", 0);
  write("Search", settings_.SearchLanguage);
  write("Save", settings_.SaveInterval);
  write("Correlation", settings_.CorrelationMode);
  write("StopNumber", settings_.StopNumber);
  if (!with_filters) return;
  write("Export", settings_.ExportMode);
  write("RemoveFilter", settings_.RemoveFilterOn);
  write("ExtractFilter", settings_.ExtractFilterOn);
}

}  // namespace quenlar
