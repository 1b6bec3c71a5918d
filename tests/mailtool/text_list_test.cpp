#include "mailtool/text_list.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(TextList, GivesBackTextsOfEveryLength) {
  std::vector<std::string> texts;
  for (const std::size_t length : {0u, 1u, 3u, 4u, 252u, 253u, 254u, 255u, 256u, 70000u, 1048570u, 1048571u, 1048572u,
                                   1048576u, 3000000u, 5u, 1u}) {
    texts.push_back(std::string(length, static_cast<char>('a' + texts.size())));
  }
  TextList list;
  std::vector<TextList::Place> places;
  for (int round = 0; round < 3; ++round) {
    for (const std::string& text : texts) places.push_back(list.Add(text));
  }
  ASSERT_EQ(list.Count(), 3 * texts.size());
  for (std::size_t i = 0; i < places.size(); ++i) EXPECT_TRUE(list.At(places[i]) == texts[i % texts.size()]) << i;
  std::size_t i = 0;
  for (const std::string_view text : list) EXPECT_TRUE(text == texts[i++ % texts.size()]) << i;
  EXPECT_EQ(i, places.size());
}

// Every way in which a block can end: full to the last unit, or with rests of every size behind the last text.
TEST(TextList, GoesThroughBlocksHoweverTheyEnd) {
  for (std::size_t length = 200; length < 260; ++length) {
    TextList list;
    const std::string text(length, 'x');
    std::uint32_t seen = 0;
    for (int i = 0; i < 9000; ++i) list.Add(text);
    for (const std::string_view each : list) seen += each == text;
    EXPECT_EQ(seen, 9000u) << length;
    EXPECT_EQ(std::distance(list.begin(), list.end()), 9000) << length;
  }
}

TEST(TextList, KeepsTextsInPlaceWhileItGrows) {
  TextList list;
  const TextList::Place place = list.Add("first");
  const char* const first = list.At(place).data();
  for (int i = 0; i < 200000; ++i) list.Add("another text " + std::to_string(i));
  EXPECT_EQ(list.At(place).data(), first);
  EXPECT_EQ(list.At(list.Add("last")), "last");
}

TEST(TextList, IsEmptyAndUsableAfterClear) {
  TextList list;
  EXPECT_EQ(list.begin(), list.end());
  list.Add("a");
  list.Clear();
  EXPECT_EQ(list.Count(), 0u);
  EXPECT_EQ(list.begin(), list.end());
  EXPECT_EQ(list.At(list.Add("b")), "b");
}

}  // namespace
}  // namespace quenlar
