// quenlar options: lists, shows and sets the stored settings.
#include <charconv>

#include <fmt/format.h>

#include "cli/commands.h"
#include "cli/exit_status.h"
#include "cli/workplace.h"
#include "platform/registry.h"
#include "state/settings_table.h"

namespace quenlar {
namespace {

std::string AllNames() {
  std::string names;
  for (const SettingRow& row : SettingsTable()) names += (names.empty() ? "" : ", ") + std::string(row.value_name);
  return names;
}

int SetOption(Invocation& invocation, const SettingRow& row, const std::string& text) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value < row.lowest || value > row.highest) {
    invocation.Say(fmt::format("{} takes a number from {} to {} !", row.value_name, row.lowest, row.highest));
    return kExitUsage;
  }
  const Result<Workplace> place = TakeWorkplace(invocation);
  if (!place.ok()) return invocation.Fail(place.status());
  Registry& registry = place.value().platform.registry;
  Settings settings;
  SettingsStore store(registry, settings);
  (void)store.LoadOrInit();  // the project names are of no interest here
  SetFromText(settings, row, std::to_string(value));
  store.Save(row.value_name);
  const Status stored = registry.Flush();
  if (!stored.ok()) return invocation.Fail(stored.WithContext(std::string(row.value_name) + " could not be stored"));
  if (registry.GetRegValue(kProjectKey, row.value_name) == SettingText(settings, row)) return kExitDone;
  invocation.Say(fmt::format("{} could not be stored !", row.value_name));
  return kExitFailed;
}

}  // namespace

int Options(Invocation& invocation, const OptionsArguments& arguments) {
  const SettingRow* const named = arguments.name ? FindSetting(*arguments.name) : nullptr;
  if (arguments.name && named == nullptr) {
    invocation.Say(fmt::format("There is no setting {}; there are {} !", *arguments.name, AllNames()));
    return kExitUsage;
  }
  if (arguments.value) return SetOption(invocation, *named, *arguments.value);

  const Result<Platform> platform = OpenHome(invocation);
  if (!platform.ok()) return invocation.Fail(platform.status());
  Settings settings;
  const auto loaded = LoadStored(platform.value().registry, settings);
  if (!loaded.ok()) return invocation.Fail(loaded.status());
  if (named != nullptr) {
    invocation.Print(SettingText(settings, *named));
    return kExitDone;
  }
  for (const SettingRow& row : SettingsTable()) {
    const std::string line = fmt::format("{:<14}{:<7}{}", row.value_name, SettingText(settings, row), row.meaning);
    if (!invocation.Print(line)) break;
  }
  return kExitDone;
}

}  // namespace quenlar
