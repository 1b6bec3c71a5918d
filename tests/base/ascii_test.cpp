#include "base/ascii.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(Ascii, EqualsIgnoreCaseLooksAtLettersOnlyAndAtEveryByte) {
  for (std::size_t size = 0; size < 30; ++size) {
    const std::string lower(size, 'm'), upper(size, 'M');
    EXPECT_TRUE(EqualsIgnoreCase(lower, upper));
    EXPECT_FALSE(EqualsIgnoreCase(lower, lower + "m"));
    for (std::size_t at = 0; at < size; ++at) {
      std::string other = lower;
      for (const char c : {'n', '-', '\xED', '\0'}) {
        other[at] = c;
        EXPECT_FALSE(EqualsIgnoreCase(upper, other));
      }
    }
  }
  EXPECT_FALSE(EqualsIgnoreCase("@", "`"));
  EXPECT_FALSE(EqualsIgnoreCase("[", "{"));
  EXPECT_FALSE(EqualsIgnoreCase("\xC4", "\xE4"));
}

TEST(Ascii, StartsAndEndsWithIgnoreCase) {
  EXPECT_TRUE(StartsWithIgnoreCase("HTTP://x", "http://"));
  EXPECT_TRUE(StartsWithIgnoreCase("x", ""));
  EXPECT_FALSE(StartsWithIgnoreCase("HTTP:/", "http://"));
  EXPECT_TRUE(EndsWithIgnoreCase("a.JPG", ".jpg"));
  EXPECT_TRUE(EndsWithIgnoreCase(".JPG", ".jpg"));
  EXPECT_FALSE(EndsWithIgnoreCase("jpg", ".jpg"));
}

TEST(Ascii, FindIgnoreCaseFindsTheFirstAtOrAfterAPlace) {
  const std::string text = "</A> x </a";
  EXPECT_EQ(FindIgnoreCase(text, "</a"), 0u);
  EXPECT_EQ(FindIgnoreCase(text, "</a", 1), 7u);
  EXPECT_EQ(FindIgnoreCase(text, "</a", 8), std::string::npos);
  EXPECT_EQ(FindIgnoreCase(text, "</a", 80), std::string::npos);
  EXPECT_EQ(FindIgnoreCase("", "a"), std::string::npos);
}

TEST(Ascii, FindIgnoreCaseFindsEveryPlaceOfEveryLength) {
  for (const std::string needle : {"m", "</a", "<title>", "-mm-"}) {
    for (std::size_t size = 0; size < 60; ++size) {
      const std::string blank(size, '.');
      EXPECT_EQ(FindIgnoreCase(blank, needle), std::string::npos);
      for (std::size_t at = 0; at + needle.size() <= size; ++at) {
        std::string text = blank;
        for (std::size_t k = 0; k < needle.size(); ++k) {
          text[at + k] = static_cast<char>(needle[k] - (IsLetter(needle[k]) && (at + k) % 2 == 0 ? 0x20 : 0));
        }
        ASSERT_EQ(FindIgnoreCase(text, needle), at) << text;
        ASSERT_EQ(FindIgnoreCase(text, needle, at), at) << text;
        ASSERT_EQ(FindIgnoreCase(text, needle, at + 1), std::string::npos) << text;
        text[at + needle.size() / 2] = '!';
        ASSERT_EQ(FindIgnoreCase(text, needle), std::string::npos) << text;
      }
    }
  }
  // Bytes that differ from a letter or a sign by the case bit alone are others.
  EXPECT_EQ(FindIgnoreCase("\x0D\x4D\x2D", "-"), 2u);
  EXPECT_EQ(FindIgnoreCase(std::string(40, '@') + "`", "`"), 40u);
  EXPECT_EQ(FindIgnoreCase(std::string(40, '\x1C'), "<"), std::string::npos);
}

TEST(Ascii, TrimsBlanksAlone) {
  EXPECT_EQ(TrimBlanks("  a \t "), "a \t");
  EXPECT_EQ(TrimBlanks("   "), "");
}

}  // namespace
}  // namespace quenlar
