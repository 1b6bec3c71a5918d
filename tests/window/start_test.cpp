// Start-up, the notification area, and the end of the program.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fake_task_bar_win32.h"
#include "window/program.h"
#include "window/usage.h"

namespace quenlar::window_test {
namespace {

using testing::ElementsAre;
using testing::Pair;
using ui::ControlNumber;

TEST(WindowStart, FirstStartWritesTheDefaultsToTheRegistry) {
  Program program;
  program.Start();
  EXPECT_THAT(StoredSettings(), testing::UnorderedElementsAre(
                                    Pair("ProjectNum", "0"), Pair("NeverUpgrade", "0"), Pair("Search", "0"),
                                    Pair("Save", "0"), Pair("Correlation", "1"), Pair("StopNumber", "99999"),
                                    Pair("Export", "0"), Pair("RemoveFilter", "0"), Pair("ExtractFilter", "0")));
  EXPECT_TRUE(std::filesystem::is_directory(program.folder() / "data"));
  EXPECT_TRUE(std::filesystem::is_directory(program.folder() / "report"));
}

TEST(WindowStart, TheWindowOpensIdle) {
  Program program;
  program.Start();
  const Window main = program.Main();
  const Window bar = main.Control("stsExtract");
  EXPECT_TRUE(WaitUntil([&] { return bar.Panel(2) == "0 Address"; })) << bar.Panel(2);
  EXPECT_EQ(bar.Panel(1), "Waiting ...");
  EXPECT_EQ(bar.Panel(3), "Scan 0");
  EXPECT_THAT(bar.Panel(4), testing::EndsWith(" Kbps"));
  EXPECT_EQ(main.Control("cmdExtract").Text(), "&Extract");
  EXPECT_EQ(main.Control("cmdExport").Text(), "&Report");
  EXPECT_EQ(main.Control("cmdDelete").Text(), "&Delete");
  EXPECT_EQ(main.Control("cmdOption").Text(), "&Option");
  EXPECT_EQ(main.Control("cmdTool").Text(), "&Tool");
  EXPECT_EQ(main.Control("cmdHide").Text(), "&Hide");
  EXPECT_TRUE(main.Control("cmdExtract").Enabled());
  EXPECT_FALSE(main.Control("cmdDelete").Enabled());
  EXPECT_FALSE(main.Control("txtSearch").Visible());
  EXPECT_EQ(main.Control("txtSearch").Text(), "en");
  EXPECT_EQ(main.Control("lstMail").Rows(), 0);
}

TEST(WindowStart, SavedProjectsStandInTheListAndTheFirstIsOpened) {
  Program program;
  StoreSetting("ProjectNum", "2");
  StoreSetting("Project1", "www.first.example");
  StoreSetting("Project2", "second_fr");
  StoreSetting("Search", "2");
  program.Start();
  const Window main = program.Main();
  EXPECT_THAT(main.Control("cmbURL").Items(), ElementsAre("www.first.example", "second_fr"));
  EXPECT_EQ(main.Control("txtSearch").Text(), "de");
}

TEST(WindowStart, WalkingThroughTheOpenListWithoutAChoiceChangesNothing) {
  Program program;
  StoreSetting("ProjectNum", "2");
  StoreSetting("Project1", "www.first.example");
  StoreSetting("Project2", "www.second.example");
  program.Start();
  const Window combo = program.Main().Control("cmbURL");
  const Window edit(FindWindowExW(combo.handle(), nullptr, L"Edit", nullptr));
  ASSERT_EQ(edit.Text(), "www.first.example");
  for (const int leave : {VK_ESCAPE, VK_TAB}) {
    edit.Press(VK_F4);
    ASSERT_TRUE(WaitUntil([&] { return combo.Send(CB_GETDROPPEDSTATE) != 0; }));
    edit.Press(VK_DOWN);
    ASSERT_TRUE(WaitUntil([&] { return edit.Text() == "www.second.example"; })) << edit.Text();
    edit.Press(leave);
    ASSERT_TRUE(WaitUntil([&] { return combo.Send(CB_GETDROPPEDSTATE) == 0; })) << leave;
    EXPECT_TRUE(WaitUntil([&] { return edit.Text() == "www.first.example"; })) << leave << edit.Text();
  }
  EXPECT_THAT(combo.Items(), ElementsAre("www.first.example", "www.second.example"));
}

TEST(WindowStart, AListThatClosesWithNothingPickedLeavesTheTextAsItWas) {
  Program program;
  StoreSetting("ProjectNum", "1");
  StoreSetting("Project1", "www.first.example");
  program.Start();
  const Window combo = program.Main().Control("cmbURL");
  ASSERT_TRUE(WaitUntil([&] { return combo.Text() == "www.first.example"; }));
  combo.Pick(-1);
  EXPECT_TRUE(WaitUntil([&] { return combo.Text() == "www.first.example"; })) << combo.Text();
}

TEST(WindowStart, ASecondStartEndsAndLeavesTheFirstAlone) {
  Program program;
  program.Start();
  EXPECT_EQ(program.StartSecond(), 0);
  EXPECT_TRUE(program.Running());
  EXPECT_TRUE(program.Main().Visible());
}

TEST(WindowStart, ARightClickOnTheIconOpensTheMenuAndExitEndsTheProgram) {
  Program program;
  program.Start();
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kExit));
  EXPECT_TRUE(program.WaitForEnd());
  DWORD status = 1;
  GetExitCodeProcess(program.process(), &status);
  EXPECT_EQ(status, 0u);
}

TEST(WindowStart, TheIconStandsInTheNotificationAreaUntilTheExit) {
  const FakeTaskBar bar;
  Program program;
  program.Start();
  EXPECT_TRUE(WaitUntil([&] { return bar.asked() == std::vector<ULONG_PTR>{NIM_ADD}; }));
  program.Main().Close();
  ASSERT_TRUE(WaitUntil([&] { return !program.Main(); }));
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD)) << "the program goes on";
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kExit));
  ASSERT_TRUE(program.WaitForEnd());
  EXPECT_THAT(bar.asked(), ElementsAre(NIM_ADD, NIM_DELETE));
}

TEST(WindowStart, TheIconComesLaterWhereTheTaskBarIsTooBusyAtFirst) {
  FakeTaskBar bar;
  bar.SetBusy(true);
  Program program;
  program.Start();
  ASSERT_TRUE(WaitUntil([&] { return !bar.asked().empty(); }));
  bar.SetBusy(false);
  EXPECT_TRUE(WaitUntil([&] { return bar.has_icon(); }));
}

TEST(WindowStart, ALeftOrDoubleClickOnTheIconDoesNothing) {
  Program program;
  program.Start();
  for (const LPARAM message : {WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK}) program.TellTray(message);
  program.TrayWindow().Send(WM_NULL);  // behind those, so they have been dealt with
  EXPECT_FALSE(FindWindowW(L"#32768", nullptr));
}

TEST(WindowStart, TheHiddenWindowComesBackByTheMenuAsItWas) {
  Program program;
  program.Start();
  const Window main = program.Main();
  main.Control("cmbURL").Type("cars");
  main.Control("cmdHide").Click();
  ASSERT_TRUE(WaitUntil([&] { return !main.Visible(); }));
  ASSERT_TRUE(main);
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kWindow));
  EXPECT_TRUE(WaitUntil([&] { return main.Visible(); }));
  EXPECT_EQ(main.Control("cmbURL").Text(), "cars");
  EXPECT_TRUE(main.Control("cmdHide").Enabled());
}

TEST(WindowStart, HidingTheWindowLeavesTheMessageInTheStatusBar) {
  Program program;
  StoreDefaultsWithoutUpgradeCheck();
  program.Start();
  const Window main = program.Main();
  main.Control("cmdHide").Click();
  ASSERT_TRUE(WaitUntil([&] { return !main.Visible() && main.Control("cmdHide").Enabled(); }));
  main.Send(WM_TIMER, 1);  // what the status bar is to show in a moment, it shows now
  EXPECT_EQ(main.Control("stsExtract").Panel(1), "Waiting ...");
}

TEST(WindowStart, TheMinimisedWindowComesBackAsItWas) {
  Program program;
  program.Start();
  const Window main = program.Main();
  // The sizes alone: where the window stands is also the window manager's affair.
  const auto sizes = [&] {
    const RECT window = main.Place(), list = main.Control("lstMail").Place();
    return std::vector<LONG>{window.right - window.left, window.bottom - window.top, list.right - list.left,
                             list.bottom - list.top};
  };
  const std::vector<LONG> before = sizes();
  main.Send(WM_SYSCOMMAND, SC_MINIMIZE);
  ASSERT_TRUE(WaitUntil([&] { return IsIconic(main.handle()); }));
  main.Send(WM_SYSCOMMAND, SC_RESTORE);
  ASSERT_TRUE(WaitUntil([&] { return !IsIconic(main.handle()); }));
  EXPECT_TRUE(WaitUntil([&] { return sizes() == before; })) << testing::PrintToString(sizes());
}

TEST(WindowStart, TabWalksOverTheControlsFromTheInputOnward) {
  Program program;
  program.Start();
  const Window main = program.Main();
  EXPECT_THAT(main.TabStops(),
              ElementsAre(ControlNumber("cmbURL"), ControlNumber("cmdExtract"), ControlNumber("lstMail"),
                          ControlNumber("cmdOption"), ControlNumber("cmdTool"), ControlNumber("cmdHide")));
}

TEST(WindowStart, F1OpensTheHelpBoxAndEscClosesIt) {
  Program program;
  program.Start();
  program.Main().Control("lstMail").Press(VK_F1);
  const Window help = program.WaitForWindow("Brenvy Quenlar Pro Online Help");
  ASSERT_TRUE(help);
  EXPECT_THAT(help.TabStops(), ElementsAre(ControlNumber("lblHelp")));
  help.Control("lblHelp").Press(VK_ESCAPE);
  EXPECT_TRUE(WaitUntil([&] { return !help; }));
}

TEST(WindowStart, TheClosedWindowComesBackByTheMenu) {
  Program program;
  program.Start();
  const Window before = program.Main();
  before.Close();
  ASSERT_TRUE(WaitUntil([&] { return !before; }));
  EXPECT_TRUE(program.Running());
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kWindow));
  EXPECT_TRUE(WaitUntil([&] { return program.Main() && program.Main().Visible(); }));
}

TEST(WindowStart, TheMenuCannotShowTheWindowThatIsShown) {
  Program program;
  program.Start();
  const Window main = program.Main();
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kWindow));
  EXPECT_EQ(program.Main(), main);
  EXPECT_TRUE(main.Visible());
}

TEST(WindowStart, AboutAndHelpOpenFromTheMenu) {
  Program program;
  program.Start();
  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kAbout));
  const Window about = program.WaitForWindow("About Brenvy Quenlar Pro 3.0");
  ASSERT_TRUE(about);
  EXPECT_EQ(about.Control("lblSoftwareVersion").Text(), "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(about.Control("lblNote").Text(), "You can visit web page : ");
  EXPECT_THAT(about.TabStops(), ElementsAre(IDOK, ControlNumber("lblWebPage"))) << "Enter closes the box at once";
  about.Control(IDOK).Click();
  EXPECT_TRUE(WaitUntil([&] { return !about; }));

  ASSERT_TRUE(program.ChooseInTrayMenu(TrayItem::kHelp));
  const Window help = program.WaitForWindow("Brenvy Quenlar Pro Online Help");
  ASSERT_TRUE(help);
  EXPECT_EQ(help.Control("Label1").Text(), "Brenvy Quenlar Pro Help");
  EXPECT_EQ(help.Control("lblHelp").Text(), "Open Online Help");
}

TEST(WindowStart, AnIdleProgramTakesHardlyAnyProcessorTime) {
  Program program;
  program.Start();
  const ProcessorClock clock(program.process());
  // Two seconds of the alarm clock, whatever the machine is doing meanwhile.
  const double before = clock.Read().program;
  const ULONGLONG begun = GetTickCount64();
  EXPECT_GT(before, 0) << "what is measured";
  ASSERT_TRUE(WaitUntil([&] { return GetTickCount64() - begun >= 2000; }));
  const double share = (clock.Read().program - before) * 1000 / static_cast<double>(GetTickCount64() - begun);
  RecordProperty("idle_share", std::to_string(share));
  EXPECT_LT(share, 0.5) << "of one processor";
}

}  // namespace
}  // namespace quenlar::window_test
