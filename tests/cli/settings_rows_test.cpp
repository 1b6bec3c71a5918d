// Every row of the settings table, on every path that a setting takes.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "cli/analyze_request.h"
#include "cli/exit_status.h"
#include "command_system.h"
#include "project/project_list.h"
#include "settings/settings_store.h"
#include "state/settings_table.h"

namespace quenlar {
namespace {

class SettingRows : public testing::Test {
 protected:
  // A value that people may set and that is not the one of a first start.
  static std::string OtherValue(const SettingRow& row) {
    const std::string first_start = SettingText(Settings(), row);
    return std::to_string(first_start == std::to_string(row.highest) ? row.lowest : row.highest);
  }
  static Settings AllOther() {
    Settings settings;
    for (const SettingRow& row : SettingsTable()) SetFromText(settings, row, OtherValue(row));
    return settings;
  }

  CommandSystem system;
  FakeRegistry& registry = system.fake.registry;
};

TEST_F(SettingRows, AreWrittenByAFirstStartAndLoadedByTheNextStart) {
  Settings written = AllOther(), loaded = AllOther();
  SettingsStore(registry, written).LoadOrInit();
  SettingsStore(registry, loaded).LoadOrInit();
  for (const SettingRow& row : SettingsTable()) {
    const std::string first_start = SettingText(Settings(), row);
    EXPECT_EQ(registry.Stored(kProjectKey, row.value_name), first_start) << row.value_name;
    EXPECT_EQ(SettingText(written, row), first_start) << row.value_name;
    EXPECT_EQ(SettingText(loaded, row), first_start) << row.value_name;
  }
}

TEST_F(SettingRows, AreSavedOneByOneAndLoaded) {
  Settings settings = AllOther(), loaded;
  for (const SettingRow& row : SettingsTable()) SettingsStore(registry, settings).Save(row.value_name);
  SettingsStore(registry, loaded).LoadSettings();
  for (const SettingRow& row : SettingsTable()) {
    EXPECT_EQ(SettingText(loaded, row), OtherValue(row)) << row.value_name;
  }
}

TEST_F(SettingRows, StayInAKeyThatIsRewritten) {
  Settings settings = AllOther();
  for (const bool with_filters : {true, false}) {
    ProjectList(registry, settings).WriteProjectKey(with_filters);
    for (const SettingRow& row : SettingsTable()) {
      const bool left_out = row.rewritten == Rewritten::kWithFilters && !with_filters;
      ASSERT_EQ(registry.ValueExists(kProjectKey, row.value_name), !left_out) << row.value_name;
      const bool as_default = row.rewritten == Rewritten::kAsDefault;
      const std::string expected = as_default ? SettingText(Settings(), row) : OtherValue(row);
      EXPECT_EQ(registry.Stored(kProjectKey, row.value_name).value_or(""), left_out ? "" : expected) << row.value_name;
    }
  }
}

TEST_F(SettingRows, AreSetAndShownAndListedByOptions) {
  for (const SettingRow& row : SettingsTable()) {
    const std::string value = OtherValue(row);
    EXPECT_EQ(system.Run({"options", row.value_name, value}), kExitDone) << system.errors();
    EXPECT_EQ(registry.Stored(kProjectKey, row.value_name), value);
    EXPECT_EQ(system.Run({"options", row.value_name}), kExitDone);
    EXPECT_EQ(system.output(), value + "\n");
    EXPECT_EQ(system.Run({"options"}), kExitDone);
    EXPECT_NE(system.output().find(row.meaning + "\n"), std::string::npos) << system.output();
    for (const std::int64_t wrong : {std::int64_t{row.lowest} - 1, std::int64_t{row.highest} + 1}) {
      EXPECT_EQ(system.Run({"options", row.value_name, std::to_string(wrong)}), kExitUsage) << row.value_name;
    }
  }
}

// What `extract` takes for a row: every word of a choice, both bounds of a number.
std::vector<std::string> GivenTo(const OverrideOption& option, const SettingRow& row) {
  std::vector<std::string> given;
  for (const ChoiceWord& word : option.words) given.push_back(word.word);
  if (given.empty()) given = {std::to_string(row.lowest), std::to_string(row.highest)};
  return given;
}

TEST_F(SettingRows, AreOverriddenByExtractWhereTheyHaveAnOption) {
  system.fake.fetcher.ServeOthers([](const std::string&) { return Failure(); });
  for (const SettingRow& row : SettingsTable()) {
    if (row.option.name == nullptr) continue;
    for (const std::string& given : GivenTo(row.option, row)) {
      EXPECT_EQ(system.Run({"extract", "shop.example", row.option.name, given}), kExitDone) << system.errors();
      EXPECT_EQ(registry.Stored(kProjectKey, row.value_name), SettingText(Settings(), row));
    }
    EXPECT_EQ(system.Run({"extract", "shop.example", row.option.name, "0x"}), kExitUsage) << row.option.name;
  }
}

TEST_F(SettingRows, HaveAWordForEveryValueOfAChoice) {
  for (const SettingRow& row : SettingsTable()) {
    std::set<std::int32_t> values;
    for (const ChoiceWord& word : row.option.words) values.insert(word.value);
    if (values.empty()) continue;
    EXPECT_EQ(*values.begin(), row.lowest) << row.value_name;
    EXPECT_EQ(*values.rbegin(), row.highest) << row.value_name;
    EXPECT_EQ(std::ssize(values), row.highest - row.lowest + 1) << row.value_name;
  }
}

TEST_F(SettingRows, AreSetByAnalyzeWhereTheyHaveAMember) {
  for (const SettingRow& row : SettingsTable()) {
    if (row.member.empty()) continue;
    const std::string line = "{\"settings\":{\"" + std::string(row.member) + "\":" + OtherValue(row) + "}}";
    ParsedLine parsed = ParseAnalyzeLine(line);
    ASSERT_TRUE(parsed.request.ok()) << line;
    Settings settings;
    Apply(std::get<SettingsRequest>(parsed.request.take()).changes, settings);
    EXPECT_EQ(SettingText(settings, row), OtherValue(row)) << line;
  }
}

std::string TextOfPage(const std::string& name) {
  std::ifstream stream(std::string(std::getenv("QUENLAR_TEST_DATA")) + "/../docs/" + name, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

TEST_F(SettingRows, StandInTheDocumentation) {
  const std::string command_line = TextOfPage("command-line.md"), analyze = TextOfPage("analyze.md");
  for (const SettingRow& row : SettingsTable()) {
    const std::string option = row.option.name != nullptr ? "`" + std::string(row.option.name) + "`" : "";
    const std::string line = "| `" + std::string(row.value_name) + "` | " + option;
    EXPECT_NE(command_line.find(line), std::string::npos) << line;
    const std::string member = "`" + std::string(row.member) + "`";
    EXPECT_TRUE(row.member.empty() || analyze.find(member) != std::string::npos) << member;
  }
}

}  // namespace
}  // namespace quenlar
