#include "page/unwanted_addresses.h"

#include <gtest/gtest.h>

#include "base/ascii.h"

namespace quenlar {
namespace {

bool KeepsAllButAnna(std::string_view address) { return !EqualsIgnoreCase(address, "anna@firma.de"); }

// What of the text names anna@firma.de, or "" where nothing does.
std::string Named(std::string_view text) {
  const auto place = NextUnwanted(text, KeepsAllButAnna);
  return place ? std::string(text.substr(place->begin, place->end - place->begin)) : "";
}

TEST(UnwantedAddresses, AreFoundInEverySpelling) {
  for (const char* text : {"anna@firma.de", "Anna@Firma.DE", "anna%40firma.de", "%61nna%40firma%2Ede"}) {
    EXPECT_EQ(Named(text), text);
    EXPECT_EQ(Named("Write to " + std::string(text) + ", please"), text);
    EXPECT_EQ(Named("https://www.firma.de/?mail=" + std::string(text) + "&x=1"), text);
    EXPECT_EQ(Named("bob@firma.de " + std::string(text) + "."), text);
    EXPECT_EQ(Named("https://www.firma.de/people/" + std::string(text) + ".html"), text);
  }
}

TEST(UnwantedAddresses, DomainsBeyondAsciiAreThoseOfTheirLabelsInAscii) {
  const auto keeps = [](std::string_view address) { return address != "info@xn--mller-kva.de"; };
  for (const char* text : {"info@m\xC3\xBCller.de", "info@M\xC3\x9CLLER.DE", "info%40m%C3%BCller.de",
                           "Kontakt info@m\xC3\xBCller.de, Tel. 1", "info@xn--mller-kva.de"}) {
    EXPECT_TRUE(NextUnwanted(text, keeps)) << text;
  }
  for (const char* text : {"info@m\xFCller.de", "info@m\xC3\xBCller.dev", "info@muller.de"}) {
    EXPECT_FALSE(NextUnwanted(text, keeps)) << text;
  }
  EXPECT_EQ(Named("anna@firma.de\xE2\x80\x93Home"), "anna@firma.de") << "a dash behind";
}

TEST(UnwantedAddresses, ALongerAddressIsAnotherOne) {
  for (const char* text :
       {"joanna@firma.de", "jo.anna@firma.de", "jo-anna@firma.de", "anna@firma.de.com", "anna@firma.dev",
        "anna@xfirma.de", "anna@mail.firma.de", "anna @firma.de", "@firma.de", "anna@", "%40", "anna", ""}) {
    EXPECT_EQ(Named(text), "") << text;
  }
}

TEST(UnwantedAddresses, TheirPlaceIsGivenWithItsSign) {
  const std::string text = "a@b.de, anna%40firma.de";
  const auto place = NextUnwanted(text, KeepsAllButAnna);
  ASSERT_TRUE(place);
  EXPECT_EQ(place->begin, text.find("anna"));
  EXPECT_EQ(place->sign, text.find("%40"));
  EXPECT_EQ(place->end, text.size());
  EXPECT_EQ(place->address, "anna@firma.de");
  EXPECT_FALSE(NextUnwanted(text, KeepsAllButAnna, place->end));
}

TEST(UnwantedAddresses, TextsOfSignsAndCodesAreReadInLinearTime) {
  std::string text;
  for (int i = 0; i < 100'000; ++i) text += i % 2 == 0 ? "a@" : "%40'";
  EXPECT_EQ(Named(text), "");
}

TEST(UnwantedAddresses, LeaveATextWithoutTheirCharacters) {
  EXPECT_EQ(WithoutUnwanted("anna@firma.de and bert@firma.de, anna%40firma.de !", KeepsAllButAnna),
            " and bert@firma.de,  !");
  EXPECT_EQ(WithoutUnwanted("joanna@firma.de", KeepsAllButAnna), "joanna@firma.de");
  EXPECT_EQ(WithoutUnwanted("", KeepsAllButAnna), "");
}

}  // namespace
}  // namespace quenlar
