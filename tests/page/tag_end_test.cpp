// Where tags end, compared with the reader of attributes that knows every way to write them.
#include "page/tag_end.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "page/attributes.h"

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// With enough of a page behind it.
std::size_t EndOf(std::string tag) { return FindUsualTagEnd(tag + std::string(64, 'x'), 0); }

TEST(UsualTagEnd, TagsWithQuotedValuesAreUsual) {
  for (const std::string tag : {R"( class="k">)", R"( a="1" b="2">)", R"( a="x>y='" hidden>)", R"( a="1"/>)",
                                R"( a="1"b="">)", R"(/>)", " hidden\n>", R"( href="http://a/b?c=d&e=f" >)"}) {
    EXPECT_EQ(EndOf(tag), tag.size() - 1) << tag;
  }
}

TEST(UsualTagEnd, OtherWaysToWriteATagAreNotTold) {
  for (const char* const tag : {" a=b>", " a='b'>", " a= \"b\">", " a =\"b\">", " b=c=\"d>\">", " =\"x>\">", " a\"b>",
                                "/=\"x\">", " a=\"\"=\"\">", " a=>", " '>", " b= c=\"d>\">"}) {
    EXPECT_EQ(EndOf(tag), kNone) << tag;
  }
}

TEST(UsualTagEnd, NothingIsToldNearTheEndOfAPage) { EXPECT_EQ(FindUsualTagEnd(" a=\"b\">", 0), kNone); }

TEST(UsualTagEnd, WhatIsToldIsWhatTheReaderOfAttributesFinds) {
  std::mt19937 random(7);
  const std::string_view bytes = "ab \"\"\"==='/>\n";
  int told = 0;
  for (int round = 0; round < 200000; ++round) {
    std::string page;
    // Usual attributes, with a byte of something else now and then.
    for (unsigned i = random() % 8; i > 0; --i) {
      page += " ";
      page += std::string(random() % 30, 'n') + "n=\"" + std::string(random() % 30, "v>='/ "[random() % 6]) + "\"";
      if (random() % 8 == 0) page += bytes[random() % bytes.size()];
    }
    for (unsigned i = random() % 4; i > 0; --i) page += bytes[random() % bytes.size()];
    page += ">" + std::string(64, 'x');
    const std::size_t usual = FindUsualTagEnd(page, 0);
    if (usual == kNone) continue;
    ++told;
    AttributeReader reader(page, 0);
    for (TagAttribute attribute; reader.Next(attribute);) {
    }
    ASSERT_EQ(usual + 1, reader.end()) << page;
    ASSERT_EQ(usual > 0 && page[usual - 1] == '/', reader.self_closing()) << page;
  }
  EXPECT_GT(told, 20000);
}

}  // namespace
}  // namespace quenlar
