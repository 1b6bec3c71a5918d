#include "web/address_scan.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/reference_pattern.h"

namespace quenlar {
namespace {

std::vector<std::string> FindAll(std::string_view text) {
  std::vector<std::string> all;
  std::size_t from = 0;
  for (;;) {
    const std::string_view address = NextAddress(text, from);
    if (address.empty()) return all;
    all.emplace_back(address);
    from = static_cast<std::size_t>(address.data() - text.data()) + address.size();
  }
}

TEST(NextAddress, FindsWhatThePatternFinds) {
  const struct {
    const char* text;
    const char* address;
  } kCases[] = {
      {"", ""},
      {"no sign", ""},
      {"a@b.de", "a@b.de"},
      {"A.B_c%d+e-f@G-h.I.JKLM", "A.B_c%d+e-f@G-h.I.JKLM"},
      {"@b.de", ""},
      {"a@", ""},
      {"a@.de", ""},
      {"a@..de", "a@..de"},
      {"a@-.de", "a@-.de"},
      {"a@b", ""},
      {"a@b.d", ""},
      {"a@b.technology", ""},
      {"u@mail.co.technology", "u@mail.co"},
      {"a@b.de.x", "a@b.de"},
      {"a@b.de.", "a@b.de"},
      {"a@b.de-x", "a@b.de"},
      {"a@b.de1", ""},
      {"a@b.de_", ""},
      {"a@b.c0m x@y.zz", "x@y.zz"},
      {"a@b@c.de", "b@c.de"},
      {"pic@2x.png", "pic@2x.png"},
      {"v@1.0.0.css", "v@1.0.0.css"},
      {"..a@b.de", "a@b.de"},
      {"...@b.de", ""},
      {"a..@b.de", "a..@b.de"},
      {"%20a@b.de", "20a@b.de"},
      {"m\xC3\xBCller@x.de", "ller@x.de"},
      {"a@b.de\xC3\xBC", "a@b.de"},
      {"a@m\xC3\xBC.de", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(NextAddress(c.text), c.address) << c.text;
}

TEST(NextAddress, GoesOnWhereTheLastMatchEnded) {
  EXPECT_EQ(FindAll("a@b.de c@d.de"), (std::vector<std::string>{"a@b.de", "c@d.de"}));
  // The second match may begin with the dot: a word character stands before it.
  EXPECT_EQ(FindAll("x@y.com.z@w.com"), (std::vector<std::string>{"x@y.com", ".z@w.com"}));
  EXPECT_EQ(FindAll("a@b.co@d.com"), (std::vector<std::string>{"a@b.co"}));
  EXPECT_EQ(NextAddress("ab@c.de", 1), "");  // no word boundary is left before the sign
  EXPECT_EQ(NextAddress("a.b@c.de", 1), ".b@c.de");
  EXPECT_EQ(NextAddress("a@b.de", 6), "");
}

// Parts of every length, with and without enough text around them to be taken sixteen bytes at a time.
TEST(NextAddress, FindsWhatThePatternFindsInRandomTexts) {
  const auto pattern = BoostPattern("\\b[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,4}\\b");
  std::mt19937 random(20);
  const auto below = [&](std::size_t count) { return random() % count; };
  const std::string kBytes = "aZ09.._-%+@@ \xC3<";
  const std::vector<std::string> kPieces = {".de",  ".info", ".abcde", "@", "@b.org", "@host",
                                            "name", "x.y",   "1",      "-", "_",      " "};
  std::size_t found = 0;
  for (int i = 0; i < 20000; ++i) {
    std::string text(below(40), ' ');
    for (std::size_t pieces = below(12); pieces > 0; --pieces) {
      text += kPieces[below(kPieces.size())];
      for (std::size_t bytes = below(3); bytes > 0; --bytes) text += kBytes[below(kBytes.size())];
      if (below(8) == 0) text += std::string(below(40), 'k');
    }
    text += std::string(below(40), ' ');
    std::vector<std::string> expected;
    for (const std::string_view match : pattern->FindAll(text)) expected.emplace_back(match);
    found += expected.size();
    ASSERT_EQ(FindAll(text), expected) << text;
  }
  EXPECT_GT(found, 2000u);
}

TEST(FindAddressSign, AsksNothingOfWhatStandsAround) {
  EXPECT_EQ(FindAddressSign("a@b.technology", 0).at, 1u);
  EXPECT_EQ(FindAddressSign("-@b.d1 -@b.de5", 0).at, 8u);
  EXPECT_EQ(FindAddressSign("a@.de", 0).at, std::string_view::npos);
  EXPECT_EQ(FindAddressSign("a@b.d", 0).at, std::string_view::npos);
  EXPECT_EQ(FindAddressSign("@b.de", 0).at, std::string_view::npos);
}

}  // namespace
}  // namespace quenlar
