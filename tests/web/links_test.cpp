#include "web/links.h"

#include <gtest/gtest.h>

#include "state/get_host.h"

namespace quenlar {
namespace {

TEST(ResolveLink, MakesTargetsAbsolute) {
  const struct {
    const char* target;
    const char* page;
    const char* address;
  } kCases[] = {
      {"../contact.html", "http://h/a/b/page.html", "http://h/contact.html"},
      {"../../contact.html", "http://h/a/b/page.html", "http://h/contact.html"},
      {"contact.html", "http://h/a/b/page.html", "http://h/a/b/contact.html"},
      {"contact.html", "http://h/a/b/", "http://h/a/b/contact.html"},
      {"contact.html", "http://h", "http://h/contact.html"},
      {"contact.html", "HTTP://h", "HTTP://contact.html"},  // only the lower-case form is its own host
      {"contact.html", "h", "contact.html"},
      {"/x", "http://h/a/b", "http://h/x"},
      {"../", "http://h/a/b", ""},
      {"..//x", "http://h/a/b", "http://h/x"},
      {"//other/x", "http://h/a/b", "http://h//other/x"},
      {"./x", "http://h/a/b", "http://h/a/./x"},
      {"JavaScript:f()", "http://h", ""},
      {"../javascript:f()", "http://h", ""},
      {"MAILTO:a@b.de", "http://h", ""},
      {"#top", "http://h/a/page.html", "http://h/a/page.html/#top"},
      {"#top", "http://h/", "http://h//#top"},
      {"", "http://h/a", ""},
      {"?q", "http://h/a/page.html", "http://h/a/?q"},
      {"../../..", "http://h/a/b/c/page.html", "http://h/.."},
      {"HTTP://OtherHost", "http://h", "HTTP://OtherHost/"},
      {"http://other/x", "http://h", "http://other/x"},
      {"http://other?x", "http://h", "http://other?x/"},
      {"http://", "http://h", "http:///"},
      {"https://other/x", "http://h/a/b", "http://h/a/https://other/x"},
      {"x.html", "http://h/hosted/a/b.html", "http://h/hosted/x.html"},
      {"x.html", "http://h/a/HOSTED/b/hosted/c", "http://h/a/HOSTED/x.html"},
      {"/x.html", "http://h/hosted/a/b.html", "http://h/x.html"},
      {"x y?z#t", "http://h/a/", "http://h/a/x y?z#t"},
  };
  for (const auto& c : kCases) EXPECT_EQ(ResolveLink(c.target, c.page), c.address) << c.target << " on " << c.page;
}

class LinkBuilders : public testing::Test {
 protected:
  bool Level0(std::string_view address, std::string_view digit = "3") {
    return QueueLink(project_, settings_, address, "http://h/page.html", digit);
  }
  bool Expand(int level, std::string_view address, std::int16_t number = 1) {
    return QueueExpandLink(project_, settings_, level, address, "http://h/page.html", number);
  }
  [[nodiscard]] std::uint32_t Total() const {
    std::uint32_t total = 0;
    for (const LinkQueue& queue : project_.queues) total += queue.Count();
    return total;
  }
  [[nodiscard]] const LinkQueue& Queue(std::size_t level) const { return project_.queues[level]; }

  Project project_;
  Settings settings_;
};

TEST_F(LinkBuilders, DropWhatIsNeverFollowed) {
  for (const char* address : {"http://h/a/#top", "http://h/Microsoft/x", "http://www.MICROSOFT.com/", "https://h/x",
                              "http://h/a/HTTPS://x"}) {
    EXPECT_FALSE(Level0(address)) << address;
    EXPECT_FALSE(Expand(1, address)) << address;
  }
  EXPECT_EQ(Total(), 0u);
}

TEST_F(LinkBuilders, LeaveTheEncyclopediaOutOnLevelZeroPagesOnly) {
  EXPECT_FALSE(Level0("http://en.Wikipedia.org/x"));
  EXPECT_TRUE(Expand(1, "http://en.wikipedia.org/x"));
}

TEST_F(LinkBuilders, KeepAFragmentThatFollowsAName) { EXPECT_TRUE(Level0("http://h/a.html#top")); }

TEST_F(LinkBuilders, QueueASiteOnceWithoutItsTrailingSlash) {
  EXPECT_TRUE(Level0("http://h/x/"));
  EXPECT_FALSE(Level0("http://h/x"));
  EXPECT_EQ(Queue(3).At(0).URL, "http://h/x");
  EXPECT_TRUE(Level0("http://h/X"));  // links are compared with letter case
  EXPECT_TRUE(Level0("http://host/"));
  EXPECT_FALSE(Level0("http://host"));
  EXPECT_FALSE(Level0("http://host/deep/page.html"));
  EXPECT_FALSE(Expand(7, "http://host/deep/page.html"));
  EXPECT_EQ(Queue(0).Count(), 1u);
  EXPECT_EQ(Queue(0).At(0).URL, "http://host");
  EXPECT_EQ(Queue(0).At(0).number, 1);
}

TEST_F(LinkBuilders, KeepAURLProjectOnItsSiteUnlessCorrelationIsOn) {
  project_.IsKeywordProject = false;
  settings_.CorrelationMode = 0;
  EXPECT_FALSE(Level0("http://other/x"));
  EXPECT_FALSE(Expand(2, "http://other/x"));
  settings_.CorrelationMode = 2;  // exactly 1 is on
  EXPECT_FALSE(Level0("http://other/x"));
  settings_.CorrelationMode = 1;
  EXPECT_TRUE(Level0("http://other/x"));
  EXPECT_FALSE(Level0("http://other/y"));
  settings_.CorrelationMode = 0;
  project_.IsKeywordProject = true;
  EXPECT_TRUE(Level0("http://third/x"));
  EXPECT_EQ(Queue(0).Count(), 2u);
}

TEST_F(LinkBuilders, ReadTheLevelFromTheDigit) {
  for (const char* digit : {"1", "2", "3", "4", "5", "6", "7", "8", "9", "0"}) EXPECT_TRUE(Level0("http://h/x", digit));
  for (std::size_t level = 1; level <= 10; ++level) EXPECT_EQ(Queue(level).Count(), 1u) << level;
  for (const char* digit : {"", "a", "-", "10", "\xB9"}) EXPECT_FALSE(Level0("http://h/y", digit)) << digit;
  EXPECT_EQ(Total(), 10u);
}

TEST_F(LinkBuilders, OfAnExpansionLevelStayOnThatLevelAndCountUp) {
  EXPECT_TRUE(Expand(4, "http://h/x", 1));
  EXPECT_FALSE(Expand(4, "http://h/x/", 5));
  EXPECT_EQ(Queue(4).At(0).number, 2);
  EXPECT_TRUE(Expand(10, "http://h/x", 32767));
  EXPECT_EQ(Queue(10).At(0).number, 32767);  // there is no larger one
  EXPECT_TRUE(Expand(4, "http://other/x", 9));
  EXPECT_EQ(Queue(0).At(0).number, 1);
}

TEST(FollowedAddress, IsWhatWouldBeQueued) {
  EXPECT_EQ(FollowedAddress(0, "http://h/"), "http://h");
  EXPECT_EQ(FollowedAddress(0, "http://h//"), "http://h/");
  EXPECT_EQ(FollowedAddress(0, "http://h/x"), "http://h/x");
  EXPECT_EQ(FollowedAddress(0, "http://h/#x"), std::nullopt);
  EXPECT_EQ(FollowedAddress(0, ""), "");
}

TEST(GetHost, GivesSchemeAndHostAlone) {
  const struct {
    const char* address;
    const char* host;
  } kCases[] = {
      {"http://host/x/y.html", "http://host"}, {"host", "http://host"}, {"host/x", "http://host"},
      {"HTTP://Host/x", "http://Host"},        {"", "http://"},         {"http://", "http://"},
      {"https://host/x", "http://https:"},     {"/x", "http://"},       {"http://host:80?x", "http://host:80?x"}};
  for (const auto& c : kCases) {
    EXPECT_EQ(GetHost(c.address), c.host) << c.address;
    EXPECT_EQ("http://" + std::string(HostPart(c.address)), c.host) << c.address;
  }
}

}  // namespace
}  // namespace quenlar
