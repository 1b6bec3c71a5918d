// What `why` says of pages and addresses that a crawl has met.
#include "engine/why.h"

#include <tuple>

#include "crawl/crawl_world.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class WhyTest : public CrawlTest {
 protected:
  [[nodiscard]] WhyAnswer Ask(const std::string& what) {
    const auto reader = CollectionReader::Open(path_);
    EXPECT_TRUE(reader.ok()) << reader.status().message();
    auto answer = Why(*reader.value(), SuppressionList(), idna_, what, 2);
    EXPECT_TRUE(answer.ok()) << answer.status().message();
    return answer.take();
  }
  [[nodiscard]] std::string Sentence(const std::string& what) {
    const WhyAnswer answer = Ask(what);
    return answer.sentences.size() < 2 ? answer.sentences.front() : answer.sentences[1];
  }
};

TEST_F(WhyTest, APageSaysWhatBecameOfIt) {
  Robots("https://www.firma.de", "User-agent: *\nDisallow: /no\n");
  Page("https://www.firma.de/",
       "<a href=/no>n</a><a href=/gone>g</a><a href=/moved>m</a><a href=/pdf>p</a><a href=/x/x/x/x/>t</a>"
       "<a href=/long>l</a><a href=/index>i</a><a href=/links>f</a><a href=/copy>c</a><a href=//b.de/>b</a>");
  Page("https://www.firma.de/moved", WebRedirect("/index"));
  Page("https://www.firma.de/pdf", {.fields = {{"Content-Type", "application/pdf"}}, .body = "%PDF"});
  Page("https://www.firma.de/long", WebRedirect("/" + std::string(3000, 'x')));
  Page("https://www.firma.de/index", "<meta name=robots content=noindex>a@firma.de");
  Page("https://www.firma.de/links", "<meta name=robots content=nofollow>b@firma.de");
  Page("https://www.firma.de/copy", "<meta name=robots content=noindex>a@firma.de");
  Crawl({"www.firma.de"});
  for (const auto& [page, sentence] : {
           std::tuple{"www.firma.de", "It was read on"},
           std::tuple{"www.firma.de/no", "robots.txt forbids it (line 2: Disallow: /no)."},
           std::tuple{"www.firma.de/gone", ": status 404."},
           std::tuple{"http://www.firma.de/moved", "It redirects to https://www.firma.de/index."},
           std::tuple{"www.firma.de/pdf", "It is not a page: its type is application/pdf."},
           std::tuple{"www.firma.de/x/x/x/x/", "a part of its path repeats itself."},
           std::tuple{"www.firma.de/long", "it leads to an address that is too long."},
           std::tuple{"www.firma.de/index", "it asks not to be listed."},
           std::tuple{"www.firma.de/links", "it asks that its links are not followed."},
           std::tuple{"b.de", "it is out of scope."},
           std::tuple{"c.de/never", "no start lies on its site."},
           std::tuple{"www.firma.de/never", "endings of no page are not followed."},
       }) {
    EXPECT_THAT(Sentence(page), HasSubstr(sentence)) << page;
  }
  EXPECT_FALSE(Ask("www.firma.de/never").definite);
  EXPECT_TRUE(Ask("c.de/never").definite);
}

TEST_F(WhyTest, APageThatIsLeftSaysWhatIsKnownOfItsHost) {
  options_.pages_per_host = 1;
  Page("https://a.de/", "<a href=/1>1</a>");
  Page("https://b.de/",
       "<a href=/1>1</a><a href=/2>2</a><a href=/3>3</a><a href=/4>4</a><a href=/5>5</a><a href=/6>6</a>");
  client_.ServeOthers([](const WebRequest& request) {
    return ScriptedWebAnswer{.status = request.url.ends_with("robots.txt") ? 404 : 500};
  });
  Crawl({"https://a.de/"});
  EXPECT_THAT(Sentence("a.de/1"), HasSubstr("its budget of 1 page is used up"));
  options_.pages_per_host = 100;
  Page("https://a.de/1", "now");
  Crawl({"https://b.de/"});
  EXPECT_THAT(Sentence("b.de/6"), HasSubstr("5 failures in a row, the last one: status 500"));
  EXPECT_THAT(Sentence("a.de/1"), HasSubstr("It was read on"));
  EXPECT_THAT(Query("SELECT reason FROM hosts WHERE origin = 'https://a.de'"), ElementsAre(""));
}

TEST_F(WhyTest, WithTheScopeAnywhereNoSiteIsOutOfScope) {
  options_.scope = CrawlScope::kAnywhere;
  Page("https://a.de/", "a@a.de");
  Crawl({"https://a.de/"});
  EXPECT_THAT(Sentence("www.museum.de/never"), HasSubstr("endings of no page are not followed."));
}

TEST_F(WhyTest, AnAddressIsFoundHoweverItIsTyped) {
  Page("https://a.de/",
       "info@b\xC3\xBC"
       "cher.de and again info@xn--bcher-kva.de");
  Page("https://a.de/2", "INFO@xn--bcher-kva.de");
  Crawl({"https://a.de/", "https://a.de/2"});
  for (const char* typed : {"info@b\xC3\xBC"
                            "cher.de",
                            "Info@xn--bcher-kva.de"}) {
    EXPECT_THAT(Ask(typed).sentences, ElementsAre("info@xn--bcher-kva.de", "It is listed: it stands in 2 places.",
                                                  HasSubstr("https://a.de/ (text"), HasSubstr("https://a.de/2 (text")))
        << typed;
  }
  EXPECT_THAT(Sentence("nobody@a.de"), HasSubstr("it was left out: filters, noindex, protected."));
}

}  // namespace
}  // namespace quenlar
