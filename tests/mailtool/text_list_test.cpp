#include "mailtool/text_list.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(TextList, GivesBackTextsOfEveryLength) {
  std::vector<std::string> texts;
  for (const std::size_t length :
       {0u, 1u, 3u, 4u, 253u, 254u, 255u, 256u, 70000u, 1048570u, 1048571u, 1048572u, 1048576u, 3000000u, 5u, 1u}) {
    texts.push_back(std::string(length, static_cast<char>('a' + texts.size())));
  }
  TextList list;
  for (int round = 0; round < 3; ++round) {
    for (const std::string& text : texts) list.Add(text);
  }
  ASSERT_EQ(list.Count(), 3 * texts.size());
  for (std::uint32_t i = 0; i < list.Count(); ++i) EXPECT_EQ(list.At(i), texts[i % texts.size()]) << i;
}

TEST(TextList, KeepsTextsInPlaceWhileItGrows) {
  TextList list;
  list.Add("first");
  const char* const first = list.At(0).data();
  for (int i = 0; i < 200000; ++i) list.Add("another text " + std::to_string(i));
  EXPECT_EQ(list.At(0).data(), first);
  EXPECT_EQ(list.At(200000), "another text 199999");
}

TEST(TextList, IsEmptyAndUsableAfterClear) {
  TextList list;
  list.Add("a");
  list.Clear();
  EXPECT_EQ(list.Count(), 0u);
  list.Add("b");
  EXPECT_EQ(list.At(0), "b");
}

}  // namespace
}  // namespace quenlar
