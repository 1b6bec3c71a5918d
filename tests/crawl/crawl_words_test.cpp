// What a crawl counts and says.
#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using CrawlWordsTest = CrawlTest;

TEST_F(CrawlWordsTest, ASchemeMayBeTypedInCapitals) {
  Page("http://www.firma.de/", "a@firma.de");
  Crawl({"HTTP://www.Firma.de"});
  EXPECT_THAT(view_.rows, ElementsAre("a@firma.de http://www.firma.de/  text"));
}

TEST_F(CrawlWordsTest, AStartOfAnotherSchemeSaysWhatCanBeVisited) {
  const auto outcome = Crawl({"ftp://ftp.firma.de/pub"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFailed);
  EXPECT_THAT(outcome.messages, ElementsAre("ftp://ftp.firma.de/pub: only http and https can be visited"));
  EXPECT_THAT(client_.sent(), IsEmpty());
}

TEST_F(CrawlWordsTest, AStartMayHoldAnotherAddressInItsQuery) {
  Page("https://www.firma.de/?u=http://other.de/", "a@firma.de");
  Crawl({"www.firma.de/?u=http://other.de/"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST(SiteText, HasASchemeOrADotAndNoBlank) {
  for (const char* const text : {"firma.de", "HTTP://localhost", "https://a.de/x y", "ftp://server", "a.b/?x=://"}) {
    EXPECT_TRUE(IsSiteText(text)) << text;
  }
  for (const char* const text : {"cars", "red cars 2.0", "localhost:8080", "://", "what is this://"}) {
    EXPECT_FALSE(IsSiteText(text)) << text;
  }
}

TEST_F(CrawlWordsTest, WhatIsNotAPageHasNotFailed) {
  Page("https://www.firma.de/", {.fields = {{"Content-Type", "application/pdf"}}, .body = "a@firma.de"});
  Crawl({"www.firma.de"});
  EXPECT_EQ(figures_.failed, 0u);
  EXPECT_EQ(figures_.pages, 0u);
}

TEST_F(CrawlWordsTest, RedirectsInACircleFailOnce) {
  Page("https://www.firma.de/", "<a href=/a>a</a>");
  Page("https://www.firma.de/a", WebRedirect("/b"));
  Page("https://www.firma.de/b", WebRedirect("/a"));
  Crawl({"www.firma.de"});
  EXPECT_EQ(figures_.failed, 1u);
  EXPECT_THAT(Query("SELECT state FROM pages ORDER BY id"), ElementsAre("read", "moved", "failed"));
  options_.again = true;
  Crawl({"www.firma.de"});
  EXPECT_EQ(figures_.failed, 1u) << "and in every later visit";
}

TEST_F(CrawlWordsTest, AFailedRunNamesEveryStartAndWhy) {
  Page("https://a.de/robots.txt", WebFails(WebFailure::kNoName, "no such name"));
  Page("https://b.de/robots.txt", WebRedirect("https://c.de/"));
  Page("https://b.de/robots.txt", {.status = 404});
  Page("https://b.de/", WebRedirect("https://c.de/"));
  Page("https://c.de/robots.txt", WebFails(WebFailure::kNoConnection, "nobody listens"));
  const auto outcome = Crawl({"a.de", "b.de"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFailed);
  EXPECT_THAT(outcome.messages, ElementsAre("a.de: no such name", "b.de: nobody listens"));
}

TEST_F(CrawlWordsTest, PagesBeyondTheBudgetOfAHostAreNamedAndThenThereIsNothingToDo) {
  options_.pages_per_host = 1;
  Page("https://www.firma.de/", "<a href=/1>1</a><a href=/2>2</a>");
  const auto outcome = Crawl({"www.firma.de"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_THAT(outcome.messages,
              ElementsAre("2 pages are left on https://www.firma.de: its budget of 1 page is used up"));
  const auto next = Crawl({"www.firma.de"});
  EXPECT_EQ(next.end, CrawlEnd::kNothingToDo);
  EXPECT_EQ(next.messages, outcome.messages);
}

TEST_F(CrawlWordsTest, NoHostIsNamedWhosePagesAreAllVisited) {
  Page("https://www.firma.de/", "<a href=/0>0</a><a href=/1>1</a><a href=/2>2</a><a href=/3>3</a><a href=/4>4</a>");
  for (int i = 0; i < 5; ++i) Page("https://www.firma.de/" + std::to_string(i), {.status = 500});
  const auto outcome = Crawl({"www.firma.de"});
  EXPECT_EQ(left_, 0);
  EXPECT_THAT(outcome.messages, IsEmpty());
}

TEST_F(CrawlWordsTest, AKeywordWithoutAServiceDoesNotKeepASiteFromBeingVisited) {
  Page("https://www.firma.de/", "a@firma.de");
  const auto outcome = Crawl({"www.firma.de", "red cars"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_TRUE(outcome.no_search_service);
  EXPECT_THAT(outcome.messages, Contains(AllOf(HasSubstr("red cars"), HasSubstr("--search URL"))));
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
  const auto next = Crawl({"www.firma.de", "red cars"});
  EXPECT_TRUE(next.no_search_service);
  EXPECT_THAT(next.messages, ElementsAre(HasSubstr("--search URL")));
}

TEST_F(CrawlWordsTest, TheRuleThatIsToldStandsAlsoInALineThatEndsAsOnOldMacs) {
  Robots("https://www.firma.de", "User-agent: *\rDisallow: /a\rDisallow: /b\r\nDisallow: /c\n");
  Page("https://www.firma.de/", "<a href=/b>b</a><a href=/c>c</a>");
  Crawl({"www.firma.de"});
  EXPECT_THAT(Query("SELECT line || ' ' || rule FROM pages WHERE state = 'refused' ORDER BY id"),
              ElementsAre("3 Disallow: /b", "4 Disallow: /c"));
}

}  // namespace
}  // namespace quenlar
