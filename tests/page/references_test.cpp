// Character references, by the rules of the HTML Standard's tokenizer.
#include "page/references.h"

#include <string>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "page/reference_list.h"

namespace quenlar {
namespace {

std::string Text(std::string_view text) {
  std::string decoded;
  AppendDecoded(text, ReferencePlace::kText, decoded);
  return decoded;
}
std::string Value(std::string_view text) {
  std::string decoded;
  AppendDecoded(text, ReferencePlace::kAttribute, decoded);
  return decoded;
}

TEST(References, NamesAreDecoded) {
  EXPECT_EQ(Text("a &amp; b &lt;c&gt; &quot;d&quot; &commat; &NotEqualTilde;"), "a & b <c> \"d\" @ \u2242\u0338");
  EXPECT_EQ(Text("&CounterClockwiseContourIntegral;&Afr;"), "\u2233\U0001D504");
}

TEST(References, ANameIsReadAsFarAsItGoes) {
  EXPECT_EQ(Text("&notin;"), "∉");
  EXPECT_EQ(Text("&notit;"), "¬it;");
  EXPECT_EQ(Text("&not"), "¬");
  EXPECT_EQ(Text("&amp;lt;"), "&lt;");
}

TEST(References, OnlySomeNamesAreKnownWithoutASemicolon) {
  EXPECT_EQ(Text("&copy 2024 &auml&ouml&AMP"), "© 2024 äö&");
  EXPECT_EQ(Text("&commat &alpha &period"), "&commat &alpha &period");
}

TEST(References, WhatIsNotAReferenceStays) {
  for (const char* text :
       {"", "&", "&&", "& amp;", "&;", "&#;", "&#", "&#x;", "&#xg", "&unknown;", "&1;", "a&b", "&am"}) {
    EXPECT_EQ(Text(text), text);
    EXPECT_EQ(Value(text), text);
  }
}

TEST(References, InAttributesANameWithoutASemicolonNeedsAnEndOfItsOwn) {
  EXPECT_EQ(Value("?a=1&copy=2&lang=3&region"), "?a=1&copy=2&lang=3&region");
  EXPECT_EQ(Value("&copy;=&copy &copy"), "©=© ©");
  EXPECT_EQ(Value("&notit;"), "&notit;");
  EXPECT_EQ(Value("&amp;copy"), "&copy");
}

TEST(References, NumbersAreDecoded) {
  EXPECT_EQ(Text("&#64;&#x40;&#X40;&#0000064;&#64"), "@@@@@");
  EXPECT_EQ(Value("info&#64firma&#46;de"), "info@firma.de");
  EXPECT_EQ(Text("&#x1F600;"), "\U0001F600");
}

TEST(References, NumbersThatAreNotCharactersAreReplaced) {
  for (const char* text :
       {"&#0;", "&#xD800;", "&#xDFFF;", "&#x110000;", "&#99999999999999999999;", "&#xFFFFFFFFFFFF;"}) {
    EXPECT_EQ(Text(text), "\uFFFD") << text;
  }
}

TEST(References, NumbersOfWindows1252BytesMeanItsCharacters) {
  EXPECT_EQ(Text("&#128;&#x99;&#159;"), "€™Ÿ");
  EXPECT_EQ(Text("&#129;"), "\u0081");
}

// Goes through the list as it is written, so that the search in it is tested, name by name.
TEST(References, EveryListedNameIsFound) {
  std::size_t names = 0;
  for (const std::string_view item : Split(kReferenceList, " ")) {
    if (item.empty()) continue;
    const std::size_t end = item.find_first_of(";!");
    std::string expected;
    for (const std::string_view code : Split(item.substr(end + 1), "+")) {
      expected += Text("&#x" + std::string(code) + ";");
    }
    const std::string name(item.substr(0, end));
    EXPECT_EQ(Text("&" + name + ";"), expected);
    EXPECT_EQ(Value("&" + name + ";x"), expected + "x");
    if (item[end] == '!') {
      EXPECT_EQ(Text("&" + name + "."), expected + ".");
      ++names;
    }
    ++names;
  }
  EXPECT_EQ(names, 2231u);
}

}  // namespace
}  // namespace quenlar
