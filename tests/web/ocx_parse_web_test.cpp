#include "web/ocx_parse_web.h"

#include <new>

#include <gtest/gtest.h>

#include "support/fake_system.h"
#include "support/scripted_fetcher.h"
#include "web/analysis_world.h"

namespace quenlar {
namespace {

// The web control over scripted downloads; what it tells the host is written down as "0 whole", "3 cut" and so on.
class WebControl : public testing::Test, protected AnalysisWorld, protected WebEvents {
 protected:
  WebControl() {
    web.SetEvents(this);
    web.SetResetStallCounter([this] { ++stall_resets; });
    web.SetUpgradeHandler(
        {[this](const std::string& page) { upgrades.push_back(page); }, [this] { upgrades.emplace_back("failed"); }});
  }
  void DownloadComplete(int level, const std::string& request_name, bool whole) override {
    events.push_back(std::to_string(level) + " " + request_name + (whole ? " whole" : " cut"));
    at_event();
  }
  void Start(const std::string& name) { web.BeginDownload(name.size() > 2 ? name.substr(2) : name, name); }
  void Deliver(const std::string& name, const std::string& body) {
    ASSERT_TRUE(fetcher.Complete(name, body)) << name;
    loop.Yield();
  }

  Strings events, upgrades;
  std::function<void()> at_event = [] {};
  int stall_resets = 0;
  ScriptedFetcher fetcher{loop};
  FakeCodePage code_page;
  ocxParseWeb web{fetcher, code_page, context};
};

TEST_F(WebControl, BeginDownloadStartsAndShows) {
  Start("M1http://h/a");
  Start("X1http://h/b");
  EXPECT_EQ(web.pending(), (Strings{"M1http://h/a", "X1http://h/b"}));
  EXPECT_EQ(fetcher.started(),
            (std::vector<ScriptedFetcher::Request>{{"http://h/a", "M1http://h/a"}, {"http://h/b", "X1http://h/b"}}));
  EXPECT_EQ(view.stages, (Strings{"Connecting: http://h/a", "Connecting: http://h/b"}));
}

TEST_F(WebControl, RaisesTheEventOfEachLevelAfterItsParser) {
  for (int level = 0; level < kLevels; ++level) {
    const std::string name = RequestLetter(level) + std::string("1http://h/p");
    Start(name);
    at_event = [&] { EXPECT_EQ(run.ScanCount, level + 1); };
    Deliver(name, "<p>a@x.de</p>");
    EXPECT_EQ(events.back(), std::to_string(level) + " " + name + " whole");
    EXPECT_EQ(stall_resets, level + 1);
  }
  EXPECT_TRUE(web.pending().empty());
  EXPECT_EQ(events.size(), 11u);
}

TEST_F(WebControl, NamesItsEvents) {
  EXPECT_EQ(DownloadEventName(0), "DownloadTovasperComplete");
  EXPECT_EQ(DownloadEventName(10), "DownloadTovasperExpand10Complete");
}

TEST_F(WebControl, ShowsTheStagesOfADownload) {
  Start("M1http://h/p");
  Deliver("M1http://h/p", "<p>");
  EXPECT_EQ(view.stages, (Strings{"Connecting: http://h/p", "Receiving data ...", "Download complete ...",
                                  "Parsing data ...", "Completed analysis ..."}));
}

TEST_F(WebControl, ConvertsTheBodyFromTheCodePage) {
  Start("M1http://h/p");
  Deliver("M1http://h/p", "<a href=m\xFC>x</a>");
  EXPECT_EQ(Queue(1), Strings{"http://h/m\xC3\xBC"});
}

TEST_F(WebControl, ASearchPageFillsLevelZero) {
  Start("Ghttp://engine/search");
  Deliver("Ghttp://engine/search", "<h3 class=r><a href=\"http://a/\"></a><p>me@x.de</p>");
  EXPECT_EQ(Queue(0), Strings{"http://a"});
  EXPECT_EQ(events, Strings{"0 Ghttp://engine/search whole"});
  EXPECT_EQ(project.found.Count(), 0u);
  EXPECT_EQ(run.ScanCount, 0);
}

TEST_F(WebControl, AFailedSearchPageRaisesItsEventAndAddsNothing) {
  Start("Ghttp://engine/search");
  fetcher.Fail("Ghttp://engine/search");
  loop.Yield();
  EXPECT_EQ(events, Strings{"0 Ghttp://engine/search whole"});
  EXPECT_EQ(Queue(0), Strings{});
  EXPECT_EQ(view.last_stage(), "Some errors occured ...");
  EXPECT_TRUE(web.pending().empty());
  EXPECT_EQ(stall_resets, 1);
}

TEST_F(WebControl, TheUpgradePageRaisesNoEvent) {
  Start("Uhttp://site/upgrade");
  Deliver("Uhttp://site/upgrade", "page");
  Start("Uhttp://site/upgrade");
  fetcher.Fail("Uhttp://site/upgrade");
  loop.Yield();
  EXPECT_EQ(upgrades, (Strings{"page", "failed"}));
  EXPECT_EQ(events, Strings{});
  EXPECT_EQ(stall_resets, 2);
}

TEST_F(WebControl, OtherLettersDoNothing) {
  for (const char* name : {"K1http://h/", "", "m1http://h/"}) {
    const auto outcome = web.Complete(name, "<p>a@x.de</p>");
    EXPECT_EQ(outcome.level, -1);
    EXPECT_FALSE(outcome.parsed);
    web.Redirect(name, "http://other/");
    web.Fail(name);
  }
  EXPECT_EQ(events, Strings{});
  EXPECT_EQ(project.found.Count(), 0u);
  EXPECT_EQ(Queue(0), Strings{});
}

TEST_F(WebControl, ARedirectIsQueuedAsAFreshLink) {
  Start("M2http://h/p");
  fetcher.Redirect("M2http://h/p", "http://other/x/");
  loop.Yield();
  for (int hop = 0; hop < 3; ++hop) {
    fetcher.Redirect("M2http://h/p", "http://h/y");
    loop.Yield();
  }
  EXPECT_EQ(Queue(0), Strings{"http://other/x"});
  EXPECT_EQ(Queue(2), Strings{"http://h/y"});
  EXPECT_EQ(view.last_stage(), "Redirecting ...");
  Deliver("M2http://h/p", "");
  EXPECT_EQ(events, Strings{"0 M2http://h/p whole"});
}

TEST_F(WebControl, ARedirectIsQueuedOnlyWhereALinkWouldBe) {
  for (const char* target :
       {"https://h/x", "http://www.microsoft.com/", "http://h/#top", "http://en.wikipedia.org/x"}) {
    web.Redirect("M2http://h/p", target);
    EXPECT_EQ(Queue(0), Strings{}) << target;
    EXPECT_EQ(Queue(2), Strings{}) << target;
    EXPECT_EQ(view.last_stage(), "Redirecting ...");
  }
}

TEST_F(WebControl, ARedirectOfAnExpansionPageCountsUp) {
  Start("Y1http://h/p");
  fetcher.Redirect("Y1http://h/p", "http://h/y");
  loop.Yield();
  EXPECT_EQ(Queue(2), Strings{"http://h/y"});
  EXPECT_EQ(project.queues[2].At(0).number, 2);
}

TEST_F(WebControl, ARedirectOfASearchPageIsShownAndNotQueued) {
  web.Redirect("Ghttp://engine/search", "http://other/");
  EXPECT_EQ(Queue(0), Strings{});
  EXPECT_EQ(view.last_stage(), "Redirecting ...");
}

TEST_F(WebControl, AStopRequestSilencesProgressAndRedirects) {
  Start("M2http://h/p");
  Start("X1http://h/q");
  view.stages.clear();
  run.stop_requested = true;
  fetcher.Progress("M2http://h/p", FetchCode::kDataAvailable);
  fetcher.Redirect("M2http://h/p", "http://other/x/");
  fetcher.Fail("M2http://h/p");
  loop.Yield();
  EXPECT_EQ(view.stages, Strings{});
  EXPECT_EQ(Queue(0), Strings{});
  Deliver("X1http://h/q", "<p>a@x.de</p>");  // completion still analyses
  EXPECT_EQ(Addresses(), Strings{"a@x.de"});
  EXPECT_EQ(view.stages, Strings{"Download complete ..."});
  EXPECT_EQ(events, (Strings{"0 M2http://h/p whole", "1 X1http://h/q whole"}));
}

TEST_F(WebControl, APageThatAStopCutShortIsToldAsSuch) {
  run.stop_requested = true;
  Start("M2http://h/p");
  Deliver("M2http://h/p", "<p>");
  EXPECT_EQ(events, Strings{"0 M2http://h/p cut"});
}

TEST_F(WebControl, CancelAllDownloadForgetsEverythingAndRaisesNoEvent) {
  for (const char* name : {"M1http://h/a", "X1http://h/b", "X1http://h/b"}) Start(name);
  fetcher.Complete("M1http://h/a", "<p>a@x.de</p>");  // has arrived, but no pump has delivered it
  web.CancelAllDownload();
  loop.Yield();
  EXPECT_EQ(view.last_stage(), "Canceling ...");
  EXPECT_TRUE(web.pending().empty());
  EXPECT_TRUE(fetcher.in_flight().empty());
  EXPECT_EQ(events, Strings{});
  EXPECT_EQ(stall_resets, 0);
}

TEST_F(WebControl, CancelAllDownloadWithNothingPendingShowsItsText) {
  web.CancelAllDownload();
  EXPECT_EQ(view.stages, Strings{"Canceling ..."});
  EXPECT_TRUE(web.pending().empty());
}

TEST_F(WebControl, RemovesOnlyTheFirstPendingEntryOfAName) {
  for (const char* name : {"X1http://h/b", "M1http://h/a", "X1http://h/b"}) Start(name);
  Deliver("X1http://h/b", "");
  EXPECT_EQ(web.pending(), (Strings{"M1http://h/a", "X1http://h/b"}));
}

TEST_F(WebControl, ADestroyedControlCancelsWhatIsPending) {
  {
    ocxParseWeb short_lived(fetcher, code_page, context);
    short_lived.BeginDownload("http://h/a", "M1http://h/a");
  }
  EXPECT_EQ(fetcher.cancelled(), Strings{"M1http://h/a"});
  EXPECT_EQ(view.last_stage(), "Canceling ...");
}

TEST_F(WebControl, PagesThatArriveInsideAnAnalysisAreAnalysedInsideIt) {
  for (const char* name : {"M1http://h/a", "X1http://h/b", "Y1http://h/c"}) Start(name);
  fetcher.Complete("M1http://h/a", "<p>a@x.de</p><a href=1>x</a>");
  fetcher.Complete("X1http://h/b", "<p>b@x.de</p><p>A@x.de</p>");
  fetcher.Complete("Y1http://h/c", "<p>c@x.de</p>");
  loop.SetDeliveriesPerPump(1);  // a page's first bytes, then the page, then the next page's
  loop.Yield();
  loop.Yield();
  EXPECT_EQ(events, (Strings{"2 Y1http://h/c whole", "1 X1http://h/b whole", "0 M1http://h/a whole"}));
  EXPECT_EQ(project.found.Count(), 3u);
  EXPECT_GE(loop.deepest(), 3);
  EXPECT_TRUE(web.pending().empty());
  EXPECT_EQ(stall_resets, 3);
}

TEST_F(WebControl, CancellingInsideAnAnalysisLetsItFinish) {
  Start("M1http://h/a");
  Start("X1http://h/b");
  fetcher.Complete("M1http://h/a", "<p>a@x.de</p><a href=1>x</a>");
  bool cancelled = false;
  loop.OnPump([&] {
    if (loop.depth() != 2 || cancelled) return;
    cancelled = true;
    web.CancelAllDownload();
  });
  loop.Yield();
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(events, Strings{"0 M1http://h/a whole"});
  EXPECT_EQ(Queue(1), Strings{"http://h/1"});
}

TEST_F(WebControl, AFaultInsideAParserLosesNoCompletion) {
  keeps = [](std::string_view) -> bool { throw std::bad_alloc(); };
  Start("M1http://h/a");
  Deliver("M1http://h/a", "<p>a@x.de</p>");
  EXPECT_EQ(events, Strings{"0 M1http://h/a cut"}) << "such a page is still to be visited";
  EXPECT_EQ(view.last_stage(), "Some errors occured ...");
  EXPECT_EQ(stall_resets, 1);
  const auto outcome = web.CompleteText("X1http://h/a", "<p>a@x.de</p>");
  EXPECT_EQ(outcome.level, 1);
  EXPECT_FALSE(outcome.parsed);
}

TEST_F(WebControl, TellsWhatACompletionDid) {
  auto outcome = web.CompleteText("M1http://h/a", "<p>");
  EXPECT_EQ(outcome.level, 0);
  EXPECT_TRUE(outcome.parsed);
  EXPECT_TRUE(outcome.result);
  run.stop_requested = true;
  outcome = web.CompleteText("M1http://h/a", "<p>");
  EXPECT_TRUE(outcome.parsed);
  EXPECT_FALSE(outcome.result);
  outcome = web.Fail("T1http://h/a");
  EXPECT_EQ(outcome.level, 10);
  EXPECT_FALSE(outcome.parsed);
}

TEST_F(WebControl, LinkBuildersCutTheSlashOffTheirArgument) {
  std::string address = "http://h/x/";
  web.MakeLink(address, "http://h/p", "1");
  EXPECT_EQ(address, "http://h/x");
  std::string dropped = "http://h/microsoft/";
  web.MakeExpand3Link(dropped, "http://h/p", 1);
  EXPECT_EQ(dropped, "http://h/microsoft/");
}

TEST_F(WebControl, EveryExpansionLinkBuilderFillsItsLevel) {
  using Builder = void (ocxParseWeb::*)(std::string&, std::string_view, std::int16_t);
  constexpr Builder kBuilders[] = {&ocxParseWeb::MakeExpand1Link, &ocxParseWeb::MakeExpand2Link,
                                   &ocxParseWeb::MakeExpand3Link, &ocxParseWeb::MakeExpand4Link,
                                   &ocxParseWeb::MakeExpand5Link, &ocxParseWeb::MakeExpand6Link,
                                   &ocxParseWeb::MakeExpand7Link, &ocxParseWeb::MakeExpand8Link,
                                   &ocxParseWeb::MakeExpand9Link, &ocxParseWeb::MakeExpand10Link};
  for (int level = 1; level <= 10; ++level) {
    std::string address = "http://h/x";
    (web.*kBuilders[level - 1])(address, "http://h/p", 4);
    EXPECT_EQ(Queue(level), Strings{"http://h/x"}) << level;
    EXPECT_EQ(project.queues[static_cast<std::size_t>(level)].At(0).number, 5);
  }
}

}  // namespace
}  // namespace quenlar
