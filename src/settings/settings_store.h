// Settings in the registry: one table of what is stored, the loader and the first-start defaults.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/registry.h"
#include "state/settings.h"

namespace quenlar {

// One stored setting: the registry value's name, the variable behind it, what it means and may hold.
struct SettingRow {
  const char* value_name;
  std::variant<std::int16_t Settings::*, std::int32_t Settings::*> variable;
  std::int32_t first_start_default;
  std::int32_t lowest, highest;  // what people may set
  const char* meaning;
};

// In the order in which they are written.
[[nodiscard]] const std::vector<SettingRow>& SettingsTable();

class SettingsStore {
 public:
  SettingsStore(Registry& registry, Settings& settings) : registry_(registry), settings_(settings) {}

  // LoadSettings on a registry that has the key, else InitSettings. Returns the project names.
  std::vector<std::string> LoadOrInit();
  std::vector<std::string> LoadSettings();
  void InitSettings();

  // Writes one setting as it stands in memory, by its registry value name.
  void Save(std::string_view value_name);

 private:
  Registry& registry_;
  Settings& settings_;
};

// The decimal text of a setting as it stands in memory.
[[nodiscard]] std::string SettingText(const Settings& settings, const SettingRow& row);

}  // namespace quenlar
