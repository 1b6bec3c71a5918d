// Runs, started and watched in the real window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/data_file.h"
#include "run/end_reasons.h"
#include "state/settings.h"
#include "window/program.h"

namespace quenlar::window_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kSite = "http://www.cars.example";
constexpr const char* kResults = "http://www.google.com/search?hl=en&q=cars&btnG=Google+Search&num=100&start=";

constexpr const char* kStartPage = "<title>Cars</title> Write to first@cars.test <a href=\"/two.html\">more</a>";

// A program whose downloads all come from the test's own site.
struct RunTest : testing::Test {
  Site site;
  Program program;

  RunTest() {
    StoreDefaultsWithoutUpgradeCheck();
    program.SetProxy(site);
    for (const char* root : {"", "/"}) site.SetPage(std::string(kSite) + root, kStartPage);
    site.SetPage(std::string(kSite) + "/two.html",
                 "<title>Two</title><a href=\"mailto:second@cars.test\">mail</a> third@cars.test<p>");
  }
  void Begin(const std::string& text) const {
    const Window main = program.Main();
    main.Control("cmbURL").Type(text);
    ASSERT_TRUE(WaitUntil([&] { return main.Control("cmbURL").Text() == text; }));
    main.Control("cmdExtract").Click();
  }
  [[nodiscard]] Window Control(std::string_view name) const { return program.Main().Control(name); }
};

TEST_F(RunTest, ARunByAddressFillsTheListAndTheFiles) {
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  const Window list = Control("lstMail");
  ASSERT_TRUE(WaitUntil([&] { return list.Rows() == 3; })) << list.Rows();
  EXPECT_THAT(list.Column(0), ElementsAre("1", "2", "3"));
  EXPECT_THAT(list.Column(1), testing::UnorderedElementsAre("first@cars.test", "second@cars.test", "third@cars.test"));
  EXPECT_THAT(list.Cell(0, 2), HasSubstr(kSite));
  EXPECT_EQ(list.Cell(0, 3), "Cars");
  const Window bar = Control("stsExtract");
  EXPECT_TRUE(WaitUntil([&] { return bar.Panel(1).starts_with("Extract process ended at "); })) << bar.Panel(1);
  EXPECT_EQ(bar.Panel(2), "3 Address");
  EXPECT_EQ(bar.Panel(3), "Scan 2");

  EXPECT_EQ(Control("cmdExtract").Text(), "&Extract");
  for (const char* name : {"cmdExtract", "cmdExport", "cmdDelete", "cmbURL", "cmdOption", "cmdTool"}) {
    EXPECT_TRUE(Control(name).Enabled()) << name;
  }
  EXPECT_THAT(program.ReadFile("report/cars_example.rpt"), HasSubstr("first@cars.test\r\n"));
  EXPECT_THAT(StoredSettings(), testing::Contains(testing::Pair("Project1", "www.cars.example")));
}

TEST_F(RunTest, ARunByKeywordStartsAtTheSearchEngine) {
  site.SetPage(std::string(kResults) + "0", "<h3 class=\"r\"><a href=\"http://www.cars.example/two.html\">x</a></h3>");
  site.SetPage(std::string(kResults) + "100", "nothing more");
  program.Start();
  Begin("cars");
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  ASSERT_TRUE(WaitUntil([&] { return Control("lstMail").Rows() == 2; }));
  EXPECT_TRUE(site.WasAskedFor(std::string(kResults) + "100"));
  EXPECT_FALSE(site.WasAskedFor(std::string(kResults) + "200"));
  EXPECT_TRUE(WaitUntil([&] { return Control("cmbURL").Text() == "cars_en"; })) << Control("cmbURL").Text();
}

TEST_F(RunTest, WhileARunGoesOnOnlyStopAndHideCanBeUsed) {
  site.SetSilent(kSite);
  site.SetSilent(std::string(kSite) + "/");
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Text() == "&Stop"; }));
  ASSERT_TRUE(WaitUntil([&] { return !Control("cmbURL").Enabled(); }));
  for (const char* name : {"cmdExport", "cmdDelete", "cmbURL", "cmdOption", "cmdTool"}) {
    EXPECT_FALSE(Control(name).Enabled()) << name;
  }
  EXPECT_TRUE(Control("cmdHide").Enabled());
  EXPECT_TRUE(WaitUntil([&] { return Control("stsExtract").Panel(1) != "Waiting ..."; }));

  Control("cmdExtract").Click();
  ASSERT_TRUE(program.Answer(kEndStopButton));
  EXPECT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled(); }));
  EXPECT_EQ(Control("cmdExtract").Text(), "&Extract");
  EXPECT_THAT(program.ReadFile("data/cars_example.dat"), HasSubstr("[M]\r\nhttp://www.cars.example\r\n[F]\r\n"));
}

TEST_F(RunTest, TheWindowThatIsReopenedDuringARunReadsStopAndExitIsNotOffered) {
  site.SetSilent(kSite);
  site.SetSilent(std::string(kSite) + "/");
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return !site.Requests().empty(); }));
  const Window before = program.Main();
  before.Close();
  ASSERT_TRUE(WaitUntil([&] { return !before; }));
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kExit));
  EXPECT_TRUE(program.Running());
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kWindow));
  ASSERT_TRUE(WaitUntil([&] { return program.Main() && program.Main().Visible(); }));
  EXPECT_EQ(Control("cmdExtract").Text(), "&Stop");
  EXPECT_FALSE(Control("cmbURL").Enabled());
  Control("cmdExtract").Click();
  EXPECT_TRUE(program.Answer(kEndStopButton));
}

TEST_F(RunTest, LoggingOffDuringARunSavesIt) {
  for (const char* root : {"", "/"}) site.SetPage(std::string(kSite) + root, kStartPage);
  site.SetSilent(std::string(kSite) + "/two.html");
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return site.WasAskedFor(std::string(kSite) + "/two.html"); }));
  EXPECT_FALSE(program.HasFile("report/cars_example.rpt"));
  ASSERT_TRUE(program.EndSession());
  EXPECT_THAT(program.ReadFile("data/cars_example.dat"), HasSubstr("\r\nhttp://www.cars.example/two.html\r\n"));
  EXPECT_THAT(program.ReadFile("report/cars_example.rpt"), HasSubstr("first@cars.test\r\n"));
}

TEST_F(RunTest, LoggingOffBeforeTheEndOfARunIsAcknowledgedSavesIt) {
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return program.HasBox(kEndAllParsed); }));
  EXPECT_FALSE(program.HasFile("report/cars_example.rpt"));
  ASSERT_TRUE(program.EndSession());
  EXPECT_THAT(program.ReadFile("report/cars_example.rpt"), HasSubstr("third@cars.test\r\n"));
}

TEST_F(RunTest, UpgradingInTheMiddleOfARunSavesIt) {
  StoreSetting("NeverUpgrade", "0");
  site.SetPage(kUpgradePage, "4\r\n");
  site.SetSilent(std::string(kSite) + "/two.html");
  program.Start();
  const Window dialog = program.WaitForWindow("Brenvy Quenlar Pro 3.0 Upgrade");
  ASSERT_TRUE(dialog);
  Begin("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return site.WasAskedFor(std::string(kSite) + "/two.html"); }));
  EXPECT_FALSE(program.HasFile("report/cars_example.rpt"));
  dialog.Control(IDOK).Click();
  ASSERT_TRUE(program.WaitForEnd());
  EXPECT_THAT(program.ReadFile("data/cars_example.dat"), HasSubstr("\r\nhttp://www.cars.example/two.html\r\n"));
  EXPECT_THAT(program.ReadFile("report/cars_example.rpt"), HasSubstr("first@cars.test\r\n"));
}

TEST_F(RunTest, TheStopNumberEndsTheRun) {
  StoreSetting("StopNumber", "1");
  program.Start();
  Begin("www.cars.example");
  EXPECT_TRUE(program.Answer(kEndStopNumber));
}

TEST_F(RunTest, AStoppedProjectIsContinuedByTheNextProgram) {
  program.WriteFile("data/cars_example.dat",
                    HeaderLine() +
                        "\r\n[A]\r\n[B]\r\n[C]\r\n[D]\r\n[E]\r\n[M]\r\nhttp://www.cars.example/two.html\r\n"
                        "[F]\r\n[G]\r\n[H]\r\n[I]\r\n[J]\r\n");
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  EXPECT_THAT(site.Requests(), testing::Contains(std::string(kSite) + "/two.html"));
  EXPECT_FALSE(site.WasAskedFor(kSite));
  EXPECT_FALSE(site.WasAskedFor(std::string(kSite) + "/"));
}

TEST_F(RunTest, ExtractWithNothingTypedSaysSo) {
  program.Start();
  Control("cmdExtract").Click();
  EXPECT_TRUE(program.Answer("Please enter keyword or URL !"));
  EXPECT_EQ(Control("cmdExtract").Text(), "&Extract");
}

TEST_F(RunTest, AfterACutSuffixTypingGoesOnAtTheEnd) {
  program.Start();
  Control("cmbURL").Type("cars");
  const Window edit(FindWindowExW(Control("cmbURL").handle(), nullptr, L"Edit", nullptr));
  edit.PressLetter('_');
  ASSERT_TRUE(
      program.Answer("We will delete any lettes behind \"_\", except \"_en\",\"_fr\",\"_de\",\"_it\",\"_es\",\"_ja\""));
  ASSERT_TRUE(WaitUntil([&] { return edit.Text() == "cars"; })) << edit.Text();
  edit.PressLetter('x');
  EXPECT_TRUE(WaitUntil([&] { return edit.Text() == "carsx"; })) << edit.Text();
}

TEST_F(RunTest, DeletingAProjectAsksAndThenTakesItsFilesAndItsEntry) {
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdDelete").Enabled(); }));
  Control("cmdDelete").Click();
  ASSERT_TRUE(program.Answer("Are you sure to delete it ?", IDNO));
  EXPECT_TRUE(program.HasFile("report/cars_example.rpt"));
  Control("cmdDelete").Click();
  ASSERT_TRUE(program.Answer("Are you sure to delete it ?", IDYES));
  EXPECT_TRUE(WaitUntil([&] { return !program.HasFile("report/cars_example.rpt"); }));
  EXPECT_TRUE(WaitUntil([&] { return Control("cmbURL").Items().empty(); }));
  EXPECT_TRUE(WaitUntil([&] { return Control("lstMail").Rows() == 0; }));
  EXPECT_FALSE(Control("cmdDelete").Enabled());
  EXPECT_THAT(StoredSettings(), testing::Contains(testing::Pair("ProjectNum", "0")));
}

TEST_F(RunTest, PickingAProjectFromTheListOpensIt) {
  StoreSetting("ProjectNum", "2");
  StoreSetting("Project1", "www.other.example");
  StoreSetting("Project2", "www.cars.example");
  program.WriteFile("report/cars_example.rpt", HeaderLine() + "\r\n\r\nkept@cars.test\r\n");
  program.Start();
  ASSERT_TRUE(WaitUntil([&] { return Control("cmbURL").Items().size() == 2; }));
  Control("cmbURL").Pick(1);
  ASSERT_TRUE(WaitUntil([&] { return Control("lstMail").Rows() == 1; }));
  EXPECT_EQ(Control("lstMail").Cell(0, 1), "kept@cars.test");
  EXPECT_EQ(Control("cmbURL").Text(), "www.cars.example");
  EXPECT_THAT(Control("cmbURL").Items(), ElementsAre("www.cars.example", "www.other.example"));
}

TEST_F(RunTest, ReportOpensTheEditorOnTheReport) {
  program.Start();
  Begin("www.cars.example");
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExport").Enabled(); }));
  Control("cmdExport").Click();
  HWND editor = nullptr;
  ASSERT_TRUE(WaitUntil([&] { return (editor = FindWindowW(L"Notepad", nullptr)) != nullptr; }));
  EXPECT_TRUE(WaitUntil([&] { return Window(editor).Text().starts_with("cars_example.rpt"); }))
      << Window(editor).Text();
  Window(editor).Close();
  EXPECT_TRUE(WaitUntil([&] { return !IsWindow(editor); }));
}

}  // namespace
}  // namespace quenlar::window_test
