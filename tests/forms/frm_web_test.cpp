#include "forms/frm_web.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/product.h"
#include "state/settings.h"
#include "support/fake_registry.h"
#include "support/program_world.h"
#include "support/recorders.h"

namespace quenlar {
namespace {

using testing::ElementsAre;

struct WebSettingsDialog : ProgramTest {
  frmWeb& web = program.web;
  WebSettings& settings = program.web_settings;

  [[nodiscard]] std::string Stored(const char* name) const { return registry.Stored(kWebKey, name).value_or("(none)"); }
  // The message that answers OK; the dialog stays.
  std::string Refused() {
    boxes.shown.clear();
    web.cmdOK.Click();
    EXPECT_TRUE(web.loaded());
    EXPECT_EQ(boxes.shown.size(), 1u);
    return boxes.shown.empty() ? "" : boxes.shown[0].text;
  }
};

TEST_F(WebSettingsDialog, ShowsWhatIsStored) {
  WebSettings other;
  other.collect = 1;
  other.contact = "https://me.example/";
  other.search_service = "https://search.example/";
  other.scope = 2;
  other.depth = 7;
  other.pages_per_host = 20;
  other.hosts = 8;
  other.pause = 2500;
  other.obey_robots = 0;
  other.list_protected = 1;
  ASSERT_TRUE(StoreWebSettings(registry, other).ok());
  web.Show();
  EXPECT_TRUE(web.chkCollect.checked());
  EXPECT_EQ(web.txtContact.text(), "https://me.example/");
  EXPECT_EQ(web.txtService.text(), "https://search.example/");
  EXPECT_EQ(web.cmbScope.text(), "Any site");
  EXPECT_EQ(web.txtDepth.text(), "7");
  EXPECT_EQ(web.txtPages.text(), "20");
  EXPECT_EQ(web.txtHosts.text(), "8");
  EXPECT_EQ(web.txtPause.text(), "2.5");
  EXPECT_FALSE(web.chkRobots.checked());
  EXPECT_TRUE(web.chkProtected.checked());
}

TEST_F(WebSettingsDialog, OkStoresEverythingAndTellsOfIt) {
  web.Show();
  web.chkCollect.UserClick();
  web.txtContact.UserText("  me@home.example ");
  web.txtService.UserText("https://search.example");
  web.cmbScope.UserPick(0);
  web.txtDepth.UserText("0");
  web.txtPages.UserText("30");
  web.chkProtected.UserClick();
  web.txtPause.UserText("0,25");
  web.txtHosts.UserText("4");
  web.chkRobots.UserClick();
  web.cmdOK.Click();
  EXPECT_FALSE(web.loaded());
  EXPECT_EQ(settings.collect, 1);
  EXPECT_EQ(&extract.job(), &program.collection);
  const std::vector<std::pair<const char*, const char*>> kExpected = {{"Collect", "1"},
                                                                      {"Contact", "me@home.example"},
                                                                      {"SearchService", "https://search.example"},
                                                                      {"Scope", "0"},
                                                                      {"Depth", "0"},
                                                                      {"PagesPerHost", "30"},
                                                                      {"ListProtected", "1"},
                                                                      {"Pause", "250"},
                                                                      {"Hosts", "4"},
                                                                      {"ObeyRobots", "0"}};
  for (const auto& [name, text] : kExpected) EXPECT_EQ(Stored(name), text) << name;
  EXPECT_FALSE(registry.KeyExists(kProjectKey));
}

TEST_F(WebSettingsDialog, CancelAndClosingChangeNothing) {
  for (const bool cancel : {true, false}) {
    web.Show();
    web.chkCollect.UserClick();
    web.txtDepth.UserText("9");
    if (cancel) {
      web.cmdCancel.Click();
    } else {
      web.Close();
    }
    EXPECT_FALSE(web.loaded());
    EXPECT_EQ(settings.collect, 0);
    EXPECT_FALSE(registry.KeyExists(kWebKey));
  }
  web.Show();
  EXPECT_FALSE(web.chkCollect.checked());
  EXPECT_EQ(web.txtDepth.text(), "5");
}

TEST_F(WebSettingsDialog, NumbersOutOfTheirBoundsAreRefusedInWords) {
  web.Show();
  const struct {
    ui::TextBox& box;
    std::size_t tab;
    std::vector<std::string> wrong;
    const char* right;
    const char* message;
  } kCases[] = {
      {web.txtDepth,
       1,
       {"", "x", "-1", "1.5", "1001"},
       "1000",
       "Clicks from a start: please enter a number between 0 and 1000 !"},
      {web.txtPages,
       1,
       {"0", "", "9999999999"},
       "1",
       "Pages of a host: please enter a number between 1 and 1000000000 !"},
      {web.txtPause,
       2,
       {"", "-1", "3601", "0.0001", "1e3", "."},
       "3600",
       "The pause: please enter a number between 0 and 3600 !"},
      {web.txtHosts, 2, {"0", "100001"}, "100000", "Hosts at a time: please enter a number between 1 and 100000 !"},
  };
  for (const auto& one : kCases) {
    for (const std::string& wrong : one.wrong) {
      web.tabWeb.Select(0);
      one.box.UserText(wrong);
      EXPECT_EQ(Refused(), one.message) << wrong;
      EXPECT_EQ(web.tabWeb.selected(), one.tab) << "the control with the mistake is in sight";
    }
    one.box.UserText(one.right);
  }
  EXPECT_FALSE(registry.KeyExists(kWebKey));
  web.cmdOK.Click();
  EXPECT_EQ(Stored("Depth"), "1000");
}

TEST_F(WebSettingsDialog, TextsThatAreNoAddressesAreRefusedInWords) {
  web.Show();
  web.txtContact.UserText("call me");
  EXPECT_EQ(Refused(), "The contact must be a web or mail address in ASCII, without blanks and parentheses !");
  web.txtContact.UserText("");
  web.txtService.UserText("search.example");
  EXPECT_EQ(Refused(), "The search service must be an address that begins with http:// or https:// !");
  EXPECT_EQ(web.tabWeb.selected(), 0u);
}

TEST_F(WebSettingsDialog, OnePageIsSeenAtATime) {
  web.Show();
  const auto seen = [&] {
    return std::vector<bool>{web.picGeneral.visible(), web.picReach.visible(), web.picManners.visible(),
                             web.picNever.visible()};
  };
  EXPECT_THAT(seen(), ElementsAre(true, false, false, false));
  web.tabWeb.Select(2);
  EXPECT_THAT(seen(), ElementsAre(false, false, true, false));
}

// --- What is never listed ---

struct NeverListPage : WebSettingsDialog {
  NeverListPage() {
    files.AddFolder("/home/data");
    files.AddFolder("/home/report");
    StoreProjects({});
  }
  [[nodiscard]] std::string File() const { return files.Contents("/home/suppressed.txt").value_or("(none)"); }
};

TEST_F(NeverListPage, ShowsWhatIsOnTheList) {
  files.Put("/home/suppressed.txt", "# of last year\nAnna@example.org\n@example.net\n");
  web.Show();
  EXPECT_THAT(web.lstNever.items(), ElementsAre("anna@example.org", "@example.net"));
  EXPECT_FALSE(web.cmdRemove.enabled());
  EXPECT_TRUE(web.cmdAdd.enabled());
}

TEST_F(NeverListPage, AddTakesTheAddressOutOfWhatIsStored) {
  files.Put("/home/report/cars_test.rpt", "one@cars.test\r\ntwo@cars.test\r\n");
  Start();
  web.Show();
  web.txtNever.UserText(" One@cars.test ");
  web.cmdAdd.Click();
  EXPECT_THAT(web.lstNever.items(), ElementsAre("one@cars.test"));
  EXPECT_EQ(web.txtNever.text(), "");
  EXPECT_EQ(File(), "one@cars.test\n");
  EXPECT_EQ(files.Contents("/home/report/cars_test.rpt"), "two@cars.test\r\n");
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_EQ(boxes.shown[0].text, "one@cars.test: 1 address taken out of 0 collections and 1 file of projects.");
}

TEST_F(NeverListPage, AddLeavesTheRestOfAClassicProjectAsItIs) {
  const std::string site = "http://www.cars.test";
  fetcher.Serve(site,
                "<title>one@cars.test's cars</title><p>one@cars.test</p><p>two@cars.test</p>"
                "<a href=\"/?to=one@cars.test\">a</a><a href=\"/next\">b</a>");
  Start();
  loop.Schedule(std::chrono::seconds(2), [this] { extract.cmdExtract.Click(); });  // the links are never answered
  RunProject("www.cars.test");
  const std::string data = "/home/data/cars_test.dat";
  ASSERT_THAT(files.Contents(data).value_or(""), testing::HasSubstr("/?to=one@cars.test"));
  web.Show();
  web.txtNever.UserText("one@cars.test");
  web.cmdAdd.Click();
  ASSERT_EQ(extract.lstMail.rows(), 1u);
  EXPECT_EQ(extract.lstMail.CellText(0, 1), "two@cars.test");
  EXPECT_EQ(extract.lstMail.CellText(0, 2), site) << "the report of addresses alone has no pages";
  EXPECT_EQ(extract.lstMail.CellText(0, 3), "'s cars");
  ASSERT_TRUE(engine.projects.WriteData().ok());
  EXPECT_THAT(files.Contents(data).value_or(""), testing::HasSubstr("/next"));
  EXPECT_THAT(files.Contents(data).value_or(""), testing::Not(testing::HasSubstr("one@cars.test")));
}

TEST_F(NeverListPage, WhatIsNoEntryIsRefused) {
  web.Show();
  web.txtNever.UserText("anna");
  web.cmdAdd.Click();
  EXPECT_EQ(boxes.texts(),
            std::vector<std::string>{"anna is neither an address nor @ and a domain nor sha256: and a digest !"});
  EXPECT_EQ(web.txtNever.text(), "anna");
  EXPECT_EQ(File(), "(none)");
}

TEST_F(NeverListPage, EnterInTheBoxAddsInsteadOfClosing) {
  web.Show();
  web.tabWeb.Select(3);
  web.txtNever.UserText("@cars.test");
  web.cmdOK.Click();
  EXPECT_TRUE(web.loaded());
  EXPECT_THAT(web.lstNever.items(), ElementsAre("@cars.test"));
  web.cmdOK.Click();
  EXPECT_FALSE(web.loaded());
}

TEST_F(NeverListPage, RemoveTakesTheMarkedOnesOff) {
  files.Put("/home/suppressed.txt", "a@cars.test\nb@cars.test\nc@cars.test\n");
  web.Show();
  web.lstNever.UserSelect({true, false, true});
  EXPECT_TRUE(web.cmdRemove.enabled());
  web.cmdRemove.Click();
  EXPECT_THAT(web.lstNever.items(), ElementsAre("b@cars.test"));
  EXPECT_EQ(File(), "b@cars.test\n");
  EXPECT_FALSE(web.cmdRemove.enabled());
  web.lstNever.UserSelect({true});
  web.lstNever.DeleteKey();
  EXPECT_TRUE(web.lstNever.items().empty());
}

TEST_F(NeverListPage, ImportAddsTheEntriesOfAFile) {
  files.Put("/home/old.txt", "a@cars.test\n# a note\nnonsense\n@boats.test\n");
  dialogs.open_answers = {FileDialogs::Choice{"/home/old.txt", "/home"}, std::nullopt};
  web.Show();
  web.cmdImport.Click();
  EXPECT_THAT(web.lstNever.items(), ElementsAre("a@cars.test", "@boats.test"));
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, testing::HasSubstr("What is stored: no collection"));
  EXPECT_THAT(boxes.shown[0].text, testing::HasSubstr("/home/old.txt"));
  EXPECT_THAT(boxes.shown[0].text, testing::Not(testing::HasSubstr(" !.")));
  web.cmdImport.Click();
  EXPECT_EQ(boxes.shown.size(), 1u) << "cancelled";
}

TEST_F(NeverListPage, AListThatCannotBeReadIsNotChanged) {
  files.AddFolder("/home/suppressed.txt");
  web.Show();
  EXPECT_FALSE(web.cmdAdd.enabled());
  EXPECT_FALSE(web.cmdImport.enabled());
  EXPECT_THAT(web.lblNever.text(), testing::HasSubstr("suppressed.txt"));
}

TEST(Pauses, AreSecondsWithAPointOrAComma) {
  const struct {
    const char* text;
    std::int32_t milliseconds;
  } kCases[] = {{"1", 1000}, {"0", 0}, {"0.5", 500}, {"0,25", 250}, {"12.345", 12345}, {"2.", 2000}, {".5", 500}};
  for (const auto& [text, milliseconds] : kCases) EXPECT_EQ(ParsePause(text), milliseconds) << text;
  for (const char* wrong : {"", ".", "1.2345", "a", "1.x", "99999999999"}) EXPECT_FALSE(ParsePause(wrong)) << wrong;
  for (const std::int32_t shown : {0, 1, 20, 500, 1000, 1001, 1230, 60000}) {
    EXPECT_EQ(ParsePause(PauseText(shown)), shown) << PauseText(shown);
  }
  EXPECT_EQ(PauseText(1050), "1.05");
}

class SystemMenu : public ProgramTest {};

TEST_F(SystemMenu, OffersTheWebSettings) {
  Start();
  ASSERT_THAT(extract.system_menu, ElementsAre(&extract.mnuWeb));
  EXPECT_EQ(extract.mnuWeb.text(), "&Web settings ...");
  extract.mnuWeb.Click();
  EXPECT_TRUE(program.web.shown());
}

}  // namespace
}  // namespace quenlar
