// The row type for settings of other structs than the one that is stored today.
#include "state/settings_table.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

struct Values {
  std::int16_t narrow = 1;
  std::int32_t wide = 70000;
  std::string text = "as it is";
};

const SettingRowOf<Values> kNarrow = {.value_name = "Narrow", .variable = &Values::narrow, .meaning = ""};
const SettingRowOf<Values> kWide = {.value_name = "Wide", .variable = &Values::wide, .meaning = ""};
const SettingRowOf<Values> kText = {.value_name = "Text", .variable = &Values::text, .meaning = ""};

TEST(SettingRowOf, NumbersAndTextsAreStoredAsText) {
  const Values values;
  EXPECT_EQ(SettingText(values, kNarrow), "1");
  EXPECT_EQ(SettingText(values, kWide), "70000");
  EXPECT_EQ(SettingText(values, kText), "as it is");
}

TEST(SettingRowOf, NumbersAreReadByTheirBeginningAndTextsWhole) {
  Values values;
  SetFromText(values, kNarrow, " 7 eggs");
  SetFromText(values, kWide, "-3");
  SetFromText(values, kText, " 7 eggs");
  EXPECT_EQ(values.narrow, 7);
  EXPECT_EQ(values.wide, -3);
  EXPECT_EQ(values.text, " 7 eggs");
}

TEST(SettingRowOf, NumbersThatDoNotFitLeaveTheirVariable) {
  Values values;
  SetFromText(values, kNarrow, "32768");
  SetFromText(values, kWide, "2147483648");
  EXPECT_EQ(values.narrow, 1);
  EXPECT_EQ(values.wide, 70000);
}

TEST(SettingsTable, RowsAreFoundByTheirNameInAnyLetterCase) {
  for (const SettingRow& row : SettingsTable()) EXPECT_EQ(FindSetting(row.value_name), &row);
  EXPECT_EQ(FindSetting("stopnumber"), FindSetting("StopNumber"));
  EXPECT_EQ(FindSetting("ProjectNum"), nullptr);
  EXPECT_EQ(FindSetting(""), nullptr);
}

}  // namespace
}  // namespace quenlar
