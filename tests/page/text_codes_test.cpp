// Escapes, percent signs, keyed digits and text that is turned round.
#include "page/text_codes.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

std::string Escapes(std::string_view script) {
  std::string decoded = "before";
  DecodeEscapes(script, decoded);
  return decoded;
}

std::string Percents(std::string_view text) {
  std::string decoded = "before";
  DecodePercentSigns(text, decoded);
  return decoded;
}

std::string Turned(std::string_view text) {
  std::string reversed;
  Reverse(text, reversed);
  return reversed;
}

TEST(TextCodesTest, EscapesAreDecodedOnceFromLeftToRight) {
  EXPECT_EQ(Escapes(R"(a\u0040b\x40c)"), "a@b@c");
  EXPECT_EQ(Escapes(R"(\/\/x)"), "//x");
  EXPECT_EQ(Escapes(R"(o\'neil)"), "o'neil");
  EXPECT_EQ(Escapes(R"(a\nb\rc\td)"), "a b c d");
  EXPECT_EQ(Escapes(R"(\\u0040 \\\u0040)"), R"(\u0040 \@)");
  EXPECT_EQ(Escapes(R"(\u00FC\u516c\ud83d\ude00)"), "ü公\U0001F600");
  EXPECT_EQ(Escapes(R"(\ud83dx \ude00)"), "\uFFFDx \uFFFD");
  EXPECT_EQ(Escapes(R"(\ud83d\u0041)"), "\uFFFDA");
  EXPECT_EQ(Escapes(R"(\u00g0 \x4 \q \u)"), R"(\u00g0 \x4 \q \u)");
  EXPECT_EQ(Escapes("x\\"), "x\\");
  EXPECT_EQ(Escapes(""), "");
  EXPECT_EQ(Escapes("no escapes"), "no escapes");
}

TEST(TextCodesTest, PercentSignsWithTwoDigitsBecomeBytes) {
  EXPECT_EQ(Percents("a%40b%2Cc%2cd"), "a@b,c,d");
  EXPECT_EQ(Percents("%2540"), "%40");
  EXPECT_EQ(Percents("100% %4 %zz %"), "100% %4 %zz %");
  EXPECT_EQ(Percents("%%40"), "%@");
  EXPECT_EQ(Percents("%C3%BC+"), "ü+");
  EXPECT_EQ(Percents(""), "");
}

TEST(TextCodesTest, TheFirstByteIsTheKeyOfTheOthers) {
  std::string decoded;
  EXPECT_TRUE(DecodeKeyedHex("012a4A", decoded));
  EXPECT_EQ(decoded, "+K");
  EXPECT_TRUE(DecodeKeyedHex("01", decoded));
  EXPECT_EQ(decoded, "");
  for (const char* const wrong : {"", "0", "012", "0g", "01g0"}) EXPECT_FALSE(DecodeKeyedHex(wrong, decoded)) << wrong;
}

TEST(TextCodesTest, CharactersAreTurnedWholeAndOtherBytesOneByOne) {
  EXPECT_EQ(Turned("abc"), "cba");
  EXPECT_EQ(Turned("aü中"), "中üa");
  EXPECT_EQ(Turned("a\xE4\xB8"),
            "\xB8\xE4"
            "a");
  EXPECT_EQ(Turned(""), "");
}

}  // namespace
}  // namespace quenlar
