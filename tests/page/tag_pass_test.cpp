// What is passed over many bytes at a time are whole tags, as the reader of attributes finds them.
#include "page/tag_pass.h"

#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "page/attributes.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TagPass Pass(const std::string& page, std::size_t limit = kNone) {
  return PassUsualTags(page, {0, 0}, limit, tag_names::kWithoutLinks);
}

// The first place that is not passed over, with far more of a page behind it.
std::string RestOf(const std::string& page) {
  const std::string behind(200, ' ');
  const std::size_t at = Pass(page + behind).at;
  return at < page.size() ? page.substr(at) : "";
}

// Without AVX2 nothing is passed over.
bool Passes() { return Pass(std::string(200, ' ')).at > 0; }

TEST(TagPassTest, UsualTagsArePassedOver) {
  for (const char* const page :
       {"a \"b' = c", "<p>a</p>", "<b><i class=\"k l\" id=\"x\">a</i></b>", "<br/><hr />", "<a href=\"/x?a=b&c='d'\">",
        "</p >", "<a b=\"1\"c=\"\" d>", "<h1\nid=\"x\">", "<strong>a</strong>", "<te>", "<t>"}) {
    EXPECT_EQ(RestOf(page), Passes() ? "" : page) << page;
  }
}

TEST(TagPassTest, ThePassEndsAtWhatIsNotUsual) {
  const struct {
    std::string page, rest;
  } cases[] = {
      {"<p><!-- x -->", "<!-- x -->"},
      {"<p><?x?>", "<?x?>"},
      {"<p>a < b", "< b"},
      {"<p>a > b", "> b"},
      {"<p></ p>", "</ p>"},
      {"<p><script>x", "<script>x"},
      {"<p><SVG>x", "<SVG>x"},
      {"<p><a b=c>x", "<a b=c>x"},
      {"<p><a b='c'>x", "<a b='c'>x"},
      {"<p><a b=\"c>d\">x", "<a b=\"c>d\">x"},
      {"<p><a b=\"<c\">x", "<a b=\"<c\">x"},
      {"<p><a b=\"c\"=\"d>\">x", "<a b=\"c\"=\"d>\">x"},
      {"<p><a=\"b c=\" d>e f\">x", "<a=\"b c=\" d>e f\">x"},
      {"<p></a=\"b c=\" d>e f\">x", "</a=\"b c=\" d>e f\">x"},
      {"<p><a\x01"
       "b=\"c d=\" e>f\">x",
       "<a\x01"
       "b=\"c d=\" e>f\">x"},
      {"<p><a b\"c>x", "<a b\"c>x"},
  };
  for (const auto& each : cases) {
    for (const std::size_t before : {0u, 1u, 50u, 56u, 57u, 58u, 59u, 60u, 61u, 62u, 63u, 64u}) {
      const std::string page = std::string(before, '.') + each.page;
      EXPECT_EQ(RestOf(page), Passes() ? each.rest : page) << before;
    }
  }
}

TEST(TagPassTest, ATagThatEndsARunIsMarked) {
  const std::string page = "<p>a</p> <td class=\"x\">" + std::string(64, ' ') + "<i>b</i></b>" + std::string(200, ' ');
  EXPECT_EQ(Pass(page).marked, Passes() ? page.find("<td") : 0);
  const std::string inline_tags = "<i>b</i>" + std::string(200, ' ');
  EXPECT_EQ(PassUsualTags(inline_tags, {3, 1}, kNone, tag_names::kWithoutLinks).marked, 1u);
}

TEST(TagPassTest, TheLimitHolds) {
  const std::string page(400, ' ');
  for (const std::size_t limit : {0u, 66u, 67u, 130u, 300u}) EXPECT_LE(Pass(page, limit).at, limit);
}

// Goes through a page tag by tag, up to `end`. Whether `end` stands in text or at a "<", and no tag before it has one
// of the wanted names. `marks`: the tags that may be marked.
bool IsSound(const std::string& page, std::size_t end, std::set<std::size_t>& marks) {
  marks = {0};
  for (std::size_t at = 0;;) {
    const std::size_t open = page.find('<', at);
    if (open == kNone || open >= end) return true;
    const std::size_t name = page[open + 1] == '/' ? open + 2 : open + 1;
    if (!IsLetter(page[name])) return false;
    if (name == open + 1 &&
        tag_names::HasBeginning(tag_names::kWithoutLinks, page[name], page[name + 1], page[name + 2]))
      return false;
    AttributeReader reader(page, FindEndOfName(page, name + 1, '>'));
    for (TagAttribute attribute; reader.Next(attribute);) {
    }
    if (reader.end() > end) return false;
    if (IsSurelyNotInline(page[name], page[name + 1])) marks.insert(open);
    at = reader.end();
  }
}

TEST(TagPassTest, TheAnswerStandsBetweenTagsAtRandom) {
  std::mt19937 random(20261123);
  const std::vector<std::string> pieces = {"<",        ">",    "\"",       "'",    "=",    "=\"",  "\" ", " ",
                                           "/",        "\n",   "<a",       "<b>",  "</b>", "<td ", "</",  "a",
                                           "b=",       "c=\"", "x y z",    "\">",  "/>",   "\x01", "<p",  " d=\"e\"",
                                           " f=\"g\"", "<!--", "<script>", "\xC3", "\xA4"};
  std::size_t far = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string page;
    while (page.size() < 300) {
      switch (random() % 10) {
        case 0:
          for (unsigned i = random() % 3; i > 0; --i) page += pieces[random() % pieces.size()];
          break;
        case 1:
        case 2:
          page += std::string(random() % 20, 'w');
          break;
        case 3:
        case 4:
          page += "</p>";
          break;
        default:
          page += "<p" + std::string(random() % 3, 'q');
          for (unsigned i = random() % 3; i > 0; --i) page += " n=\"" + std::string(random() % 20, 'v') + "\"";
          page += ">";
      }
    }
    const TagPass pass = Pass(page);
    std::set<std::size_t> marks;
    ASSERT_TRUE(IsSound(page, pass.at, marks)) << pass.at << "\n" << page;
    ASSERT_TRUE(marks.contains(pass.marked) || pass.marked == pass.at) << page;
    if (pass.at > 128) ++far;
  }
  EXPECT_EQ(far > 2'000u, Passes());
}

}  // namespace
}  // namespace quenlar
