// The main window while it collects from today's web.
#include "collecting_program.h"
#include "project/data_file.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kDatabase = "data/cars_example.sqlite";
constexpr const char* kReport = "report/cars_example.web.rpt";

class CollectingWindow : public CollectingProgram {};

TEST_F(CollectingWindow, ExtractFillsListPanelsAndFiles) {
  Start();
  Collect("www.cars.example");
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "second@cars.de", "third@cars.de"));
  EXPECT_THAT(Rows(2),
              ElementsAre("https://www.cars.example/", "https://www.cars.example/two", "https://www.cars.example/two"));
  EXPECT_THAT(Rows(3), ElementsAre("Cars", "Two", "Two"));
  EXPECT_EQ(Panel(1), "Extract process ended at 12:34:56");
  EXPECT_EQ(Panel(2), "3 Address");
  EXPECT_EQ(Panel(3), "Scan 2");
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, StartsWith(kEndAllParsed));
  EXPECT_THAT(boxes.shown[0].text, HasSubstr("3 new addresses on 2 pages. The collection has 3 addresses"));
  EXPECT_THAT(Contents(kReport), HasSubstr("third@cars.de\r\n"));
  EXPECT_TRUE(Exists(kDatabase));
  EXPECT_FALSE(Exists("data/cars_example.dat"));
  EXPECT_FALSE(Exists("report/cars_example.rpt"));
  EXPECT_TRUE(Main().cmdExport.enabled());
  EXPECT_TRUE(Main().cmdDelete.enabled());
  EXPECT_EQ(Main().cmdExtract.text(), "&Extract");
}

TEST_F(CollectingWindow, TheListAsksTheDatabaseForNothing) {
  Start();
  Collect("www.cars.example");
  const std::vector<std::vector<std::string>> columns = {Rows(0), Rows(1), Rows(2), Rows(3)};
  Put(kDatabase, "no database any more");
  EXPECT_FALSE(program_->collection.Reader().ok());
  for (int column = 0; column < 4; ++column) {
    EXPECT_EQ(Rows(column), columns[static_cast<std::size_t>(column)]);
    for (std::uint32_t row = 0; row < Main().lstMail.rows(); ++row) Main().lstMail.CellColor(row, column);
  }
}

TEST_F(CollectingWindow, PagesOpenAsTheyAre) {
  Start();
  Collect("www.cars.example");
  Main().lstMail.UserSelect(1);
  Main().lstMail.DblClick();
  EXPECT_THAT(shell.opened, ElementsAre("https://www.cars.example/two"));
}

TEST_F(CollectingWindow, StopKeepsWhatIsLeftAndTheNextProgramGoesOn) {
  web_client.Serve("https://www.cars.example/two",
                   ScriptedWebAnswer{.body = "late", .ip = kPublicPlace, .delay = std::chrono::minutes(2)});
  Start();
  WhenFound([&] {
    EXPECT_EQ(Main().cmdExtract.text(), "&Stop");
    EXPECT_FALSE(Main().cmbURL.enabled());
    EXPECT_FALSE(program_->tray.mnuExit.enabled());
    Main().cmdExtract.Click();
  });
  Collect("www.cars.example");
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, StartsWith(kEndStopButton));
  EXPECT_THAT(boxes.shown[0].text, HasSubstr("1 page left to visit"));

  Page("https://www.cars.example/two", "second@cars.de");
  MakeProgram();
  Start();
  EXPECT_EQ(Main().cmbURL.text(), "www.cars.example");
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de"));
  Main().cmdExtract.Click();
  FinishRun();
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "second@cars.de"));
  EXPECT_THAT(Visited(), Contains("https://www.cars.example/").Times(1));
}

TEST_F(CollectingWindow, AHandWrittenSuppressionListHoldsForTheListAndFromTheNextRunOnForTheFile) {
  Start();
  Collect("www.cars.example");
  Put("suppressed.txt", "Second@cars.de\n");
  const auto stored = [this] {
    return CollectionReader::Open(home_ + "/" + kDatabase).take()->Figures().take().addresses;
  };
  MakeProgram();
  Start();
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "third@cars.de"));
  EXPECT_EQ(stored(), 3);
  Main().cmdExtract.Click();
  FinishRun();
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "third@cars.de"));
  EXPECT_EQ(stored(), 2);
}

TEST_F(CollectingWindow, ClosedAndReopenedInARunItShowsTheRun) {
  web_client.Serve("https://www.cars.example/two",
                   ScriptedWebAnswer{.body = "late", .ip = kPublicPlace, .delay = std::chrono::seconds(20)});
  Start();
  std::vector<std::string> stages;
  WhenFound([&] {
    Main().Close();
    Main().Show();
    EXPECT_EQ(Main().cmdExtract.text(), "&Stop");
    EXPECT_EQ(Panel(2), "1 Address");
    loop.OnPump([&] { stages.push_back(Panel(1)); });
  });
  Collect("www.cars.example");
  EXPECT_THAT(stages, Contains(StartsWith("Reading www.cars.example (5.")));
  EXPECT_EQ(Main().cmdExtract.text(), "&Extract");
}

TEST_F(CollectingWindow, TheStageNamesTheHostAndWhatItWaitsFor) {
  settings_.pause = 5000;
  Store(settings_);
  Start();
  std::vector<std::string> stages;
  loop.OnPump([&] { stages.push_back(Panel(1)); });
  Collect("www.cars.example");
  EXPECT_THAT(stages, Contains(StartsWith("Pause of ")));
  EXPECT_THAT(stages, Contains(HasSubstr(" before the next page of www.cars.example, 1 host under way, 1 page left")));
}

TEST_F(CollectingWindow, TheMessageAtTheEndSaysWhatWasLeftOut) {
  Page("https://www.cars.example/robots.txt", "User-agent: *\nDisallow: /private\n");
  Page("https://www.cars.example/",
       "a@cars.de b [at] cars [dot] de <a href='/private'>x</a><a href='/one'>one</a><a href='/lost'>lost</a>");
  Page("https://www.cars.example/one", "<a href='/deep'>deep</a>");
  settings_.depth = 1;
  settings_.contact = "";
  registry.SaveRegValue(kWebKey, "Contact", "");
  registry.SaveRegValue(kWebKey, "Depth", "1");
  Start();
  Collect("www.cars.example");
  const std::string& text = boxes.shown.at(0).text;
  EXPECT_THAT(text, HasSubstr("\r\n1 page that robots.txt keeps programs away from"));
  EXPECT_THAT(text, HasSubstr("\r\n1 page more than 1 click away from a start"));
  EXPECT_THAT(text, HasSubstr("\r\n1 page that could not be read"));
  EXPECT_THAT(text, HasSubstr("\r\n1 address that its owner hides from programs"));
  EXPECT_THAT(text, HasSubstr("Sites cannot tell who visits them"));
}

TEST_F(CollectingWindow, AFinishedCollectionIsVisitedAgainOnlyWhenAskedFor) {
  Start();
  Collect("www.cars.example");
  const std::size_t visited = Visited().size();
  boxes.answers = {BoxAnswer::kNo};
  Main().cmdExtract.Click();
  FinishRun();
  EXPECT_EQ(Visited().size(), visited);
  Page("https://www.cars.example/", "<title>Cars</title>new@cars.de <a href='/two'>more</a>");
  boxes.answers = {BoxAnswer::kYes};
  Main().cmdExtract.Click();
  FinishRun();
  EXPECT_EQ(Visited().size(), 2 * visited);
  EXPECT_THAT(Rows(1), ElementsAre("second@cars.de", "third@cars.de", "new@cars.de")) << "what is gone is not listed";
}

TEST_F(CollectingWindow, WherePagesAreLeftTheQuestionSaysSo) {
  settings_.pages_per_host = 1;
  Store(settings_);
  Start();
  Collect("www.cars.example");
  boxes.shown.clear();
  boxes.answers = {BoxAnswer::kNo};
  Main().cmdExtract.Click();
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(StartsWith("Pages are left, but their hosts have had as many"),
                                         HasSubstr("1 page of hosts that have had their 1 page")));
}

TEST_F(CollectingWindow, TheReportIsWrittenAndOpened) {
  Start();
  Collect("www.cars.example");
  Put(kReport, "");
  Main().cmdExport.Click();
  EXPECT_THAT(Contents(kReport), HasSubstr("first@cars.de\r\n"));
  ASSERT_EQ(shell.edited.size(), 1u);
  EXPECT_THAT(shell.edited[0], HasSubstr("cars_example.web.rpt"));
}

TEST_F(CollectingWindow, TheDescribedMessagesStay) {
  Start();
  Main().cmdExtract.Click();
  interfaces.alive = false;
  Main().cmdExtract.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("Please enter keyword or URL !", kEndOffLine));
}

TEST_F(CollectingWindow, AKeywordWithoutASearchServiceSaysHowToGetOne) {
  Start();
  Collect("red cars");
  EXPECT_EQ(Main().cmbURL.text(), "red cars_en");
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, StartsWith("None of the starts could be visited !"));
  EXPECT_THAT(boxes.shown[0].text, HasSubstr("search service"));
}

// --- The menu of the list ---

class CollectionMenuTest : public CollectingProgram {
 protected:
  // Chooses a command by a part of its caption. False where the list does not offer it.
  bool Choose(const std::string& caption, const std::vector<std::uint32_t>& rows) {
    for (const ui::ListView::Command& command : Main().lstMail.commands) {
      if (command.caption.find(caption) == std::string::npos || !command.CanRun(!rows.empty())) continue;
      command.run(rows);
      return true;
    }
    return false;
  }
  [[nodiscard]] std::vector<std::string> Captions(bool any_marked) const {
    std::vector<std::string> captions;
    for (const ui::ListView::Command& command : Main().lstMail.commands) {
      if (command.CanRun(any_marked)) captions.push_back(command.caption);
    }
    return captions;
  }
};

TEST_F(CollectionMenuTest, IsOfferedOnlyWhileACollectionIsShown) {
  Start();
  EXPECT_EQ(Captions(true).size(), 7u);
  EXPECT_THAT(Captions(false), ElementsAre("Wh&y ...", "Open as we&b page"));
  SwitchTo(false);
  EXPECT_THAT(Captions(true), ElementsAre("Copy &address\tCtrl+C", "Copy &row", "&Open page"));
  EXPECT_THAT(Captions(false), IsEmpty());
}

TEST_F(CollectionMenuTest, WhereItWasFoundShowsEveryPage) {
  Page("https://www.cars.example/two", "<title>Two</title><a href='mailto:first@cars.de'>mail</a>");
  Start();
  Collect("www.cars.example");
  ASSERT_TRUE(Choose("Where", {0}));
  frmSightings& sightings = program_->sightings;
  EXPECT_TRUE(sightings.shown());
  EXPECT_EQ(sightings.lblAddress.text(), "first@cars.de was found in 2 places:");
  ASSERT_EQ(sightings.lstPages.rows(), 2u);
  EXPECT_EQ(sightings.lstPages.CellText(1, 0), "https://www.cars.example/two");
  EXPECT_EQ(sightings.lstPages.CellText(1, 1), "mailto");
  EXPECT_EQ(sightings.lstPages.CellText(1, 2), "2023-11-14 22:13");
  EXPECT_EQ(sightings.lstPages.CellText(1, 4), "Two");
  sightings.lstPages.UserSelect(1);
  sightings.cmdOpen.Click();
  EXPECT_THAT(shell.opened, ElementsAre("https://www.cars.example/two"));
  sightings.cmdCopy.Click();
  EXPECT_THAT(shell.copied,
              ElementsAre("https://www.cars.example/two\tmailto\t2023-11-14 22:13\t2023-11-14 22:13\tTwo"));
  sightings.cmdOK.Click();
  EXPECT_FALSE(sightings.loaded());
}

TEST_F(CollectionMenuTest, WhereItWasFoundCanBeAskedDuringARun) {
  Start();
  std::size_t rows = 0;
  WhenFound([&] {
    EXPECT_TRUE(Choose("Where", {0}));
    rows = program_->sightings.lstPages.rows();
  });
  Collect("www.cars.example");
  EXPECT_EQ(rows, 1u);
}

TEST_F(CollectionMenuTest, NeverAgainErasesAndSuppressesAfterAQuestion) {
  Start();
  Collect("www.cars.example");
  boxes.answers = {BoxAnswer::kNo};
  ASSERT_TRUE(Choose("Never", {1}));
  EXPECT_EQ(Rows(1).size(), 3u);
  EXPECT_THAT(boxes.shown.back().text, StartsWith("second@cars.de is taken out of all collections and reports"));
  EXPECT_FALSE(Exists("suppressed.txt"));

  boxes.answers = {BoxAnswer::kYes};
  ASSERT_TRUE(Choose("Never", {1}));
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "third@cars.de"));
  EXPECT_THAT(boxes.shown.back().text, StartsWith("second@cars.de: 1 address taken out of 1 collection and "));
  EXPECT_THAT(Contents("suppressed.txt"), StartsWith("sha256:"));
  EXPECT_THAT(Contents("suppressed.txt"), Not(HasSubstr("second")));
  EXPECT_THAT(Contents(kReport), Not(HasSubstr("second@cars.de")));
  EXPECT_THAT(Contents(kDatabase), Not(HasSubstr("second@cars.de")));

  // The next visit does not bring it back.
  boxes.answers = {BoxAnswer::kYes};
  Main().cmdExtract.Click();
  FinishRun();
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "third@cars.de"));
  EXPECT_THAT(boxes.shown.back().text, HasSubstr("1 address that the suppression list holds"));
}

TEST_F(CollectionMenuTest, NeverAgainTakesSeveralAtOnce) {
  Start();
  Collect("www.cars.example");
  boxes.answers = {BoxAnswer::kYes};
  ASSERT_TRUE(Choose("Never", {0, 2}));
  EXPECT_THAT(Rows(1), ElementsAre("second@cars.de"));
}

TEST_F(CollectionMenuTest, NeverAgainWaitsForTheEndOfARun) {
  Start();
  WhenFound([&] {
    EXPECT_TRUE(Choose("Never", {0}));
    EXPECT_THAT(boxes.texts(), ElementsAre(StartsWith("A run goes on"))) << "nothing is asked first";
  });
  Collect("www.cars.example");
  EXPECT_EQ(Rows(1).size(), 3u);
  EXPECT_FALSE(Exists("suppressed.txt"));
}

TEST_F(CollectionMenuTest, TheRunGoesOnBehindItsWindows) {
  int modal = 0;
  for (ui::Form* window : {static_cast<ui::Form*>(&program_->sightings), static_cast<ui::Form*>(&program_->why)}) {
    window->window.run_modal = [&modal] { ++modal; };
  }
  Start();
  WhenFound([&] {
    EXPECT_TRUE(Choose("Where", {0}));
    EXPECT_TRUE(Choose("Wh&y", {0}));
    EXPECT_EQ(modal, 0);
  });
  Collect("www.cars.example");
  EXPECT_TRUE(program_->sightings.shown());
  EXPECT_TRUE(program_->why.shown());
  EXPECT_EQ(Rows(1).size(), 3u);

  // They are still open, and show what is asked for next.
  EXPECT_TRUE(Choose("Where", {2}));
  EXPECT_TRUE(Choose("Wh&y", {2}));
  EXPECT_EQ(modal, 2);
  EXPECT_EQ(program_->sightings.lblAddress.text(), "third@cars.de was found in 1 place:");
  EXPECT_EQ(program_->sightings.lstPages.CellText(0, 0), "https://www.cars.example/two");
  EXPECT_THAT(program_->why.txtAnswer.text(), HasSubstr("third@cars.de"));
}

// A message box has a loop of its own inside a pump of the run.
TEST_F(CollectionMenuTest, TheRunGoesOnBehindAMessageBox) {
  Start();
  std::vector<std::string> behind_the_box;
  boxes.while_shown = [&] {
    boxes.while_shown = {};
    for (int i = 0; i < 1000 && Rows(1).size() < 3; ++i) loop.Wait(std::chrono::milliseconds(100));
    behind_the_box = Rows(1);
  };
  WhenFound([&] {
    Main().mnuWeb.Click();
    program_->web.txtDepth.UserText("many");
    program_->web.cmdOK.Click();
    EXPECT_THAT(boxes.texts(), ElementsAre(StartsWith("Clicks from a start: please enter a number")));
  });
  Collect("www.cars.example");
  EXPECT_THAT(behind_the_box, ElementsAre("first@cars.de", "second@cars.de", "third@cars.de"));
  EXPECT_THAT(boxes.shown.back().text, HasSubstr("3 new addresses on 2 pages"));
}

TEST_F(CollectionMenuTest, WhyAnswersForAddressesAndPages) {
  Page("https://www.cars.example/robots.txt", "User-agent: *\nDisallow: /private\n");
  Page("https://www.cars.example/", "first@cars.de <a href='/private'>x</a>");
  Start();
  Collect("www.cars.example");
  frmWhy& why = program_->why;
  ASSERT_TRUE(Choose("Wh&y", {0}));
  EXPECT_EQ(why.txtWhat.text(), "first@cars.de");
  EXPECT_THAT(why.txtAnswer.text(), HasSubstr("It is listed: it stands in 1 place."));
  why.txtWhat.UserText("www.cars.example/private");
  why.cmdAsk.Click();
  EXPECT_THAT(why.txtAnswer.text(), HasSubstr("robots.txt forbids it (line 2: Disallow: /private)"));
  why.txtWhat.UserText("nobody@cars.de");
  why.cmdAsk.Click();
  EXPECT_THAT(why.txtAnswer.text(), HasSubstr("The collection does not hold nobody@cars.de ."));
  why.Close();
  ASSERT_TRUE(Choose("Wh&y", {}));
  EXPECT_EQ(why.txtWhat.text(), "");
  EXPECT_EQ(why.txtAnswer.text(), "");
}

TEST_F(CollectionMenuTest, TheWebPageIsWrittenAndOpenedAndDeletedWithTheRest) {
  Start();
  ASSERT_TRUE(Choose("we&b page", {}));
  EXPECT_THAT(boxes.texts(), ElementsAre("Nothing has been collected yet !"));
  Collect("www.cars.example");
  ASSERT_TRUE(Choose("we&b page", {}));
  EXPECT_THAT(Contents("report/cars_example.web.html"), HasSubstr("third@cars.de"));
  ASSERT_EQ(shell.opened.size(), 1u);
  EXPECT_THAT(shell.opened[0], StartsWith("file:///"));
  EXPECT_THAT(shell.opened[0], testing::EndsWith("report/cars_example.web.html"));
  boxes.answers = {BoxAnswer::kYes};
  Main().cmdDelete.Click();
  EXPECT_FALSE(Exists("report/cars_example.web.html"));
}

TEST_F(CollectionMenuTest, TheWebPageOfAnAddressWithAPortIsFoundByTheBrowser) {
  Page("https://www.cars.example:8080/", "first@cars.de");
  Start();
  Collect("www.cars.example:8080");
  ASSERT_TRUE(Choose("we&b page", {}));
  ASSERT_TRUE(Exists("report/cars_example%3A8080.web.html"));
  ASSERT_EQ(shell.opened.size(), 1u);
  EXPECT_THAT(shell.opened[0], testing::EndsWith("report/cars_example%253A8080.web.html"));
}

TEST_F(CollectionMenuTest, TheWebPageLeavesOutWhatIsNeverListed) {
  Start();
  Collect("www.cars.example");
  Put("suppressed.txt", "second@cars.de\n");
  MakeProgram();
  Start();
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "third@cars.de"));
  ASSERT_TRUE(Choose("we&b page", {}));
  EXPECT_THAT(Contents("report/cars_example.web.html"), HasSubstr("third@cars.de"));
  EXPECT_THAT(Contents("report/cars_example.web.html"), Not(HasSubstr("second@cars.de")));
}

TEST_F(CollectionMenuTest, WhileTheWebPageIsWrittenNothingIsStartedOrDeleted) {
  Start();
  Collect("www.cars.example");
  boxes.shown.clear();
  int pumps = 0;
  loop.OnPump([&] {
    if (++pumps > 1) return;
    Main().cmdExtract.Click();
    Main().cmdDelete.Click();
  });
  ASSERT_TRUE(Choose("we&b page", {}));
  loop.OnPump({});
  EXPECT_GT(pumps, 0);
  EXPECT_FALSE(RunGoesOn());
  EXPECT_THAT(boxes.texts(), IsEmpty());
  EXPECT_TRUE(Exists(kDatabase));
}

TEST_F(CollectionMenuTest, NeverAgainTakesAWebPageAway) {
  Start();
  Collect("www.cars.example");
  ASSERT_TRUE(Choose("we&b page", {}));
  boxes.answers = {BoxAnswer::kYes};
  ASSERT_TRUE(Choose("Never", {2}));
  EXPECT_FALSE(Exists("report/cars_example.web.html")) << "without one of its lines its program cannot read it";
}

// --- Beside classic projects ---

TEST_F(CollectingWindow, ACollectionTouchesNothingOfTheClassicProject) {
  ASSERT_TRUE(disk_->MakeFolder(home_ + "/data").ok());
  ASSERT_TRUE(disk_->MakeFolder(home_ + "/report").ok());
  Put("data/cars_example.dat", HeaderLine() + "\r\n");
  Put("report/cars_example.rpt", "old@cars.de\r\n");
  registry.SaveRegValue(kProjectKey, "ProjectNum", "1");
  registry.SaveRegValue(kProjectKey, "Project1", "www.cars.example");
  Start();
  const auto classic_key = registry.ValuesOf(kProjectKey);
  EXPECT_EQ(Main().cmbURL.text(), "www.cars.example");
  EXPECT_THAT(Rows(1), IsEmpty());
  Collect("www.cars.example");
  EXPECT_THAT(Main().cmbURL.items(), ElementsAre("www.cars.example")) << "the box holds the text once";
  EXPECT_EQ(Rows(1).size(), 3u);

  SwitchTo(false);
  EXPECT_THAT(Rows(1), ElementsAre("old@cars.de"));
  EXPECT_EQ(Contents("report/cars_example.rpt"), "old@cars.de\r\n");
  EXPECT_EQ(Contents("data/cars_example.dat"), HeaderLine() + "\r\n");
  EXPECT_EQ(registry.ValuesOf(kProjectKey), classic_key);

  SwitchTo(true);
  EXPECT_EQ(Rows(1).size(), 3u);
  boxes.answers = {BoxAnswer::kYes};
  Main().cmdDelete.Click();
  EXPECT_FALSE(Exists(kDatabase));
  EXPECT_FALSE(Exists(kReport));
  EXPECT_THAT(Rows(1), IsEmpty());
  EXPECT_THAT(Main().cmbURL.items(), ElementsAre("www.cars.example")) << "of the classic project";
  EXPECT_TRUE(Exists("data/cars_example.dat"));
  EXPECT_EQ(registry.ValuesOf(kProjectKey), classic_key);
}

TEST_F(CollectingWindow, DeletingTheClassicProjectLeavesTheCollection) {
  Start();
  Collect("www.cars.example");
  SwitchTo(false);
  fetcher.Serve("http://www.cars.example", "<title>Cars</title>old@cars.test<p>");
  Collect("www.cars.example");
  EXPECT_TRUE(Exists("report/cars_example.rpt"));
  boxes.answers = {BoxAnswer::kYes};
  Main().cmdDelete.Click();
  EXPECT_FALSE(Exists("report/cars_example.rpt"));
  EXPECT_TRUE(Exists(kDatabase));
  SwitchTo(true);
  EXPECT_EQ(Main().cmbURL.text(), "www.cars.example");
  EXPECT_EQ(Rows(1).size(), 3u);
}

// A program whose list holds two classic projects and which shows the collection of the first one.
class SwitchInADeletion : public CollectingProgram {
 protected:
  void SetUp() override {
    for (const char* folder : {"/data", "/report"}) ASSERT_TRUE(disk_->MakeFolder(home_ + folder).ok());
    for (const std::string name : {"cars", "other"}) {
      Put("data/" + name + "_example.dat", HeaderLine() + "\r\n");
      Put("report/" + name + "_example.rpt", name + "@old.de\r\n");
    }
    registry.SaveRegValue(kProjectKey, "ProjectNum", "2");
    registry.SaveRegValue(kProjectKey, "Project1", "www.cars.example");
    registry.SaveRegValue(kProjectKey, "Project2", "www.other.example");
    Start();
    Collect("www.cars.example");
    SwitchTo(false);
    ASSERT_THAT(Rows(1), ElementsAre("cars@old.de"));
    boxes.answers = {BoxAnswer::kYes};
  }
  void ExpectTheClassicProjectDeletedAndTheCollectionShown() {
    EXPECT_FALSE(Exists("data/cars_example.dat"));
    EXPECT_FALSE(Exists("report/cars_example.rpt"));
    EXPECT_TRUE(Exists("report/other_example.rpt"));
    EXPECT_EQ(registry.Stored(kProjectKey, "ProjectNum"), "1");
    EXPECT_EQ(registry.Stored(kProjectKey, "Project1"), "www.other.example");
    EXPECT_TRUE(Exists(kDatabase));
    EXPECT_TRUE(Exists(kReport));
    EXPECT_EQ(&Main().job(), &program_->collection);
    EXPECT_TRUE(Main().cmdExtract.enabled());
  }
};

TEST_F(SwitchInADeletion, BehindTheQuestionIsFollowedAtItsEnd) {
  boxes.while_shown = [&] {
    boxes.while_shown = {};
    SwitchTo(true);
  };
  Main().cmdDelete.Click();
  ExpectTheClassicProjectDeletedAndTheCollectionShown();
}

TEST_F(SwitchInADeletion, WhileTheNextProjectIsLoadedIsFollowedAtItsEnd) {
  boxes.while_shown = [&] {
    loop.OnPump([&] {
      loop.OnPump({});
      SwitchTo(true);
    });
  };
  Main().cmdDelete.Click();
  ExpectTheClassicProjectDeletedAndTheCollectionShown();
}

TEST_F(CollectingWindow, TheBoxOffersCollectionsOfTheCommandLineByTheirNames) {
  Start();
  Collect("www.cars.example");
  ASSERT_TRUE(Collection::Open(*disk_, home_ + "/data/members.sqlite").ok());
  MakeProgram();
  Start();
  EXPECT_THAT(Main().cmbURL.items(), ElementsAre("www.cars.example", "members"));
  Collect("members");
  EXPECT_EQ(Main().cmbURL.text(), "members") << "a name gets no language";
  EXPECT_FALSE(Exists("data/members_en.sqlite"));
}

TEST_F(CollectingWindow, ANameThatEndsInALanguageBringsNoKeywordIntoItsCollection) {
  Page("https://www.firma.de/", "anna@firma.de");
  Start();
  Collect("www.firma.de");
  boxes.shown.clear();
  boxes.answers = {BoxAnswer::kNo};
  Collect("firma_de");
  EXPECT_THAT(boxes.texts(), ElementsAre(HasSubstr("Visit its pages again ?"), StartsWith(kEndAllParsed)));
  EXPECT_THAT(Rows(1), ElementsAre("anna@firma.de"));
}

TEST_F(CollectingWindow, ARunWithoutMemoryEndsInOrder) {
  Start();
  WhenFound([] { throw std::bad_alloc(); });
  Collect("www.cars.example");
  EXPECT_THAT(boxes.shown.back().text, StartsWith(kEndNoMemory));
  EXPECT_TRUE(Main().cmdExtract.enabled());
  loop.OnPump({});
  Collect("www.cars.example");
  EXPECT_EQ(Rows(1).size(), 3u);
}

TEST_F(CollectingWindow, TheNameOfACollectionDoesNotBecomeAKeyword) {
  ASSERT_TRUE(disk_->MakeFolder(home_ + "/data").ok());
  ASSERT_TRUE(Collection::Open(*disk_, home_ + "/data/garden_example.sqlite").ok());
  Start();
  Main().cmbURL.UserText("garden_example");
  SwitchTo(false);
  EXPECT_EQ(Main().cmbURL.text(), "");
  EXPECT_THAT(boxes.texts(), IsEmpty());
  SwitchTo(true);
  Main().cmbURL.UserText("www.cars.example");
  SwitchTo(false);
  EXPECT_EQ(Main().cmbURL.text(), "www.cars.example");
}

TEST_F(CollectingWindow, TheSettingWaitsForTheEndOfARun) {
  Start();
  WhenFound([&] {
    SwitchTo(false);
    EXPECT_EQ(&Main().job(), &program_->collection);
    EXPECT_EQ(Main().cmdExtract.text(), "&Stop");
  });
  Collect("www.cars.example");
  EXPECT_EQ(&Main().job(), &program_->classic);
  EXPECT_THAT(Rows(1), IsEmpty());
  EXPECT_TRUE(Exists(kReport));
}

TEST_F(CollectingWindow, TheSettingIsFollowedBehindAStartThatFails) {
  Start();
  interfaces.alive = false;
  boxes.while_shown = [&] {
    boxes.while_shown = {};
    SwitchTo(false);
  };
  Main().cmdExtract.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre(kEndOffLine));
  EXPECT_EQ(&Main().job(), &program_->classic);
}

TEST_F(CollectingWindow, WithAnEmptyBoxAndListNothingIsOpenAfterASwitch) {
  ASSERT_TRUE(disk_->MakeFolder(home_ + "/report").ok());
  Put("report/cars_example.rpt", "old@cars.de\r\n");
  Start();
  SwitchTo(false);
  Main().cmbURL.UserText("www.cars.example");
  ASSERT_THAT(Rows(1), ElementsAre("old@cars.de"));
  SwitchTo(true);
  Main().cmbURL.UserText("");
  SwitchTo(false);
  EXPECT_EQ(Main().job().found().Count(), 0u);
  Main().Close();
  Main().Show();
  EXPECT_EQ(Panel(2), "0 Address");
  EXPECT_THAT(Rows(1), IsEmpty());
}

TEST_F(CollectingWindow, ARunKeepsTheSettingsThatItBeganWith) {
  Start();
  WhenFound([&] {
    settings_.depth = 0;
    Store(settings_);
    SwitchTo(true);
  });
  Collect("www.cars.example");
  EXPECT_EQ(Rows(1).size(), 3u);
}

// --- Bad days ---

TEST_F(CollectingWindow, ADamagedCollectionIsKeptAsideAndSaidSo) {
  Start();
  Put(kDatabase, "this is no database, and it is long enough not to be taken for an empty one");
  Collect("www.cars.example");
  EXPECT_THAT(boxes.shown.at(0).text, HasSubstr("The collection was damaged. It lies in "));
  EXPECT_EQ(Rows(1).size(), 3u);
  EXPECT_TRUE(Exists(std::string(kDatabase) + ".bak"));
}

TEST_F(CollectingWindow, ALaterOpeningInsideAPumpWins) {
  Start();
  std::string page = "<title>Many</title>";
  for (int i = 0; i < 1000; ++i) page += "p" + std::to_string(i) + "@cars.de ";
  Page("https://www.many.example/", page);
  Collect("www.many.example");
  Collect("www.cars.example");
  bool once = false;
  loop.OnPump([&] {
    if (std::exchange(once, true)) return;
    Main().cmbURL.UserText("www.cars.example");
  });
  Main().cmbURL.UserText("www.many.example");
  loop.OnPump({});
  EXPECT_TRUE(once);
  EXPECT_THAT(Rows(1), ElementsAre("first@cars.de", "second@cars.de", "third@cars.de"));
  EXPECT_TRUE(Main().cmdExtract.enabled());
}

TEST_F(CollectingWindow, AReportDuringTheLoadingHoldsEveryAddress) {
  Start();
  std::string page;
  for (int i = 0; i < 1000; ++i) page += "p" + std::to_string(i) + "@cars.de ";
  Page("https://www.many.example/", page);
  Collect("www.many.example");
  Main().cmbURL.UserText("");
  bool once = false;
  loop.OnPump([&] {
    if (!std::exchange(once, true)) Main().cmdExport.Click();
  });
  Main().cmdExport.SetEnabled(true);
  Main().cmbURL.UserText("www.many.example");
  loop.OnPump({});
  ASSERT_TRUE(once);
  EXPECT_THAT(Contents("report/many_example.web.rpt"), HasSubstr("p999@cars.de"));
  EXPECT_EQ(Rows(1).size(), 1000u);
}

TEST_F(CollectingWindow, TheEndOfTheProgramInARunKeepsWhatWasFound) {
  web_client.Serve("https://www.cars.example/two",
                   ScriptedWebAnswer{.body = "late", .ip = kPublicPlace, .delay = std::chrono::minutes(2)});
  Start();
  WhenFound([&] {
    program_->SaveRun();
    const auto reader = CollectionReader::Open(home_ + "/" + kDatabase);
    ASSERT_TRUE(reader.ok());
    EXPECT_EQ(reader.value()->Figures().value().addresses, 1);
    Main().cmdExtract.Click();
  });
  Collect("www.cars.example");
}

}  // namespace
}  // namespace quenlar
