#include "base/letter_pairs.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

bool MayHold(const std::string& text) { return MayHoldPair<LetterPair{'a', 'b'}, LetterPair{'/', '#'}>(text); }

TEST(MayHoldPair, MeetsEachPairAtEveryPlaceOfEveryLength) {
  for (std::size_t size = 0; size < 70; ++size) {
    const std::string blank(size, '.');
    EXPECT_FALSE(MayHold(blank));
    for (std::size_t at = 0; at + 2 <= size; ++at) {
      for (const char* pair : {"ab", "AB", "aB", "/#"}) {
        ASSERT_TRUE(MayHold(std::string(blank).replace(at, 2, pair))) << size << ' ' << at << pair;
      }
      for (const char* other : {"ba", "a#", "/b", "bb", "##", "a."}) {
        ASSERT_FALSE(MayHold(std::string(blank).replace(at, 2, other))) << size << ' ' << at << other;
      }
    }
  }
}

}  // namespace
}  // namespace quenlar
