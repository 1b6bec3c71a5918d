// The main window while a run goes on, and at its end.
#include <gmock/gmock.h>

#include "run/end_reasons.h"
#include "support/program_world.h"

namespace quenlar {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kSite = "http://www.cars.test";
constexpr const char* kResults = "http://www.google.com/search?hl=en&q=cars&btnG=Google+Search&num=100&start=";
constexpr const char* kReportFile = "/home/report/cars_test.rpt";

class MainWindowRun : public ProgramTest {
 protected:
  MainWindowRun() {
    StoreProjects({});
    fetcher.Serve(kSite, "<title>Cars</title>first@cars.test<a href=\"/two.html\">more</a>");
    fetcher.Serve(std::string(kSite) + "/two.html", "<title>Two</title><p>second@cars.test</p><p>third@cars.test</p>");
  }
  [[nodiscard]] std::vector<bool> EnabledInputs() const {
    return {extract.cmdExport.enabled(), extract.cmbURL.enabled(), extract.cmdDelete.enabled(),
            extract.cmdOption.enabled(), extract.cmdTool.enabled()};
  }
};

TEST_F(MainWindowRun, StartingRecordsTheProjectAndDisablesWhatCannotBeUsed) {
  Start();
  Type("www.cars.test");
  extract.cmdExtract.Click();
  EXPECT_THAT(engine.project_list.entries(), ElementsAre("www.cars.test"));
  EXPECT_EQ(extract.cmdExtract.text(), "&Stop");
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_THAT(EnabledInputs(), ElementsAre(false, false, false, false, false));
  EXPECT_TRUE(extract.cmdHide.enabled());
  EXPECT_EQ(Panel(1), "Started to extract email address process at 12:34:56");
  EXPECT_TRUE(tray.tmrExtract.enabled());
  EXPECT_FALSE(tray.mnuExit.enabled());
}

TEST_F(MainWindowRun, ARunByAddressFillsListPanelsAndFiles) {
  Start();
  RunProject("www.cars.test");
  ASSERT_THAT(boxes.texts(), ElementsAre("All links have been parsed !"));
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(extract.lstMail.rows(), 3u);
  EXPECT_EQ(extract.lstMail.CellText(0, 1), "first@cars.test");
  EXPECT_EQ(extract.lstMail.CellText(0, 2), kSite);
  EXPECT_EQ(extract.lstMail.CellText(0, 3), "Cars");
  EXPECT_EQ(Panel(1), "Extract process ended at 12:34:56");
  EXPECT_EQ(Panel(2), "3 Address");
  EXPECT_EQ(Panel(3), "Scan 2");
  EXPECT_THAT(files.Contents(kReportFile).value_or(""), HasSubstr("first@cars.test\r\n"));
}

TEST_F(MainWindowRun, TheSuppressionListIsReadWhenARunBegins) {
  Start();
  files.Put("/home/suppressed.txt", "@cars.test\n");
  files.AddFolder("/home/data");
  RunProject("www.cars.test");
  EXPECT_EQ(engine.project.found.Count(), 0u);
}

TEST_F(MainWindowRun, WhatWasListedBeforeItWasSuppressedIsGoneWithTheNextRun) {
  Start();
  RunProject("www.cars.test");
  ASSERT_EQ(engine.project.found.Count(), 3u);
  files.Put("/home/suppressed.txt", "second@cars.test\n");
  extract.cmdExtract.Click();
  FinishRun();
  EXPECT_EQ(extract.lstMail.rows(), 2u);
  EXPECT_THAT(files.Contents(kReportFile).value_or(""), Not(HasSubstr("second@cars.test")));
}

TEST_F(MainWindowRun, TheOtherRowsStayAsTheyAreWhenOneIsSuppressed) {
  fetcher.Serve(std::string(kSite) + "/two.html", "<title>Two</title><p alt=\"second@cars.test\">");
  Start();
  RunProject("www.cars.test");
  ASSERT_EQ(extract.lstMail.rows(), 2u);
  ASSERT_TRUE(extract.lstMail.CellColor(1, 1).has_value()) << "red";
  files.Put("/home/suppressed.txt", "first@cars.test\n");
  extract.cmdExtract.Click();
  ASSERT_EQ(extract.lstMail.rows(), 1u);
  EXPECT_EQ(extract.lstMail.CellText(0, 1), "second@cars.test");
  EXPECT_EQ(extract.lstMail.CellText(0, 2), std::string(kSite) + "/two.html") << "the report has no pages";
  EXPECT_EQ(extract.lstMail.CellText(0, 3), "Two");
  EXPECT_TRUE(extract.lstMail.CellColor(0, 1).has_value());
  EXPECT_EQ(Panel(2), "1 Address");
}

TEST_F(MainWindowRun, AddressesThatCouldNotBeSavedStayWhenOneIsSuppressed) {
  Start();
  files.Protect("/home/report");
  RunProject("www.cars.test");
  ASSERT_EQ(extract.lstMail.rows(), 3u);
  files.Put("/home/suppressed.txt", "second@cars.test\n");
  extract.cmdExtract.Click();
  EXPECT_EQ(extract.lstMail.rows(), 2u);
}

TEST_F(MainWindowRun, AListThatWasReadForOtherThingsCountsToo) {
  Start();
  RunProject("www.cars.test");
  files.Put("/home/suppressed.txt", "second@cars.test\n");
  ASSERT_TRUE(engine.ReadSuppression().ok());  // as the mailing list tool does
  extract.cmdExtract.Click();
  EXPECT_EQ(extract.lstMail.rows(), 2u);
}

TEST_F(MainWindowRun, WithoutTheSuppressionListNoRunBegins) {
  Start();
  files.AddFolder("/home/suppressed.txt");
  RunProject("www.cars.test");
  EXPECT_TRUE(Boxed("The suppression list cannot be read: /home/suppressed.txt: a folder !"));
  EXPECT_EQ(engine.project.found.Count(), 0u);
  EXPECT_TRUE(extract.cmbURL.enabled());
}

TEST_F(MainWindowRun, AnotherRunCountsItsPagesFromNought) {
  Start();
  RunProject("www.cars.test");
  ASSERT_EQ(Panel(3), "Scan 2");
  extract.cmdExtract.Click();
  EXPECT_EQ(Panel(3), "Scan 0");
}

TEST_F(MainWindowRun, TheEndOfALinkRunRestoresIdle) {
  Start();
  RunProject("www.cars.test");
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_THAT(EnabledInputs(), ElementsAre(true, true, true, true, true));
  EXPECT_TRUE(tray.mnuExit.enabled());
}

TEST_F(MainWindowRun, ARunByKeywordAsksTheSearchEngineAndVisitsItsResults) {
  fetcher.Serve(std::string(kResults) + "0", "<h3 class=\"r\"><a href=\"http://www.cars.test/two.html\">x</a></h3>");
  fetcher.Serve(std::string(kResults) + "100", "nothing more");
  Start();
  RunProject("cars");
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed));
  EXPECT_EQ(extract.cmbURL.text(), "cars_en");
  EXPECT_EQ(extract.lstMail.rows(), 2u);
  EXPECT_TRUE(files.FileExists("/home/report/cars_en.rpt"));
}

TEST_F(MainWindowRun, ARunThatEndsInsideTheSearchPhaseLeavesExportDisabled) {
  fetcher.Serve(std::string(kResults) + "0", "no results");
  Start();
  RunProject("cars");
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed));
  EXPECT_EQ(fetcher.started().size(), 4u);
  EXPECT_FALSE(extract.cmdExport.enabled());
  EXPECT_TRUE(extract.cmdDelete.enabled()) << "a project is saved";
}

TEST_F(MainWindowRun, AReportThatCannotBeSavedAtTheEndIsToldOnceAndKeepsTheLinksOfItsPages) {
  Start();
  Type("www.cars.test");
  engine.settings.StopNumber = 1;
  files.Protect("/home/report");
  extract.cmdExtract.Click();
  FinishRun();
  ASSERT_EQ(boxes.shown.size(), 2u) << testing::PrintToString(boxes.texts());
  EXPECT_THAT(boxes.shown[1].text, HasSubstr("cars_test.rpt cannot be saved"));
  EXPECT_FALSE(files.FileExists("/home/data/cars_test.dat")) << "a later run begins anew";

  engine.settings.StopNumber = 99999;  // a run without a link left saves the report alone
  extract.cmdExtract.Click();
  FinishRun();
  ASSERT_EQ(boxes.shown.size(), 4u) << testing::PrintToString(boxes.texts());
  EXPECT_EQ(boxes.shown[3].text, boxes.shown[1].text);
}

// --- Stopping ---

TEST_F(MainWindowRun, PressingStopEndsTheRunAndKeepsItsLinks) {
  Start();
  Type("www.stalled.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(2), [this] {
    ASSERT_TRUE(engine.run.running);
    extract.cmdExtract.Click();
    EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
    EXPECT_FALSE(extract.cmdExtract.enabled());
    EXPECT_TRUE(engine.run.stop_requested);
    extract.cmdExtract.Click();  // a disabled button that is pressed all the same
    EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  });
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre("You press the stop button !"));
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_THAT(files.Contents("/home/data/stalled_test.dat").value_or(""),
              HasSubstr("[M]\r\nhttp://www.stalled.test\r\n[F]"));
}

TEST_F(MainWindowRun, StopBeforeTheTimersTickEndsTheRunAtOnce) {
  Start();
  Type("www.cars.test");
  extract.cmdExtract.Click();
  extract.cmdExtract.Click();
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre("You press the stop button !"));
}

TEST_F(MainWindowRun, TheStopNumberEndsTheRunWithTheButtonStillReadingStop) {
  Start();
  engine.settings.StopNumber = 2;
  boxes.while_shown = [this] { EXPECT_EQ(extract.cmdExtract.text(), "&Stop"); };
  RunProject("www.cars.test");
  EXPECT_THAT(boxes.texts(), ElementsAre("You have extracted emails as your desire !"));
}

// --- The window during a run ---

TEST_F(MainWindowRun, ReopeningTheWindowDuringARunShowsStop) {
  Start();
  Type("www.stalled.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(2), [this] {
    extract.Close();
    EXPECT_TRUE(engine.run.running);
    tray.mnuExtractor.Click();
    EXPECT_EQ(extract.cmdExtract.text(), "&Stop");
    EXPECT_TRUE(extract.cmdExtract.enabled());
    EXPECT_FALSE(extract.cmbURL.enabled());
    EXPECT_EQ(extract.cmbURL.text(), "www.stalled.test");
    EXPECT_TRUE(engine.run.running);
    EXPECT_EQ(engine.project.queues[0].Count(), 1u) << "the run's links are untouched";
    extract.cmdExtract.Click();
  });
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndStopButton));
}

TEST_F(MainWindowRun, ReopeningTheWindowBeforeTheTimersTickShowsStopToo) {
  Start();
  Type("www.cars.test");
  extract.cmdExtract.Click();
  extract.Close();
  tray.mnuExtractor.Click();
  EXPECT_EQ(extract.cmdExtract.text(), "&Stop");
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed));
}

TEST_F(MainWindowRun, ReopeningTheWindowWhileAStopIsUnderWayKeepsTheReason) {
  Start();
  Type("www.stalled.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(2), [this] {
    extract.cmdExtract.Click();
    extract.Close();
    tray.mnuExtractor.Click();
    EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
    EXPECT_FALSE(extract.cmdExtract.enabled());
  });
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndStopButton));
}

TEST_F(MainWindowRun, ReopeningTheWindowDuringARunOfAnOlderProjectDoesNotOpenTheNewest) {
  StoreProjects({"www.newest.test", "www.cars.test"});
  fetcher.Serve(kSite, ScriptedAnswer{.body = "<p>late@cars.test</p>", .delay = seconds(3)});
  Start();
  Type("www.cars.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(2), [this] {
    extract.Close();
    tray.mnuExtractor.Click();
    EXPECT_EQ(extract.cmbURL.text(), "www.cars.test");
  });
  FinishRun();
  EXPECT_EQ(extract.lstMail.rows(), 1u);
  EXPECT_TRUE(files.FileExists(kReportFile));
}

TEST_F(MainWindowRun, TheRunGoesOnBehindAClosedWindow) {
  Start();
  Type("www.cars.test");
  extract.cmdExtract.Click();
  extract.Close();
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed));
  tray.mnuExtractor.Click();
  EXPECT_EQ(extract.lstMail.rows(), 3u);
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  EXPECT_TRUE(extract.cmdExtract.enabled());
}

TEST_F(MainWindowRun, NothingOpensAnotherProjectDuringARun) {
  Start();
  Type("www.stalled.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(2), [this] {
    extract.tmrText.SetEnabled(true);
    extract.cmbURL.SetText("www.other.test");
  });
  loop.Schedule(seconds(3), [this] {
    EXPECT_EQ(engine.project.StartURL, "http://www.stalled.test");
    EXPECT_EQ(engine.project.queues[0].Count(), 1u);
    extract.cmdExtract.Click();
  });
  FinishRun();
}

TEST_F(MainWindowRun, GoesOnBehindTheWebSettings) {
  fetcher.Serve(kSite, ScriptedAnswer{.body = "<a href=\"/two.html\">more</a>", .delay = seconds(4)});
  int modal = 0;
  program.web.window.run_modal = [&modal] { ++modal; };
  Start();
  loop.Schedule(seconds(2), [this] { extract.mnuWeb.Click(); });
  RunProject("www.cars.test");
  EXPECT_EQ(modal, 0);
  EXPECT_TRUE(program.web.shown());
  EXPECT_EQ(extract.lstMail.rows(), 2u);
  extract.mnuWeb.Click();
  EXPECT_EQ(modal, 1) << "without a run no other window is used meanwhile";
}

// --- Saves that fail ---

TEST_F(MainWindowRun, ASaveThatFailsAtTheEndIsToldInAMessageBox) {
  Start();
  Type("www.cars.test");
  extract.cmdExtract.Click();
  files.SetFreeSpace(0);
  FinishRun();
  ASSERT_EQ(boxes.shown.size(), 2u);
  EXPECT_EQ(boxes.shown[0].text, kEndAllParsed);
  EXPECT_THAT(boxes.shown[1].text, HasSubstr(kReportFile));
  EXPECT_TRUE(boxes.shown[1].text.ends_with(" !"));
  EXPECT_EQ(boxes.shown[1].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract") << "the end goes on";
}

TEST_F(MainWindowRun, MoreRecordsThanAWriterCountsAreAnOverflowAtTheEnd) {
  Start();
  Type("www.cars.test");
  for (int i = 0; i < 32768; ++i) engine.project.found.Add({"", "u" + std::to_string(i) + "@x.test", ""});
  extract.cmdExtract.Click();
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed, "Overflow !"));
  EXPECT_FALSE(files.FileExists(kReportFile));
}

TEST_F(MainWindowRun, AnOverflowDuringTheRunStandsInPanel1AndTheRunGoesOn) {
  Start();
  Type("www.stalled.test");
  extract.cmdExtract.Click();
  loop.Schedule(seconds(2), [this] {
    for (int i = 0; i < 40000; ++i) engine.project.queues[10].AddIfNew("http://never.test/" + std::to_string(i));
    engine.projects.SaveProjectData();
    EXPECT_EQ(Panel(1), "Overflow !");
    EXPECT_THAT(boxes.shown, IsEmpty());
    EXPECT_TRUE(engine.run.running);
    EXPECT_FALSE(engine.run.stop_requested);
    extract.cmdExtract.Click();
  });
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndStopButton, "Overflow !"));
}

TEST_F(MainWindowRun, AFilterWordThatTakesTooManyStepsIsToldWhenTheRunHasEnded) {
  Start();
  engine.filter.RemoveFilterWords = {"(a+)+$"};
  engine.settings.RemoveFilterOn = 1;
  ASSERT_THAT(engine.filter.BuildFilterPatterns(), IsEmpty());
  fetcher.Serve(kSite, "<p>" + std::string(60, 'a') + "@cars.test</p>");
  RunProject("www.cars.test");
  ASSERT_EQ(boxes.shown.size(), 2u);
  EXPECT_EQ(boxes.shown[0].text, kEndAllParsed);
  EXPECT_THAT(boxes.shown[1].text, HasSubstr("too many steps"));
}

}  // namespace
}  // namespace quenlar
