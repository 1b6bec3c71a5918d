// What is a page to a crawl, and what its words for robots and its links lead to.
#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

using CrawlRulesTest = CrawlTest;

TEST_F(CrawlRulesTest, EveryStatusFrom200To299BringsAPage) {
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a><a href=/3>3</a><a href=/4>4</a>");
  int number = 0;
  for (const int status : {203, 299, 404, 500}) {
    const std::string name = std::to_string(++number);
    Page("https://www.firma.de/" + name, {.status = status, .body = "from" + std::to_string(status) + "@firma.de"});
  }
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("from203@firma.de", "from299@firma.de"));
  EXPECT_EQ(figures_.failed, 2u);
}

TEST_F(CrawlRulesTest, PagesAreHtmlXhtmlTextOrWithoutAType) {
  std::string links;
  int number = 0;
  for (const char* const type : {"TEXT/HTML ; charset=utf-8", "application/xhtml+xml", "text/plain", "", "text/css",
                                 "application/json", "image/svg+xml", "text/html-sandboxed"}) {
    const std::string name = std::to_string(++number);
    links += "<a href=/" + name + ">x</a>";
    ScriptedWebAnswer answer{.fields = {}, .body = "page" + name + "@firma.de"};
    if (*type != '\0') answer.fields = {{"Content-Type", type}};
    Page("https://www.firma.de/" + name, answer);
  }
  Page("https://www.firma.de/", links);
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("page1@firma.de", "page2@firma.de", "page3@firma.de", "page4@firma.de"));
  EXPECT_EQ(figures_.failed, 0u);
}

TEST_F(CrawlRulesTest, AtMostEightMebibytesOfAPageAreRead) {
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  ASSERT_EQ(client_.sent().back().request.url, "https://www.firma.de/");
  EXPECT_EQ(client_.sent().back().request.body_limit, std::size_t{8} << 20);
}

// One byte more, which shows that the last line may have been cut.
TEST_F(CrawlRulesTest, AtMostHalfAMebibyteOfARobotsTxtIsRead) {
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  ASSERT_EQ(client_.sent().front().request.url, "https://www.firma.de/robots.txt");
  EXPECT_EQ(client_.sent().front().request.body_limit, (std::size_t{512} << 10) + 1);
}

TEST_F(CrawlRulesTest, EveryHopOfARedirectObeysRobotsAndKeepsThePause) {
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /closed\n");
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a>");
  Page("https://www.firma.de/1", WebRedirect("/open"));
  Page("https://www.firma.de/open", "open@firma.de");
  Page("https://www.firma.de/2", WebRedirect("/closed"));
  Page("https://www.firma.de/closed", "closed@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("open@firma.de"));
  EXPECT_THAT(Visited(), Not(Contains("https://www.firma.de/closed")));
  EXPECT_THAT(Query("SELECT url FROM pages WHERE reason = 'robots'"), ElementsAre("https://www.firma.de/closed"));
  EXPECT_GE(At("https://www.firma.de/open") - At("https://www.firma.de/1"), options_.delay);
}

TEST_F(CrawlRulesTest, LinksThatAskNotToBeFollowedAreFollowedWithIgnoreAndDownloadsNever) {
  Page("https://www.firma.de/",
       "<a rel=nofollow href=/n>n</a><a rel='x UGC' href=/u>u</a><a rel=sponsored href=/s>s</a><a download "
       "href=/d>d</a>");
  Crawl({"www.firma.de"});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/"));
  options_.again = true;
  options_.obey_robots = false;
  Crawl({"www.firma.de"});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/", "https://www.firma.de/", "https://www.firma.de/n",
                                     "https://www.firma.de/u", "https://www.firma.de/s"));
}

TEST_F(CrawlRulesTest, WordsForRobotsHoldForWhomTheyName) {
  const auto tagged = [](const char* tag, const char* body) {
    return ScriptedWebAnswer{.fields = {{"Content-Type", "text/html"}, {"X-Robots-Tag", tag}}, .body = body};
  };
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a><a href=/3>3</a><a href=/4>4</a><a href=/5>5</a>");
  Page("https://www.firma.de/1", tagged("otherbot: none", "other@firma.de <a href=/1a>x</a>"));
  Page("https://www.firma.de/2", tagged("quenlar: noindex", "header@firma.de <a href=/2a>x</a>"));
  Page("https://www.firma.de/3", "<meta name=Quenlar content=noindex>meta@firma.de <a href=/3a>x</a>");
  Page("https://www.firma.de/4", "<meta name=otherbot content=noindex>index@firma.de");
  Page("https://www.firma.de/5", "<meta name=robots content='NONE'>none@firma.de <a href=/5a>x</a>");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("other@firma.de", "index@firma.de"));
  EXPECT_THAT(Query("SELECT url FROM pages WHERE depth = 2"),
              UnorderedElementsAre("https://www.firma.de/1a", "https://www.firma.de/2a", "https://www.firma.de/3a"));
}

TEST_F(CrawlRulesTest, ARobotsTxtThatIsNotGivenAllowsEverything) {
  for (const int status : {400, 401, 403, 404, 410, 429, 451}) {
    SCOPED_TRACE(status);
    const std::string origin = "https://www.site" + std::to_string(status) + ".de";
    Page(origin + "/robots.txt", {.status = status, .body = "User-agent: *\nDisallow: /\n"});
    Page(origin + "/", "a" + std::to_string(status) + "@firma.de");
    view_.addresses.clear();
    Crawl({origin + "/"});
    EXPECT_THAT(view_.addresses, ElementsAre("a" + std::to_string(status) + "@firma.de"));
  }
}

TEST_F(CrawlRulesTest, AHostIsGivenUpForOneRunAlone) {
  const auto serve = [this](int status) {
    for (int i = 0; i < 8; ++i) {
      const std::string number = std::to_string(i);
      Page("https://www.firma.de/" + number, {.status = status, .body = "a" + number + "@firma.de"});
    }
  };
  std::string links;
  for (int i = 0; i < 8; ++i) links += "<a href=/" + std::to_string(i) + ">x</a>";
  Page("https://www.firma.de/", links);
  serve(500);
  Crawl({"www.firma.de"});
  EXPECT_EQ(left_, 3);
  serve(200);
  Crawl({"www.firma.de"});
  EXPECT_EQ(left_, 0);
  EXPECT_THAT(view_.addresses, ElementsAre("a5@firma.de", "a6@firma.de", "a7@firma.de"));
}

TEST_F(CrawlRulesTest, IgnoreTurnsTheWordsForRobotsOff) {
  Page("https://www.firma.de/", "<meta name=robots content=none>a@firma.de <a href=/1>1</a>");
  Page("https://www.firma.de/1", "b@firma.de");
  options_.obey_robots = false;
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de", "b@firma.de"));
}

TEST_F(CrawlRulesTest, FramesRefreshesAndCanonicalAddressesCostAClick) {
  Page("https://www.firma.de/",
       "<link rel=canonical href=/c><meta http-equiv=refresh content='0;url=/r'><iframe src=/i></iframe><map><area "
       "href=/a></map>");
  options_.depth = 0;
  Crawl({"www.firma.de"});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/"));
  EXPECT_THAT(Query("SELECT substr(url, 21) || ' ' || depth FROM pages WHERE reason = 'depth' ORDER BY url"),
              ElementsAre("/a 1", "/c 1", "/i 1", "/r 1"));
}

TEST_F(CrawlRulesTest, ASameBodyOnAnotherHostIsAnotherPage) {
  const std::string body = "a@firma.de <a href=/1>1</a>";
  Page("https://www.firma.de/", body);
  Page("https://shop.firma.de/", body);
  Crawl({"www.firma.de", "shop.firma.de"});
  EXPECT_THAT(Visited(), Contains("https://www.firma.de/1"));
  EXPECT_THAT(Visited(), Contains("https://shop.firma.de/1"));
}

TEST_F(CrawlRulesTest, SchemeAndFragmentMakeNoOtherPage) {
  Page("https://www.firma.de/",
       "<a href=http://www.firma.de/x>1</a><a href=/x>2</a><a href=/x#y>3</a><a href=/logo.SVG?a=1>4</a><a "
       "href=/z?a=b.svg>5</a>");
  Crawl({"www.firma.de"});
  EXPECT_THAT(Visited(),
              UnorderedElementsAre("https://www.firma.de/", "http://www.firma.de/x", "https://www.firma.de/z?a=b.svg"))
      << "by the scheme of the first link";
}

TEST_F(CrawlRulesTest, TheBudgetOfAddressesIsTheCollections) {
  Page("https://www.firma.de/", "a@firma.de b@firma.de <a href=/1>1</a>");
  Page("https://www.firma.de/1", "c@firma.de <a href=/2>2</a>");
  options_.addresses = 2;
  Crawl({"www.firma.de"});
  Crawl({"www.firma.de"});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/")) << "the next run has enough at once";
  options_.addresses = 3;
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kAddresses);
  EXPECT_EQ(figures_.fresh, 1u);
  EXPECT_EQ(left_, 1);
}

TEST_F(CrawlRulesTest, ProtectedAddressesAreCountedAndListedWhenAskedFor) {
  Page("https://www.firma.de/", "anna [at] firma [dot] de, info&#64;firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("info@firma.de"));
  EXPECT_EQ(figures_.protected_count, 1u);
  options_.again = true;
  options_.decode_protected = true;
  view_.rows.clear();
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.rows, ElementsAre("anna@firma.de https://www.firma.de/  protected"));
}

TEST_F(CrawlRulesTest, WhatOnlyLooksLikeAnAddressIsNotListed) {
  Page("https://www.firma.de/", "<img src=logo@2x.png> git@firma.de:x/y.git @anna@firma.de user@example.com");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
}

TEST_F(CrawlRulesTest, TheFirstContentTypeThatSaysSomethingCounts) {
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a>");
  Page("https://www.firma.de/1",
       {.fields = {{"Content-Type", ""}, {"content-type", "image/png"}}, .body = "one@firma.de"});
  Page("https://www.firma.de/2",
       {.fields = {{"Content-Type", ""}, {"Content-Type", "text/plain"}, {"Content-Type", "image/png"}},
        .body = "<b>two@firma.de</b>"});
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("two@firma.de"));
  EXPECT_THAT(Query("SELECT type FROM pages ORDER BY id"), ElementsAre("text/html", "image/png", "text/plain"));
}

TEST_F(CrawlRulesTest, WhatIsDroppedCountsOnceAPage) {
  Page("https://www.firma.de/",
       "<a href=mailto:f@firma.de>f@firma.de</a> F@firma.de <a href=mailto:s@firma.de>s@firma.de</a> <!-- S@firma.de "
       "-->");
  filter_.dropped = {"f@firma.de", "F@firma.de"};
  suppression_.dropped = {"s@firma.de", "S@firma.de"};
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  EXPECT_EQ(figures_.filtered, 1u);
  EXPECT_EQ(figures_.suppressed, 1u);
  EXPECT_THAT(Query("SELECT filtered FROM pages"), ElementsAre("1"));
}

TEST_F(CrawlRulesTest, WhatPagesWithheldIsTakenWhenRobotsAreIgnoredLater) {
  options_.obey_robots = true;
  Page("https://www.firma.de/", "<a href=/list>l</a><a href=/follow>f</a>");
  Page("https://www.firma.de/list", "<meta name=robots content=noindex>list@firma.de");
  Page("https://www.firma.de/follow", "<meta name=robots content=nofollow><a href=/deep>d</a>");
  Page("https://www.firma.de/deep", "deep@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, IsEmpty());
  options_.obey_robots = false;
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, testing::UnorderedElementsAre("list@firma.de", "deep@firma.de"));
  EXPECT_EQ(Count("https://www.firma.de/"), 1);
}

}  // namespace
}  // namespace quenlar
