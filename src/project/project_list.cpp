#include "project/project_list.h"

#include <algorithm>

#include "state/settings_table.h"

namespace quenlar {

std::string ListedName(std::string_view text, bool is_keyword, int language) {
  std::string name(text);
  const std::string code = LanguageCode(language);
  if (is_keyword && !code.empty() && name.find('_') == std::string::npos) name += "_" + code;
  return name;
}

bool ProjectList::Add(std::string_view text, bool is_keyword) {
  std::string name = ListedName(text, is_keyword, settings_.SearchLanguage);
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
  registry_.DeleteRegKey(kProjectKey);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    registry_.SaveRegValue(kProjectKey, "Project" + std::to_string(i + 1), entries_[i]);
  }
  registry_.SaveRegValue(kProjectKey, "ProjectNum", std::to_string(entries_.size()));
  for (const SettingRow& row : SettingsTable()) {
    if (row.rewritten == Rewritten::kWithFilters && !with_filters) continue;
    const Settings& from = row.rewritten == Rewritten::kAsDefault ? Settings() : settings_;
    registry_.SaveRegValue(kProjectKey, row.value_name, SettingText(from, row));
  }
}

}  // namespace quenlar
