// A crawl of links that another collection has handed out.
#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class HandedLinksTest : public CrawlTest {
 protected:
  Crawler::Outcome CrawlLinks(std::vector<HandedLink> links) {
    options_.links = std::move(links);
    return Crawl({});
  }
  // What would be handed on.
  [[nodiscard]] std::vector<std::string> OtherSites() const {
    return Query("SELECT url FROM pages WHERE state = 'refused' AND reason = 'scope' ORDER BY url");
  }
};

TEST_F(HandedLinksTest, TheirSitesAreVisitedAndOtherSitesAreKept) {
  Page("https://www.firma.de/in",
       "in@firma.de <a href=/more>m</a> <a href=https://shop.firma.de/>s</a>"
       "<a href=https://www.laden.de/x>l</a>");
  Page("https://www.firma.de/more", "more@firma.de");
  Page("https://shop.firma.de/", "shop@firma.de");
  const auto outcome = CrawlLinks({{"https://www.firma.de/in"}});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_THAT(view_.addresses, UnorderedElementsAre("in@firma.de", "more@firma.de", "shop@firma.de"));
  EXPECT_THAT(OtherSites(), ElementsAre("https://www.laden.de/x"));
}

TEST_F(HandedLinksTest, ARedirectToAnotherSiteIsKeptAndNotFollowed) {
  Page("https://www.firma.de/", WebRedirect("https://www.laden.de/start"));
  CrawlLinks({{"https://www.firma.de/"}});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/"));
  EXPECT_THAT(OtherSites(), ElementsAre("https://www.laden.de/start"));
  EXPECT_THAT(Query("SELECT t.url FROM pages p JOIN pages t ON t.id = p.moved_to WHERE p.state = 'moved'"),
              ElementsAre("https://www.laden.de/start"));
}

TEST_F(HandedLinksTest, ALaterRunKnowsWhatWasRead) {
  Page("https://www.firma.de/", "<a href=https://www.laden.de/>l</a>");
  Page("https://www.firma.de/deep", "deep@firma.de <a href=/>home</a>");
  CrawlLinks({{"https://www.firma.de/"}});
  CrawlLinks({{"https://www.firma.de/deep"}, {"https://www.firma.de/"}});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/", "https://www.firma.de/deep"));
}

TEST_F(HandedLinksTest, ClicksAreCountedFromWhereTheLinkStands) {
  Page("https://www.firma.de/3", "<a href=/4>4</a>");
  Page("https://www.firma.de/4", "<a href=/5>5</a>");
  options_.depth = 4;
  CrawlLinks({{"https://www.firma.de/3", 3}, {"https://www.firma.de/9", 9}});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/3", "https://www.firma.de/4"));
  EXPECT_THAT(Query("SELECT url FROM pages WHERE state = 'refused' AND reason = 'depth' ORDER BY url"),
              ElementsAre("https://www.firma.de/5", "https://www.firma.de/9"));
}

TEST_F(HandedLinksTest, OnlyALinkOfAPrivatePlaceMayBePrivate) {
  CrawlLinks({{"https://www.firma.de/"}, {"https://www.laden.de/", 0, true}});
  for (const auto& exchange : client_.sent()) {
    const bool laden = exchange.request.url.starts_with("https://www.laden.de/");
    EXPECT_EQ(exchange.request.private_addresses, laden) << exchange.request.url;
  }
}

TEST_F(HandedLinksTest, HttpIsTriedWhereItMayBe) {
  client_.ServeOthers([](const WebRequest& request) {
    return request.url.starts_with("https:") ? WebFails(WebFailure::kNoConnection) : ScriptedWebAnswer{.status = 404};
  });
  Page("http://www.firma.de/", "a@firma.de");
  Page("http://www.laden.de/", "b@laden.de");
  HandedLink typed{"https://www.firma.de/"};
  typed.https_first = true;
  CrawlLinks({typed, {"https://www.laden.de/"}});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(HandedLinksTest, SitesThatDoNotAnswerAreNoFailureOfTheRun) {
  client_.ServeOthers([](const WebRequest&) { return WebFails(WebFailure::kNoName); });
  EXPECT_EQ(CrawlLinks({{"https://www.firma.de/"}}).end, CrawlEnd::kFinished);
  EXPECT_THAT(view_.addresses, IsEmpty());
}

TEST_F(HandedLinksTest, WithoutLinksThereIsNothingToDo) { EXPECT_EQ(CrawlLinks({}).end, CrawlEnd::kNothingToDo); }

TEST_F(HandedLinksTest, WhatWaitsOnOtherSitesGoesOnWaiting) {
  Page("https://www.laden.de/robots.txt", WebFails(WebFailure::kNoConnection));
  Page("https://www.firma.de/", "a@firma.de");
  CrawlLinks({{"https://www.laden.de/"}});
  client_.ServeOthers([](const WebRequest&) { return ScriptedWebAnswer{.status = 404}; });
  Robots("https://www.laden.de", "");
  Page("https://www.laden.de/", "b@laden.de");
  CrawlLinks({{"https://www.firma.de/"}});
  EXPECT_EQ(Count("https://www.laden.de/"), 0);
  EXPECT_THAT(Query("SELECT url FROM pages WHERE state = 'waiting'"), ElementsAre("https://www.laden.de/"));
  CrawlLinks({{"https://www.laden.de/other"}});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de", "b@laden.de"));
}

TEST_F(HandedLinksTest, WithoutLinksTheStartsOfEarlierRunsAreNotVisited) {
  options_.pages = 1;
  Page("https://www.firma.de/", "<a href=/1>1</a>");
  Crawl({"www.firma.de"});
  options_.pages.reset();
  EXPECT_EQ(CrawlLinks({}).end, CrawlEnd::kNothingToDo);
  EXPECT_EQ(Count("https://www.firma.de/1"), 0);
  EXPECT_EQ(left_, 1);
}

}  // namespace
}  // namespace quenlar
