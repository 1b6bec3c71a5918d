// Every place in which an address may stand is found, at every distance from the beginning and the end.
#include "page/address_signs.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(AddressSignsTest, EverySignIsFoundWhereverItStands) {
  const std::vector<std::string> signs = {"@b.de",     "[at]b.de",  "(AT)b.de",        "{ät}b.de",       "<アット>b.de",
                                          "[ at]b.de", "(arroba)b", " dot de",         "\n(punkt)",      "\tpoint de",
                                          " Punto de", "[dot] de",  "\u00A0dot\u00A0", "\u3000ドット de"};
  for (const std::string& sign : signs) {
    for (std::size_t before = 0; before < 40; ++before) {
      for (std::size_t behind = 0; behind < 20; ++behind) {
        const std::string text = std::string(before, 'x') + sign + std::string(behind, 'x');
        const std::size_t found = FindMailSign(text, 0);
        // The last byte of a blank, the first one of anything else.
        ASSERT_GE(found, before) << text;
        ASSERT_LT(found, before + 3) << text;
        EXPECT_EQ(FindMailSign(text, found), found) << text;
        EXPECT_EQ(FindScriptSign(text, 0), found) << text;
      }
    }
  }
}

TEST(AddressSignsTest, MostOfATextIsNoSign) {
  for (const char* const text : {"", "x", "Did you see it?", "f(x) = [1, 2] {3} <b>",
                                 "some text that goes on for a while, and on", "a-dot a.point"}) {
    EXPECT_EQ(FindMailSign(text, 0), kNone) << text;
  }
  EXPECT_EQ(FindMailSign("x@firma.de, and some more text", 2), kNone);
  EXPECT_EQ(FindMailSign("x@firma.de", 99), kNone);
}

TEST(AddressSignsTest, EscapesAreSignsInScriptsOnly) {
  EXPECT_EQ(FindScriptSign(R"(var x = "a\u0040firma.de")", 0), 10u);
  EXPECT_EQ(FindScriptSign(R"(var x = "a\x40firma.de")", 0), 10u);
  EXPECT_EQ(FindMailSign(R"(var x = "a\u0040firma.de")", 0), kNone);
  EXPECT_EQ(FindScriptSign(R"(var x = "a\"b\/c\nd, and so on")", 0), kNone);
}

}  // namespace
}  // namespace quenlar
