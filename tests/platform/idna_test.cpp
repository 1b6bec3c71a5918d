// The contract of Idna, and the parting of a domain into labels.
#include "platform/idna.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/domain_labels.h"
#include "platform_under_test.h"

namespace quenlar {
namespace {

class IdnaContract : public PlatformContract {
 protected:
  // "" where it is refused.
  std::string ToAscii(std::string_view domain) {
    Result<std::string> ascii = platform_->idna().ToAscii(domain);
    return ascii.ok() ? ascii.take() : "";
  }
};
INSTANTIATE_TEST_SUITE_P(Platforms, IdnaContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(IdnaContract, LabelsBeyondAsciiAreCoded) {
  EXPECT_EQ(ToAscii("www.m\xC3\xBCnchen.de"), "www.xn--mnchen-3ya.de");
  EXPECT_EQ(ToAscii("\xD1\x80\xD1\x84"), "xn--p1ai");
  EXPECT_EQ(ToAscii("\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E.jp"), "xn--wgv71a119e.jp");
}

TEST_P(IdnaContract, LettersAreMadeSmall) {
  EXPECT_EQ(ToAscii("WWW.M\xC3\x9CNCHEN.DE"), "www.xn--mnchen-3ya.de");
  EXPECT_EQ(ToAscii("\xD0\xA0\xD0\xA4"), "xn--p1ai");
}

TEST_P(IdnaContract, SharpSStandsForItself) { EXPECT_EQ(ToAscii("fa\xC3\x9F.de"), "xn--fa-hia.de"); }

TEST_P(IdnaContract, DotsStay) {
  EXPECT_EQ(ToAscii("a..\xC3\xBC."), "a..xn--tda.");
  EXPECT_EQ(ToAscii("\xC3\xBC\xE3\x80\x82"
                    "a\xEF\xBC\x8E"
                    "b\xEF\xBD\xA1"
                    "c"),
            "xn--tda.a.b.c");
}

TEST_P(IdnaContract, AsciiLabelsAreNotJudged) {
  const std::string long_label(70, 'a');
  EXPECT_EQ(ToAscii("-a-.b--c.d_e." + long_label + ".\xC3\xBC"), "-a-.b--c.d_e." + long_label + ".xn--tda");
}

TEST_P(IdnaContract, WhatIsNotUtf8IsRefused) {
  EXPECT_EQ(ToAscii("\xFF.de"), "");
  EXPECT_EQ(ToAscii("a\xC3.de"), "");
}

// What takes tables that the fake does not have.
class SystemIdna : public IdnaContract {};
INSTANTIATE_TEST_SUITE_P(Platforms, SystemIdna, testing::Values(MakeTestPlatform), PlatformName);

TEST_P(SystemIdna, OtherFormsOfALetterAreTheLetter) {
  EXPECT_EQ(ToAscii("\xEF\xBC\xA7\xEF\xBD\x8F.com"), "go.com");  // full width
  EXPECT_EQ(ToAscii("u\xCC\x88.de"), "xn--tda.de");              // letter and accent
  EXPECT_EQ(ToAscii("a\xC2\xAD"
                    "b\xE2\x81\xA0.com"),
            "ab.com");                                                                     // soft hyphen, word joiner
  EXPECT_EQ(ToAscii("\xE1\xBA\x9E.com"), "xn--zca.com");                                   // capital sharp s
  EXPECT_EQ(ToAscii("\xCE\xB2\xCF\x8C\xCE\xBB\xCE\xBF\xCF\x82.com"), "xn--nxasmm1c.com");  // final sigma
}

TEST_P(SystemIdna, SymbolsAndHyphensMayStandAnywhere) {
  EXPECT_EQ(ToAscii("\xE2\x98\x83.net"), "xn--n3h.net");     // a snowman
  EXPECT_EQ(ToAscii("I\xE2\x99\xA5.net"), "xn--i-n3p.net");  // letter and heart
  EXPECT_EQ(ToAscii("-\xE2\x80\xA0"), "xn----xhn");
  EXPECT_EQ(ToAscii("a\xE2\x80\xA0--"), "xn--a---kp0a");
  EXPECT_EQ(ToAscii("-\xEF\xBC\xA1-"), "-a-");  // full width between hyphens
  EXPECT_EQ(ToAscii("xn--\xE2\x98\x83"), "");
}

TEST_P(SystemIdna, CharactersThatNoNameHasAreRefused) {
  EXPECT_EQ(ToAscii("\xEF\xBF\xBD.com"), "");     // replacement character
  EXPECT_EQ(ToAscii("a\xEF\xBF\xBA.com"), "");    // interlinear annotation
  EXPECT_EQ(ToAscii("\xEF\xB7\x90zyx.com"), "");  // noncharacter
  EXPECT_EQ(ToAscii("xn--te\xC5\xA1la"), "");     // coded and not
}

}  // namespace
}  // namespace quenlar
