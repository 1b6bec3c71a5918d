// What is passed over many bytes at a time are whole tags, as the reader of attributes finds them.
#include "page/tag_pass.h"

#include <random>
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

class TagPassTest : public testing::Test {
 protected:
  void SetUp() override {
    if (Pass(std::string(200, ' ')).at == 0) GTEST_SKIP() << "the processor has no AVX2";
  }
};

TEST_F(TagPassTest, UsualTagsArePassedOver) {
  for (const char* const page : {"a \"b' = c", "<p>a</p>", "<b><i class=\"k l\" id=\"x\">a</i></b>", "<br/><hr />",
                                 "<a href=\"/x?a=b&c='d'\">", "</p >", "<a b=\"1\"c=\"\" d>", "<h1\nid=\"x\">"}) {
    EXPECT_EQ(RestOf(page), "") << page;
  }
}

TEST_F(TagPassTest, ThePassEndsAtWhatIsNotUsual) {
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
      EXPECT_EQ(RestOf(std::string(before, '.') + each.page), each.rest) << before;
    }
  }
}

TEST_F(TagPassTest, TheLastTagThatEndsARunIsMarked) {
  const std::string page = "<p>a</p> <td class=\"x\"><i>b</i></b>" + std::string(200, ' ');
  EXPECT_EQ(Pass(page).marked, page.find("<td"));
  EXPECT_EQ(PassUsualTags("<i>" + page.substr(30), {3, 1}, kNone, tag_names::kWithoutLinks).marked, 1u);
}

TEST_F(TagPassTest, TheLimitHolds) {
  const std::string page(400, ' ');
  for (const std::size_t limit : {0u, 66u, 67u, 130u, 300u}) EXPECT_LE(Pass(page, limit).at, limit);
}

// Goes through a page tag by tag, up to `end`. Whether `end` stands in text or at a "<", and no tag before it has one
// of the wanted names.
bool IsSound(const std::string& page, std::size_t end, std::size_t& last_marked) {
  last_marked = 0;
  for (std::size_t at = 0;;) {
    const std::size_t open = page.find('<', at);
    if (open == kNone || open >= end) return true;
    const std::size_t name = page[open + 1] == '/' ? open + 2 : open + 1;
    if (!IsLetter(page[name])) return false;
    if (name == open + 1 && tag_names::HasBeginning(tag_names::kWithoutLinks, page[name], page[name + 1])) return false;
    AttributeReader reader(page, FindEndOfName(page, name + 1, '>'));
    for (TagAttribute attribute; reader.Next(attribute);) {
    }
    if (reader.end() > end) return false;
    if (IsSurelyNotInline(page[name], page[name + 1])) last_marked = open;
    at = reader.end();
  }
}

TEST_F(TagPassTest, TheAnswerStandsBetweenTagsAtRandom) {
  std::mt19937 random(20261123);
  const std::vector<std::string> pieces = {"<",        ">",    "\"",       "'",    "=",    "=\"",  "\" ", " ",
                                           "/",        "\n",   "<a",       "<b>",  "</b>", "<td ", "</",  "a",
                                           "b=",       "c=\"", "x y z",    "\">",  "/>",   "\x01", "<p",  " d=\"e\"",
                                           " f=\"g\"", "<!--", "<script>", "\xC3", "\xA4"};
  std::size_t far = 0;
  for (int round = 0; round < 100'000; ++round) {
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
    std::size_t last_marked = 0;
    ASSERT_TRUE(IsSound(page, pass.at, last_marked)) << pass.at << "\n" << page;
    ASSERT_TRUE(pass.marked == last_marked || pass.marked == pass.at) << page;
    if (pass.at > 128) ++far;
  }
  EXPECT_GT(far, 10'000u);
}

}  // namespace
}  // namespace quenlar
