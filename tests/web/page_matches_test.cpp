#include "web/page_matches.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

// "T" and the match in a tag, or "B" and the match between tags, then "=" and the address.
std::vector<std::string> All(std::string_view page) {
  std::vector<std::string> all;
  PageMatches matches(page);
  for (PageMatch match; matches.Next(match);) {
    all.push_back((match.place == PageMatch::Place::kInTag ? "T" : "B") + std::string(match.text) + "=" +
                  std::string(match.address));
  }
  return all;
}

TEST(PageMatches, FindOneMatchInATagAndOneBehindIt) {
  const struct {
    const char* page;
    std::vector<std::string> matches;
  } kCases[] = {
      {"", {}},
      {"a@b.de", {}},
      {"<p>a@b.de", {}},                     // no "<" behind it
      {"a@b.de<p>", {}},                     // no ">" before it
      {"x>a@b.de<p", {"B>a@b.de<=a@b.de"}},  // no tag needs to be open
      {"<a@b.de", {}},                       // never closed
      {"<a@b.de<c>", {}},
      {"<a@b.de>", {"T<a@b.de>=a@b.de"}},
      {"<<a@b.de>", {"T<a@b.de>=a@b.de"}},
      {"<p>a@b.de</p>", {"B>a@b.de<=a@b.de"}},
  };
  for (const auto& c : kCases) EXPECT_EQ(All(c.page), c.matches) << c.page;
}

TEST(PageMatches, TakeTheTextBehindATagForTheTagWhereTheTextHoldsAGreaterSign) {
  EXPECT_EQ(All("<p>a@b.de -> c</p>"), (std::vector<std::string>{"T<p>a@b.de ->=a@b.de", "B>a@b.de -> c<=a@b.de"}));
}

TEST(PageMatches, EndATagAtTheFirstGreaterSignBehindAnAddressOfAnyForm) {
  // The first sign makes the match, though it gives no address; the second one lies within it.
  EXPECT_EQ(All("<i x@y.museum a@b.de>"), (std::vector<std::string>{"T<i x@y.museum a@b.de>=a@b.de"}));
  EXPECT_EQ(All("<i x@y.museum>a@b.de"), (std::vector<std::string>{"T<i x@y.museum>="}));
}

TEST(PageMatches, GiveOnlyTheFirstAddressOfEach) {
  EXPECT_EQ(All("<i a@b.de c@d.de>e@f.de g@h.de<"),
            (std::vector<std::string>{"T<i a@b.de c@d.de>=a@b.de", "B>e@f.de g@h.de<=e@f.de"}));
}

TEST(PageMatches, StartBetweenTagsAtTheFirstGreaterSign) {
  EXPECT_EQ(All("a@b.de>c@d.de<"), (std::vector<std::string>{"B>c@d.de<=c@d.de"}));
  EXPECT_EQ(All("><i>a@b.de<"), (std::vector<std::string>{"B>a@b.de<=a@b.de"}));
}

}  // namespace
}  // namespace quenlar
