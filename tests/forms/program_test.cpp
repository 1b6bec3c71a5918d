// Start-up, exit, and the program as a whole.
#include "forms/program.h"

#include <set>

#include <gmock/gmock.h>

#include "engine/home.h"
#include "project/data_file.h"
#include "run/end_reasons.h"
#include "support/program_world.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class ProgramStart : public ProgramTest {
 protected:
  void PutFilterFile(const std::string& words) {
    files.AddFolder("/home/data");
    files.Put("/home/data/ExtractFilter.dat", "banner\r\n\r\n" + words);
  }
};

// --- A second program ---

TEST_F(ProgramStart, StartingTheProgramTwiceLeavesOneIconAndOneMainWindow) {
  another_instance = true;
  EXPECT_FALSE(program.Start());
  EXPECT_THAT(boxes.shown, IsEmpty()) << "the second one ends silently";
  EXPECT_EQ(desktop_icon().added, 0);
  EXPECT_FALSE(extract.loaded());
  EXPECT_FALSE(files.FolderExists("/home/data"));
  EXPECT_EQ(registry.changes(), 0);
  EXPECT_EQ(ends, 0);
}

TEST_F(ProgramStart, AProgramWhoseFolderAnotherOneUsesSaysSoAndWritesNothing) {
  const auto held = LockHome(files, engine.installation);
  ASSERT_TRUE(held.ok());
  EXPECT_FALSE(program.Start());
  EXPECT_THAT(boxes.texts(), ElementsAre("Another Quenlar is at work in /home !"));
  EXPECT_FALSE(files.FolderExists("/home/data"));
  EXPECT_EQ(registry.changes(), 0);
  EXPECT_EQ(desktop_icon().added, 0);
}

TEST_F(ProgramStart, TheFolderIsHeldAgainstOthersForAsLongAsTheProgramLives) {
  Start();
  const auto second = LockHome(files, engine.installation);
  ASSERT_FALSE(second.ok());
  EXPECT_EQ(second.status().kind(), StatusKind::kBusy);
}

// --- What start-up does ---

TEST_F(ProgramStart, MakesTheFoldersThatAreMissing) {
  Start();
  EXPECT_TRUE(files.FolderExists("/home/data"));
  EXPECT_TRUE(files.FolderExists("/home/report"));
}

TEST_F(ProgramStart, TheFirstStartWritesTheDefaults) {
  Start();
  EXPECT_EQ(Stored("ProjectNum"), "0");
  EXPECT_EQ(Stored("Correlation"), "1");
  EXPECT_EQ(Stored("StopNumber"), "99999");
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(ProgramStart, ALaterStartLoadsWhatIsStoredAndWritesNothing) {
  StoreProjects({"www.a.test"});
  Store("Search", "3");
  Store("StopNumber", "17");
  const int changes = registry.changes();
  Start();
  EXPECT_EQ(engine.settings.SearchLanguage, 3);
  EXPECT_EQ(engine.settings.StopNumber, 17);
  EXPECT_THAT(engine.project_list.entries(), ElementsAre("www.a.test"));
  EXPECT_EQ(registry.changes(), changes);
}

TEST_F(ProgramStart, ReadsTheFilterFile) {
  PutFilterFile("<r>cat</r>\r\n<e>dog</e>\r\n");
  Start();
  EXPECT_THAT(engine.filter.RemoveFilterWords, ElementsAre("cat"));
  EXPECT_EQ(engine.filter.ExtractFilterPattern, "(dog)");
}

TEST_F(ProgramStart, LoadsTheHiddenFormAndShowsTheMainWindow) {
  std::vector<std::string> order;
  extract.window.create = [&] { order.push_back("main window, icons " + std::to_string(desktop_icon().added)); };
  Start();
  EXPECT_THAT(order, ElementsAre("main window, icons 1"));
  EXPECT_TRUE(tray.loaded());
  EXPECT_FALSE(tray.shown());
  EXPECT_TRUE(extract.shown());
  EXPECT_FALSE(tray.mnuExtractor.enabled());
}

TEST_F(ProgramStart, AFilterWordThatIsNoPatternIsToldOnce) {
  PutFilterFile("<r>(</r>\r\n");
  Start();
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, HasSubstr("("));
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_TRUE(extract.shown());
}

TEST_F(ProgramStart, AFolderThatCannotBeMadeIsToldAndTheProgramGoesOn) {
  files.Put("/home/data", "a file");
  Start();
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, HasSubstr("/home/data"));
  EXPECT_TRUE(boxes.shown[0].text.ends_with(" !"));
  EXPECT_TRUE(extract.shown());
  extract.cmbURL.UserText("www.a.test");
  extract.cmdExtract.Click();
  EXPECT_EQ(boxes.shown.size(), 2u) << "a run that could not save its links does not begin";
  EXPECT_FALSE(tray.tmrExtract.enabled());
}

TEST_F(ProgramStart, AFolderThatCannotBeWrittenIsToldAndTheProgramGoesOn) {
  files.Protect("/home");
  Start();
  EXPECT_EQ(boxes.shown.size(), 1u);
  EXPECT_TRUE(extract.shown());
}

TEST_F(ProgramStart, AnExitBehindAStartMessageEndsTheProgram) {
  PutFilterFile("<r>(</r>\r\n");
  boxes.while_shown = [this] { tray.mnuExit.Click(); };
  EXPECT_FALSE(program.Start());
  EXPECT_EQ(ends, 1);
}

// --- Exit ---

TEST_F(ProgramStart, AnExitWhileAProjectIsBeingLoadedEndsTheProgram) {
  StoreProjects({});
  Start();
  files.Put("/home/report/a_test.rpt", "x@a.test\r\ny@a.test\r\n");
  loop.OnPump([this] {
    loop.OnPump({});
    tray.mnuExit.Click();
  });
  Type("www.a.test");
  EXPECT_EQ(ends, 1);
  EXPECT_FALSE(extract.loaded());
}

TEST_F(ProgramStart, DuringARunExitIsNotOffered) {
  StoreProjects({});
  fetcher.Serve("http://www.a.test", ScriptedAnswer{.body = "<p>x@a.test</p>", .delay = seconds(2)});
  Start();
  Type("www.a.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(1), [this] { EXPECT_FALSE(tray.mnuExit.enabled()); });
  FinishRun();
  EXPECT_TRUE(tray.mnuExit.enabled());
}

TEST_F(ProgramStart, AnUpgradeInTheMiddleOfARunSavesWhatItHasFoundAndHasStillToVisit) {
  StoreProjects({});
  fetcher.Serve("http://www.a.test", "<p>x@a.test</p><a href=\"/silent\">more</a>");
  Start();
  program.dialog.Show();
  Type("www.a.test");
  extract.cmdExtract.Click();
  bool ended_in_the_run = false;
  loop.Schedule(seconds(3), [&] {
    ended_in_the_run = engine.run.running;
    EXPECT_FALSE(files.FileExists("/home/report/a_test.rpt"));
    program.dialog.cmdOK.Click();
    EXPECT_THAT(files.Contents("/home/report/a_test.rpt").value_or(""), HasSubstr("x@a.test"));
    EXPECT_THAT(files.Contents("/home/data/a_test.dat").value_or(""), HasSubstr("\r\nhttp://www.a.test/silent\r\n"));
    extract.cmdExtract.Click();  // the process would be gone; here the run has to end
  });
  FinishRun();
  EXPECT_TRUE(ended_in_the_run);
  EXPECT_EQ(ends, 1);
}

TEST_F(ProgramStart, AnEndOfTheSessionWithoutARunWritesNothing) {
  StoreProjects({"www.a.test"});
  Start();
  const auto before = files.AllFiles();
  program.SaveRun();
  EXPECT_EQ(files.AllFiles(), before);
}

// --- The whole ---

TEST_F(ProgramStart, F1OpensTheHelpBoxFromEveryOtherWindow) {
  StoreProjects({});
  Start();
  for (ui::Form* form : program.Windows()) {
    if (form == &program.help) continue;
    ASSERT_TRUE(form->Help) << form->name();
    form->Help();
    EXPECT_TRUE(program.help.shown()) << form->name();
    program.help.Close();
  }
}

TEST_F(ProgramStart, EveryWindowNamesEachOfItsControlsOnce) {
  for (ui::Form* form : program.Windows()) {
    std::set<std::string> names;
    for (const ui::Control* control : form->Controls()) {
      EXPECT_TRUE(names.insert(control->name()).second) << form->name() << "." << control->name();
    }
  }
  std::vector<std::string> forms;
  for (ui::Form* form : program.Windows()) forms.push_back(form->name());
  EXPECT_THAT(forms, ElementsAre("frmExtract", "frmOption", "frmWeb", "frmEmailMergeTool", "frmSightings", "frmWhy",
                                 "frmDialog", "frmAbout", "frmHelp"));
}

TEST_F(ProgramStart, TwoProgramsLiveSideBySide) {
  ProgramWorld other;
  other.StoreProjects({});
  StoreProjects({});
  Start();
  other.Start();
  other.fetcher.Serve("http://www.a.test", "<p>x@a.test</p>");
  other.RunProject("www.a.test");
  EXPECT_EQ(other.extract.lstMail.rows(), 1u);
  EXPECT_EQ(extract.lstMail.rows(), 0u);
  EXPECT_THAT(engine.project_list.entries(), IsEmpty());
}

TEST_F(ProgramStart, AStoppedProjectIsContinuedByTheNextProgram) {
  StoreProjects({});
  fetcher.Serve("http://www.a.test", "<p>x@a.test</p><a href=\"/b\">b</a><a href=\"/c\">c</a>");
  Start();
  Type("www.a.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(3), [this] { extract.cmdExtract.Click(); });
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndStopButton));

  ProgramWorld next;
  for (const std::string& path : files.AllFiles()) {
    next.files.AddFolder(path.substr(0, path.rfind('/')));
    next.files.Put(path, *files.Contents(path));
  }
  next.StoreProjects({"www.a.test"});
  for (const char* page : {"/b", "/c"}) {
    next.fetcher.Serve(std::string("http://www.a.test") + page, "<p>" + std::string(page + 1) + "@a.test</p>");
  }
  next.Start();
  EXPECT_EQ(next.extract.lstMail.rows(), 1u) << "what was found is there again";
  next.extract.cmdExtract.Click();
  next.FinishRun();
  EXPECT_EQ(next.extract.lstMail.rows(), 3u);
  for (const auto& request : next.fetcher.started()) EXPECT_NE(request.address, "http://www.a.test");
}

}  // namespace
}  // namespace quenlar
