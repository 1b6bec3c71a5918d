#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "forms/frm_about.h"
#include "forms/frm_help.h"
#include "state/settings.h"
#include "support/recorders.h"

namespace quenlar {
namespace {

using testing::ElementsAre;

struct BoxesTest : testing::Test {
  RecordingShell shell;
  frmAbout about{shell};
  frmHelp help{shell};
};

TEST_F(BoxesTest, TheAboutBoxNamesProductAndPage) {
  about.Show();
  EXPECT_EQ(about.caption(), "About Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(about.lblSoftwareVersion.text(), "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(about.lblNote.text(), "You can visit web page : ");
  EXPECT_EQ(about.lblWebPage.text(), kHomePage);
}

TEST_F(BoxesTest, TheHelpBoxHasItsTexts) {
  help.Show();
  EXPECT_EQ(help.caption(), "Brenvy Quenlar Pro Online Help");
  EXPECT_EQ(help.Label1.text(), "Brenvy Quenlar Pro Help");
  EXPECT_EQ(help.Label2.text(), "Connect to the Internet to view the online help files");
  EXPECT_EQ(help.lblHelp.text(), "Open Online Help");
}

TEST_F(BoxesTest, ALinkUnderThePointerIsMagentaAndUnderlined) {
  for (ui::Label* link : {&about.lblWebPage, &help.lblHelp}) {
    link->MouseMove();
    EXPECT_EQ(link->color(), 0xFF00FFu);
    EXPECT_TRUE(link->underlined());
  }
}

TEST_F(BoxesTest, MovingThePointerAcrossTheLinkAndOutAgainLeavesItBlueAndNotUnderlined) {
  for (ui::Label* link : {&about.lblWebPage, &help.lblHelp}) {
    EXPECT_EQ(link->color(), 0xFF0000u) << "a link from the beginning";
    link->MouseMove();
    link->MouseMove();
    link->MouseLeave();
    EXPECT_EQ(link->color(), 0xFF0000u);
    EXPECT_FALSE(link->underlined());
  }
}

TEST_F(BoxesTest, ClickingTheAboutLinkOpensTheHomePageAndLeavesTheBoxOpen) {
  about.Show();
  about.lblWebPage.MouseMove();
  about.lblWebPage.Click();
  EXPECT_THAT(shell.opened, ElementsAre(kHomePage));
  EXPECT_FALSE(about.lblWebPage.underlined());
  EXPECT_TRUE(about.loaded());
}

TEST_F(BoxesTest, TheNextMoveAfterAClickUnderlinesTheLinkAgain) {
  about.Show();
  about.lblWebPage.MouseMove();
  about.lblWebPage.Click();
  about.lblWebPage.MouseMove();
  EXPECT_EQ(about.lblWebPage.color(), 0xFF00FFu);
  EXPECT_TRUE(about.lblWebPage.underlined());
}

TEST_F(BoxesTest, ClickingTheHelpLinkOpensTheHomePageAndClosesTheBox) {
  help.Show();
  help.lblHelp.MouseMove();
  help.lblHelp.Click();
  EXPECT_THAT(shell.opened, ElementsAre(kHomePage));
  EXPECT_FALSE(help.lblHelp.underlined());
  EXPECT_FALSE(help.loaded());
}

TEST_F(BoxesTest, ABoxThatClosedUnderThePointerOpensWithItsLinkBlueAndNotUnderlined) {
  help.Show();
  help.lblHelp.MouseMove();
  help.lblHelp.Click();
  about.Show();
  about.lblWebPage.MouseMove();
  about.Close();
  help.Show();
  about.Show();
  for (const ui::Label* link : {&about.lblWebPage, &help.lblHelp}) {
    EXPECT_EQ(link->color(), 0xFF0000u) << link->name();
    EXPECT_FALSE(link->underlined()) << link->name();
  }
}

TEST_F(BoxesTest, OkClosesTheAboutBox) {
  about.Show();
  about.cmdOK.Click();
  EXPECT_FALSE(about.loaded());
}

}  // namespace
}  // namespace quenlar
