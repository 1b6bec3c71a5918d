// Settings in the registry: the loader, the first start, and the saving of one setting. state/settings_table.h says
// what is stored.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "state/settings_table.h"

namespace quenlar {

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

}  // namespace quenlar
