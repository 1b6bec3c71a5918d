// The window while it collects from a small https site, from the switch in the web settings to the way back.
#include <filesystem>
#include <fstream>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run/end_reasons.h"
#include "scratch_win32.h"
#include "window/fetch.h"
#include "window/program.h"

namespace quenlar::window_test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;
using testing::UnorderedElementsAre;
using ui::ControlNumber;

struct WebSettingsTest : testing::Test {
  Program program;
  Window web;

  WebSettingsTest() { StoreDefaultsWithoutUpgradeCheck(); }
  void Open() {
    if (!program.Running()) program.Start();
    ASSERT_TRUE(WaitUntil([&] { return program.Main().Enabled(); }));
    web = program.OpenWebSettings();
    ASSERT_TRUE(web);
  }
};

TEST_F(WebSettingsTest, AreReachedByTheSystemMenuAndStoredByOk) {
  Open();
  EXPECT_FALSE(program.Main().Enabled());
  EXPECT_FALSE(web.Control("chkCollect").Checked());
  web.Control("chkCollect").Click();
  ASSERT_TRUE(WaitUntil([&] { return web.Control("chkCollect").Checked(); }));
  web.Control("txtContact").Type("https://me.example/");
  web.Control("txtDepth").Type("3");
  web.Control("txtPause").Type("0.5");
  web.Control(IDOK).Click();
  ASSERT_TRUE(WaitUntil([&] { return !web; }));
  EXPECT_TRUE(WaitUntil([&] { return program.Main().Enabled(); }));
  EXPECT_THAT(StoredWebSettings(), UnorderedElementsAre(Pair("Collect", "1"), Pair("Contact", "https://me.example/"),
                                                        Pair("Depth", "3"), Pair("Pause", "500")));
  Open();
  EXPECT_TRUE(web.Control("chkCollect").Checked());
  EXPECT_EQ(web.Control("txtPause").Text(), "0.5");
}

TEST_F(WebSettingsTest, TheKeyboardReachesEveryPage) {
  Open();
  EXPECT_THAT(web.TabStops(), ElementsAre(ControlNumber("chkCollect"), ControlNumber("txtContact"),
                                          ControlNumber("txtService"), IDOK, IDCANCEL, ControlNumber("tabWeb")));
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 1);
  ASSERT_TRUE(WaitUntil([&] { return web.Control("cmbScope").Visible(); }));
  EXPECT_THAT(web.TabStops(),
              ElementsAre(ControlNumber("cmbScope"), ControlNumber("txtDepth"), ControlNumber("txtPages"),
                          ControlNumber("chkProtected"), IDOK, IDCANCEL, ControlNumber("tabWeb")));
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 2);
  ASSERT_TRUE(WaitUntil([&] { return web.Control("txtPause").Visible(); }));
  EXPECT_THAT(web.TabStops(), ElementsAre(ControlNumber("txtPause"), ControlNumber("txtHosts"),
                                          ControlNumber("chkRobots"), IDOK, IDCANCEL, ControlNumber("tabWeb")));
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 3);
  ASSERT_TRUE(WaitUntil([&] { return web.Control("lstNever").Visible(); }));
  EXPECT_THAT(web.TabStops(), ElementsAre(ControlNumber("lstNever"), ControlNumber("txtNever"), ControlNumber("cmdAdd"),
                                          ControlNumber("cmdImport"), IDOK, IDCANCEL, ControlNumber("tabWeb")));
}

TEST_F(WebSettingsTest, WhatIsNeverListedIsKeptAtOnce) {
  Open();
  web.Control("tabWeb").Send(TCM_SETCURFOCUS, 3);
  const Window list = web.Control("lstNever");
  ASSERT_TRUE(WaitUntil([&] { return list.Visible(); }));
  EXPECT_FALSE(web.Control("cmdRemove").Enabled());
  for (const char* entry : {"@boats.example", "anna@cars.example"}) {
    web.Control("txtNever").Type(entry);
    web.Control("cmdAdd").Click();
    ASSERT_TRUE(program.Answer(std::string(entry) + ": no collection and no report holds anything of it."));
  }
  ASSERT_TRUE(WaitUntil([&] { return list.Items().size() == 2; }));
  EXPECT_THAT(list.Items(), ElementsAre("@boats.example", "anna@cars.example"));
  list.PickListItem(0);
  ASSERT_TRUE(WaitUntil([&] { return web.Control("cmdRemove").Enabled(); }));
  web.Control("cmdRemove").Click();
  ASSERT_TRUE(WaitUntil([&] { return list.Items().size() == 1; }));
  web.Control(IDCANCEL).Click();
  ASSERT_TRUE(WaitUntil([&] { return !web; }));
  EXPECT_EQ(program.ReadFile("suppressed.txt"), "anna@cars.example\n");
}

TEST_F(WebSettingsTest, EachBoxFollowsItsLabel) {
  Open();
  for (const auto& [box, label] :
       {std::pair{"txtContact", "&Contact"}, std::pair{"txtService", "&Search service"},
        std::pair{"cmbScope", "&Links may lead to"}, std::pair{"txtDepth", "Clicks from a s&tart"},
        std::pair{"txtPages", "&Pages of a host"}, std::pair{"txtPause", "&Pause"},
        std::pair{"txtHosts", "&Hosts at a time"},
        std::pair{"lstNever", "Never list&ed: addresses, @ and a domain, digests of addresses"},
        std::pair{"txtNever", "Ne&w entry"}}) {
    EXPECT_EQ(Window(GetWindow(web.Control(box).handle(), GW_HWNDPREV)).Text(), label);
  }
}

TEST_F(WebSettingsTest, EscChangesNothing) {
  Open();
  web.Control("chkCollect").Click();
  web.Control("txtContact").Press(VK_ESCAPE);
  ASSERT_TRUE(WaitUntil([&] { return !web; }));
  EXPECT_TRUE(StoredWebSettings().empty());
}

TEST_F(WebSettingsTest, AMistakeIsSaidAndShown) {
  Open();
  web.Control("txtHosts").Type("none");
  web.Control(IDOK).Click();
  ASSERT_TRUE(program.Answer("Hosts at a time: please enter a number between 1 and 100000 !"));
  EXPECT_TRUE(WaitUntil([&] { return web.FocusedControl() == ControlNumber("txtHosts"); }));
  EXPECT_TRUE(web.Control("txtHosts").Visible());
}

// --- A run ---

struct CollectionRun : testing::Test {
  Program program;
  ScratchFolder folder;
  std::unique_ptr<TrustedAuthority> authority;
  std::string site = "https://localhost:" + FetchFromServer("/tls/site");

  CollectionRun() {
    StoreDefaultsWithoutUpgradeCheck();
    StoreWebSetting("Pause", "0");
    StoreWebSetting("Contact", "https://me.example/");
    const std::string path = folder.path() + "/authority.pem";
    std::ofstream(path, std::ios::binary) << FetchFromServer("/tls/authority");
    authority = std::make_unique<TrustedAuthority>(path);
  }
  [[nodiscard]] Window Control(std::string_view name) const { return program.Main().Control(name); }
  void SwitchTo(bool collect) {
    const Window web = program.OpenWebSettings();
    ASSERT_TRUE(web);
    if (web.Control("chkCollect").Checked() != collect) web.Control("chkCollect").Click();
    ASSERT_TRUE(WaitUntil([&] { return web.Control("chkCollect").Checked() == collect; }));
    web.Control(IDOK).Click();
    ASSERT_TRUE(WaitUntil([&] { return !web && program.Main().Enabled(); }));
  }
  void ExtractUntil(int rows) {
    const Window list = Control("lstMail");
    Control("cmdExtract").Click();
    ASSERT_TRUE(WaitUntil([&] { return list.Rows() == rows; })) << list.Rows() << WhatIsShown();
  }
  // Presses a button of the message whose text begins so.
  void AnswerBox(const std::string& beginning, int button) {
    Window box;
    ASSERT_TRUE(WaitUntil([&] { return static_cast<bool>(box = program.BoxThatBegins(beginning)); }))
        << beginning << WhatIsShown();
    last_message = box.Control(0xFFFF).Text();
    box.Control(button).Click();
    ASSERT_TRUE(WaitUntil([&] { return !box; }));
  }
  void AnswerEnd(const std::string& beginning) {
    AnswerBox(beginning, IDOK);
    ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled() && Control("cmbURL").Enabled(); }));
  }
  // Chooses from the menu of the list by its access key, for the row.
  void ChooseForRow(int row, char key) {
    const Window list = Control("lstMail");
    list.MouseClick(list.RowPlace(row));  // takes the marks off the other rows
    ASSERT_TRUE(WaitUntil([&] { return list.MarkedRows() == std::vector<int>{row}; }));
    list.MouseRightClick(list.RowPlace(row));
    HWND menu = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (menu = FindWindowW(L"#32768", nullptr)) && IsWindowVisible(menu); }));
    PostMessageW(menu, WM_CHAR, static_cast<WPARAM>(key), 0);
  }
  [[nodiscard]] std::vector<std::string> FilesIn(const std::string& name) const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(program.folder() / name)) {
      names.push_back(Utf8(entry.path().filename().wstring()));
    }
    return names;
  }

  // What a failure needs to be understood: the stage, the message box, the files.
  [[nodiscard]] std::string WhatIsShown() const {
    const Window box = program.BoxThatBegins("");
    return "\nstage: " + Control("stsExtract").Panel(1) + "\nbox: " + (box ? box.Control(0xFFFF).Text() : "none") +
           "\nfiles: " + testing::PrintToString(FilesIn("data")) + testing::PrintToString(FilesIn("report"));
  }

  std::string last_message;
};

TEST_F(CollectionRun, FromTheSwitchToTheWayBack) {
  program.Start();
  SwitchTo(true);
  Control("cmbURL").Type(site + "/index.html");
  // The page that is never answered keeps the run going until Stop.
  const Window list = Control("lstMail");
  ExtractUntil(2);
  EXPECT_THAT(list.Column(1), ElementsAre("secretary@chess.de", "treasurer@chess.museum"));
  EXPECT_EQ(list.Cell(0, 2), site + "/index.html");
  EXPECT_EQ(list.Cell(1, 3), "Board");
  EXPECT_FALSE(Control("cmbURL").Enabled());
  ASSERT_TRUE(WaitUntil([&] { return Control("stsExtract").Panel(1).starts_with("Reading localhost:"); }))
      << Control("stsExtract").Panel(1);
  // Closed and brought back by the icon's menu, the window shows the run.
  const Window before = program.Main();
  before.Close();
  ASSERT_TRUE(WaitUntil([&] { return !before; }));
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kWindow));
  ASSERT_TRUE(WaitUntil([&] { return program.Main() && Control("lstMail").Rows() == 2; }));
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Text() == "&Stop"; }));
  Control("cmdExtract").Click();
  AnswerEnd(kEndStopButton);
  EXPECT_THAT(last_message, HasSubstr("2 new addresses on 2 pages"));
  EXPECT_THAT(last_message, HasSubstr("2 pages left to visit"));
  EXPECT_THAT(StoredSettings(), Not(Contains(Pair(HasSubstr("Project1"), testing::_))));

  // Killed and started again, it goes on with what was left.
  program.Kill();
  program.Start();
  const Window again = Control("lstMail");
  ASSERT_TRUE(WaitUntil([&] { return again.Rows() == 2; })) << again.Rows();
  EXPECT_EQ(Control("cmbURL").Text(), site + "/index.html");
  Control("cmdExtract").Click();
  AnswerEnd(kEndAllParsed);
  ASSERT_TRUE(WaitUntil([&] { return again.Rows() == 3; })) << last_message;
  EXPECT_THAT(again.Column(1), ElementsAre("secretary@chess.de", "treasurer@chess.museum", "coach@chess.de"));
  EXPECT_THAT(last_message, HasSubstr("1 new address on 1 page"));
  EXPECT_THAT(last_message, HasSubstr("1 page that robots.txt keeps programs away from"));

  // Where it was found.
  ChooseForRow(0, 'w');
  const Window sightings = program.WaitForWindow("Where it was found");
  ASSERT_TRUE(sightings);
  ASSERT_TRUE(WaitUntil([&] { return sightings.Control("lstPages").Rows() == 2; }));
  EXPECT_THAT(sightings.Control("lstPages").Column(0), ElementsAre(site + "/index.html", site + "/board.html"));
  EXPECT_THAT(sightings.Control("lstPages").Column(1), ElementsAre("text", "text"));
  sightings.Control(IDCANCEL).Click();
  ASSERT_TRUE(WaitUntil([&] { return !sightings && program.Main().Enabled(); }));

  // Why.
  ChooseForRow(0, 'y');
  const Window why = program.WaitForWindow("Why ?");
  ASSERT_TRUE(why);
  EXPECT_TRUE(WaitUntil([&] {
    return why.Control("txtAnswer").Text().find(site + "/board.html") != std::string::npos;
  })) << why.Control("txtAnswer").Text();
  why.Control(IDCANCEL).Click();
  ASSERT_TRUE(WaitUntil([&] { return !why && program.Main().Enabled(); }));

  // The report.
  Control("cmdExport").Click();
  HWND editor = nullptr;
  ASSERT_TRUE(WaitUntil([&] { return (editor = FindWindowW(L"Notepad", nullptr)) != nullptr; }));
  EXPECT_TRUE(WaitUntil([&] { return Window(editor).Text().find(".web.rpt") != std::string::npos; }))
      << Window(editor).Text();
  Window(editor).Close();
  ASSERT_TRUE(WaitUntil([&] { return !IsWindow(editor); }));

  // Never again.
  ChooseForRow(1, 'n');
  AnswerBox("treasurer@chess.museum is taken out", IDYES);
  AnswerBox("treasurer@chess.museum: 1 address taken out of 1 collection and 1 file of projects", IDOK);
  ASSERT_TRUE(WaitUntil([&] { return again.Rows() == 2; })) << again.Rows() << WhatIsShown();
  EXPECT_THAT(again.Column(1), ElementsAre("secretary@chess.de", "coach@chess.de"));
  EXPECT_THAT(program.ReadFile("suppressed.txt"), HasSubstr("sha256:"));
  for (const std::string& name : FilesIn("data")) {
    EXPECT_THAT(program.ReadFile("data/" + name), Not(HasSubstr("treasurer"))) << name;
  }

  // The files, and their end.
  ASSERT_TRUE(WaitUntil([&] { return program.Main().Enabled(); }));
  EXPECT_THAT(FilesIn("report"), ElementsAre(testing::EndsWith(".web.rpt")));
  Control("cmdDelete").Click();
  ASSERT_TRUE(program.Answer("Are you sure to delete it ?", IDYES));
  ASSERT_TRUE(WaitUntil([&] { return again.Rows() == 0; }));
  EXPECT_TRUE(WaitUntil([&] { return FilesIn("report").empty() && FilesIn("data").empty(); })) << WhatIsShown();
}

TEST_F(CollectionRun, TheClassicRunIsAsBeforeWhenItIsSwitchedOff) {
  Site classic;
  for (const char* root : {"", "/"}) {
    classic.SetPage(std::string("http://www.cars.example") + root,
                    "<title>Cars</title> Write to first@cars.test <a href=\"/two.html\">m</a>");
  }
  classic.SetPage("http://www.cars.example/two.html", "<title>Two</title> second@cars.test<p>");
  program.SetProxy(classic);
  program.Start();
  const auto run = [&] {
    Control("cmbURL").Type("www.cars.example");
    Control("cmdExtract").Click();
  };
  run();
  ASSERT_TRUE(program.Answer(kEndAllParsed));
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled() && Control("lstMail").Rows() == 2; }));
  const std::string data = program.ReadFile("data/cars_example.dat");
  const std::string report = program.ReadFile("report/cars_example.rpt");
  const auto stored = StoredSettings();

  SwitchTo(true);
  ASSERT_TRUE(WaitUntil([&] { return Control("lstMail").Rows() == 0; }));
  classic.SetPage("http://www.cars.example/", "<title>Today</title> today@cars.de");
  Control("cmbURL").Type("http://www.cars.example/");
  Control("cmdExtract").Click();
  AnswerEnd(kEndAllParsed);
  ASSERT_TRUE(WaitUntil([&] { return Control("lstMail").Rows() == 1; })) << last_message;
  EXPECT_THAT(Control("lstMail").Column(1), ElementsAre("today@cars.de"));

  SwitchTo(false);
  Control("cmbURL").Type("www.cars.example");
  ASSERT_TRUE(WaitUntil([&] { return Control("lstMail").Rows() == 2; })) << Control("lstMail").Rows();
  EXPECT_THAT(Control("lstMail").Column(1), ElementsAre("first@cars.test", "second@cars.test"));
  EXPECT_EQ(program.ReadFile("data/cars_example.dat"), data);
  EXPECT_EQ(program.ReadFile("report/cars_example.rpt"), report);
  EXPECT_EQ(StoredSettings(), stored);
  EXPECT_THAT(Control("cmbURL").Items(), ElementsAre("www.cars.example"));
}

}  // namespace
}  // namespace quenlar::window_test
