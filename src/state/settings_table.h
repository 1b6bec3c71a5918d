// The stored settings, one row each. Loading, saving, the first start, the rewriting of the project key, and the
// commands `options`, `extract` and `analyze` all go by these rows: a setting that has a row is missing nowhere.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "base/number.h"
#include "state/settings.h"

namespace quenlar {

// What the command line calls a value.
struct ChoiceWord {
  std::string word;
  std::int32_t value;
};

// The option of `extract` that overrides a setting for one run.
struct OverrideOption {
  const char* name = nullptr;  // "--language", or nullptr where the setting has none
  const char* help = "";
  std::vector<ChoiceWord> words = {};  // what it takes, in the order of its help; without words it takes a number
};

// What becomes of a setting when the registry key is deleted and written again with the project list.
enum class Rewritten {
  kAlways,
  kWithFilters,  // written only where the list has grown; a list that has shrunk leaves it out
  kAsDefault,    // written with its default, whatever is in memory
};

// One stored setting: a member of `Values`, whose initial values are those of the first start. Another key with other
// settings is another struct with a table of its own.
template <typename Values>
struct SettingRowOf {
  const char* value_name;        // of the registry value; `options` shows and takes it
  std::string_view member = {};  // of the request `settings` of `analyze`; empty where it takes none
  std::variant<std::int16_t Values::*, std::int32_t Values::*, std::string Values::*> variable;
  std::int32_t lowest = 0, highest = 1;  // what people may set; of no meaning for a text
  std::string meaning;                   // one line without an end
  OverrideOption option = {};
  Rewritten rewritten = Rewritten::kAlways;
};
using SettingRow = SettingRowOf<Settings>;

// In the order in which they are written.
[[nodiscard]] const std::vector<SettingRow>& SettingsTable();

// The row of a registry value, in any letter case, or nullptr.
[[nodiscard]] const SettingRow* FindSetting(std::string_view value_name);

// The text that is stored for a setting: decimal for a number, a text as it is.
template <typename Values>
[[nodiscard]] std::string SettingText(const Values& values, const SettingRowOf<Values>& row) {
  const auto text = [&values](auto variable) {
    if constexpr (std::is_same_v<decltype(variable), std::string Values::*>) {
      return values.*variable;
    } else {
      return std::to_string(values.*variable);
    }
  };
  return std::visit(text, row.variable);
}

// Sets a setting from what is stored. Of a text the number at its beginning counts, rounded; a number that does not fit
// the variable leaves it as it is. Bounds are not looked at.
template <typename Values>
void SetFromText(Values& values, const SettingRowOf<Values>& row, std::string_view text) {
  const auto set = [&values, text](auto variable) {
    auto& value = values.*variable;
    if constexpr (std::is_same_v<decltype(variable), std::string Values::*>) {
      value = text;
    } else if constexpr (std::is_same_v<decltype(variable), std::int16_t Values::*>) {
      value = RoundToInt16(LeadingNumber(text)).value_or(value);
    } else {
      value = RoundToInt32(LeadingNumber(text)).value_or(value);
    }
  };
  std::visit(set, row.variable);
}

// A setting and its new value as it would be stored.
struct SettingChange {
  const SettingRow* row;
  std::string text;
};
void Apply(const std::vector<SettingChange>& changes, Settings& settings);

}  // namespace quenlar
