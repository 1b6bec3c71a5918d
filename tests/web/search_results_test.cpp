#include "web/search_results.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

std::vector<std::string> Collect(std::string_view page, LinkQueue& queue) {
  CollectResultLinks(page, queue);
  std::vector<std::string> all;
  for (std::uint32_t i = 0; i < queue.Count(); ++i) {
    EXPECT_EQ(queue.At(i).number, 1);
    all.emplace_back(queue.At(i).URL);
  }
  return all;
}

std::vector<std::string> Collect(std::string_view page) {
  LinkQueue queue;
  return Collect(page, queue);
}

std::string Result(const std::string& address) { return "<h3 class=\"r\"><a href=\"" + address + "\">words</a></h3>"; }

using Links = std::vector<std::string>;

TEST(CollectResultLinks, TakesTheTargetOfEveryHeading) {
  EXPECT_EQ(Collect(Result("http://a/x") + "<p>" + Result("http://b/")), (Links{"http://a/x", "http://b"}));
  EXPECT_EQ(Collect("<H3 CLASS=r><A HREF=\"http://A/\">"), Links{"http://A"});
  EXPECT_EQ(Collect("<h3 class=\"other\"><a href=\"http://a/\">"), Links{"http://a"});  // any "r" will do
  EXPECT_EQ(Collect("<h3 class=\"\"> r > href=\"http://a/\""), Links{"http://a"});
  EXPECT_EQ(Collect(Result("/relative?x")), Links{"/relative?x"});
  EXPECT_EQ(Collect(Result("https://a/microsoft/#x")), Links{"https://a/microsoft/#x"});  // no filter but the engine's
}

TEST(CollectResultLinks, FindsNothingInAPageThatLacksAPieceOfThePattern) {
  for (const char* page : {"", "<h3 class=", "<h3 class=x>href=\"a\"", "<h3 class=r href=\"a\"",
                           "<h3 class=r><a href=", "<h3 class=r><a href=\"a", "<h3 id=r class=r><a href=\"a\""}) {
    EXPECT_EQ(Collect(page), Links{}) << page;
  }
}

TEST(CollectResultLinks, GoesOnBehindEachMatch) {
  // The heading without a target takes the next one's, whose own heading is swallowed with it.
  EXPECT_EQ(Collect("<h3 class=r>none</h3>" + Result("http://a/") + Result("http://b/")),
            (Links{"http://a", "http://b"}));
}

TEST(CollectResultLinks, ReadsTheFirstTargetOfTheWholeMatch) {
  // The pattern's target is the second one, but the text behind the first one counts, up to the end of the match.
  EXPECT_EQ(Collect("<h3 class=\"r\" href=\"http://a/\"><a href=\"http://b/\">"),
            Links{"http://a/\"><a href=\"http://b"});
}

TEST(CollectResultLinks, TwoResultsOfOneSiteGiveOneEntryTheFirst) {
  EXPECT_EQ(Collect(Result("http://a/1") + Result("http://a/2") + Result("a/3")), Links{"http://a/1"});
}

TEST(CollectResultLinks, ASiteOfAnEarlierPageIsNotAddedAgain) {
  LinkQueue queue;
  CollectResultLinks(Result("http://a/1") + Result("http://b/1"), queue);
  EXPECT_EQ(Collect(Result("http://b/2") + Result("http://c/"), queue),
            (Links{"http://a/1", "http://b/1", "http://c"}));
}

TEST(CollectResultLinks, TheSiteIsThatOfTheTargetBeforeItsSlashIsCut) {
  EXPECT_EQ(Collect(Result("http://") + Result("http://")), (Links{"http:/", "http:/"}));
  EXPECT_EQ(Collect(Result("http:") + Result("http://")), (Links{"http:", "http:/"}));
  EXPECT_EQ(Collect(Result("/x") + Result("http://")), Links{"/x"});
}

TEST(CollectResultLinks, TheEnginesOwnPagesAreNeverQueued) {
  EXPECT_EQ(Collect(Result("http://maps.google.de/x") + Result("http://a/?u=http://www.google.com/") +
                    Result("http://b/google")),
            Links{"http://b/google"});
}

}  // namespace
}  // namespace quenlar
