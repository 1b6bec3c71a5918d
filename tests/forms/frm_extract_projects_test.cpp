// The project list, as the main window does it.
#include <gmock/gmock.h>

#include "saved_projects.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

class MainWindowProjects : public SavedProjectsTest {};

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

TEST_F(MainWindowProjects, AProjectThatMemoryDoesNotHoldIsToldAndBeginsOnceItDoes) {
  PutFiles("b_test");
  StartWith({"www.a.test"});
  loop.OnPump([] { throw std::bad_alloc(); });
  Type("www.b.test");
  EXPECT_THAT(boxes.texts(), ElementsAre("There is not enough memory !"));
  EXPECT_TRUE(extract.cmdExtract.enabled());
  boxes.shown.clear();
  extract.cmdExtract.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("There is not enough memory !")) << "told once";
  EXPECT_FALSE(tray.tmrExtract.enabled());
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_TRUE(extract.cmbURL.enabled());
  bool pumped = false;
  loop.OnPump([&] {
    pumped = true;
    EXPECT_FALSE(extract.cmbURL.enabled()) << "nobody puts another project in its place";
  });
  extract.cmdExtract.Click();
  EXPECT_TRUE(pumped);
  loop.OnPump({});
  EXPECT_TRUE(tray.tmrExtract.enabled());
  EXPECT_EQ(extract.lstMail.rows(), 1u);
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

}  // namespace
}  // namespace quenlar
