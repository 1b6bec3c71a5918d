// What a later run does with what an earlier one has left, refused or read.
#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using std::chrono::hours;
using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CrawlAgainTest : public CrawlTest {
 protected:
  [[nodiscard]] std::vector<std::string> VisitedSince(std::size_t begin) const {
    std::vector<std::string> urls;
    for (std::size_t i = begin; i < client_.sent().size(); ++i) {
      const std::string& url = client_.sent()[i].request.url;
      if (!url.ends_with("/robots.txt")) urls.push_back(url);
    }
    return urls;
  }
};

TEST_F(CrawlAgainTest, AnotherStartOpensItsSiteForLinksThatWereRefused) {
  Page("https://a.de/", "<a href=https://b.de/deep>b</a>");
  Page("https://b.de/", "nothing");
  Page("https://b.de/deep", "deep@b.de");
  Crawl({"a.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  Crawl({"a.de", "b.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("deep@b.de"));
}

TEST_F(CrawlAgainTest, AResultOfASearchOpensItsSiteForLinksThatWereRefusedBefore) {
  options_.search_service = "http://127.0.0.1:8888";
  Page("https://a.de/", "<a href=https://b.de/deep>b</a>");
  Page("https://b.de/", "nothing");
  Page("https://b.de/deep", "deep@b.de");
  const std::string search = "http://127.0.0.1:8888/search?q=cars&format=json&language=en&pageno=";
  Page(search + "1", {.body = R"({"results": [{"url": "https://b.de/"}]})", .delay = seconds(60)});
  Page(search + "2", R"({"results": []})");
  Crawl({"a.de", "cars"});
  EXPECT_THAT(view_.addresses, ElementsAre("deep@b.de"));
}

TEST_F(CrawlAgainTest, AnInterruptedVisitGoesOnAndFetchesNoFinishedPageAgain) {
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a>");
  Page("https://www.firma.de/1", "one");
  Page("https://www.firma.de/2", "two");
  Crawl({"www.firma.de"});
  options_.again = true;
  options_.pages = 1;
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kPages);
  options_.pages.reset();
  const std::size_t before = client_.sent().size();
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kFinished);
  EXPECT_THAT(VisitedSince(before), ElementsAre("https://www.firma.de/1", "https://www.firma.de/2"));
  EXPECT_THAT(view_.notices, ElementsAre(HasSubstr("this goes on")));
  const std::size_t then = client_.sent().size();
  Crawl({"www.firma.de"});
  EXPECT_EQ(VisitedSince(then).size(), 3u) << "it was finished, so all is visited anew";
}

TEST_F(CrawlAgainTest, AFirstVisitThatWasInterruptedGoesOnTooWithAgain) {
  Page("https://www.firma.de/", "<a href=/1>1</a>");
  Page("https://www.firma.de/1", "one");
  options_.pages = 1;
  Crawl({"www.firma.de"});
  options_.pages.reset();
  options_.again = true;
  Crawl({"www.firma.de"});
  EXPECT_EQ(Count("https://www.firma.de/"), 1);
}

TEST_F(CrawlAgainTest, AStartThatHasMovedIsAskedForWhereItWasTyped) {
  Page("https://firma.de/", WebRedirect("https://www.group.com/"));
  Page("https://www.group.com/", "<a href=/a>a</a>");
  Page("https://www.group.com/a", "a@group.com");
  Crawl({"firma.de"});
  options_.again = true;
  EXPECT_EQ(Crawl({"firma.de"}).end, CrawlEnd::kFinished);
  EXPECT_EQ(Count("https://firma.de/"), 2);
  EXPECT_EQ(Count("https://www.group.com/a"), 2);
  EXPECT_THAT(Query("SELECT state FROM pages ORDER BY id"), ElementsAre("moved", "read", "read"));
}

TEST_F(CrawlAgainTest, AStartThatMovesElsewhereTakesItsScopeAlong) {
  Page("https://firma.de/", WebRedirect("https://www.old.com/"));
  Page("https://www.old.com/", "old@old.com <a href=/a>a</a>");
  Page("https://www.old.com/a", "a");
  Crawl({"firma.de"});
  Page("https://firma.de/", WebRedirect("https://www.new.com/"));
  Page("https://www.new.com/", "new@new.com <a href=/b>b</a>");
  Page("https://www.new.com/b", "b@new.com");
  options_.again = true;
  Crawl({"firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("old@old.com", "new@new.com", "b@new.com"));
  EXPECT_THAT(Query("SELECT host FROM starts"), ElementsAre("www.new.com"));
}

TEST_F(CrawlAgainTest, AStartThatRedirectsNoMoreComesBack) {
  Page("https://firma.de/", WebRedirect("https://www.group.com/"));
  Page("https://www.group.com/", "g@group.com");
  Crawl({"firma.de"});
  Page("https://firma.de/", "f@firma.de <a href=/a>a</a>");
  Page("https://firma.de/a", "a@firma.de");
  options_.again = true;
  Crawl({"firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("g@group.com", "f@firma.de", "a@firma.de"));
  EXPECT_THAT(Query("SELECT host FROM starts"), ElementsAre("firma.de"));
}

TEST_F(CrawlAgainTest, OtherRulesBringPagesBackThatRobotsTxtForbade) {
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /x\n");
  Page("https://www.firma.de/", "<a href=/x>x</a>");
  Page("https://www.firma.de/x", "x@firma.de");
  Crawl({"www.firma.de"});
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /y\n");
  clock_.utc_seconds += 25 * 60 * 60;
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo) << "a finished collection does nothing";
  options_.again = true;
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("x@firma.de"));
}

TEST_F(CrawlAgainTest, RulesThatAreFetchedAnewInTheMiddleOfAVisitBringPagesBack) {
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /x\n");
  Page("https://www.firma.de/", "<a href=/x>x</a><a href=/z>z</a>");
  Page("https://www.firma.de/x", "x@firma.de");
  Page("https://www.firma.de/z", "z");
  options_.pages = 1;
  Crawl({"www.firma.de"});
  options_.pages.reset();
  // The page x is judged by the old rules, z is left.
  clock_.utc_seconds += 25 * 60 * 60;
  Robots("https://www.firma.de", "");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("x@firma.de"));
}

TEST_F(CrawlAgainTest, AStartThatRobotsTxtForbidsIsToldByEveryRun) {
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /\n");
  Crawl({"www.firma.de"});
  EXPECT_EQ(view_.notices.size(), 1u);
  const std::size_t asked = client_.sent().size();
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo);
  EXPECT_THAT(view_.notices, ElementsAre(HasSubstr("Disallow: /"), HasSubstr("Disallow: /")));
  EXPECT_EQ(client_.sent().size(), asked) << "the rules are known";
}

TEST_F(CrawlAgainTest, APageThatIsFoundNearerCarriesItsLinksNearer) {
  options_.depth = 2;
  Page("https://www.firma.de/", "<a href=/1>1</a>");
  Page("https://www.firma.de/1", "<a href=/2>2</a><a href=/other>o</a>");
  Page("https://www.firma.de/2", "<a href=/3>3</a>");
  Page("https://www.firma.de/other", "Others <a href=/3>3</a>");
  Page("https://www.firma.de/3", "three@firma.de <a href=/4>4</a>");
  Page("https://www.firma.de/4", "four@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  EXPECT_THAT(Query("SELECT url FROM pages WHERE reason = 'depth'"), ElementsAre("https://www.firma.de/3"));
  // The link from "other" was not the first one to the third page.
  Crawl({"www.firma.de/other"});
  EXPECT_THAT(view_.addresses, ElementsAre("three@firma.de", "four@firma.de"));
  EXPECT_EQ(Count("https://www.firma.de/other"), 1) << "what was read is not fetched again";
  EXPECT_THAT(Query("SELECT depth FROM pages ORDER BY id"), ElementsAre("0", "1", "2", "0", "1", "2"));
}

TEST_F(CrawlAgainTest, ARedirectCarriesWhatItLeadsToNearer) {
  options_.depth = 1;
  Page("https://www.firma.de/", "<a href=/old>o</a>");
  Page("https://www.firma.de/old", WebRedirect("/new"));
  Page("https://www.firma.de/new", "<a href=/deep>d</a>");
  Page("https://www.firma.de/deep", "deep@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  Crawl({"www.firma.de/old"});
  EXPECT_THAT(view_.addresses, ElementsAre("deep@firma.de"));
  EXPECT_EQ(Count("https://www.firma.de/new"), 1);
}

TEST_F(CrawlAgainTest, APageUnderWayThatIsFoundNearerHasNearerLinks) {
  options_.depth = 2;
  Page("https://a.de/", "<a href=/1>1</a>");
  Page("https://a.de/1", "<a href=https://slow.a.de/>s</a>");
  Page("https://slow.a.de/", {.body = "<a href=/x>x</a>", .delay = seconds(60)});
  Page("https://slow.a.de/x", "x@a.de");
  Page("https://b.a.de/", {.body = "<a href=https://slow.a.de/>s</a>", .delay = seconds(20)});
  Crawl({"a.de", "b.a.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("x@a.de"));
}

TEST_F(CrawlAgainTest, PagesAreFetchedWholeWhenOtherThingsAreAskedFor) {
  const auto serve = [this](const std::string& body) {
    Page("https://www.firma.de/", {.fields = {{"ETag", "\"1\""}, {"Content-Type", "text/html"}}, .body = body});
  };
  serve("info [at] firma [dot] de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  options_.again = true;
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "\"1\"");
  options_.decode_protected = true;
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "");
  EXPECT_THAT(view_.addresses, ElementsAre("info@firma.de"));
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "\"1\"");
  options_.filters = "remove info\n";
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "");
  options_.obey_robots = false;
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "");
}

TEST_F(CrawlAgainTest, ATypedStartMayBePrivateWhereverItWasFoundBefore) {
  options_.scope = CrawlScope::kAnywhere;
  options_.pages = 1;
  Page("https://www.firma.de/", "<a href=http://10.0.0.1/>a</a>");
  Page("http://10.0.0.1/", ScriptedWebAnswer{.body = "a@firma.de", .ip = "10.0.0.1"});
  Crawl({"www.firma.de"});
  EXPECT_EQ(left_, 1);
  options_.pages.reset();
  Crawl({"http://10.0.0.1/"});
  EXPECT_TRUE(client_.sent().back().request.private_addresses);
}

TEST_F(CrawlAgainTest, APageThatFailsForNowKeepsItsTitleAndItsValidators) {
  Page("https://www.firma.de/",
       {.fields = {{"ETag", "\"1\""}, {"Content-Type", "text/html"}}, .body = "<title>Home</title>a@firma.de"});
  Crawl({"www.firma.de"});
  options_.again = true;
  Page("https://www.firma.de/", {.status = 500});
  Crawl({"www.firma.de"});
  EXPECT_THAT(Query("SELECT title || ' ' || etag || ' ' || state FROM pages"), ElementsAre("Home \"1\" failed"));
  Page("https://www.firma.de/", {.status = 304});
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "\"1\"");
  EXPECT_THAT(Query("SELECT state FROM pages"), ElementsAre("read"));
  EXPECT_THAT(Query("SELECT gone FROM sightings"), ElementsAre("0"));
}

TEST_F(CrawlAgainTest, APageThatIsGoneIsFetchedWholeWhenItComesBack) {
  Page("https://www.firma.de/",
       {.fields = {{"ETag", "\"1\""}, {"Content-Type", "text/html"}}, .body = "<title>Home</title>a@firma.de"});
  Crawl({"www.firma.de"});
  options_.again = true;
  Page("https://www.firma.de/", {.status = 404});
  Crawl({"www.firma.de"});
  EXPECT_THAT(Query("SELECT gone FROM sightings"), ElementsAre("1"));
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_EQ(client_.sent().back().request.if_none_match, "");
  EXPECT_THAT(Query("SELECT gone FROM sightings"), ElementsAre("0"));
}

TEST_F(CrawlAgainTest, PagesThatWaitToBeVisitedAnewCountAsRead) {
  Page("https://www.firma.de/", "<a href=/1>1</a>");
  Page("https://www.firma.de/1", "one");
  Crawl({"www.firma.de"});
  options_.again = true;
  options_.minutes = 0.0001;
  Crawl({"www.firma.de"});
  EXPECT_EQ(left_, 1);
  EXPECT_EQ(CollectionReader::Open(path_).value()->Figures().value().pages, 2);
}

TEST_F(CrawlAgainTest, APageThatIsRefusedAsTooFarForAnotherOptionIsJudgedAnewByItsStart) {
  options_.depth = 0;
  Page("https://www.firma.de/", "<a href=/x/x/x/x>trap</a><a href=/1>1</a>");
  Page("https://www.firma.de/x/x/x/x", "x@firma.de");
  Page("https://www.firma.de/1", "one@firma.de");
  Crawl({"www.firma.de"});
  Crawl({"www.firma.de/x/x/x/x", "www.firma.de/1"});
  EXPECT_THAT(view_.addresses, testing::UnorderedElementsAre("x@firma.de", "one@firma.de"));
}

TEST_F(CrawlAgainTest, TwoStartsOnOnePageMoveTogether) {
  Page("https://firma.de/", WebRedirect("https://www.group.com/"));
  Page("https://www.group.com/", "g@group.com");
  Crawl({"firma.de", "http://firma.de/"});
  EXPECT_THAT(Query("SELECT site FROM starts"), ElementsAre("group.com", "group.com"));
}

TEST_F(CrawlAgainTest, AStartThatMovesLeavesItsOldScope) {
  options_.scope = CrawlScope::kHost;
  Page("https://firma.de/", WebRedirect("https://www.firma.de/"));
  Page("https://www.firma.de/", "<a href=https://firma.de/x>x</a><a href=/y>y</a>");
  Page("https://www.firma.de/y", "y@firma.de");
  Page("https://firma.de/x", "x@firma.de");
  Crawl({"firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("y@firma.de"));
  EXPECT_THAT(Query("SELECT url FROM pages WHERE reason = 'scope'"), ElementsAre("https://firma.de/x"));
}

TEST_F(CrawlAgainTest, APageBehindARedirectIsInScopeOnlyWhereItsHostIs) {
  options_.pages = 1;
  Page("https://www.firma.de/", "<a href=/r>r</a>");
  Page("https://www.firma.de/r", WebRedirect("https://shop.firma.de/"));
  Page("https://shop.firma.de/", "shop@firma.de");
  options_.pages = 1;
  Crawl({"www.firma.de"});
  // The redirect is followed, its target is left.
  options_.pages.reset();
  client_.ServeOthers([](const WebRequest&) -> std::optional<ScriptedWebAnswer> { return std::nullopt; });
  options_.minutes = 1;
  Page("https://shop.firma.de/robots.txt", {.status = 404, .delay = hours(1)});
  Crawl({"www.firma.de"});
  options_.scope = CrawlScope::kHost;
  options_.minutes.reset();
  Page("https://shop.firma.de/robots.txt", {.status = 404});
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  EXPECT_THAT(Query("SELECT reason FROM pages WHERE url LIKE '%shop%'"), ElementsAre("scope"));
}

TEST_F(CrawlAgainTest, NoHostIsAskedForTheRulesOfPagesThatAreOutOfScopeAnyway) {
  Page("https://www.firma.de/", "<a href=https://other.de/>o</a><a href=/1>1</a>");
  Crawl({"www.firma.de"});
  options_.scope = CrawlScope::kHost;
  options_.depth = 4;
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo);
  EXPECT_EQ(Count("https://other.de/robots.txt"), 0);
  EXPECT_THAT(Query("SELECT reason FROM pages WHERE url LIKE '%other%'"), ElementsAre("scope"));
}

TEST_F(CrawlAgainTest, AnAddressIsListedWhenTheFileHasIt) {
  Page("https://www.firma.de/", "a@firma.de <a href=/b>b</a>");
  Page("https://www.firma.de/b", "b@firma.de");
  std::vector<std::string> kept;
  view_.on_address = [&] { kept.push_back(Query("SELECT count(*) FROM addresses").front()); };
  Crawl({"www.firma.de"});
  EXPECT_THAT(kept, ElementsAre("1", "2"));
}

TEST_F(CrawlAgainTest, WhatHasArrivedIsKeptBeforeTheNextPageIsAskedFor) {
  Page("https://www.firma.de/", "a@firma.de <a href=/1>1</a>");
  std::vector<std::string> states;
  client_.ServeOthers([&](const WebRequest& request) {
    // What another program sees is what a kill would leave.
    if (request.url.ends_with("/1")) states = Query("SELECT state FROM pages ORDER BY id");
    return ScriptedWebAnswer{.status = 404};
  });
  Crawl({"www.firma.de"});
  EXPECT_THAT(states, ElementsAre("read", "waiting"));
}

}  // namespace
}  // namespace quenlar
