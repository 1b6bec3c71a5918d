// Addresses that their owners hide from programs.
#include <gmock/gmock.h>

#include "page/address_finder.h"
#include "page_parts.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ProtectedAddressesTest, WordsForTheSignsStandInBracketsOfAllKinds) {
  for (const char* const text : {"name [at] firma [dot] de", "name(at)firma(dot)de", "name {AT} firma {DOT} de",
                                 "name <at> firma <dot> de", "name[ at ]firma[ dot ]de", "name [at] firma.de",
                                 "name@firma [dot] de", "name\u00A0[at]\u00A0firma\n[dot]\n de"}) {
    EXPECT_EQ(InText(text), "[name@firma.de]") << text;
  }
  for (const char* const text : {"name [at) firma.de", "name [att] firma.de", "name at] firma.de", "name [at] firma"}) {
    EXPECT_EQ(InText(text), "") << text;
  }
}

TEST(ProtectedAddressesTest, TheWordsOfSixLanguagesAreKnown) {
  for (const char* const at : {"at", "arobase", "ät", "ÄT", "Klammeraffe", "chiocciola", "arroba", "アット"}) {
    EXPECT_EQ(InText("name [" + std::string(at) + "] firma.de"), "[name@firma.de]") << at;
    EXPECT_EQ(InText("name " + std::string(at) + " firma dot de"), "[name@firma.de]") << at;
  }
  for (const char* const dot : {"dot", "point", "punkt", "Punto", "ドット"}) {
    EXPECT_EQ(InText("name [at] firma (" + std::string(dot) + ") de"), "[name@firma.de]") << dot;
    EXPECT_EQ(InText("name at firma " + std::string(dot) + " de"), "[name@firma.de]") << dot;
  }
}

TEST(ProtectedAddressesTest, BetweenBlanksBothWordsMustStandThere) {
  EXPECT_EQ(InText("name at firma dot de"), "[name@firma.de]");
  EXPECT_EQ(InText("name at mail dot firma dot co dot uk."), "[name@mail.firma.co.uk]");
  EXPECT_EQ(InText("name at firma [dot] de"), "[name@firma.de]");
  EXPECT_EQ(InText("name [at] firma dot de"), "[name@firma.de]");
  EXPECT_EQ(InText("name　アット　firma　ドット　jp"), "[name@firma.jp]");
  EXPECT_EQ(InText("meet us at firma.de"), "");
  EXPECT_EQ(InText("name@firma dot de"), "");
  EXPECT_EQ(InText("nameat firma dot de"), "");
  EXPECT_EQ(InText("name at firma dotde"), "");
}

TEST(ProtectedAddressesTest, WhatIsDecodedMustPassAsAnAddress) {
  for (const char* const text : {"look at this dot once", "a..b [at] firma.de", "jürgen [at] firma.de",
                                 "x [at] example.com", "x [at] firma.de_y", "[at] firma.de"}) {
    EXPECT_EQ(InText(text), "") << text;
  }
  EXPECT_EQ(InText("name [at] firma [dot] de (punkt) also"), "[name@firma.de]");
}

TEST(ProtectedAddressesTest, TagsMayStandBetweenTheWords) {
  EXPECT_EQ(InText("|name| |[at]| firma|.de"), "[name@firma.de]");
  EXPECT_EQ(InText("Mail|name [at] firma.de|Tel"), "[name@firma.de]");
}

TEST(ProtectedAddressesTest, WhatStandsPlainlyTooIsNotCounted) {
  FinderFixture fixture;
  fixture.finder.Text({.text = "NAME [at] firma.de other [at] firma.de Other (at) firma.de"});
  EXPECT_EQ(fixture.finder.ProtectedCount(), 2u);
  fixture.finder.Script("'name@firma.de'");
  EXPECT_EQ(fixture.finder.ProtectedCount(), 1u);
  EXPECT_THAT(fixture.Found(), ElementsAre("protected other@firma.de", "script name@firma.de"));
}

TEST(ProtectedAddressesTest, TheyAreListedOnlyWhenAskedFor) {
  const FakeIdna idna;
  AddressFinder finder(idna, {});
  finder.Text({.text = "name [at] firma [dot] de plain@firma.de"});
  EXPECT_EQ(finder.ProtectedCount(), 1u);
  ASSERT_EQ(finder.Addresses().size(), 1u);
  EXPECT_EQ(finder.Addresses()[0].address, "plain@firma.de");
}

TEST(ProtectedAddressesTest, WhatIsWrittenIsTheTextItself) {
  FinderFixture fixture;
  fixture.finder.Text({.text = "(Name [at] Firma [dot] de)"});
  ASSERT_EQ(fixture.finder.Addresses().size(), 1u);
  EXPECT_EQ(fixture.finder.Addresses()[0].written, "Name [at] Firma [dot] de");
  EXPECT_EQ(fixture.finder.Addresses()[0].address, "Name@firma.de");
}

TEST(ProtectedAddressesTest, KeyedHexDigitsAreDecoded) {
  const auto decode = [](std::string_view hex) { return FoundIn([&](AddressFinder& finder) { finder.CfEmail(hex); }); };
  // "name@firma.de", every byte combined with 0x2A.
  EXPECT_THAT(decode("2a444b474f6a4c4358474b044e4f"), ElementsAre("protected name@firma.de"));
  EXPECT_THAT(decode("2A444B474F6A4C4358474B044E4F"), ElementsAre("protected name@firma.de"));
  EXPECT_THAT(decode("2a444b474f6a4c4358474b044e4"), IsEmpty());
  EXPECT_THAT(decode("2a444b474f6a4c4358474b044e4x"), IsEmpty());
  EXPECT_THAT(decode(""), IsEmpty());
}

TEST(ProtectedAddressesTest, TextThatIsShownFromTheLastCharacterToTheFirstIsTurned) {
  const auto turn = [](std::string_view text) {
    return FoundIn([&](AddressFinder& finder) { finder.Text({.text = text, .reversed = true}); });
  };
  EXPECT_THAT(turn("ed.amrif@eman"), ElementsAre("protected name@firma.de"));
  EXPECT_THAT(turn("ed.amrif@negrüj"), IsEmpty());
  EXPECT_THAT(turn("nc.司公@eman"), ElementsAre("protected name@xn--55qx5d.cn"));
  EXPECT_THAT(turn("name@firma.de"), IsEmpty());
}

TEST(ProtectedAddressesTest, TheyAreSeenInAttributesTargetsCommentsAndScriptsToo) {
  EXPECT_THAT(FoundIn([](AddressFinder& finder) { finder.Attribute("name (at) firma.de"); }),
              ElementsAre("protected name@firma.de"));
  EXPECT_THAT(FoundIn([](AddressFinder& finder) { finder.Mailto("mailto:name%20[at]%20firma.de"); }),
              ElementsAre("protected name@firma.de"));
  EXPECT_THAT(FoundIn([](AddressFinder& finder) { finder.Comment(" name at firma dot de "); }),
              ElementsAre("protected name@firma.de"));
  EXPECT_THAT(FoundIn([](AddressFinder& finder) { finder.Script(R"(x = "\nname (at) firma.de";)"); }),
              ElementsAre("protected name@firma.de"));
}

}  // namespace
}  // namespace quenlar
