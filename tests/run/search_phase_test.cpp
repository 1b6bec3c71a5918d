#include <gtest/gtest.h>

#include "run/driver_fixture.h"
#include "run/end_reasons.h"

namespace quenlar {
namespace {

class SearchPhase : public DriverTest {
 protected:
  SearchPhase() { OpenKeyword(); }
  // `count` sites that no earlier page has, numbered from `first` on.
  static std::string Results(int first, int count) {
    Strings links;
    for (int i = first; i < first + count; ++i) links.push_back("http://site" + std::to_string(i) + ".test/");
    return ResultsOf(links);
  }
  // Keys of search pages, without their letter.
  Strings SearchPages() const {
    Strings pages;
    for (const auto& request : fetcher.started()) {
      if (request.key[0] == 'G') pages.push_back(request.address);
    }
    return pages;
  }
};

TEST_F(SearchPhase, RetriesAFirstPageWithoutLinksThreeTimesThenEndsWithAllLinksParsed) {
  fetcher.Serve(SearchAddressAt(0), "<html>nothing</html>");
  driver.Run();
  EXPECT_EQ(SearchPages(), Strings(4, SearchAddressAt(0)));
  EXPECT_EQ(Keys()[0], "G" + SearchAddressAt(0));
  EXPECT_EQ(host.calls, (Strings{"end: All links have been parsed !", "idle", "over"}));
  EXPECT_TRUE(Unvisited().empty());
}

TEST_F(SearchPhase, CountsAFailedFirstPageAsAnAttempt) {
  int asked = 0;
  fetcher.ServeOthers([&](const std::string& address) -> std::optional<ScriptedAnswer> {
    if (address != SearchAddressAt(0)) return ScriptedAnswer{};
    return ++asked < 3 ? Failure() : ScriptedAnswer{.body = Results(1, 1)};
  });
  driver.Run();
  EXPECT_EQ(asked, 3);
  EXPECT_EQ(SearchPages().back(), SearchAddressAt(100));
  EXPECT_EQ(Keys().back(), "M1http://site1.test");
}

TEST_F(SearchPhase, GoesFromPageToPageUntilTheListDoesNotGrowAndVisitsItBackwards) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 2));
  fetcher.Serve(SearchAddressAt(100), Results(3, 2));
  fetcher.Serve(SearchAddressAt(200), Results(1, 4));
  host.while_saving = [this] {
    EXPECT_EQ(Urls(0), (Strings{"http://site4.test", "http://site3.test", "http://site2.test", "http://site1.test"}));
    EXPECT_EQ(project.queues[0].Next(), 0u);
  };
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(Keys(),
            (Strings{"G" + SearchAddressAt(0), "G" + SearchAddressAt(100), "G" + SearchAddressAt(200),
                     "M1http://site4.test", "M1http://site3.test", "M1http://site2.test", "M1http://site1.test"}));
  EXPECT_EQ(host.calls, (Strings{"periodic data", "end: All links have been parsed !", "idle, links visited", "over"}));
  EXPECT_EQ(project.StartURL, SearchAddressAt(200));
}

TEST_F(SearchPhase, TurnsAnOddNumberOfResultsAroundTheMiddleOne) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 3));
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(Urls(0), (Strings{"http://site3.test", "http://site2.test", "http://site1.test"}));
}

TEST_F(SearchPhase, EndsWhenALaterPageFails) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 1));
  fetcher.Serve(SearchAddressAt(100), Failure());
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(SearchPages().size(), 2u);
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

TEST_F(SearchPhase, IsSkippedWhenTheDataFileExistsAndTheSavedListIsResumed) {
  files.Put("/data", "saved");
  project.search_page.clear();
  project.queues[0].Clear();
  Queue(0, {"http://b.test", "http://a.test"});
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"M1http://b.test", "M1http://a.test"}));
  EXPECT_EQ(host.calls[0], "periodic data");
}

TEST_F(SearchPhase, IsMadeWhereTheDataFileWasOfAnotherKindSoThatTheSearchPageIsNoSite) {
  files.Put("/data", "another header");
  fetcher.Serve(SearchAddressAt(0), Results(1, 1));
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"G" + SearchAddressAt(0), "G" + SearchAddressAt(100), "M1http://site1.test"}));
}

TEST_F(SearchPhase, EndsWithTheStopMessageAndDoesNotSaveTheQueues) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 5));
  loop.Schedule(std::chrono::seconds(2), [this] { Stop(); });
  driver.Run();
  EXPECT_EQ(host.calls, (Strings{"end: You press the stop button !", "idle", "over"}));
  EXPECT_EQ(view.last_stage(), "Canceling ...");
  EXPECT_TRUE(fetcher.in_flight().empty());
  EXPECT_EQ(run.pending[0], 0);
}

TEST_F(SearchPhase, EndsWithAStopThatComesInThePumpThatBringsThePage) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 2));
  loop.OnPump([this] { Stop(); });
  driver.Run();
  EXPECT_EQ(host.calls, (Strings{"end: You press the stop button !", "idle", "over"}));
  EXPECT_EQ(Urls(0).size(), 2u);  // the page has been read all the same
  EXPECT_EQ(SearchPages().size(), 1u);
}

TEST_F(SearchPhase, GoesOnWithWhatItHasWhenItIsStartedAgainAfterAStop) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 2));
  loop.Schedule(std::chrono::seconds(2), [this] { Stop(); });
  driver.Run();
  fetcher.Serve(SearchAddressAt(100), Results(3, 1));
  fetcher.Serve(SearchAddressAt(200), Results(3, 1));
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  RunAgain();
  EXPECT_EQ(Keys(),
            (Strings{"G" + SearchAddressAt(0), "G" + SearchAddressAt(100), "G" + SearchAddressAt(100),
                     "G" + SearchAddressAt(200), "M1http://site3.test", "M1http://site2.test", "M1http://site1.test"}));
}

TEST_F(SearchPhase, EndsWhenTheComputerGoesOffLine) {
  EnableAlarm();
  loop.Schedule(std::chrono::milliseconds(1500), [this] { interfaces.alive = false; });
  driver.Run();
  EXPECT_EQ(host.calls, (Strings{"end: You are not on the internet !", "idle", "over"}));
}

TEST_F(SearchPhase, EndsPastTheLastOffsetThatSixteenBitsHold) {
  int page = 0;
  fetcher.ServeOthers([&](const std::string& address) -> std::optional<ScriptedAnswer> {
    if (address.find("search.test") == address.npos) return ScriptedAnswer{};
    return ScriptedAnswer{.body = Results(++page, 1)};
  });
  host.while_saving = [this] { Stop(); };
  driver.Run();
  EXPECT_EQ(page, 328);
  EXPECT_EQ(SearchPages().back(), SearchAddressAt(32700));
  EXPECT_EQ(project.queues[0].Count(), 328u);
}

TEST_F(SearchPhase, AsksForLaterPagesInTheLanguageOfThatMoment) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 1));
  loop.OnPump([this] { settings.SearchLanguage = 2; });
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(SearchPages()[1], "http://search.test/?hl=de&start=100");
}

TEST_F(SearchPhase, KeepsTheAddressForALanguageThatIsNone) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 1));
  const std::string first = SearchAddressAt(0);
  loop.OnPump([this] { settings.SearchLanguage = 9; });
  fetcher.ServeOthers([](const std::string&) { return ScriptedAnswer{}; });
  driver.Run();
  EXPECT_EQ(SearchPages(), (Strings{first, first}));
}

TEST_F(SearchPhase, HoldsAStopThatComesWhileTheResultsAreSaved) {
  fetcher.Serve(SearchAddressAt(0), Results(1, 3));
  host.while_saving = [this] { Stop(); };
  fetcher.Serve(SearchAddressAt(100), "");
  driver.Run();
  EXPECT_EQ(host.reason(), kEndStopButton);
  EXPECT_EQ(host.calls[2], "data");
  EXPECT_EQ(Unvisited().size(), 3u);
}

TEST_F(SearchPhase, LosesNothingToAWatchdogThatCancelsAResultPage) {
  EnableAlarm();
  fetcher.Serve(SearchAddressAt(100), "");
  loop.Schedule(std::chrono::milliseconds(11500),
                [this] { fetcher.Complete("G" + SearchAddressAt(0), Results(1, 1)); });
  fetcher.ServeOthers([](const std::string& address) -> std::optional<ScriptedAnswer> {
    if (address.find("site1") == address.npos) return std::nullopt;
    return ScriptedAnswer{};
  });
  driver.Run();
  EXPECT_EQ(Keys(), (Strings{"G" + SearchAddressAt(0), "G" + SearchAddressAt(0), "G" + SearchAddressAt(100),
                             "M1http://site1.test"}));
  EXPECT_EQ(host.reason(), kEndAllParsed);
}

}  // namespace
}  // namespace quenlar
