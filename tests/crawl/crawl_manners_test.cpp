// How a crawl treats hosts that are slow, busy, dead or badly set up.
#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CrawlMannersTest : public CrawlTest {
 protected:
  static constexpr const char* kService = "http://127.0.0.1:8888";
  [[nodiscard]] static std::string SearchPage(int page) {
    return std::string(kService) + "/search?q=cars&format=json&language=en&pageno=" + std::to_string(page);
  }
};

TEST_F(CrawlMannersTest, ASearchServiceThatAsksForAnHourIsNotWaitedFor) {
  options_.search_service = kService;
  Page(SearchPage(1), {.status = 429, .fields = {{"Retry-After", "3600"}}});
  Page("https://www.firma.de/", "a@firma.de");
  const auto outcome = Crawl({"www.firma.de", "cars"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_LT(loop_.now(), minutes(6));
  EXPECT_THAT(outcome.messages, Contains(AllOf(HasSubstr("cars"), HasSubstr("asks to wait"))));
  Page(SearchPage(1), R"({"results": [{"url": "https://b.de/"}]})");
  Page("https://b.de/", "b@b.de");
  Crawl({"www.firma.de", "cars"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de", "b@b.de")) << "the next run asks again";
}

TEST_F(CrawlMannersTest, ASearchServiceThatAsksForAMinuteIsWaitedFor) {
  options_.search_service = kService;
  int asked = 0;
  client_.ServeOthers([&](const WebRequest& request) -> std::optional<ScriptedWebAnswer> {
    if (request.url != SearchPage(1)) return ScriptedWebAnswer{.status = 404};
    if (++asked == 1) return ScriptedWebAnswer{.status = 503, .fields = {{"Retry-After", "60"}}};
    return ScriptedWebAnswer{.body = R"({"results": [{"url": "https://b.de/"}]})"};
  });
  Page("https://b.de/", "b@b.de");
  Crawl({"cars"});
  EXPECT_THAT(view_.addresses, ElementsAre("b@b.de"));
}

TEST_F(CrawlMannersTest, ASearchThatBreaksOffIsMadeAgainByTheNextRun) {
  options_.search_service = kService;
  Page(SearchPage(1), R"({"results": [{"url": "https://a.de/"}]})");
  Page(SearchPage(2), {.status = 500});
  Page("https://a.de/", "a@a.de");
  Page("https://b.de/", "b@b.de");
  const auto outcome = Crawl({"cars"});
  EXPECT_THAT(outcome.messages, Contains(HasSubstr("status 500")));
  Page(SearchPage(2), R"({"results": [{"url": "https://b.de/"}]})");
  Page(SearchPage(3), R"({"results": []})");
  Crawl({"cars"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@a.de", "b@b.de"));
  EXPECT_EQ(Crawl({"cars"}).end, CrawlEnd::kNothingToDo);
}

TEST_F(CrawlMannersTest, RedirectsOfRobotsTxtKeepThePause) {
  Page("https://www.firma.de/robots.txt", WebRedirect("/r1"));
  Page("https://www.firma.de/r1", "User-agent: *\nCrawl-delay: 3\n");
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_EQ(At("https://www.firma.de/r1"), seconds(1));
  EXPECT_EQ(At("https://www.firma.de/"), seconds(4));
}

TEST_F(CrawlMannersTest, ARobotsTxtOnAnotherHostKeepsThatHostsPause) {
  options_.scope = CrawlScope::kAnywhere;
  Page("https://a.de/robots.txt", WebRedirect("https://b.de/rules"));
  Page("https://b.de/robots.txt", {.status = 404, .delay = seconds(2)});
  Page("https://b.de/rules", {.body = "User-agent: *\nDisallow: /x\n", .delay = seconds(2)});
  Page("https://b.de/", "b@b.de");
  Page("https://a.de/", "a@a.de <a href=/x>x</a>");
  Crawl({"a.de", "b.de"});
  std::vector<std::pair<milliseconds, milliseconds>> visits;  // of the other host: from, to
  for (const auto& exchange : client_.sent()) {
    if (!exchange.request.url.starts_with("https://b.de/")) continue;
    const bool slow = exchange.request.url != "https://b.de/";
    visits.emplace_back(exchange.at, exchange.at + (slow ? seconds(2) : seconds(0)));
  }
  ASSERT_EQ(visits.size(), 3u);
  for (std::size_t i = 1; i < visits.size(); ++i) EXPECT_GE(visits[i].first - visits[i - 1].second, seconds(1));
  EXPECT_THAT(view_.addresses, testing::UnorderedElementsAre("a@a.de", "b@b.de"));
  EXPECT_EQ(Count("https://a.de/x"), 0);
}

TEST_F(CrawlMannersTest, ARobotsTxtThatLeadsToADeadHostForbidsTheHostForNow) {
  Page("https://www.firma.de/robots.txt", WebRedirect("https://dead.firma.de/robots.txt"));
  Page("https://dead.firma.de/robots.txt", WebFails(WebFailure::kNoConnection, "nobody listens"));
  Page("https://www.firma.de/", "a@firma.de");
  Page("http://www.firma.de/", "plain@firma.de");
  const auto outcome = Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  EXPECT_EQ(Count("http://www.firma.de/"), 0) << "the host has answered by https";
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_THAT(outcome.messages, Contains(AllOf(HasSubstr("https://www.firma.de"), HasSubstr("dead.firma.de"))));
}

TEST_F(CrawlMannersTest, ARobotsTxtThatLeadsToAPrivatePlaceIsNotThere) {
  Page("https://www.firma.de/robots.txt", WebRedirect("http://10.0.0.1/robots.txt"));
  Page("http://10.0.0.1/robots.txt", WebFails(WebFailure::kPrivateAddress));
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlMannersTest, BehindAProxyHttpIsTriedTooWhenNothingAnswersByHttps) {
  Page("https://www.firma.de/robots.txt", WebFails(WebFailure::kProxy, "the proxy refuses the host"));
  Page("http://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlMannersTest, TheFallbackIsTheStartsWhicheverPageComesFirst) {
  Page("https://www.firma.de/robots.txt", WebFails(WebFailure::kNoConnection));
  Page("http://www.firma.de/", "a@firma.de");
  const auto outcome = Crawl({"https://www.firma.de/first", "www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
  EXPECT_EQ(left_, 1) << "a typed scheme is kept";
}

TEST_F(CrawlMannersTest, AFallbackThatHelpedNobodyIsNotRemembered) {
  Page("https://www.firma.de/robots.txt", WebFails(WebFailure::kNoConnection));
  Page("http://www.firma.de/robots.txt", WebFails(WebFailure::kNoConnection));
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kFailed);
  Page("https://www.firma.de/robots.txt", {.status = 404});
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.rows, ElementsAre("a@firma.de https://www.firma.de/  text"));
}

TEST_F(CrawlMannersTest, AStartWithoutAnAnswerFallsBackAlsoWhereRobotsAreIgnored) {
  options_.obey_robots = false;
  Page("https://www.firma.de/", WebFails(WebFailure::kTimeout));
  Page("http://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlMannersTest, AStartThatNeverAnswersFailsAlsoWhereRobotsAreIgnored) {
  options_.obey_robots = false;
  Page("https://www.firma.de/", WebFails(WebFailure::kTimeout, "it is too slow"));
  const auto outcome = Crawl({"https://www.firma.de/"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFailed);
  EXPECT_THAT(outcome.messages, ElementsAre("https://www.firma.de/: it is too slow"));
}

TEST_F(CrawlMannersTest, FiveMinutesAreFiveMinutesHoweverOftenAHostIsAskedInVain) {
  Page("https://www.firma.de/", {.status = 503, .fields = {{"Retry-After", "120"}}});
  const auto outcome = Crawl({"www.firma.de"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_LE(loop_.now(), minutes(5) + seconds(10));
  EXPECT_EQ(Count("https://www.firma.de/"), 3);
  EXPECT_EQ(left_, 1);
}

TEST_F(CrawlMannersTest, RobotsTxtIsAskedForAnewWithinALongVisit) {
  options_.delay = hours(13);
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a><a href=/3>3</a>");
  loop_.OnPump([this] { clock_.utc_seconds = 1'700'000'000 + loop_.now().count() / 1000; });
  Crawl({"www.firma.de"});
  EXPECT_EQ(Count("https://www.firma.de/robots.txt"), 4);
  EXPECT_EQ(Visited().size(), 4u);
}

TEST_F(CrawlMannersTest, AHostThatAnswersIsNotGivenUpAnyMore) {
  Page("https://www.firma.de/", "<a href=/0>0</a><a href=/1>1</a><a href=/2>2</a><a href=/3>3</a><a href=/4>4</a>");
  for (int i = 0; i < 5; ++i) Page("https://www.firma.de/" + std::to_string(i), {.status = 500});
  Crawl({"www.firma.de"});
  EXPECT_THAT(Query("SELECT state FROM hosts"), ElementsAre("given up"));
  Page("https://www.firma.de/a", "a@firma.de");
  Crawl({"www.firma.de/a"});
  EXPECT_THAT(Query("SELECT state FROM hosts"), ElementsAre("answers"));
}

TEST_F(CrawlMannersTest, WithEnoughAddressesNothingMoreIsAskedFor) {
  options_.addresses = 1;
  options_.delay = milliseconds(0);
  Page("https://www.firma.de/", "a@firma.de <a href=/1>1</a>");
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kAddresses);
  EXPECT_EQ(Count("https://www.firma.de/1"), 0);
  const std::size_t asked = client_.sent().size();
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kAddresses);
  EXPECT_EQ(client_.sent().size(), asked);
}

TEST_F(CrawlMannersTest, AHostThatAskedToWaitIsLeftAloneByTheNextRunToo) {
  Page("https://www.firma.de/", {.status = 429, .fields = {{"Retry-After", "3600"}}});
  Crawl({"www.firma.de"});
  EXPECT_EQ(Count("https://www.firma.de/"), 1);
  Page("https://www.firma.de/", "a@firma.de");
  clock_.utc_seconds += 600;
  const auto outcome = Crawl({"www.firma.de"});
  EXPECT_EQ(outcome.end, CrawlEnd::kNothingToDo);
  EXPECT_THAT(outcome.messages, ElementsAre("1 page is left on https://www.firma.de: it asked to be left alone"));
  EXPECT_EQ(Count("https://www.firma.de/"), 1);
  clock_.utc_seconds += 2800;  // 200 s are left
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlMannersTest, ACrawlKeepsToAnHourWhateverTheClockSays) {
  Page("https://www.firma.de/", {.status = 429, .fields = {{"Retry-After", "3600"}}});
  Crawl({"www.firma.de"});
  Page("https://www.firma.de/", "a@firma.de");
  clock_.utc_seconds += -100'000;
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo);
  clock_.utc_seconds += 200'000;
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlMannersTest, AStartWhoseOtherSchemeGivesNoAnswerFails) {
  Page("http://www.firma.de/", WebRedirect("https://www.firma.de/"));
  Page("https://www.firma.de/", WebFails(WebFailure::kNoTls));
  Page("https://www.firma.de/robots.txt", WebFails(WebFailure::kNoTls));
  EXPECT_EQ(Crawl({"http://www.firma.de/"}).end, CrawlEnd::kFailed);
}

TEST_F(CrawlMannersTest, NobodyIsAskedAtPortZero) {
  Page("https://www.firma.de/", "<a href=https://www.firma.de:0/x>x</a><a href=/r>r</a>");
  Page("https://www.firma.de/r", WebRedirect("https://www.firma.de:0/"));
  const auto outcome = Crawl({"www.firma.de", "www.firma.de:0"});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/", "https://www.firma.de/r"));
  EXPECT_THAT(outcome.messages, ElementsAre(HasSubstr("not a web address")));
}

TEST_F(CrawlMannersTest, AWaitThatRobotsTxtAsksForIsKeptByTheNextRunToo) {
  Page("https://www.firma.de/robots.txt", {.status = 503, .fields = {{"Retry-After", "3600"}}});
  Crawl({"www.firma.de"});
  Robots("https://www.firma.de", "");
  Page("https://www.firma.de/", "a@firma.de");
  clock_.utc_seconds += 600;
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo);
  EXPECT_EQ(Count("https://www.firma.de/robots.txt"), 1);
  clock_.utc_seconds += 3000;
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlMannersTest, ABudgetOfPagesThatEndsBeforeASearchHasNotFinished) {
  options_.search_service = kService;
  options_.pages = 1;
  Page("https://www.firma.de/", "nothing");
  Page(SearchPage(1), {.body = R"({"results": [{"url": "https://b.de/"}]})", .delay = seconds(60)});
  Page("https://b.de/", "b@b.de");
  EXPECT_EQ(Crawl({"www.firma.de", "cars"}).end, CrawlEnd::kPages);
  options_.pages.reset();
  EXPECT_EQ(Crawl({"www.firma.de", "cars"}).end, CrawlEnd::kFinished);
  EXPECT_THAT(view_.addresses, ElementsAre("b@b.de"));
}

TEST_F(CrawlMannersTest, ASearchThatEndsWithAProblemIsToldAndMadeAgainWhereItFoundNothing) {
  options_.search_service = kService;
  Page(SearchPage(1), R"({"results": [], "unresponsive_engines": [["local", "timeout"]]})");
  EXPECT_THAT(Crawl({"cars"}).messages, ElementsAre("cars: local: timeout"));
  Page(SearchPage(1), R"({"results": [{"url": "https://a.de/"}]})");
  Page(SearchPage(2), R"({"results": [], "unresponsive_engines": [["local", "timeout"]]})");
  Page("https://a.de/", "a@a.de");
  EXPECT_THAT(Crawl({"cars"}).messages, ElementsAre("cars: local: timeout"));
  EXPECT_THAT(view_.addresses, ElementsAre("a@a.de"));
  EXPECT_EQ(Crawl({"cars"}).end, CrawlEnd::kNothingToDo);
  EXPECT_EQ(Count(SearchPage(1)), 2);
}

TEST_F(CrawlMannersTest, ARuleThatNamesASuppressedAddressForbidsNothingElse) {
  suppression_.dropped = {"anna@firma.de"};
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /anna@firma.de\n");
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/anna%40firma.de>a</a>");
  Page("https://www.firma.de/1", "one@firma.de");
  options_.pages = 1;
  Crawl({"www.firma.de"});
  options_.pages.reset();
  Crawl({"www.firma.de", "https://www.firma.de/2"});
  EXPECT_THAT(view_.addresses, ElementsAre("one@firma.de"));
  EXPECT_EQ(Count("https://www.firma.de/robots.txt"), 2) << "once a run";
  EXPECT_THAT(Query("SELECT count(*) FROM hosts WHERE robots IS NOT NULL"), ElementsAre("0"));
  EXPECT_THAT(Query("SELECT count(*) FROM pages WHERE state = 'refused'"), ElementsAre("0"));
}

TEST_F(CrawlMannersTest, RulesThatAreNotStoredAreFetchedOnceByARun) {
  suppression_.dropped = {"anna@b.de"};
  options_.hosts = 1;
  options_.scope = CrawlScope::kAnywhere;
  Robots("https://b.de", "User-agent: *\nDisallow: /anna@b.de\nDisallow: /*/anna@b.de\n");
  Page("https://a.de/", "<a href=https://b.de/1>1</a>");
  Page("https://b.de/1", "<a href=https://a.de/1>1</a>");
  Page("https://a.de/1", "<a href=https://b.de/2>2</a>");
  Page("https://b.de/2", "<a href=https://b.de/x/anna@b.de?>a</a>two@b.de");
  Crawl({"https://a.de/"});
  EXPECT_THAT(view_.addresses, ElementsAre("two@b.de"));
  EXPECT_EQ(Count("https://b.de/robots.txt"), 1);
}

TEST_F(CrawlMannersTest, ARobotsTxtThatLeadsToASuppressedAddressDoesNotNameIt) {
  suppression_.dropped = {"anna@dead.de"};
  Page("https://www.firma.de/robots.txt", WebRedirect("https://dead.de/anna@dead.de"));
  Page("https://dead.de/anna@dead.de", WebFails(WebFailure::kNoName, "there is no such host"));
  const auto outcome = Crawl({"www.firma.de"});
  const std::string reason = "its robots.txt leads to another place: there is no such host";
  EXPECT_THAT(Query("SELECT reason FROM hosts WHERE reason <> ''"), ElementsAre(reason));
  EXPECT_THAT(outcome.messages, Contains(HasSubstr(reason)));
}

}  // namespace
}  // namespace quenlar
