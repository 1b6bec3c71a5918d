#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include "run/driver_fixture.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

using namespace std::chrono_literals;

class LinkRun : public DriverTest {
 protected:
  LinkRun() { OpenAddress("http://start.test"); }
  void ServeEmptyPages() {
    fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  }
};

// --- Seeding ---

TEST_F(LinkRun, BeginsAtTheStartAddressOfAnAddressProject) {
  fetcher.Serve("http://start.test", PageOf({"a.html", "b.html"}, "me@start.test"));
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"M1http://start.test", "X1http://start.test/a.html", "X1http://start.test/b.html"}));
  EXPECT_EQ(Found(), (Strings{"me@start.test"}));
  EXPECT_EQ(host.calls, (Strings{"end: All links have been parsed !", "report", "idle, links visited", "over"}));
  EXPECT_EQ(view.last_stage(), "Canceling ...");
}

TEST_F(LinkRun, BeginsAnewOnAFinishedAddressProject) {
  fetcher.Serve("http://start.test", PageOf({"a.html"}));
  ServeEmptyPages();
  driver.Run();
  const Strings first = Keys();
  RunAgain();
  Strings twice = first;
  twice.insert(twice.end(), first.begin(), first.end());
  EXPECT_EQ(Keys(), twice);
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(LinkRun, GoesOnWhereALoadedProjectStopped) {
  Queue(3, {"http://start.test/deep"});
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"Z1http://start.test/deep"}));
}

TEST_F(LinkRun, IsNotSeededForAKeywordProject) {
  project.IsKeywordProject = true;
  files.Put("/data", "saved");
  driver.Run();
  EXPECT_TRUE(Keys().empty());
  EXPECT_EQ(host.calls, (Strings{"end: All links have been parsed !", "idle, links visited", "over"}));
}

// --- Request names ---

TEST_F(LinkRun, TagsTheRequestsOfEachLevelWithItsLetterAndTheRecordsNumber) {
  for (int level = 1; level < kLevels; ++level) {
    project.queues[static_cast<std::size_t>(level)].AddIfNew("http://h/" + std::to_string(level),
                                                             static_cast<std::int16_t>(level == 2 ? 12 : 1));
  }
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"X1http://h/1", "Y12http://h/2", "Z1http://h/3", "V1http://h/4", "W1http://h/5",
                             "P1http://h/6", "Q1http://h/7", "R1http://h/8", "S1http://h/9", "T1http://h/10"}));
}

TEST_F(LinkRun, NamesTheFirstEmptyLevelInALevelZeroRequest) {
  for (int filled = 0; filled <= 10; ++filled) {
    DriverWorld world;
    world.OpenKeyword();
    world.files.Put("/data", "saved");
    world.project.search_page.clear();
    world.project.queues[0].Clear();
    world.Queue(0, {"http://site.test"});
    for (int level = 1; level <= filled; ++level) world.Queue(level, {"http://h/" + std::to_string(level)});
    world.loop.Schedule(1s, [&] { world.Stop(); });
    world.driver.Run();
    const std::string first = world.Keys().empty() ? "" : world.Keys()[0];
    if (filled == 10) {
      EXPECT_EQ(first, "X1http://h/1");
    } else {
      EXPECT_EQ(first, "M" + std::to_string((filled + 1) % 10) + "http://site.test");
    }
  }
}

TEST_F(LinkRun, StartsNoLevelZeroPageWhileAllTenLevelsHoldLinks) {
  project.IsKeywordProject = true;
  files.Put("/data", "saved");
  Queue(0, {"http://site.test"});
  for (int level = 1; level < kLevels; ++level) Queue(level, {"http://h/" + std::to_string(level)});
  loop.Schedule(5s, [this] {
    for (const std::string& key : Keys()) EXPECT_NE(key[0], 'M');
    EXPECT_EQ(Keys().size(), 10u);
    fetcher.Complete("W1http://h/5", "");  // this level drains
  });
  loop.Schedule(6s, [this] {
    EXPECT_EQ(Keys().back(), "M5http://site.test");
    Stop();
  });
  driver.Run();
  EXPECT_EQ(Keys().size(), 11u);
}

// --- Scheduling ---

TEST_F(LinkRun, ServesLevelZeroAndTheOtherLevelsInDifferentPasses) {
  project.IsKeywordProject = true;
  files.Put("/data", "saved");
  Queue(0, {"http://a.test", "http://b.test", "http://c.test"});
  Queue(1, {"http://h/1", "http://h/2", "http://h/3"});
  ServeEmptyPages();  // each answer comes in the pump that ends the pass, so the next level-0 start is allowed at once
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"M2http://a.test", "M2http://b.test", "M2http://c.test", "X1http://h/1", "X1http://h/2",
                             "X1http://h/3"}));
}

TEST_F(LinkRun, HasOneLevelZeroPageAndTwoPagesOfEachOtherLevelInFlight) {
  project.IsKeywordProject = true;
  files.Put("/data", "saved");
  for (int level = 0; level < kLevels; ++level) {
    for (int i = 0; i < 5; ++i) Queue(level, {"http://h" + std::to_string(i) + "/" + std::to_string(level)});
  }
  project.queues[10].Clear();
  int answered = 0;
  while (answered < 50) {
    // Answers come one at a time, a second apart.
    loop.Schedule(std::chrono::seconds(answered + 1), [this] {
      std::map<char, int> levels;
      for (const auto& request : fetcher.in_flight()) ++levels[request.key[0]];
      for (const auto& [letter, count] : levels) {
        EXPECT_LE(count, letter == 'M' ? 1 : 2) << letter;
      }
      if (!fetcher.in_flight().empty()) fetcher.Complete(fetcher.in_flight().back().key, "");
    });
    ++answered;
  }
  driver.Run();
  EXPECT_EQ(fetcher.started().size(), 50u);
  EXPECT_EQ(fetcher.most_in_flight(), 19u);
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(LinkRun, SleepsWhileItWaitsForASlowServer) {
  fetcher.Serve("http://start.test", {.body = PageOf({"a.html", "b.html", "c.html"}), .delay = 60s});
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{.body = "", .delay = 60s}; });
  driver.Run();
  EXPECT_EQ(fetcher.started().size(), 4u);
  EXPECT_EQ(loop.now(), 180s);
  EXPECT_LT(loop.waits() + loop.yields(), 180 * 3 + 100);  // a busy loop would not end here
}

TEST_F(LinkRun, WakesForALinkThatARedirectQueues) {
  loop.Schedule(1s, [this] { fetcher.Redirect("M1http://start.test", "http://start.test/new"); });
  loop.Schedule(2s, [this] {
    EXPECT_EQ(Keys().back(), "X1http://start.test/new");
    fetcher.Complete("M1http://start.test", "");
  });
  fetcher.Serve("http://start.test/new", PageOf({}, "a@b.com"));
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"M1http://start.test", "X1http://start.test/new"}));
  EXPECT_EQ(Found(), (Strings{"a@b.com"}));
}

TEST_F(LinkRun, CountsTheScannedPagesOfThisRunOnly) {
  run.ScanCount = 55;
  fetcher.Serve("http://start.test", PageOf({"a.html"}));
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(run.ScanCount, 2);
  RunAgain();
  EXPECT_EQ(run.ScanCount, 2);
}

TEST_F(LinkRun, GoesOnAfterFailedPages) {
  fetcher.Serve("http://start.test", PageOf({"a.html", "b.html", "c.html"}));
  fetcher.Serve("http://start.test/a.html", Failure());
  fetcher.Serve("http://start.test/b.html", Failure());
  fetcher.Serve("http://start.test/c.html", PageOf({}, "c@c.com"));
  driver.Run();
  EXPECT_EQ(Found(), (Strings{"c@c.com"}));
  EXPECT_EQ(fetcher.started().size(), 4u);  // no retry
  EXPECT_TRUE(Unvisited().empty());
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(LinkRun, EndsWhenTheStartPageFails) {
  fetcher.Serve("http://start.test", Failure());
  driver.Run();
  EXPECT_EQ(host.calls, (Strings{"end: All links have been parsed !", "idle, links visited", "over"}));
}

TEST_F(LinkRun, VisitsEachRecordOfTwoThatHaveOneRequestName) {
  project.queues[1].AddIfNew("1http://h/", 1);
  project.queues[1].AddIfNew("http://h/", 11);
  loop.Schedule(1s, [this] {
    EXPECT_EQ(run.pending[1], 2);
    EXPECT_TRUE(fetcher.Complete("X11http://h/", PageOf({}, "a@a.com")));
  });
  loop.Schedule(2s, [this] {
    EXPECT_EQ(run.pending[1], 1);
    EXPECT_TRUE(fetcher.Complete("X11http://h/", PageOf({}, "b@b.com")));
  });
  driver.Run();
  EXPECT_EQ(Found(), (Strings{"a@a.com", "b@b.com"}));
}

// --- The ends ---

TEST_F(LinkRun, SaysThatTheStopButtonWasPressedAndSavesWhatIsLeft) {
  fetcher.Serve("http://start.test", PageOf({"a.html", "b.html", "c.html"}, "me@start.test"));
  loop.Schedule(1s, [this] { Stop(); });
  driver.Run();
  Strings expected = {"end: You press the stop button !"};
  expected.insert(expected.end(), kEndOfUnfinished.begin(), kEndOfUnfinished.end());
  EXPECT_EQ(host.calls, expected);
  EXPECT_EQ(Unvisited(), (Strings{"http://start.test/a.html", "http://start.test/b.html", "http://start.test/c.html"}));
  EXPECT_TRUE(fetcher.in_flight().empty());
  EXPECT_EQ(run.pending, (std::array<std::int16_t, kLevels>{}));
  EXPECT_FALSE(run.running);
}

TEST_F(LinkRun, VisitsThePagesOfAStopAgainWhenTheProjectGoesOn) {
  fetcher.Serve("http://start.test", PageOf({"a.html", "b.html", "c.html"}));
  fetcher.Serve("http://start.test/a.html", PageOf({}, "a@a.com"));
  loop.Schedule(1s, [this] { Stop(); });
  driver.Run();
  fetcher.Serve("http://start.test/b.html", PageOf({}, "b@b.com"));
  fetcher.Serve("http://start.test/c.html", PageOf({}, "c@c.com"));
  RunAgain();
  EXPECT_EQ(Keys(),
            (Strings{"M1http://start.test", "X1http://start.test/a.html", "X1http://start.test/b.html",
                     "X1http://start.test/c.html", "X1http://start.test/b.html", "X1http://start.test/c.html"}));
  EXPECT_EQ(Found(), (Strings{"a@a.com", "b@b.com", "c@c.com"}));
}

TEST_F(LinkRun, EndsAtTheStopNumberOfThisRunWhileTheButtonStillReadsStop) {
  settings.StopNumber = 2;
  project.found.Add({"u", "old@old.com", "", false});
  fetcher.Serve("http://start.test", PageOf({"a.html"}, "a@a.com<br>b@b.com<br>c@c.com"));
  driver.Run();
  EXPECT_EQ(host.reason(), "You have extracted emails as your desire !");
  EXPECT_EQ(Found(), (Strings{"old@old.com", "a@a.com", "b@b.com"}));
  // The page that was cut short is to be visited again: its third address is not lost.
  EXPECT_EQ(Unvisited(), (Strings{"http://start.test"}));
  ServeEmptyPages();
  RunAgain();
  EXPECT_EQ(Found(), (Strings{"old@old.com", "a@a.com", "b@b.com", "c@c.com"}));
}

TEST_F(LinkRun, EndsOffLineWithoutLosingALink) {
  EnableAlarm();
  fetcher.Serve("http://start.test", PageOf({"a.html", "b.html"}, "me@start.test"));
  loop.Schedule(2500ms, [this] { interfaces.alive = false; });
  driver.Run();
  Strings expected = {"end: You are not on the internet !"};
  expected.insert(expected.end(), kEndOfUnfinished.begin(), kEndOfUnfinished.end());
  EXPECT_EQ(host.calls, expected);
  EXPECT_EQ(Unvisited(), (Strings{"http://start.test/a.html", "http://start.test/b.html"}));
}

TEST_F(LinkRun, SaysThatItIsOffLineAlsoWhereTheStopButtonWasPressed) {
  EnableAlarm();
  loop.Schedule(500ms, [this] { interfaces.alive = false; });
  loop.Schedule(1s, [this] { Stop(); });  // in the pump of the tick that finds the computer off line
  driver.Run();
  EXPECT_EQ(host.reason(), kEndOffLine);
}

TEST_F(LinkRun, EndsOnAOneSecondFlapOfTheNetworkAndResumes) {
  EnableAlarm();
  loop.Schedule(1500ms, [this] { interfaces.alive = false; });
  loop.Schedule(2500ms, [this] { interfaces.alive = true; });
  driver.Run();
  EXPECT_EQ(host.reason(), kEndOffLine);
  interfaces.alive = true;
  fetcher.Serve("http://start.test", PageOf({}, "a@a.com"));
  RunAgain();
  EXPECT_EQ(host.reason(), kEndAllParsed);
  EXPECT_FALSE(run.off_line);
  EXPECT_EQ(Found(), (Strings{"a@a.com"}));
}

TEST_F(LinkRun, HoldsAStopThatWasPressedBeforeItsFirstTick) {
  fetcher.Serve("http://start.test", PageOf({}, "a@a.com"));
  Stop();
  driver.Run();
  EXPECT_EQ(host.reason(), kEndStopButton);
}

TEST_F(LinkRun, DoesNothingForAStopOrAFlagFromBeforeItsTime) {
  run.stop_requested = true;
  run.off_line = true;
  fetcher.Serve("http://start.test", PageOf({}, "a@a.com"));
  driver.Run();
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(LinkRun, SavesNoReportWithoutAnAddressAndNoDataWithoutALink) {
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(host.calls, (Strings{"end: All links have been parsed !", "idle, links visited", "over"}));
}

TEST_F(LinkRun, KeepsTheCancelledLinksWhenTheWatchdogTicksBehindTheMessageBox) {
  EnableAlarm();
  loop.Schedule(1500ms, [this] { Stop(); });
  host.while_end_shown = [this] { loop.Advance(30s); };
  driver.Run();
  EXPECT_EQ(host.calls[1], "data");
  EXPECT_EQ(Unvisited(), (Strings{"http://start.test"}));
}

// --- Watchdog ---

TEST_F(LinkRun, GoesOnAfterElevenSecondsWithoutAFinishedDownload) {
  EnableAlarm();
  fetcher.Serve("http://start.test", PageOf({"a.html", "b.html", "c.html"}));
  fetcher.Serve("http://start.test/c.html", PageOf({}, "c@c.com"));  // the first two never answer
  driver.Run();
  EXPECT_EQ(loop.now(), 11s);
  EXPECT_EQ(Keys().size(), 4u);
  EXPECT_EQ(Found(), (Strings{"c@c.com"}));
  EXPECT_EQ(host.calls, (Strings{"end: All links have been parsed !", "report", "idle, links visited", "over"}));
  EXPECT_TRUE(Unvisited().empty());  // abandoned pages are done
}

TEST_F(LinkRun, TakesElevenSecondsAtMostForEachRoundOfPagesThatNeverAnswer) {
  EnableAlarm();
  fetcher.Serve("http://start.test", PageOf({"a", "b", "c", "d", "e"}));
  driver.Run();
  EXPECT_EQ(loop.now(), 33s);
  EXPECT_EQ(Keys().size(), 6u);
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(LinkRun, IsNotCancelledWhileOtherPagesFinish) {
  EnableAlarm();
  Strings links = {"stuck"};
  for (int i = 0; i < 5; ++i) links.push_back("slow" + std::to_string(i));
  fetcher.Serve("http://start.test", PageOf(links));
  fetcher.ServeOthers([](const std::string& address) -> std::optional<ScriptedAnswer> {
    if (address.ends_with("stuck")) return std::nullopt;
    return ScriptedAnswer{.body = "", .delay = 9500ms};
  });
  driver.Run();
  EXPECT_EQ(Keys().size(), 7u);
  EXPECT_GE(loop.now(), 5 * 9500ms);
  EXPECT_LE(loop.now(), 5 * 9500ms + 12s);
  EXPECT_EQ(std::count(view.stages.begin(), view.stages.end(), "Canceling ..."), 2);  // the stuck page, the end
}

TEST_F(LinkRun, LeavesAPageAloneThatIsBeingAnalysedWhenTheWatchdogCancels) {
  fetcher.Serve("http://start.test", PageOf({"a.html"}, "me@start.test"));
  ServeEmptyPages();
  bool cancelled = false;
  loop.OnPump([&] {
    if (loop.depth() < 2 || cancelled) return;  // inside the analysis of the start page
    cancelled = true;
    driver.CancelStalled();
    EXPECT_EQ(run.pending[0], 1);
    EXPECT_EQ(project.queues[0].InFlight().size(), 1u);
  });
  driver.Run();
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(Found(), (Strings{"me@start.test"}));
  EXPECT_EQ(Keys(), (Strings{"M1http://start.test", "X1http://start.test/a.html"}));
  EXPECT_TRUE(Unvisited().empty());
}

// --- The upgrade check's share ---

TEST_F(LinkRun, WorksWhileTheUpgradeCheckHoldsItsShareOfTheLevelZeroCounter) {
  settings.NeverUpgradeFlag = 0;
  watchdog.Tick();
  ASSERT_EQ(run.pending[0], 1);
  fetcher.Serve("http://start.test", PageOf({"a.html"}));
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(host.reason(), kEndAllParsed);
  EXPECT_EQ(Keys(), (Strings{"Uhttp://upgrade.test/", "M1http://start.test", "X1http://start.test/a.html"}));
  EXPECT_EQ(run.pending[0], 1);
  RunAgain();
  EXPECT_EQ(host.reason(), kEndAllParsed);
  EXPECT_EQ(run.pending[0], 1);
}

TEST_F(LinkRun, WorksWhenTheUpgradeCheckBeginsInItsMiddle) {
  settings.NeverUpgradeFlag = 0;
  EnableAlarm();
  fetcher.Serve("http://start.test", {.body = PageOf({"a.html"}), .delay = 3s});
  ServeEmptyPages();
  driver.Run();
  EXPECT_EQ(host.reason(), kEndAllParsed);
  EXPECT_EQ(run.pending[0], 1);
  EXPECT_LT(loop.now(), 4s);
}

TEST_F(LinkRun, LosesTheUpgradeChecksShareAtTheStartOfAKeywordRunOnly) {
  settings.NeverUpgradeFlag = 0;
  watchdog.Tick();
  fetcher.Serve("http://start.test", "");
  driver.LinkRun();
  EXPECT_EQ(run.pending[0], 1);
  files.Put("/data", "saved");
  project.IsKeywordProject = true;
  RunAgain();
  EXPECT_EQ(run.pending[0], 0);
  EXPECT_EQ(run.upgrade_share, 0);
}

TEST_F(LinkRun, DoesNotTakeTheUpgradeChecksShareOffForAStrayEvent) {
  settings.NeverUpgradeFlag = 0;
  watchdog.Tick();
  driver.DownloadComplete(0, "Mstray", true);
  driver.DownloadComplete(3, "Zstray", true);
  EXPECT_EQ(run.pending[0], 1);
  EXPECT_EQ(run.pending[3], 0);
}

TEST_F(LinkRun, AHostLearnsOfASaveThatFailsAtTheEnd) {
  fetcher.Serve("http://start.test", PageOf({}, "me@start.test"));
  host.save_result = {StatusKind::kFailed, "no room"};
  driver.Run();
  EXPECT_EQ(host.calls,
            (Strings{"end: All links have been parsed !", "report", "no room", "idle, links visited", "over"}));
}

}  // namespace
}  // namespace quenlar
