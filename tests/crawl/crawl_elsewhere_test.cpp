// What later runs do with pages that have gone elsewhere, and with pages whose address was erased.
#include "collection/erase_addresses.h"
#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;

class CrawlElsewhereTest : public CrawlTest {
 protected:
  // As `quenlar erase` does between two runs.
  void Erase(const std::string& address) {
    const auto erased = EraseAddresses(path_, [&](std::string_view other) { return other != address; });
    ASSERT_TRUE(erased.ok()) << erased.status().message();
  }
  void CrawlAgain(const std::vector<std::string>& starts) {
    options_.again = true;
    Crawl(starts);
  }
};

TEST_F(CrawlElsewhereTest, NobodyIsAskedForThePlaceOfAnErasedPage) {
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /no\n");
  Page("https://www.firma.de/", "<a href='/?by=anna@firma.de'>a</a><a href='/no?by=anna@firma.de'>n</a>");
  Page("https://www.firma.de/?by=anna@firma.de", "bert@firma.de");
  Crawl({"www.firma.de"});
  Erase("anna@firma.de");
  options_.obey_robots = false;
  CrawlAgain({"www.firma.de"});
  EXPECT_THAT(client_.urls(), Not(Contains(EndsWith("(erased)"))));
  EXPECT_THAT(Query("SELECT a.address FROM sightings s JOIN addresses a ON a.id = s.address WHERE s.gone = 1"),
              IsEmpty());
}

TEST_F(CrawlElsewhereTest, AStartThatLedToAnErasedPageIsAskedForWhereItWasTyped) {
  Page("https://firma.de/", WebRedirect("https://www.group.com/?by=anna@firma.de"));
  Page("https://www.group.com/?by=anna@firma.de", "bert@firma.de <a href=/more>m</a>");
  options_.pages = 1;
  Crawl({"firma.de"});
  Erase("anna@firma.de");
  options_.pages.reset();
  Page("https://www.group.com/more", "more@firma.de");
  Crawl({"firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("bert@firma.de", "more@firma.de")) << "its scope is still open";
  EXPECT_EQ(Crawl({"firma.de"}).end, CrawlEnd::kNothingToDo);
  Page("https://firma.de/", WebRedirect("https://www.group.com/new"));
  Page("https://www.group.com/new", "new@firma.de");
  CrawlAgain({"firma.de"});
  EXPECT_THAT(view_.addresses, Contains("new@firma.de"));
  EXPECT_THAT(client_.urls(), Not(Contains(EndsWith("(erased)"))));
  EXPECT_EQ(Crawl({"firma.de"}).end, CrawlEnd::kFinished);
  EXPECT_THAT(Query("SELECT host FROM starts"), ElementsAre("www.group.com"));
}

TEST_F(CrawlElsewhereTest, APageThatRedirectsOutOfScopeIsAskedForOnce) {
  Page("https://www.firma.de/", "<a href=/out>o</a>");
  Page("https://www.firma.de/out", WebRedirect("https://other.de/in"));
  Page("https://other.de/in", "in@other.de");
  Crawl({"www.firma.de"});
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo);
  EXPECT_EQ(Count("https://www.firma.de/out"), 1);
  EXPECT_THAT(Query("SELECT url FROM pages WHERE state = 'refused' AND reason = 'scope'"),
              ElementsAre("https://other.de/in"));
  Crawl({"www.firma.de", "https://other.de/"});
  EXPECT_THAT(view_.addresses, ElementsAre("in@other.de")) << "its target has come into scope";
  CrawlAgain({"www.firma.de"});
  EXPECT_EQ(Count("https://www.firma.de/out"), 2);
}

TEST_F(CrawlElsewhereTest, APageThatIsAPageNoMoreLosesItsAddresses) {
  suppression_.dropped = {"anna@firma.de"};
  const std::map<std::string, ScriptedWebAnswer> later = {
      {"/1", WebRedirect("https://other.de/")},
      {"/2", WebRedirect("/?by=anna@firma.de")},
      {"/3", WebRedirect("/" + std::string(3000, 'x'))},
      {"/4", {.fields = {{"Content-Type", "application/pdf"}}, .body = "%PDF"}},
      {"/5", WebRedirect("/5")},
      {"/6", {.status = 403}},
      {"/7", WebFails(WebFailure::kBroken, "the connection was lost")},
  };
  std::string links;
  for (const auto& [path, answer] : later) {
    links += "<a href=" + path + ">p</a>";
    Page("https://www.firma.de" + path, "p" + path.substr(1) + "@firma.de");
  }
  Page("https://www.firma.de/", links);
  Crawl({"www.firma.de"});
  for (const auto& [path, answer] : later) Page("https://www.firma.de" + path, answer);
  CrawlAgain({"www.firma.de"});
  EXPECT_THAT(Query("SELECT a.address FROM addresses a JOIN sightings s ON s.address = a.id WHERE gone = 0"),
              ElementsAre("p6@firma.de", "p7@firma.de"))
      << "those have only failed for now";
}

TEST_F(CrawlElsewhereTest, WhatWasErasedComesBackWithAPageThatHasNotChanged) {
  client_.ServeOthers([](const WebRequest& request) -> std::optional<ScriptedWebAnswer> {
    if (request.url != "https://www.firma.de/") return ScriptedWebAnswer{.status = 404};
    if (!request.if_none_match.empty()) return ScriptedWebAnswer{.status = 304};
    return ScriptedWebAnswer{.fields = {{"ETag", "\"1\""}, {"Content-Type", "text/html"}},
                             .body = "<title>a@firma.de</title>a@firma.de"};
  });
  Crawl({"www.firma.de"});
  Erase("a@firma.de");
  EXPECT_THAT(Query("SELECT address FROM addresses"), IsEmpty());
  CrawlAgain({"www.firma.de"});
  EXPECT_THAT(Query("SELECT address FROM addresses"), ElementsAre("a@firma.de"));
  EXPECT_THAT(Query("SELECT title FROM pages"), ElementsAre("a@firma.de"));
}

TEST_F(CrawlElsewhereTest, ARedirectThatNamesASuppressedAddressIsAskedForAnewWithAgain) {
  suppression_.dropped = {"b@firma.de"};
  Page("https://www.firma.de/", "<a href=/mail>mail</a><a href=/long>l</a>");
  Page("https://www.firma.de/mail", WebRedirect("/write?to=b@firma.de"));
  Page("https://www.firma.de/long", WebRedirect("/" + std::string(3000, 'x')));
  Page("https://www.firma.de/write?to=b@firma.de", "desk@firma.de");
  Crawl({"www.firma.de"});
  suppression_.dropped.clear();
  EXPECT_EQ(Crawl({"www.firma.de"}).end, CrawlEnd::kNothingToDo);
  CrawlAgain({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("desk@firma.de"));
  EXPECT_EQ(Count("https://www.firma.de/long"), 2);
}

}  // namespace
}  // namespace quenlar
