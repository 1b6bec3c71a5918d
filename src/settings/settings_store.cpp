#include "settings/settings_store.h"

#include "base/number.h"

namespace quenlar {
namespace {

// Names that are missing in a row before the list counts as ended, whatever the stored count says.
constexpr int kMaxGap = 1000;

std::vector<std::string> LoadProjectNames(const Registry& registry) {
  std::vector<std::string> names;
  const auto count = RoundToInt32(LeadingNumber(registry.GetRegValue(kProjectKey, "ProjectNum"))).value_or(0);
  int gap = 0;
  for (std::int32_t i = 0; i < count && gap < kMaxGap; ++i) {
    const std::string value_name = "Project" + std::to_string(std::int64_t{i} + 1);
    if (!registry.ValueExists(kProjectKey, value_name)) {
      ++gap;
      continue;
    }
    gap = 0;
    names.push_back(registry.GetRegValue(kProjectKey, value_name));
  }
  return names;
}

}  // namespace

std::vector<std::string> SettingsStore::LoadOrInit() {
  if (registry_.KeyExists(kProjectKey)) return LoadSettings();
  InitSettings();
  return {};
}

std::vector<std::string> SettingsStore::LoadSettings() {
  std::vector<std::string> names = LoadProjectNames(registry_);
  for (const SettingRow& row : SettingsTable()) {
    SetFromText(settings_, row, registry_.GetRegValue(kProjectKey, row.value_name));
  }
  return names;
}

void SettingsStore::InitSettings() {
  registry_.SaveRegValue(kProjectKey, "ProjectNum", "0");
  for (const SettingRow& row : SettingsTable()) {
    SetFromText(settings_, row, SettingText(Settings(), row));
    registry_.SaveRegValue(kProjectKey, row.value_name, SettingText(settings_, row));
  }
}

void SettingsStore::Save(std::string_view value_name) {
  const SettingRow* const row = FindSetting(value_name);
  if (row != nullptr) registry_.SaveRegValue(kProjectKey, row->value_name, SettingText(settings_, *row));
}

}  // namespace quenlar
