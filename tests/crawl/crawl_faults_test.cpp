// A crawl of a web that means no good: hosts that never answer, rules and searches without end, clocks that are set.
#include "crawl/crawl_world.h"
#include "support/rounds.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

class CrawlFaultsTest : public CrawlTest {
 protected:
  // A page that links to the start pages of so many hosts.
  void LinkToHosts(int hosts) {
    std::string links;
    for (int i = 0; i < hosts; ++i) links += "<a href=https://h" + std::to_string(i) + ".de/>x</a>";
    Page("https://www.firma.de/", "a@firma.de" + links);
  }
};

TEST_F(CrawlFaultsTest, TenThousandHostsThatTimeOutAreGivenUpAndTheRunEnds) {
  const int hosts = static_cast<int>(Rounds(10'000));
  LinkToHosts(hosts);
  Page("https://www.firma.de/robots.txt", ScriptedWebAnswer{.status = 404});
  client_.ServeOthers([](const WebRequest&) {
    ScriptedWebAnswer silence = WebFails(WebFailure::kTimeout, "no byte has come for 30 s");
    silence.delay = seconds(30);
    return silence;
  });
  options_.scope = CrawlScope::kAnywhere;
  const auto outcome = Crawl({"https://www.firma.de/"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_EQ(figures_.pages, 1u);
  EXPECT_EQ(left_, hosts);
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
  EXPECT_EQ(client_.under_way(), 0u);
  EXPECT_LE(client_.most_hosts_at_once(), options_.hosts);
}

TEST_F(CrawlFaultsTest, APageMayLinkToMoreHostsThanAnybodyVisits) {
  const int hosts = static_cast<int>(Rounds(30'000));
  LinkToHosts(hosts);
  options_.scope = CrawlScope::kAnywhere;
  options_.depth = 0;
  EXPECT_EQ(Crawl({"https://www.firma.de/"}).end, CrawlEnd::kFinished);
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/"));
  EXPECT_THAT(Query("SELECT count(*) FROM pages WHERE reason = 'depth'"), ElementsAre(std::to_string(hosts)));
}

TEST_F(CrawlFaultsTest, AClockThatIsSetWhileAHostIsParkedChangesNoPause) {
  for (const std::int64_t jump : {-3600, 24 * 3600}) {
    const std::string host = "https://h" + std::to_string(jump) + ".de/";
    int asked = 0;
    client_.ServeOthers([&](const WebRequest& request) -> std::optional<ScriptedWebAnswer> {
      if (request.url != host) return ScriptedWebAnswer{.status = 404, .ip = kPublicPlace};
      if (++asked > 1) return ScriptedWebAnswer{.body = "a@b.de", .ip = kPublicPlace};
      loop_.Schedule(seconds(1), [this, jump] { clock_.utc_seconds += jump; });
      return ScriptedWebAnswer{.status = 503, .fields = {{"Retry-After", "60"}}, .ip = kPublicPlace};
    });
    EXPECT_EQ(Crawl({host}).end, CrawlEnd::kFinished);
    const milliseconds pause = At(host, 1) - At(host);
    // By the new time robots.txt may be old; it is asked for first then, a second before.
    EXPECT_TRUE(pause == seconds(60) || pause == seconds(61)) << pause.count();
  }
}

TEST_F(CrawlFaultsTest, OfARobotsTxtOf100MegabytesTheBeginningHolds) {
  std::string rules = "User-agent: *\nDisallow: /forbidden\n";
  std::string more;
  while (more.size() < 1'000'000) more += "Disallow: /" + std::to_string(more.size()) + "\n";
  for (int i = 0; i < 100; ++i) rules += more;
  Robots("https://www.firma.de", rules);
  Page("https://www.firma.de/", "<a href=/forbidden>x</a><a href=/free>y</a>");
  Page("https://www.firma.de/free", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(Visited(), ElementsAre("https://www.firma.de/", "https://www.firma.de/free"));
}

TEST_F(CrawlFaultsTest, ARobotsTxtThatNeverEndsForbidsTheHostForNow) {
  ScriptedWebAnswer endless = {.body = "User-agent: *\n", .failure = WebFailure::kTimeout, .message = "too slow"};
  endless.delay = milliseconds(300'000);
  Page("https://slow.de/robots.txt", endless);
  Page("https://www.firma.de/", "a@firma.de");
  const auto outcome = Crawl({"https://slow.de/", "www.firma.de"});
  EXPECT_EQ(outcome.end, CrawlEnd::kFinished);
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
  EXPECT_THAT(Visited(), Not(Contains("https://slow.de/")));
}

// Rules are UTF-8. In UTF-16 no line of them is one.
TEST_F(CrawlFaultsTest, ARobotsTxtInUtf16HasNoRules) {
  std::string rules = "\xFF\xFE";
  for (const char c : std::string("User-agent: *\nDisallow: /\n")) (rules += c) += '\0';
  Robots("https://www.firma.de", rules);
  Page("https://www.firma.de/", "a@firma.de");
  Crawl({"www.firma.de"});
  EXPECT_THAT(view_.addresses, ElementsAre("a@firma.de"));
}

TEST_F(CrawlFaultsTest, ASearchServiceThatLoopsIsLeft) {
  options_.search_service = "http://127.0.0.1:8888";
  int same = 0, fresh = 0;
  client_.ServeOthers([&](const WebRequest& request) -> std::optional<ScriptedWebAnswer> {
    ScriptedWebAnswer answer{.ip = kPublicPlace};
    if (request.url.find("q=same&") != std::string::npos) {
      ++same;
      answer.body = R"({"results": [{"url": "https://a.de/"}, {"url": "https://a.de/#again"}]})";
    } else if (request.url.find("q=fresh&") != std::string::npos) {
      answer.body = R"({"results": [{"url": "https://n)" + std::to_string(++fresh) + R"(.de/"}]})";
    } else {
      answer.status = 404;
    }
    return answer;
  });
  EXPECT_EQ(Crawl({"same", "fresh"}).end, CrawlEnd::kFinished);
  EXPECT_EQ(same, 2);
  EXPECT_EQ(fresh, 20);
  EXPECT_THAT(Visited(), IsSupersetOf({"https://a.de/", "https://n1.de/", "https://n20.de/"}));
}

}  // namespace
}  // namespace quenlar
