// The report's export, as the main window does it.
#include <gmock/gmock.h>

#include "saved_projects.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MainWindowExport : public SavedProjectsTest {};

TEST_F(MainWindowExport, ReportRightAfterAPickShowsThePickedProject) {
  PutFiles("a_test");
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test"});
  extract.cmbURL.UserPick(1);
  extract.cmdExport.Click();
  ASSERT_EQ(shell.edited.size(), 1u);
  EXPECT_EQ(shell.edited[0], "/home/report/b_test.rpt");
}

TEST_F(MainWindowExport, ExportWritesTheReportAndOpensTheEditor) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  engine.project.found.Add({"http://a.test/", "new@a.test", ""});
  extract.cmdExport.Click();
  EXPECT_EQ(files.Contents("/home/report/a_test.rpt"), HeaderLine() + "\r\n\r\na_test@kept.test\r\nnew@a.test\r\n");
  ASSERT_EQ(shell.edited.size(), 1u);
  EXPECT_EQ(shell.edited[0], "/home/report/a_test.rpt");
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(MainWindowExport, AReportPathThatContainsBlanksIsPassedUnquoted) {
  StartWith({});
  Type("www.a.test");
  engine.project.ReportFile = "/home/report/my cars.rpt";
  engine.project.found.Add({"", "new@a.test", ""});
  extract.cmdExport.Click();
  ASSERT_EQ(shell.edited.size(), 1u);
  EXPECT_EQ(shell.edited[0], "/home/report/my cars.rpt");
}

TEST_F(MainWindowExport, ExportingTwiceRewritesTheSameReportFileEachTime) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  extract.cmdExport.Click();
  const auto first = files.AllFiles();
  files.Put("/home/report/a_test.rpt", "changed by somebody");
  extract.cmdExport.Click();
  EXPECT_EQ(files.AllFiles(), first);
  EXPECT_EQ(files.Contents("/home/report/a_test.rpt"), HeaderLine() + "\r\n\r\na_test@kept.test\r\n");
  EXPECT_EQ(shell.edited.size(), 2u);
}

TEST_F(MainWindowExport, WithoutAddressesExportSaysSoAndWritesNothing) {
  StartWith({});
  Type("www.a.test");
  extract.cmdExport.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("No eMail address found"));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_FALSE(files.FileExists("/home/report/a_test.rpt"));
  EXPECT_THAT(shell.edited, IsEmpty());
}

TEST_F(MainWindowExport, ExportMovesTheFocusAwayAndLeavesItsButtonAsItWas) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  std::vector<std::string> order;
  extract.cmdExport.changed = [&](ui::Aspect) { order.push_back(extract.cmdExport.enabled() ? "on" : "off"); };
  extract.lstMail.changed = [&](ui::Aspect aspect) {
    if (aspect == ui::Aspect::kFocus) order.push_back("focus on the list");
  };
  extract.cmdExport.Click();
  EXPECT_THAT(order, ElementsAre("off", "on", "focus on the list"));
}

TEST_F(MainWindowExport, AReportThatCannotBeWrittenIsToldAndNoOldOneIsShown) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  files.SetFreeSpace(0);
  extract.cmdExport.Click();
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_TRUE(boxes.shown[0].text.ends_with(" !"));
  EXPECT_EQ(files.Contents("/home/report/a_test.rpt"), "a_test@kept.test\r\n");
  EXPECT_THAT(shell.edited, IsEmpty());
}

TEST_F(MainWindowExport, TooManyRecordsAreAnOverflowInAMessageBox) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  for (int i = 0; i < 32768; ++i) engine.project.found.Add({"", "u" + std::to_string(i) + "@a.test", ""});
  extract.cmdExport.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("Overflow !"));
}

TEST_F(MainWindowExport, AnEditorThatCannotBeStartedIsTold) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  shell.edit_status = Status(StatusKind::kNotFound, "notepad.exe: not there");
  extract.cmdExport.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("notepad.exe: not there !"));
}

TEST_F(MainWindowExport, ExportingAProjectThatIsBeingLoadedHoldsAllOfIt) {
  PutFiles("a_test");
  PutFiles("b_test");
  StartWith({"www.a.test"});
  loop.OnPump([this] {
    loop.OnPump({});
    ASSERT_EQ(engine.project.found.Count(), 0u);
    extract.cmdExport.Click();
  });
  Type("www.b.test");
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_EQ(files.Contents("/home/report/b_test.rpt"), HeaderLine() + "\r\n\r\nb_test@kept.test\r\n");
  ASSERT_EQ(shell.edited.size(), 1u);
  EXPECT_EQ(shell.edited[0], "/home/report/b_test.rpt");
}

TEST_F(MainWindowExport, NoRunBeginsInsideAnExport) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  engine.settings.ExportMode = 1;
  bool asked = false;
  loop.OnPump([&] {
    if (!std::exchange(asked, true)) extract.cmdExtract.Click();
  });
  extract.cmdExport.Click();
  EXPECT_TRUE(asked);
  EXPECT_FALSE(tray.tmrExtract.enabled());
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  EXPECT_EQ(shell.edited.size(), 1u);
}

TEST_F(MainWindowExport, AProjectThatIsDeletedWhileItIsExportedIsNotShown) {
  PutFiles("a_test");
  StartWith({"www.a.test", "www.b.test"});
  engine.settings.ExportMode = 1;
  loop.OnPump([this] {
    loop.OnPump({});
    Delete();
  });
  extract.cmdExport.Click();
  EXPECT_FALSE(files.FileExists("/home/report/a_test.rpt"));
  EXPECT_THAT(Entries(), ElementsAre("www.b.test"));
  EXPECT_THAT(shell.edited, IsEmpty());
}

TEST_F(MainWindowExport, ASecondClickWhileTheReportIsWrittenIsPassedOver) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  engine.settings.ExportMode = 1;
  int clicks = 0;
  loop.OnPump([&] {
    if (++clicks < 3) extract.cmdExport.Click();
  });
  extract.cmdExport.Click();
  loop.OnPump({});
  EXPECT_GT(clicks, 0);
  EXPECT_EQ(shell.edited.size(), 1u);
}

}  // namespace
}  // namespace quenlar
