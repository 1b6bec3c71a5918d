#include "forms/frm_dialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/recorders.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct UpgradeDialogTest : testing::Test {
  Settings settings;
  RecordingShell shell;
  Installation installation;
  int ends = 0;
  std::size_t started_before_end = 0;
  frmDialog dialog{settings, shell, installation, [this] {
                     ++ends;
                     started_before_end = shell.started.size();
                   }};
  UpgradeDialogTest() {
    installation.program_folder = "C:\\Quenlar";
    installation.separator = '\\';
  }
};

TEST_F(UpgradeDialogTest, HasItsDesignTexts) {
  EXPECT_EQ(dialog.caption(), "Quenlar Upgrade Option");
  EXPECT_EQ(dialog.lblVersion.text(), "New Version published");
  EXPECT_EQ(dialog.optUpgrade[0].text(), "Upgrade now");
  EXPECT_EQ(dialog.optUpgrade[1].text(), "Upgrade next time");
  EXPECT_EQ(dialog.txtDumb.text(), "Text1");
}

TEST_F(UpgradeDialogTest, LoadSetsTheCaptionAndSelectsUpgradeNow) {
  dialog.Show();
  EXPECT_EQ(dialog.caption(), "Brenvy Quenlar Pro 3.0 Upgrade");
  EXPECT_TRUE(dialog.optUpgrade[0].selected());
  EXPECT_FALSE(dialog.optUpgrade[1].selected());
}

TEST_F(UpgradeDialogTest, EitherOptionMovesTheFocusToTheDumbBox) {
  dialog.Show();
  int focused = 0;
  dialog.txtDumb.changed = [&](ui::Aspect aspect) { focused += aspect == ui::Aspect::kFocus; };
  dialog.optUpgrade[1].Select();
  EXPECT_EQ(focused, 1);
  dialog.optUpgrade[0].Select();
  EXPECT_EQ(focused, 2);
  EXPECT_FALSE(dialog.optUpgrade[1].selected());
}

TEST_F(UpgradeDialogTest, OpeningLeavesTheFocusToTheWindow) {
  int focused = 0;
  dialog.txtDumb.changed = [&](ui::Aspect aspect) { focused += aspect == ui::Aspect::kFocus; };
  dialog.Show();
  EXPECT_EQ(focused, 0);
}

TEST_F(UpgradeDialogTest, UpgradeNowStartsTheUpgraderAndThenEndsTheProgram) {
  dialog.Show();
  dialog.cmdOK.Click();
  ASSERT_EQ(shell.started.size(), 1u);
  EXPECT_EQ(shell.started[0], std::string("C:\\Quenlar\\Upgrade.exe ") + kInstallerPage);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(started_before_end, 1u);
  EXPECT_EQ(settings.NeverUpgradeFlag, 0);
}

TEST_F(UpgradeDialogTest, AnUpgraderThatCannotBeStartedEndsTheProgramAllTheSame) {
  shell.start_status = Status(StatusKind::kNotFound, "Upgrade.exe: not there");
  dialog.Show();
  dialog.cmdOK.Click();
  EXPECT_EQ(ends, 1);
}

TEST_F(UpgradeDialogTest, UpgradeNextTimeSetsTheFlagInMemoryAndCloses) {
  dialog.Show();
  dialog.optUpgrade[1].Select();
  dialog.cmdOK.Click();
  EXPECT_EQ(settings.NeverUpgradeFlag, 1);
  EXPECT_FALSE(dialog.loaded());
  EXPECT_THAT(shell.started, IsEmpty());
  EXPECT_EQ(ends, 0);
}

TEST_F(UpgradeDialogTest, TheCloseBoxChangesNothing) {
  dialog.Show();
  dialog.optUpgrade[1].Select();
  dialog.Close();
  EXPECT_EQ(settings.NeverUpgradeFlag, 0);
  EXPECT_EQ(ends, 0);
  dialog.Show();
  EXPECT_TRUE(dialog.optUpgrade[0].selected()) << "selected whenever the dialog opens";
}

}  // namespace
}  // namespace quenlar
