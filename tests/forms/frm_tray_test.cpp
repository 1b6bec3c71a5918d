#include "forms/frm_tray.h"

#include <gmock/gmock.h>

#include "run/end_reasons.h"
#include "support/program_world.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

class TrayTest : public ProgramTest {
 protected:
  TrayTest() { StoreProjects({}); }

  [[nodiscard]] static InterfaceRow Received(std::uint32_t octets) {
    InterfaceRow row;
    row.in_octets = octets;
    return row;
  }
  // Lets one tick of the meter pass with these totals.
  [[nodiscard]] std::string MeterAfter(const std::vector<std::uint32_t>& octets) {
    interfaces.rows.clear();
    for (const std::uint32_t count : octets) interfaces.rows.push_back(Received(count));
    loop.Advance(milliseconds(500));
    return Panel(4);
  }
  // A run with a page that never comes.
  void StartStalledRun() {
    Start();
    Type("www.stalled.test");
    extract.cmdExtract.Click();
    loop.Schedule(milliseconds(200), [this] { ASSERT_EQ(fetcher.in_flight().size(), 1u); });
  }
};

// --- Design ---

TEST_F(TrayTest, TimersHaveTheirIntervalsAndStates) {
  const auto design = [](const ui::Timer& timer) {
    return std::pair(static_cast<int>(timer.interval().count()), timer.enabled());
  };
  EXPECT_EQ(design(tray.tmrExtract), std::pair(100, false));
  EXPECT_EQ(design(tray.tmrFormatFlux), std::pair(10, true));
  EXPECT_EQ(design(tray.tmrFlux), std::pair(500, true));
  EXPECT_EQ(design(tray.tmrAlarm), std::pair(1000, false));
}

TEST_F(TrayTest, TheMenuHasItsItemsInOrder) {
  EXPECT_EQ(tray.mnuPopup.caption, "SysTray Popup Menu");
  EXPECT_THAT(tray.mnuPopup.items,
              ElementsAre(&tray.mnuExtractor, &tray.sep2, &tray.mnuHelp, &tray.mnuAbout, &tray.mnuExit));
  EXPECT_EQ(tray.mnuExtractor.text(), "&Brenvy Quenlar Pro");
  EXPECT_TRUE(tray.sep2.is_separator());
  EXPECT_FALSE(tray.mnuExtractor.is_separator());
  EXPECT_EQ(tray.mnuHelp.text(), "&Help");
  EXPECT_EQ(tray.mnuAbout.text(), "A&bout...");
  EXPECT_EQ(tray.mnuExit.text(), "E&xit");
}

TEST_F(TrayTest, LoadAddsTheIconAndEnablesTheAlarm) {
  Start();
  EXPECT_EQ(desktop_icon().added, 1);
  EXPECT_TRUE(tray.tmrAlarm.enabled());
  EXPECT_TRUE(tray.loaded());
  EXPECT_FALSE(tray.shown());
}

// --- The icon and its menu ---

TEST_F(TrayTest, ARightClickOpensTheMenu) {
  Start();
  int opened = 0;
  tray.mnuPopup.show = [&](const std::vector<ui::MenuItem*>& items) {
    ++opened;
    EXPECT_EQ(items.size(), 5u);
  };
  desktop_icon().right_button_down();
  EXPECT_EQ(opened, 1);
}

TEST_F(TrayTest, TheFirstMenuItemIsDisabledWhileTheMainWindowIsShown) {
  Start();
  EXPECT_TRUE(extract.shown());
  EXPECT_FALSE(tray.mnuExtractor.enabled());
  extract.cmdHide.Click();
  EXPECT_TRUE(tray.mnuExtractor.enabled());
  tray.mnuExtractor.Click();
  EXPECT_TRUE(extract.shown());
  EXPECT_FALSE(tray.mnuExtractor.enabled());
}

TEST_F(TrayTest, AClosedMainWindowComesBackByTheMenu) {
  Start();
  extract.Close();
  EXPECT_TRUE(tray.mnuExtractor.enabled());
  EXPECT_EQ(ends, 0) << "the program stays in the tray";
  tray.mnuExtractor.Click();
  EXPECT_TRUE(extract.shown());
}

TEST_F(TrayTest, HelpAndAboutOpenTheirBoxes) {
  Start();
  tray.mnuHelp.Click();
  EXPECT_TRUE(program.help.shown());
  tray.mnuAbout.Click();
  EXPECT_TRUE(program.about.shown());
  tray.mnuAbout.Click();
  EXPECT_TRUE(program.about.shown());
}

TEST_F(TrayTest, ExitRemovesTheIconThenClosesTheMainWindowThenEnds) {
  std::vector<std::string> order;
  Start();
  extract.window.destroy = [&] {
    order.push_back("window closed, icon removed " + std::to_string(desktop_icon().removed));
  };
  const int changes = registry.changes();
  tray.mnuExit.Click();
  EXPECT_THAT(order, ElementsAre("window closed, icon removed 1"));
  EXPECT_FALSE(extract.loaded());
  EXPECT_EQ(ends, 1);
  EXPECT_TRUE(program.ended());
  EXPECT_EQ(registry.changes(), changes) << "nothing is saved at exit";
}

TEST_F(TrayTest, AfterTheEndNothingTicks) {
  Start();
  tray.mnuExit.Click();
  const int reads = interfaces.reads, queries = interfaces.alive_queries;
  loop.Advance(seconds(5));
  EXPECT_EQ(interfaces.reads, reads);
  EXPECT_EQ(interfaces.alive_queries, queries);
  tray.mnuExit.Click();
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(desktop_icon().removed, 1);
}

// --- tmrExtract ---

TEST_F(TrayTest, TheRunBeginsOnceATenthOfASecondAfterTheButton) {
  Start();
  fetcher.Serve("http://www.a.test", "<html></html>");
  Type("www.a.test");
  extract.cmdExtract.Click();
  EXPECT_TRUE(tray.tmrExtract.enabled());
  EXPECT_FALSE(engine.run.running) << "never inside the button's handler";
  loop.Advance(milliseconds(90));
  EXPECT_THAT(fetcher.started(), IsEmpty());
  FinishRun();
  EXPECT_FALSE(tray.tmrExtract.enabled());
  EXPECT_EQ(fetcher.started().size(), 1u);
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed));
  loop.Advance(seconds(2));
  EXPECT_EQ(fetcher.started().size(), 1u);
}

// --- tmrAlarm ---

TEST_F(TrayTest, ARunInWhichNothingFinishesFor11TicksIsCancelledAndEnds) {
  StartStalledRun();
  const auto begun = loop.now();
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndAllParsed));
  EXPECT_EQ(fetcher.cancelled().size(), 1u);
  const auto took = std::chrono::duration_cast<milliseconds>(loop.now() - begun);
  EXPECT_GE(took, seconds(10));
  EXPECT_LE(took, seconds(12));
}

TEST_F(TrayTest, AFinishedDownloadInBetweenResetsTheCount) {
  StartStalledRun();
  loop.Schedule(seconds(8), [this] { tray.ResetStallCounter(); });
  const auto begun = loop.now();
  FinishRun();
  EXPECT_GE(loop.now() - begun, seconds(18));
}

TEST_F(TrayTest, OffLineTheWatchdogEndsTheRunAndSaysSoEverySecond) {
  StartStalledRun();
  loop.Schedule(milliseconds(1500), [this] { interfaces.alive = false; });
  FinishRun();
  EXPECT_THAT(boxes.texts(), ElementsAre(kEndOffLine));
  EXPECT_TRUE(engine.run.off_line);
  extract.ShowStage("something else");
  loop.Advance(seconds(1));
  EXPECT_EQ(Panel(1), "You are not on the internet !");
}

TEST_F(TrayTest, OffLineWithoutARunNoStopIsRequested) {
  Start();
  interfaces.alive = false;
  loop.Advance(seconds(2));
  EXPECT_TRUE(engine.run.off_line);
  EXPECT_FALSE(engine.run.stop_requested);
  EXPECT_EQ(Panel(1), "You are not on the internet !");
}

// --- The upgrade check ---

TEST_F(TrayTest, WithNeverUpgradeNoUpgradePageIsRequested) {
  Start();
  loop.Advance(seconds(5));
  EXPECT_THAT(fetcher.started(), IsEmpty());
}

TEST_F(TrayTest, TheUpgradePageIsRequestedOnceAtTheFirstOnLineTick) {
  Store("NeverUpgrade", "0");
  interfaces.alive = false;
  Start();
  loop.Advance(seconds(3));
  EXPECT_THAT(fetcher.started(), IsEmpty());
  interfaces.alive = true;
  loop.Advance(seconds(5));
  EXPECT_THAT(fetcher.started(), ElementsAre(ScriptedFetcher::Request{kUpgradePage, std::string("U") + kUpgradePage}));
  EXPECT_EQ(engine.run.pending[0], 1);
}

TEST_F(TrayTest, ANewerVersionOpensTheDialogWhichIsNotModal) {
  Store("NeverUpgrade", "0");
  fetcher.Serve(kUpgradePage, "3.1beta\r\nmore");
  Start();
  loop.Advance(seconds(3));
  EXPECT_TRUE(program.dialog.shown());
  EXPECT_TRUE(engine.upgradeDone);
  program.dialog.optUpgrade[1].Select();
  program.dialog.cmdOK.Click();
  EXPECT_EQ(engine.settings.NeverUpgradeFlag, 1);
  EXPECT_EQ(Stored("NeverUpgrade"), "0") << "the next start asks again";
  loop.Advance(seconds(5));
  EXPECT_FALSE(program.dialog.shown());
  EXPECT_EQ(fetcher.started().size(), 1u);
}

TEST_F(TrayTest, UpgradeNowStartsTheUpgraderAndEndsWithoutTouchingTheIcon) {
  Store("NeverUpgrade", "0");
  fetcher.Serve(kUpgradePage, "4");
  Start();
  loop.Advance(seconds(3));
  program.dialog.cmdOK.Click();
  ASSERT_EQ(shell.started.size(), 1u);
  EXPECT_EQ(shell.started[0], std::string("/home/Upgrade.exe ") + kInstallerPage);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(desktop_icon().removed, 0);
}

TEST_F(TrayTest, PagesThatNameNoNewerVersionOpenNothing) {
  for (const char* page : {"3.0\r\n", "", "<html>999", "nan", "1e400", "2.9\r\n4"}) {
    ProgramWorld world;
    world.fetcher.Serve(kUpgradePage, page);
    world.Start();
    world.loop.Advance(seconds(3));
    EXPECT_TRUE(world.engine.upgradeDone) << page;
    EXPECT_FALSE(world.program.dialog.loaded()) << page;
  }
}

TEST_F(TrayTest, AnUpgradePageThatFailsOpensNothingAndEndsTheCheck) {
  Store("NeverUpgrade", "0");
  fetcher.Serve(kUpgradePage, Failure());
  Start();
  loop.Advance(seconds(3));
  EXPECT_TRUE(engine.upgradeDone);
  EXPECT_FALSE(program.dialog.loaded());
}

// --- The traffic meter ---

TEST_F(TrayTest, TheFirstMeterTickShowsZero) {
  Start();
  EXPECT_EQ(MeterAfter({123456789}), "0 Kbps");
}

TEST_F(TrayTest, TheMeterShowsKilobytesPerHalfSecond) {
  Start();
  EXPECT_EQ(MeterAfter({1000000}), "0 Kbps");
  EXPECT_EQ(MeterAfter({1000000 + 51200}), "50 Kbps");
  EXPECT_EQ(MeterAfter({1000000 + 51200 + 1023}), "0 Kbps");
}

TEST_F(TrayTest, TheMeterSumsAllInterfaces) {
  Start();
  EXPECT_EQ(MeterAfter({1000, 1000}), "0 Kbps");
  EXPECT_EQ(MeterAfter({1000 + 1024 * 3, 1000 + 1024 * 4}), "7 Kbps");
}

TEST_F(TrayTest, TheMeterReadsTheTableEveryTenMilliseconds) {
  Start();
  const int before = interfaces.reads;
  loop.Advance(milliseconds(1000));
  EXPECT_EQ(interfaces.reads - before, 100);
}

TEST_F(TrayTest, ASystemWithoutAnInterfaceTableSaysSoOnEveryReading) {
  Start();
  boxes.shown.clear();
  interfaces.outcome = TableOutcome::kNotSupported;
  loop.Advance(milliseconds(30));
  EXPECT_EQ(boxes.shown.size(), 3u);
  EXPECT_TRUE(Boxed("IP Helper is not supported by this system !"));
  interfaces.outcome = TableOutcome::kFailed;
  EXPECT_EQ(MeterAfter({}), "0 Kbps");
}

}  // namespace
}  // namespace quenlar
