// The finder against its plain reference, on texts made at random and made to hurt.
#include <random>

#include <gtest/gtest.h>

#include "page_parts.h"
#include "random_addresses.h"
#include "reference_addresses.h"
#include "support/rounds.h"

namespace quenlar {
namespace {

std::string Line(std::string_view address, std::string_view written, AddressPlace place) {
  return std::string(PlaceName(place)).append(1, ' ').append(address).append(" [").append(written).append("]");
}

template <typename HandOver>
void ExpectTheSame(const std::string& text, HandOver hand_over) {
  FinderFixture fixture;
  ReferenceFinder reference;
  hand_over(fixture.finder);
  hand_over(reference);
  std::vector<std::string> found, expected;
  std::size_t protected_ones = 0;
  for (const PageAddress& address : fixture.finder.Addresses()) {
    found.push_back(Line(address.address, address.written, address.place));
    protected_ones += address.place == AddressPlace::kProtected ? 1 : 0;
  }
  for (const ReferenceAddress& address : reference.Addresses()) {
    expected.push_back(Line(address.address, address.written, address.place));
  }
  EXPECT_EQ(found, expected) << text;
  EXPECT_EQ(fixture.finder.ProtectedCount(), protected_ones);
}

TEST(AddressReferenceTest, RandomTextsHoldTheSameAddresses) {
  std::mt19937 random(1);
  for (std::size_t round = 0; round < Rounds(2000) && !testing::Test::HasFailure(); ++round) {
    const RandomRun run = MakeRandomRun(random, 1 + random() % 24);
    const TextRun text{.text = run.text, .joints = run.joints, .reversed = random() % 16 == 0};
    ExpectTheSame(run.text, [&](auto& finder) {
      switch (round % 5) {
        case 0:
          return finder.Attribute(run.text);
        case 1:
          return finder.Script(run.text);
        case 2:
          return finder.Mailto("mailto:" + run.text);
        default:
          return finder.Text(text);
      }
    });
  }
}

TEST(AddressReferenceTest, HostileTextsHoldTheSameAddresses) {
  std::mt19937 random(2);
  for (std::size_t round = 0; round < Rounds(20) && !testing::Test::HasFailure(); ++round) {
    const std::string text = MakeHostileText(random, 50 + random() % 300);
    ExpectTheSame(text, [&](auto& finder) {
      finder.Text({.text = text});
      finder.Script(text);
      finder.Mailto("mailto:" + text);
    });
  }
}

TEST(AddressReferenceTest, PagesOfManyPartsHoldTheSameAddresses) {
  std::mt19937 random(3);
  for (std::size_t round = 0; round < Rounds(200) && !testing::Test::HasFailure(); ++round) {
    std::vector<RandomRun> runs;
    std::string all;
    for (std::size_t i = 0; i < 8; ++i) {
      runs.push_back(MakeRandomRun(random, 6));
      all += runs.back().text + '\n';
    }
    ExpectTheSame(all, [&](auto& finder) {
      for (std::size_t i = 0; i < runs.size(); ++i) {
        if (i % 3 == 0) finder.Comment(runs[i].text);
        if (i % 3 == 1) finder.Script(runs[i].text);
        finder.Text({.text = runs[i].text, .joints = runs[i].joints});
      }
    });
  }
}

}  // namespace
}  // namespace quenlar
