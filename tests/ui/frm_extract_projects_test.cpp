// The project list and the report's export, as the main window does them.
#include <gmock/gmock.h>

#include "project/data_file.h"
#include "support/program_world.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class MainWindowProjects : public ProgramTest {
 protected:
  void StartWith(const std::vector<std::string>& projects) {
    StoreProjects(projects);
    Start();
  }
  void PutFiles(const std::string& name) {
    files.AddFolder("/home/data");
    files.AddFolder("/home/report");
    files.Put("/home/data/" + name + ".dat", HeaderLine() + "\r\n");
    files.Put("/home/report/" + name + ".rpt", name + "@kept.test\r\n");
  }
  void Delete(BoxAnswer answer = BoxAnswer::kYes) {
    boxes.answers = {answer};
    extract.cmdDelete.Click();
  }
  [[nodiscard]] const std::vector<std::string>& Entries() const { return program.engine.project_list.entries(); }
};

// --- Adding ---

TEST_F(MainWindowProjects, StartingARunPutsTheProjectOnTopOfListBoxAndRegistry) {
  StartWith({"www.old.test"});
  Type("www.new.test");
  extract.cmdExtract.Click();
  EXPECT_THAT(Entries(), ElementsAre("www.new.test", "www.old.test"));
  EXPECT_THAT(extract.cmbURL.items(), ElementsAre("www.new.test", "www.old.test"));
  EXPECT_EQ(extract.cmbURL.text(), "www.new.test");
  EXPECT_EQ(Stored("ProjectNum"), "2");
  EXPECT_EQ(Stored("Project1"), "www.new.test");
  EXPECT_EQ(Stored("Project2"), "www.old.test");
  EXPECT_EQ(Stored("Export"), "0");
  EXPECT_EQ(Stored("NeverUpgrade"), "0") << "every rewrite resets it";
}

TEST_F(MainWindowProjects, AKeywordIsRecordedWithTheSuffixOfItsLanguage) {
  StoreProjects({});
  Store("Search", "2");
  Start();
  Type("red cars");
  extract.cmdExtract.Click();
  EXPECT_THAT(Entries(), ElementsAre("red cars_de"));
  EXPECT_EQ(extract.cmbURL.text(), "red cars_de");
  EXPECT_EQ(engine.project.DataFile, "/home/data/red_cars_de.dat") << "opened under its new text";
}

TEST_F(MainWindowProjects, RunningTheSameKeywordTwiceAddsItOnce) {
  StartWith({});
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{.body = "no results"}; });
  RunProject("cars");
  RunProject("cars");
  EXPECT_THAT(Entries(), ElementsAre("cars_en"));
}

TEST_F(MainWindowProjects, TheSameKeywordWithAndWithoutItsSuffixIsOneEntry) {
  StartWith({});
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{.body = "no results"}; });
  RunProject("cars_en");
  RunProject("cars");
  EXPECT_THAT(Entries(), ElementsAre("cars_en"));
  EXPECT_EQ(extract.cmbURL.text(), "cars") << "an entry that is there leaves the box as it is";
}

TEST_F(MainWindowProjects, AnEntryThatIsThereStaysWhereItIsAndNothingIsWritten) {
  StartWith({"www.a.test", "www.b.test"});
  const int changes = registry.changes();
  Type("www.b.test");
  extract.cmdExtract.Click();
  EXPECT_THAT(Entries(), ElementsAre("www.a.test", "www.b.test"));
  EXPECT_EQ(registry.changes(), changes);
  EXPECT_EQ(engine.project.StartURL, "http://www.b.test");
}

// --- Picking ---

TEST_F(MainWindowProjects, APickedProjectGoesToTheTopAndIsOpenedByTheTimer) {
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test", "www.c.test"});
  const int changes = registry.changes();
  extract.cmbURL.UserPick(1);
  EXPECT_THAT(Entries(), ElementsAre("www.b.test", "www.a.test", "www.c.test"));
  EXPECT_THAT(extract.cmbURL.items(), ElementsAre("www.b.test", "www.a.test", "www.c.test"));
  EXPECT_EQ(registry.changes(), changes) << "the registry is not rewritten";
  EXPECT_TRUE(extract.tmrText.enabled());
  EXPECT_EQ(engine.project.StartURL, "http://www.a.test");
  loop.Advance(milliseconds(200));
  EXPECT_FALSE(extract.tmrText.enabled());
  EXPECT_EQ(extract.cmbURL.text(), "www.b.test");
  EXPECT_EQ(engine.project.StartURL, "http://www.b.test");
  EXPECT_EQ(extract.lstMail.rows(), 1u);
  EXPECT_EQ(Panel(1), "Ready now !");
}

TEST_F(MainWindowProjects, ExtractRightAfterAPickRunsThePickedProject) {
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test"});
  extract.cmbURL.UserPick(1);
  extract.cmdExtract.Click();
  EXPECT_EQ(extract.cmbURL.text(), "www.b.test");
  EXPECT_EQ(engine.project.StartURL, "http://www.b.test");
  EXPECT_EQ(extract.lstMail.rows(), 1u);
  EXPECT_FALSE(extract.tmrText.enabled());
  EXPECT_TRUE(tray.tmrExtract.enabled());
  EXPECT_EQ(extract.cmdExtract.text(), "&Stop");
}

TEST_F(MainWindowProjects, NoRunBeginsInsideTheOpeningOfAPickedProject) {
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test"});
  extract.cmbURL.UserPick(1);
  loop.OnPump([this] {
    loop.OnPump({});
    Type("www.c.test");  // takes the opening over, and ends it
    EXPECT_FALSE(extract.cmdExtract.enabled());
    extract.cmdExtract.Click();
    EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
    EXPECT_FALSE(tray.tmrExtract.enabled());
  });
  extract.cmdExtract.Click();
  EXPECT_EQ(engine.project.StartURL, "http://www.c.test");
  EXPECT_EQ(extract.cmdExtract.text(), "&Stop");
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_THAT(Entries(), ElementsAre("www.c.test", "www.b.test", "www.a.test"));
}

TEST_F(MainWindowProjects, ReportRightAfterAPickShowsThePickedProject) {
  PutFiles("a_test");
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test"});
  extract.cmbURL.UserPick(1);
  extract.cmdExport.Click();
  ASSERT_EQ(shell.started.size(), 1u);
  EXPECT_THAT(shell.started[0].command_line, testing::EndsWith("/home/report/b_test.rpt"));
}

TEST_F(MainWindowProjects, DeleteRightAfterAPickDeletesThePickedProject) {
  PutFiles("a_test");
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test"});
  extract.cmbURL.UserPick(1);
  Delete();
  EXPECT_FALSE(files.FileExists("/home/data/b_test.dat"));
  EXPECT_TRUE(files.FileExists("/home/data/a_test.dat"));
  EXPECT_THAT(Entries(), ElementsAre("www.a.test"));
}

TEST_F(MainWindowProjects, TheTimerOfAnEmptyListOnlyStops) {
  StartWith({});
  extract.tmrText.SetEnabled(true);
  loop.Advance(milliseconds(200));
  EXPECT_FALSE(extract.tmrText.enabled());
  EXPECT_EQ(extract.cmbURL.text(), "");
}

// --- Deleting ---

TEST_F(MainWindowProjects, DeletingAsksFirst) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  Delete(BoxAnswer::kNo);
  ASSERT_THAT(boxes.texts(), ElementsAre("Are you sure to delete it ?"));
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(boxes.shown[0].buttons, BoxButtons::kYesNo);
}

TEST_F(MainWindowProjects, ARefusedConfirmationLeavesFilesListAndRegistryUntouched) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  const int changes = registry.changes();
  Delete(BoxAnswer::kNo);
  EXPECT_TRUE(files.FileExists("/home/data/a_test.dat"));
  EXPECT_TRUE(files.FileExists("/home/report/a_test.rpt"));
  EXPECT_THAT(Entries(), ElementsAre("www.a.test"));
  EXPECT_EQ(registry.changes(), changes);
  EXPECT_EQ(extract.lstMail.rows(), 1u);
}

TEST_F(MainWindowProjects, ADeletedProjectLosesItsFilesAndItsEntryAndTheNewestOneOpens) {
  PutFiles("a_test");
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test", "www.c.test"});
  Type("www.b.test");
  Delete();
  EXPECT_FALSE(files.FileExists("/home/data/b_test.dat"));
  EXPECT_FALSE(files.FileExists("/home/report/b_test.rpt"));
  EXPECT_TRUE(files.FileExists("/home/data/a_test.dat"));
  EXPECT_THAT(Entries(), ElementsAre("www.a.test", "www.c.test"));
  EXPECT_THAT(extract.cmbURL.items(), ElementsAre("www.a.test", "www.c.test"));
  EXPECT_EQ(extract.cmbURL.text(), "www.a.test");
  EXPECT_EQ(engine.project.StartURL, "http://www.a.test");
  EXPECT_TRUE(extract.cmdDelete.enabled());
  EXPECT_EQ(extract.lstMail.CellText(0, 1), "a_test@kept.test");
}

TEST_F(MainWindowProjects, ADeleteLeavesExportAndTheFiltersOutOfTheRegistry) {
  PutFiles("a_test");
  StoreProjects({"www.a.test", "www.b.test"});
  for (const char* name : {"Export", "RemoveFilter", "ExtractFilter"}) Store(name, "1");
  Start();
  Delete();
  for (const char* name : {"Export", "RemoveFilter", "ExtractFilter"}) EXPECT_EQ(Stored(name), "(none)") << name;
  EXPECT_EQ(Stored("ProjectNum"), "1");
  EXPECT_EQ(Stored("Project1"), "www.b.test");
}

TEST_F(MainWindowProjects, DeletingWhenTheListHasOneEntryEmptiesTheListAndRewritesTheKey) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  Delete();
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_THAT(extract.cmbURL.items(), IsEmpty());
  EXPECT_EQ(Stored("ProjectNum"), "0");
  EXPECT_EQ(Stored("Project1"), "(none)");
  EXPECT_FALSE(extract.cmdDelete.enabled());
  EXPECT_FALSE(extract.cmdExport.enabled());
  EXPECT_EQ(extract.lstMail.rows(), 0u);
  EXPECT_EQ(Panel(2), "0 Address");
  EXPECT_EQ(extract.cmbURL.text(), "www.a.test") << "no entry takes its place";
  EXPECT_EQ(engine.project.found.Count(), 0u) << "nothing of it comes back with the next run";
}

TEST_F(MainWindowProjects, DeletingAProjectWhoseTextIsNotInTheListRemovesTheOldestEntry) {
  PutFiles("other_test");
  PutFiles("b_test");
  StartWith({"www.a.test", "www.b.test"});
  Type("www.other.test");
  Delete();
  EXPECT_THAT(Entries(), ElementsAre("www.a.test"));
  EXPECT_FALSE(files.FileExists("/home/data/other_test.dat"));
  EXPECT_TRUE(files.FileExists("/home/data/b_test.dat")) << "the oldest project's files stay";
}

TEST_F(MainWindowProjects, FilesThatCannotBeDeletedAreToldAndTheEntryLeavesAllTheSame) {
  PutFiles("a_test");
  StartWith({"www.a.test", "www.b.test"});
  files.Protect("/home/data");
  Delete();
  EXPECT_THAT(Entries(), ElementsAre("www.b.test"));
  ASSERT_EQ(boxes.shown.size(), 2u);
  EXPECT_THAT(boxes.shown[1].text, testing::HasSubstr("a_test.dat"));
  EXPECT_FALSE(files.FileExists("/home/report/a_test.rpt"));
}

TEST_F(MainWindowProjects, ARunThatBeganBehindTheQuestionIsNotDeleted) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  boxes.while_shown = [this] {
    boxes.while_shown = {};
    extract.cmdExtract.Click();
  };
  Delete();
  EXPECT_TRUE(files.FileExists("/home/data/a_test.dat"));
  EXPECT_THAT(Entries(), ElementsAre("www.a.test"));
}

// --- Export ---

TEST_F(MainWindowProjects, ExportWritesTheReportAndOpensTheEditorWithoutTheFocus) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  engine.project.found.Add({"http://a.test/", "new@a.test", ""});
  extract.cmdExport.Click();
  EXPECT_EQ(files.Contents("/home/report/a_test.rpt"), HeaderLine() + "\r\n\r\na_test@kept.test\r\nnew@a.test\r\n");
  ASSERT_EQ(shell.started.size(), 1u);
  EXPECT_EQ(shell.started[0].command_line, "C:\\Windows\\system32\\notepad.exe /home/report/a_test.rpt");
  EXPECT_EQ(shell.started[0].mode, Shell::WindowMode::kNormalWithoutFocus);
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(MainWindowProjects, AReportPathThatContainsBlanksIsPassedUnquoted) {
  StartWith({});
  Type("www.a.test");
  engine.project.ReportFile = "/home/report/my cars.rpt";
  engine.project.found.Add({"", "new@a.test", ""});
  extract.cmdExport.Click();
  ASSERT_EQ(shell.started.size(), 1u);
  EXPECT_EQ(shell.started[0].command_line, "C:\\Windows\\system32\\notepad.exe /home/report/my cars.rpt");
}

TEST_F(MainWindowProjects, ExportingTwiceRewritesTheSameReportFileEachTime) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  extract.cmdExport.Click();
  const auto first = files.AllFiles();
  files.Put("/home/report/a_test.rpt", "changed by somebody");
  extract.cmdExport.Click();
  EXPECT_EQ(files.AllFiles(), first);
  EXPECT_EQ(files.Contents("/home/report/a_test.rpt"), HeaderLine() + "\r\n\r\na_test@kept.test\r\n");
  EXPECT_EQ(shell.started.size(), 2u);
}

TEST_F(MainWindowProjects, WithoutAddressesExportSaysSoAndWritesNothing) {
  StartWith({});
  Type("www.a.test");
  extract.cmdExport.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("No eMail address found"));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_FALSE(files.FileExists("/home/report/a_test.rpt"));
  EXPECT_THAT(shell.started, IsEmpty());
}

TEST_F(MainWindowProjects, ExportMovesTheFocusAwayAndLeavesItsButtonAsItWas) {
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

TEST_F(MainWindowProjects, AReportThatCannotBeWrittenIsToldAndNoOldOneIsShown) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  files.SetFreeSpace(0);
  extract.cmdExport.Click();
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_TRUE(boxes.shown[0].text.ends_with(" !"));
  EXPECT_EQ(files.Contents("/home/report/a_test.rpt"), "a_test@kept.test\r\n");
  EXPECT_THAT(shell.started, IsEmpty());
}

TEST_F(MainWindowProjects, TooManyRecordsAreAnOverflowInAMessageBox) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  for (int i = 0; i < 32768; ++i) engine.project.found.Add({"", "u" + std::to_string(i) + "@a.test", ""});
  extract.cmdExport.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("Overflow !"));
}

TEST_F(MainWindowProjects, AnEditorThatCannotBeStartedIsTold) {
  PutFiles("a_test");
  StartWith({"www.a.test"});
  shell.start_status = Status(StatusKind::kNotFound, "notepad.exe: not there");
  extract.cmdExport.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("notepad.exe: not there !"));
}

TEST_F(MainWindowProjects, ExportingAProjectThatIsBeingLoadedHoldsAllOfIt) {
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
  ASSERT_EQ(shell.started.size(), 1u);
  EXPECT_THAT(shell.started[0].command_line, testing::EndsWith("/home/report/b_test.rpt"));
}

TEST_F(MainWindowProjects, NoRunBeginsInsideAnExport) {
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
  EXPECT_EQ(shell.started.size(), 1u);
}

TEST_F(MainWindowProjects, AProjectThatIsDeletedWhileItIsExportedIsNotShown) {
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
  EXPECT_THAT(shell.started, IsEmpty());
}

TEST_F(MainWindowProjects, ASecondClickWhileTheReportIsWrittenIsPassedOver) {
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
  EXPECT_EQ(shell.started.size(), 1u);
}

}  // namespace
}  // namespace quenlar
