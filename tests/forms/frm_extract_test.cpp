// The main window: its controls, what it does before a run, and its list.
#include "forms/frm_extract.h"

#include <algorithm>

#include <gmock/gmock.h>

#include "project/data_file.h"
#include "support/program_world.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MainWindow : public ProgramTest {
 protected:
  MainWindow() { StoreProjects({}); }

  void AddAddress(const std::string& address, const std::string& url = "http://a.test/", bool tag_only = false) {
    engine.project.found.Add({url, address, "Title", tag_only});
    extract.AddRow(engine.project.found.Count() - 1, tag_only);
  }
};

// --- Design and loading ---

TEST_F(MainWindow, HasItsCaptionsAndColumns) {
  EXPECT_EQ(extract.caption(), "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  EXPECT_EQ(extract.cmdExport.text(), "&Report");
  EXPECT_EQ(extract.cmdDelete.text(), "&Delete");
  EXPECT_EQ(extract.cmdOption.text(), "&Option");
  EXPECT_EQ(extract.cmdTool.text(), "&Tool");
  EXPECT_EQ(extract.cmdHide.text(), "&Hide");
  EXPECT_EQ(extract.CommonDialog1.filter, "Text(*.txt)|*.txt");
  EXPECT_FALSE(extract.txtSearch.visible());
  EXPECT_EQ(extract.lstMail.columns.size(), 4u);
  EXPECT_FALSE(extract.tmrText.enabled());
}

TEST_F(MainWindow, PanelsHaveTheirDesignTexts) {
  EXPECT_EQ(Panel(2), "Email 0 ");
  EXPECT_EQ(Panel(3), "Scan 0");
  EXPECT_EQ(Panel(4), "0 Kbps");
}

TEST_F(MainWindow, EveryAccessKeyIsThereOnce) {
  std::string keys;
  for (const ui::Button* button : {&extract.cmdExtract, &extract.cmdExport, &extract.cmdDelete, &extract.cmdOption,
                                   &extract.cmdTool, &extract.cmdHide}) {
    const char key = button->text()[button->text().find('&') + 1];
    EXPECT_EQ(keys.find(key), std::string::npos) << button->text();
    keys += key;
  }
}

TEST_F(MainWindow, OpensIdleWithItsPanelsFilled) {
  Start();
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_FALSE(extract.cmdDelete.enabled()) << "no project is saved";
  EXPECT_FALSE(extract.cmdExport.enabled());
  EXPECT_EQ(extract.txtSearch.text(), "en");
  EXPECT_EQ(Panel(1), "Waiting ...");
  EXPECT_EQ(Panel(2), "0 Address");
  EXPECT_EQ(Panel(3), "Scan 0");
  EXPECT_TRUE(extract.Ready());
}

TEST_F(MainWindow, TheHiddenFieldHoldsTheLanguageOfTheSettings) {
  const std::pair<const char*, const char*> kRows[] = {{"0", "en"}, {"1", "fr"}, {"2", "de"}, {"3", "it"},
                                                       {"4", "es"}, {"5", "ja"}, {"6", ""}};
  for (const auto& [index, code] : kRows) {
    ProgramWorld world;
    world.StoreProjects({});
    world.Store("Search", index);
    world.Start();
    EXPECT_EQ(world.extract.txtSearch.text(), code);
  }
}

TEST_F(MainWindow, SavedProjectsStandInTheListAndTheNewestIsOpened) {
  StoreProjects({"www.new.test", "old_fr"});
  files.AddFolder("/home/data");
  files.Put("/home/data/new_test.dat", HeaderLine() + "\r\n[A]\r\n[B]\r\n[C]\r\n[D]\r\n[E]\r\n[M]\r\nhttp://x\r\n");
  Start();
  EXPECT_THAT(extract.cmbURL.items(), ElementsAre("www.new.test", "old_fr"));
  EXPECT_EQ(extract.cmbURL.text(), "www.new.test");
  EXPECT_EQ(engine.project.StartURL, "http://www.new.test");
  EXPECT_TRUE(extract.cmdDelete.enabled());
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_EQ(Panel(1), "Waiting ...");
}

TEST_F(MainWindow, Panel3SumsTheNextIndicesOfLevels0To5Alone) {
  Start();
  for (std::size_t level = 0; level < kLevels; ++level) {
    for (int i = 0; i < 3; ++i) engine.project.queues[level].AddIfNew("http://" + std::to_string(i));
    for (std::size_t i = 0; i < 2; ++i) engine.project.queues[level].StartNext();
  }
  extract.Close();
  tray.mnuExtractor.Click();
  EXPECT_EQ(Panel(3), "Scan 12");
}

TEST_F(MainWindow, AWindowThatIsReopenedKeepsItsProjectAndFillsTheListOfProjects) {
  StoreProjects({"www.new.test"});
  Start();
  Type("www.typed.test");
  engine.project_list.Load({"www.new.test", "www.old.test"});
  extract.Close();
  EXPECT_FALSE(extract.Ready());
  tray.mnuExtractor.Click();
  EXPECT_TRUE(extract.Ready());
  EXPECT_EQ(extract.cmbURL.text(), "www.typed.test");
  EXPECT_EQ(engine.project.StartURL, "http://www.typed.test");
  EXPECT_THAT(extract.cmbURL.items(), ElementsAre("www.new.test", "www.old.test"));
  EXPECT_EQ(Panel(1), "Waiting ...");
}

TEST_F(MainWindow, TheFocusOnTheInputShowsTheHint) {
  Start();
  extract.cmbURL.GotFocus();
  EXPECT_EQ(Panel(1), "Enter URL as \"http://www.example.com\" or Keyword as \"picture search\"");
}

// --- What is typed ---

TEST_F(MainWindow, ATextWithoutADotIsAKeyword) {
  Start();
  Type("picture search");
  EXPECT_TRUE(engine.project.IsKeywordProject);
  EXPECT_EQ(engine.project.Keyword, "picture+search");
  EXPECT_EQ(Panel(1), "Ready now !");
}

TEST_F(MainWindow, ATextWithADotAnywhereIsAWebAddress) {
  Start();
  Type("picture.search");
  EXPECT_FALSE(engine.project.IsKeywordProject);
  EXPECT_EQ(engine.project.StartURL, "http://www.picture.search");
}

TEST_F(MainWindow, LoadingAProjectShowsItsProgress) {
  Start();
  std::string data = HeaderLine() + "\r\n[A]\r\n";
  for (int i = 0; i < 130; ++i) data += "http://a.test/" + std::to_string(i) + "\r\n";
  files.Put("/home/data/a_test.dat", data);
  std::vector<std::string> stages;
  extract.stsExtract.changed = [&](ui::Aspect) {
    if (stages.empty() || stages.back() != Panel(1)) stages.push_back(Panel(1));
  };
  Type("a.test");
  EXPECT_THAT(stages, ElementsAre("Load data ..", "Load data ....", "Load data ......", "Load data ..",
                                  "Load data ....", "Load data ......", "Load data finished ", "Ready now !"));
}

TEST_F(MainWindow, AWindowThatIsNotLoadedKeepsTheLoadMessage) {
  extract.cmdExtract.SetEnabled(false);
  engine.projects.OpenProject("cars");
  EXPECT_EQ(Panel(1), "Load data finished ");
  EXPECT_FALSE(extract.cmdExtract.enabled());
}

TEST_F(MainWindow, DeleteNeedsADataFileAndReportAReport) {
  Start();
  const auto buttons = [this](const std::string& text) {
    Type(text);
    return std::pair(extract.cmdDelete.enabled(), extract.cmdExport.enabled());
  };
  files.Put("/home/data/a_test.dat", HeaderLine() + "\r\n");
  files.Put("/home/report/b_test.rpt", "a@b.test\r\n");
  EXPECT_EQ(buttons("a.test"), std::pair(true, false));
  EXPECT_EQ(buttons("b.test"), std::pair(false, true));
  EXPECT_EQ(buttons("c.test"), std::pair(false, false));
}

TEST_F(MainWindow, ACutSuffixIsToldAndTheTextBecomesTheKeyword) {
  Start();
  Type("cars_jp");
  EXPECT_THAT(
      boxes.texts(),
      ElementsAre("We will delete any lettes behind \"_\", except \"_en\",\"_fr\",\"_de\",\"_it\",\"_es\",\"_ja\""));
  EXPECT_EQ(extract.cmbURL.text(), "cars");
  EXPECT_EQ(engine.project.Keyword, "cars");
  EXPECT_TRUE(extract.cmdExtract.enabled());
}

TEST_F(MainWindow, ACutSuffixLeavesTheCaretAtTheEnd) {
  Start();
  std::vector<ui::Aspect> aspects;
  extract.cmbURL.changed = [&](ui::Aspect aspect) { aspects.push_back(aspect); };
  Type("cars_jp");
  EXPECT_THAT(aspects, ElementsAre(ui::Aspect::kText, ui::Aspect::kCaret));
}

TEST_F(MainWindow, WhileAProjectIsBeingLoadedNoRunCanBegin) {
  Start();
  files.AddFolder("/home/report");
  std::string report;
  for (int i = 0; i < 10; ++i) report += "u" + std::to_string(i) + "@a.test\r\n";
  files.Put("/home/report/a_test.rpt", report);
  int pumps = 0;
  loop.OnPump([&] {
    ++pumps;
    EXPECT_FALSE(extract.cmdExtract.enabled());
    extract.cmdExtract.Click();
  });
  Type("a.test");
  loop.OnPump({});
  EXPECT_GT(pumps, 0);
  EXPECT_FALSE(tray.tmrExtract.enabled());
  EXPECT_TRUE(extract.cmdExtract.enabled());
  EXPECT_EQ(extract.lstMail.rows(), 10u);
}

// --- The Extract button before a run ---

TEST_F(MainWindow, PressingExtractWithAnEmptyComboWhileOffLineReportsTheOffLineMessage) {
  Start();
  interfaces.alive = false;
  extract.cmdExtract.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("You are not on the internet !"));
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
}

TEST_F(MainWindow, PressingExtractWithAnEmptyComboAsksForATextAndChangesNothing) {
  Start();
  extract.cmdExtract.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("Please enter keyword or URL !"));
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(extract.cmdExtract.text(), "&Extract");
  EXPECT_FALSE(tray.tmrExtract.enabled());
  EXPECT_TRUE(tray.mnuExit.enabled());
  EXPECT_TRUE(extract.cmbURL.enabled());
}

TEST_F(MainWindow, AProjectThatCannotBeSavedIsToldAndDoesNotBegin) {
  Start();
  files.Protect("/home/data");
  Type("www.a.test");
  extract.cmdExtract.Click();
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_TRUE(boxes.shown[0].text.ends_with(" !")) << boxes.shown[0].text;
  EXPECT_FALSE(tray.tmrExtract.enabled());
  EXPECT_TRUE(extract.cmbURL.enabled());
  EXPECT_THAT(engine.project_list.entries(), IsEmpty());
}

TEST_F(MainWindow, AKeywordWithoutALanguageIsToldAndDoesNotBegin) {
  Store("Search", "9");
  Start();
  Type("cars");
  extract.cmdExtract.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("Please choose a search language in the options !"));
  EXPECT_FALSE(tray.tmrExtract.enabled());
  engine.settings.SearchLanguage = 1;  // as the options do it
  extract.cmdExtract.Click();
  EXPECT_TRUE(tray.tmrExtract.enabled());
  EXPECT_EQ(extract.cmbURL.text(), "cars_fr");
}

// --- Hide, option and tool ---

TEST_F(MainWindow, HideLeavesTheWindowLoadedAndTheMenuBringsItBack) {
  Start();
  bool disabled_meanwhile = false;
  extract.window.hide = [&] { disabled_meanwhile = !extract.cmdHide.enabled(); };
  extract.cmdHide.Click();
  EXPECT_FALSE(extract.shown());
  EXPECT_TRUE(extract.loaded());
  EXPECT_TRUE(disabled_meanwhile);
  EXPECT_TRUE(extract.cmdHide.enabled());
  EXPECT_TRUE(tray.mnuExtractor.enabled());
}

TEST_F(MainWindow, OptionAndToolAreModalAndTheirButtonsDisabledMeanwhile) {
  Start();
  const struct {
    ui::Form& form;
    ui::Button& button;
  } kRows[] = {{option, extract.cmdOption}, {tool, extract.cmdTool}};
  for (const auto& row : kRows) {
    int modal = 0;
    row.form.window.run_modal = [&] {
      ++modal;
      EXPECT_FALSE(row.button.enabled());
      EXPECT_TRUE(row.form.shown());
      row.form.Close();
    };
    row.button.Click();
    EXPECT_EQ(modal, 1);
    EXPECT_TRUE(row.button.enabled());
  }
}

TEST_F(MainWindow, TheLanguagePickedInTheOptionsComesToTheHiddenField) {
  Start();
  option.window.run_modal = [&] { option.cmbSearch.UserPick(5); };
  extract.cmdOption.Click();
  EXPECT_EQ(extract.txtSearch.text(), "ja");
}

// --- The list ---

TEST_F(MainWindow, TheListShowsTheTable) {
  Start();
  AddAddress("x@a.test", "http://a.test/1");
  AddAddress("y@a.test", "http://a.test/2", true);
  EXPECT_EQ(extract.lstMail.rows(), 2u);
  EXPECT_EQ(extract.lstMail.CellText(1, 0), "2");
  EXPECT_EQ(extract.lstMail.CellText(1, 1), "y@a.test");
  EXPECT_EQ(extract.lstMail.CellColor(1, 1), 0x0000FFu);
  EXPECT_EQ(extract.lstMail.CellColor(0, 1), std::nullopt);
}

TEST_F(MainWindow, ADoubleClickOpensThePageOfTheSelectedRow) {
  Start();
  AddAddress("x@a.test", "http://a.test/1");
  AddAddress("y@a.test", "http://a.test/2");
  extract.lstMail.DblClick();
  EXPECT_THAT(shell.opened, IsEmpty()) << "nothing is selected";
  extract.lstMail.UserSelect(1);
  extract.lstMail.DblClick();
  EXPECT_THAT(shell.opened, ElementsAre("http://a.test/2"));
}

TEST_F(MainWindow, ADoubleClickOnARowWhosePageAddressHoldsTabOrQuoteOpensOneArgument) {
  Start();
  AddAddress("x@a.test", "http://a.test/\t\"x\" y");
  extract.lstMail.UserSelect(0);
  extract.lstMail.DblClick();
  EXPECT_THAT(shell.opened, ElementsAre("http://a.test/%09%22x%22%20y"));
}

TEST_F(MainWindow, ARowWithoutAPageOpensNothing) {
  Start();
  AddAddress("x@a.test", "");
  extract.lstMail.UserSelect(0);
  extract.lstMail.DblClick();
  EXPECT_THAT(shell.opened, IsEmpty());
}

TEST_F(MainWindow, AClickWhereNoRowIsClearsTheSelection) {
  Start();
  AddAddress("x@a.test");
  extract.lstMail.UserSelect(0);
  extract.lstMail.Miss();
  EXPECT_EQ(extract.lstMail.selected(), std::nullopt);
}

TEST_F(MainWindow, MarkedRowsCanBeCopiedAndOpened) {
  Start();
  AddAddress("x@a.test", "http://a.test/1");
  AddAddress("y@a.test", "http://a.test/2");
  const auto& commands = extract.lstMail.commands;
  ASSERT_EQ(std::count_if(commands.begin(), commands.end(), [](const auto& one) { return one.CanRun(true); }), 3);
  EXPECT_EQ(commands[0].caption, "Copy &address\tCtrl+C");
  EXPECT_EQ(commands[0].control_key, 'C');
  EXPECT_EQ(commands[1].caption, "Copy &row");
  EXPECT_EQ(commands[2].caption, "&Open page");
  commands[0].run({1, 0});
  commands[1].run({1});
  EXPECT_THAT(shell.copied, ElementsAre("y@a.test\r\nx@a.test", "2\ty@a.test\thttp://a.test/2\tTitle"));
  commands[2].run({1, 0});
  EXPECT_THAT(shell.opened, ElementsAre("http://a.test/2")) << "one page, however many rows are marked";
}

TEST_F(MainWindow, ALongCellIsShownWhole) {
  Start();
  const std::string title(5000, 't');
  for (int i = 0; i < 1000; ++i) AddAddress("u" + std::to_string(i) + "@a.test");
  engine.project.found.Add({"http://a.test/", "long@a.test", title});
  extract.AddRow(1000, false);
  EXPECT_EQ(extract.lstMail.rows(), 1001u);
  EXPECT_EQ(extract.lstMail.CellText(1000, 3), title);
  extract.ClearRows();
  EXPECT_EQ(extract.lstMail.rows(), 0u);
}

}  // namespace
}  // namespace quenlar
