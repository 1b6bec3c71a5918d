#include "settings/settings_store.h"

#include <gtest/gtest.h>

#include "support/fake_registry.h"

namespace quenlar {
namespace {

using Names = std::vector<std::string>;

class SettingsStoreTest : public testing::Test {
 protected:
  void Put(const std::string& name, const std::string& text) { registry.SaveRegValue(kProjectKey, name, text); }

  FakeRegistry registry;
  Settings settings;
  SettingsStore store{registry, settings};
};

TEST_F(SettingsStoreTest, FirstStartWritesTheDefaults) {
  EXPECT_EQ(store.LoadOrInit(), Names{});
  const std::pair<const char*, const char*> expected[] = {
      {"ProjectNum", "0"}, {"NeverUpgrade", "0"}, {"Search", "0"},
      {"Save", "0"},       {"Correlation", "1"},  {"StopNumber", "99999"},
      {"Export", "0"},     {"RemoveFilter", "0"}, {"ExtractFilter", "0"}};
  for (const auto& [name, text] : expected) EXPECT_EQ(registry.Stored(kProjectKey, name), text) << name;
  EXPECT_EQ(settings.CorrelationMode, 1);
  EXPECT_EQ(settings.StopNumber, 99999);
}

TEST_F(SettingsStoreTest, SecondStartLoadsAndWritesNothing) {
  Put("Search", "3");
  const int changes = registry.changes();
  store.LoadOrInit();
  EXPECT_EQ(settings.SearchLanguage, 3);
  EXPECT_EQ(registry.changes(), changes);
}

TEST_F(SettingsStoreTest, NumbersAreReadByTheirLeadingPart) {
  const std::pair<const char*, int> rows[] = {{"abc", 0}, {"   ", 0}, {"", 0},    {"12abc", 12}, {"2.5", 2},
                                              {"3.5", 4}, {" 7", 7},  {"-3", -3}, {"1e2", 100},  {"32767", 32767}};
  for (const auto& [text, value] : rows) {
    settings.SearchLanguage = 99;
    Put("Search", text);
    store.LoadSettings();
    EXPECT_EQ(settings.SearchLanguage, value) << text;
  }
}

TEST_F(SettingsStoreTest, NumberThatDoesNotFitLeavesItsVariableAndTheRestIsLoaded) {
  settings.SearchLanguage = 4;
  Put("StopNumber", "70000");
  Put("Search", "70000");
  Put("Export", "1");
  store.LoadSettings();
  EXPECT_EQ(settings.StopNumber, 70000);
  EXPECT_EQ(settings.SearchLanguage, 4);
  EXPECT_EQ(settings.ExportMode, 1);
  Put("StopNumber", "1e400");
  store.LoadSettings();
  EXPECT_EQ(settings.StopNumber, 70000);
}

TEST_F(SettingsStoreTest, MissingValuesLoadAsZero) {
  settings.ExportMode = settings.RemoveFilterOn = settings.ExtractFilterOn = settings.CorrelationMode = 1;
  Put("ProjectNum", "0");
  store.LoadSettings();
  EXPECT_EQ(settings.ExportMode, 0);
  EXPECT_EQ(settings.RemoveFilterOn, 0);
  EXPECT_EQ(settings.ExtractFilterOn, 0);
  EXPECT_EQ(settings.CorrelationMode, 0);
  EXPECT_EQ(settings.StopNumber, 0);
  EXPECT_EQ(settings.EffectiveStopNumber(), 99999);
}

TEST_F(SettingsStoreTest, ProjectNamesAreLoadedInOrder) {
  Put("ProjectNum", "3");
  Put("Project1", "new_en");
  Put("Project2", "x.de");
  Put("Project3", "old_fr");
  Put("Project4", "not counted");
  EXPECT_EQ(store.LoadSettings(), (Names{"new_en", "x.de", "old_fr"}));
}

TEST_F(SettingsStoreTest, ValueOfThreeHundredCharactersIsReadAsTwoHundredAndFiftyFour) {
  Put("ProjectNum", "1");
  Put("Project1", std::string(300, 'x'));
  EXPECT_EQ(store.LoadSettings(), Names{std::string(254, 'x')});
}

TEST_F(SettingsStoreTest, CountLargerThanTheNamesThatExistLoadsThoseAtOnce) {
  Put("ProjectNum", "2000000000");
  Put("Project1", "a");
  Put("Project3", "c");
  EXPECT_EQ(store.LoadSettings(), (Names{"a", "c"}));
  for (const char* count : {"-5", "0", "3000000000", "many"}) {
    Put("ProjectNum", count);
    EXPECT_TRUE(store.LoadSettings().empty()) << count;
  }
}

TEST_F(SettingsStoreTest, OddStoredValuesHaveAMeaning) {
  Put("Save", "7");
  Put("StopNumber", "0");
  store.LoadSettings();
  EXPECT_EQ(settings.SaveInterval, 7);
  EXPECT_EQ(settings.SaveEvery(), 30);
  EXPECT_EQ(settings.EffectiveStopNumber(), 99999);
}

TEST_F(SettingsStoreTest, SaveWritesOneSettingAsItStands) {
  settings.StopNumber = -12;
  store.Save("StopNumber");
  EXPECT_EQ(registry.Stored(kProjectKey, "StopNumber"), "-12");
  EXPECT_EQ(registry.changes(), 1);
  store.Save("Unknown");
  EXPECT_EQ(registry.changes(), 1);
}

TEST_F(SettingsStoreTest, EveryRowOfTheTableSurvivesARoundTrip) {
  for (const SettingRow& row : SettingsTable()) {
    const auto first_start = static_cast<std::int32_t>(LeadingNumber(SettingText(Settings(), row)));
    for (const std::int32_t value : {row.lowest, row.highest, first_start}) {
      Put(row.value_name, std::to_string(value));
      store.LoadSettings();
      EXPECT_EQ(SettingText(settings, row), std::to_string(value)) << row.value_name;
      EXPECT_GE(value, row.lowest);
      EXPECT_LE(value, row.highest);
    }
    EXPECT_NE(row.meaning, "");
  }
}

TEST_F(SettingsStoreTest, ReadOnlyRegistryStillGivesTheDefaults) {
  registry.SetReadOnly(true);
  settings.StopNumber = 5;
  store.LoadOrInit();
  EXPECT_EQ(settings.StopNumber, 99999);
}

}  // namespace
}  // namespace quenlar
