// The upgrade dialog, both ways out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "state/settings.h"
#include "window/program.h"

namespace quenlar::window_test {
namespace {

struct UpgradeTest : testing::Test {
  Site site;
  Program program;
  Window dialog;

  void StartWithPublished(const std::string& page) {
    site.SetPage(kUpgradePage, page);
    program.SetProxy(site);
    program.Start();
  }
  void WaitForDialog() {
    dialog = program.WaitForWindow("Brenvy Quenlar Pro 3.0 Upgrade");
    ASSERT_TRUE(dialog);
  }
};

TEST_F(UpgradeTest, UpgradeNextTimeClosesTheDialogAndStoresNothing) {
  StartWithPublished("3.1beta\r\nmore");
  WaitForDialog();
  EXPECT_EQ(dialog.Control("lblVersion").Text(), "New Version published");
  EXPECT_TRUE(dialog.Control("optUpgrade0").Checked());
  EXPECT_TRUE(program.Main().Enabled());
  dialog.Control("optUpgrade1").Click();
  ASSERT_TRUE(WaitUntil([&] { return dialog.Control("optUpgrade1").Checked(); }));
  dialog.Control(IDOK).Click();
  ASSERT_TRUE(WaitUntil([&] { return !dialog; }));
  EXPECT_TRUE(program.Running());
  EXPECT_EQ(StoredSettings()["NeverUpgrade"], "0");
}

TEST_F(UpgradeTest, UpgradeNowStartsTheUpgraderAndEndsTheProgram) {
  program.TakeIn(QUENLAR_UPGRADER, "Upgrade.exe");
  StartWithPublished("4\r\n");
  WaitForDialog();
  dialog.Control(IDOK).Click();
  ASSERT_TRUE(program.WaitForEnd());
  EXPECT_EQ(program.ExitStatus(), 0u);
  EXPECT_TRUE(WaitUntil([&] { return program.ReadFile("Upgrade.txt") == std::string(kInstallerPage) + "\n"; }));
}

TEST_F(UpgradeTest, UpgradeNowEndsTheProgramWithoutAnUpgraderToo) {
  StartWithPublished("4\r\n");
  WaitForDialog();
  dialog.Control(IDOK).Click();
  ASSERT_TRUE(program.WaitForEnd());
  EXPECT_EQ(program.ExitStatus(), 0u);
}

TEST_F(UpgradeTest, TheOwnVersionShowsNoDialog) {
  StartWithPublished("3.0\r\n");
  ASSERT_TRUE(WaitUntil([&] { return site.WasAskedFor(kUpgradePage); }));
  // Whatever the page leads to has happened when a later page of a run has been dealt with.
  program.Main().Control("cmbURL").Type("www.none.example");
  program.Main().Control("cmdExtract").Click();
  ASSERT_TRUE(program.Answer("All links have been parsed !"));
  EXPECT_FALSE(program.Find("Brenvy Quenlar Pro 3.0 Upgrade"));
}

TEST_F(UpgradeTest, WhoNeverWantsToUpgradeIsNotAsked) {
  StoreDefaultsWithoutUpgradeCheck();
  StartWithPublished("4\r\n");
  program.Main().Control("cmbURL").Type("www.none.example");
  // A run ends after at least one tick of the alarm clock, which would have asked.
  const ULONGLONG begun = GetTickCount64();
  ASSERT_TRUE(WaitUntil([&] { return GetTickCount64() - begun > 2500; }));
  program.Main().Control("cmdExtract").Click();
  ASSERT_TRUE(program.Answer("All links have been parsed !"));
  EXPECT_FALSE(site.WasAskedFor(kUpgradePage));
}

}  // namespace
}  // namespace quenlar::window_test
