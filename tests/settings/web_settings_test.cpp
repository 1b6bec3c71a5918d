#include "settings/web_settings.h"

#include <gtest/gtest.h>

#include "settings/web_checks.h"
#include "state/settings.h"
#include "support/fake_registry.h"

namespace quenlar {
namespace {

// A value that people may set and that is not the one of a first start.
std::string OtherValue(const WebRow& row) {
  if (std::holds_alternative<std::string WebSettings::*>(row.variable)) return "https://me.example/why";
  const std::string first_start = SettingText(WebSettings(), row);
  return std::to_string(first_start == std::to_string(row.highest) ? row.lowest : row.highest);
}

TEST(WebSettingsRows, AreThoseOfAFirstStartWhereNothingIsStored) {
  const FakeRegistry registry;
  const WebSettings settings = LoadWebSettings(registry);
  for (const WebRow& row : WebSettingsTable()) {
    EXPECT_EQ(SettingText(settings, row), SettingText(WebSettings(), row)) << row.value_name;
  }
}

TEST(WebSettingsRows, AreStoredAndLoadedUnderAKeyOfTheirOwn) {
  FakeRegistry registry;
  WebSettings settings;
  for (const WebRow& row : WebSettingsTable()) SetFromText(settings, row, OtherValue(row));
  ASSERT_TRUE(StoreWebSettings(registry, settings).ok());
  EXPECT_FALSE(registry.KeyExists(kProjectKey));
  const WebSettings loaded = LoadWebSettings(registry);
  for (const WebRow& row : WebSettingsTable()) {
    EXPECT_EQ(registry.Stored(kWebKey, row.value_name), OtherValue(row)) << row.value_name;
    EXPECT_EQ(SettingText(loaded, row), OtherValue(row)) << row.value_name;
  }
}

TEST(WebSettingsRows, AreWrittenOnlyWhereTheyDiffer) {
  FakeRegistry registry;
  WebSettings settings;
  settings.contact = "https://me.example/";
  ASSERT_TRUE(StoreWebSettings(registry, settings).ok());
  for (const WebRow& row : WebSettingsTable()) {
    EXPECT_EQ(registry.ValueExists(kWebKey, row.value_name), std::string_view(row.value_name) == "Contact")
        << row.value_name;
  }
}

TEST(WebSettingsRows, OutOfTheirBoundsCountAsThoseOfAFirstStart) {
  for (const WebRow& row : WebSettingsTable()) {
    if (std::holds_alternative<std::string WebSettings::*>(row.variable)) continue;
    for (const std::int64_t number : {std::int64_t{row.lowest} - 1, std::int64_t{row.highest} + 1}) {
      FakeRegistry registry;
      registry.SaveRegValue(kWebKey, row.value_name, std::to_string(number));
      EXPECT_EQ(SettingText(LoadWebSettings(registry), row), SettingText(WebSettings(), row)) << row.value_name;
    }
  }
}

TEST(WebSettingsRows, AreFoundByTheirNumber) {
  EXPECT_STREQ(RowOf(&WebSettings::depth).value_name, "Depth");
  EXPECT_STREQ(RowOf(&WebSettings::pause).value_name, "Pause");
}

TEST(WebChecks, TakeAServiceThatIsAWebAddress) {
  for (const char* good : {"http://search.example", "https://search.example:8443/find", "HTTP://[::1]:8080/"}) {
    EXPECT_EQ(CheckServiceUrl(good), "") << good;
  }
  for (const char* bad : {"", "search.example", "ftp://search.example", "https://", "http://a b/", "http://x:99999"}) {
    EXPECT_NE(CheckServiceUrl(bad), "") << bad;
  }
  EXPECT_NE(CheckServiceUrl("https://search.example/" + std::string(300, 'x')), "");
}

TEST(WebChecks, TakeAContactThatAHeaderCanHold) {
  for (const char* good : {"https://me.example/why", "me@home.example"}) EXPECT_EQ(CheckContact(good), "") << good;
  for (const std::string& bad : {std::string(), std::string("a b"), std::string("a(b"), std::string("a\\b"),
                                 std::string("\xC3\xA4@b.example"), std::string(201, 'x')}) {
    EXPECT_NE(CheckContact(bad), "") << bad;
  }
}

}  // namespace
}  // namespace quenlar
