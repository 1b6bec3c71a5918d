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

// A number that does not fit the variable leaves it as it is.
void SetFromText(Settings& settings, const SettingRow& row, const std::string& text) {
  const double number = LeadingNumber(text);
  if (const auto* narrow = std::get_if<std::int16_t Settings::*>(&row.variable)) {
    settings.** narrow = RoundToInt16(number).value_or(settings.**narrow);
  } else {
    const auto wide = std::get<std::int32_t Settings::*>(row.variable);
    settings.*wide = RoundToInt32(number).value_or(settings.*wide);
  }
}

}  // namespace

const std::vector<SettingRow>& SettingsTable() {
  static const std::vector<SettingRow> kTable = {
      {"NeverUpgrade", &Settings::NeverUpgradeFlag, 0, 0, 1, "1: newer versions are never offered again"},
      {"Search", &Settings::SearchLanguage, 0, 0, 5, "search language: 0 en, 1 fr, 2 de, 3 it, 4 es, 5 ja"},
      {"Save", &Settings::SaveInterval, 0, 0, 2, "save after every 30, 50 or 100 new addresses: 0, 1, 2"},
      {"Correlation", &Settings::CorrelationMode, 1, 0, 1, "1: links to other sites are followed too"},
      {"StopNumber", &Settings::StopNumber, 99999, 1, 99999, "new addresses after which a run ends"},
      {"Export", &Settings::ExportMode, 0, 0, 1, "report: 0 addresses alone, 1 all information"},
      {"RemoveFilter", &Settings::RemoveFilterOn, 0, 0, 1, "1: addresses that match the remove words are dropped"},
      {"ExtractFilter", &Settings::ExtractFilterOn, 0, 0, 1, "1: only addresses that match the extract words are kept"},
  };
  return kTable;
}

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
    SetFromText(settings_, row, std::to_string(row.first_start_default));
    registry_.SaveRegValue(kProjectKey, row.value_name, SettingText(settings_, row));
  }
}

void SettingsStore::Save(std::string_view value_name) {
  for (const SettingRow& row : SettingsTable()) {
    if (value_name == row.value_name) {
      registry_.SaveRegValue(kProjectKey, row.value_name, SettingText(settings_, row));
    }
  }
}

std::string SettingText(const Settings& settings, const SettingRow& row) {
  return std::visit([&](auto variable) { return std::to_string(settings.*variable); }, row.variable);
}

}  // namespace quenlar
