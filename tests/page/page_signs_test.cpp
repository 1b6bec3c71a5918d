// Signs of addresses in the bytes of a page.
#include "page/page_signs.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(PageSigns, WhatMayBecomeAnAddressIsASign) {
  for (const char* sign : {"@",
                           "&#64;",
                           "&#x40;",
                           "&#0000064",
                           "&commat;",
                           "&#91;",
                           "&lpar;",
                           "&percnt;",
                           "%40",
                           "\\u0040",
                           "\\x40",
                           "data-cfemail",
                           "CFEMAIL",
                           "[at]",
                           "( AT )",
                           "{ \n arobase }",
                           "[<b>at</b>]",
                           "(&nbsp;at&nbsp;)",
                           "(ät)",
                           "[アット]",
                           "&lt;at&gt;",
                           " at firma dot ",
                           ">arobase</i> firma <i>point<",
                           " klammeraffe x punkt ",
                           " chiocciola x punto ",
                           " arroba x punto ",
                           "アット x ドット"}) {
    for (const std::size_t before : {0u, 1u, 31u, 64u}) {
      const std::string page = std::string(before, '.') + sign + std::string(before, '.');
      EXPECT_NE(PageSigns(page).next(), kNone) << page;
    }
  }
}

TEST(PageSigns, WhatLooksAlikeIsNot) {
  for (const char* text : {"", "&amp; &lt;b&gt; &#39; &#160; &copy;", "100% 4 %4 %41", "\\u0041 \\n \\x41",
                           "[attic] (atom) [a] (a t)", "point to a dot.", "the dots at points", "coffee confer",
                           "look at it, and then at this and so on", "<p>Some text (and more) [1] {x}</p>"}) {
    EXPECT_EQ(PageSigns(text).next(), kNone) << text;
  }
}

TEST(PageSigns, AWordForDotIsASignOnlyNotFarBehindAWordForAt) {
  const std::string far(300, ' ');
  EXPECT_EQ(PageSigns("name at " + far + " dot ").next(), kNone);
  EXPECT_EQ(PageSigns("name at " + far + " at host dot ").next(), 8 + far.size() + 9);
}

TEST(PageSigns, TheyAreGoneThroughInOrder) {
  PageSigns signs("a@b <p> c%40d </p> (at)");
  EXPECT_EQ(signs.next(), 1u);
  EXPECT_FALSE(signs.PassBefore(1));
  EXPECT_TRUE(signs.PassBefore(4));
  EXPECT_EQ(signs.next(), 9u);
  EXPECT_TRUE(signs.PassBefore(12));
  EXPECT_EQ(signs.next(), 19u);
  EXPECT_TRUE(signs.PassBefore(23));
  EXPECT_EQ(signs.next(), kNone);
}

// What is found many bytes at a time is what is found in pieces too short for that.
TEST(PageSigns, LongPagesHaveTheSignsOfTheirPieces) {
  std::mt19937 random(7);
  const std::string alphabet = "@&#64;%40\\ux cfemail[({at dot po<>\xE3\x83\x89";
  for (int round = 0; round < 2000; ++round) {
    std::string page(200, ' ');
    for (std::size_t i = 0; i < 12; ++i) page[100 + i] = alphabet[random() % alphabet.size()];
    const std::size_t whole = PageSigns(page).next();
    const std::size_t piece = PageSigns(std::string_view(page).substr(100, 13)).next();
    EXPECT_EQ(whole, piece == kNone ? kNone : piece + 100) << page;
  }
}

}  // namespace
}  // namespace quenlar
