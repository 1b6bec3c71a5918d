#include "platform/punycode.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/utf8.h"

namespace quenlar {
namespace {

TEST(Punycode, SpellsLabelsAsTheStandardsExamplesDo) {
  const struct {
    const char* label;
    const char* coded;
  } kCases[] = {
      {"b\xC3\xBC"
       "cher",
       "xn--bcher-kva"},
      {"m\xC3\xBCnchen", "xn--mnchen-3ya"},
      {"fa\xC3\x9F", "xn--fa-hia"},
      {"\xC3\xBC", "xn--tda"},
      {"\xE4\xBB\x96\xE4\xBB\xAC\xE4\xB8\xBA\xE4\xBB\x80\xE4\xB9\x88\xE4\xB8\x8D\xE8\xAF\xB4\xE4\xB8\xAD\xE6\x96\x87",
       "xn--ihqwcrb4cv8a8dqg056pqjye"},
      {"\xD1\x80\xD1\x84", "xn--p1ai"},
      {"\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", "xn--wgv71a119e"},
  };
  for (const auto& c : kCases) EXPECT_EQ(PunycodeLabel(c.label), c.coded) << c.label;
}

TEST(Punycode, MakesLettersSmall) {
  EXPECT_EQ(PunycodeLabel("B\xC3\x9C"
                          "CHER"),
            PunycodeLabel("b\xC3\xBC"
                          "cher"));
  EXPECT_EQ(PunycodeLabel("\xD0\xA0\xD0\xA4"), PunycodeLabel("\xD1\x80\xD1\x84"));
  EXPECT_EQ(PunycodeLabel("\xCE\xA9"), PunycodeLabel("\xCF\x89"));
  EXPECT_EQ(PunycodeLabel("\xC4\x8C"), PunycodeLabel("\xC4\x8D"));
}

TEST(Punycode, MakesLettersSmallThatDoNotStandInPairsOfEvenAndOdd) {
  const struct {
    const char* capital;
    const char* small;
    const char* coded;
  } kCases[] = {
      {"\xC5\x81\xC3\x93"
       "D\xC5\xB9",
       "\xC5\x82\xC3\xB3"
       "d\xC5\xBA",
       "xn--d-uga0v4h"},
      {"\xC4\xB9\xC4\xBD\xC5\x87\xC5\xBD\xC5\xB8", "\xC4\xBA\xC4\xBE\xC5\x88\xC5\xBE\xC3\xBF", "xn--wda1jma4b6r"},
      {"\xCE\x86\xCE\x88\xCE\x89\xCE\x8A", "\xCE\xAC\xCE\xAD\xCE\xAE\xCE\xAF", "xn--hxacde"},
      {"\xCE\x8C\xCE\x8E\xCE\x8F\xCE\xAA\xCE\xAB", "\xCF\x8C\xCF\x8D\xCF\x8E\xCF\x8A\xCF\x8B", "xn--cyacbef"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(PunycodeLabel(c.capital), c.coded) << c.coded;
    EXPECT_EQ(PunycodeLabel(c.small), c.coded) << c.coded;
  }
}

TEST(Punycode, RefusesWhatIsNoLabel) {
  EXPECT_FALSE(PunycodeLabel("\xFF"));
  EXPECT_FALSE(PunycodeLabel("a\xC3"));
  std::string too_long;
  for (int i = 0; i < 64; ++i) too_long += "\xC3\xBC";
  EXPECT_FALSE(PunycodeLabel(too_long));
  EXPECT_FALSE(PunycodeLabel(std::string(58, 'a') + "\xF4\x8F\xBF\xBF"));
}

TEST(DecodeUtf8, TakesCharactersAndNothingElse) {
  const struct {
    const char* bytes;
    char32_t code;
    std::size_t length;
  } kCases[] = {{"a", 'a', 1},
                {"\xC2\x80", 0x80, 2},
                {"\xE2\x82\xAC.", 0x20AC, 3},
                {"\xF4\x8F\xBF\xBF", 0x10FFFF, 4},
                {"\xC0\x80", 0, 0},
                {"\xC1\xBF", 0, 0},
                {"\xE0\x9F\xBF", 0, 0},
                {"\xF0\x8F\xBF\xBF", 0, 0},
                {"\xED\xA0\x80", 0, 0},
                {"\xF4\x90\x80\x80", 0, 0},
                {"\xF8\x80\x80\x80", 0, 0},
                {"\x80", 0, 0},
                {"\xE2\x82", 0, 0},
                {"\xE2\x28\xA1", 0, 0},
                {"", 0, 0}};
  for (const auto& c : kCases) {
    const Utf8Character character = DecodeUtf8(c.bytes);
    EXPECT_EQ(character.bytes, c.length) << c.bytes;
    if (c.length > 0) {
      EXPECT_EQ(character.code, c.code) << c.bytes;
    }
  }
}

}  // namespace
}  // namespace quenlar
