#include "base/text_hash.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "platform/index_table.h"

namespace quenlar {
namespace {

TEST(TextHash, LowersCapitalsAndNothingElse) {
  for (int c = 0; c < 256; ++c) {
    const auto byte = static_cast<unsigned char>(c);
    const std::uint64_t eight = byte * 0x0101010101010101u;
    const auto lower = static_cast<unsigned char>(ToLower(static_cast<char>(byte)));
    EXPECT_EQ(LowerEight(eight), lower * 0x0101010101010101u) << c;
    EXPECT_EQ(LowerEight(std::uint64_t{byte} << 24), std::uint64_t{lower} << 24) << c;
  }
}

TEST(TextHash, IsEqualForTextsThatAreEqual) {
  const TextHash hash(1);
  for (std::size_t size = 0; size < 40; ++size) {
    const std::string lower(size, 'q'), upper(size, 'Q'), other(size, 'r');
    EXPECT_EQ(hash.IgnoringCase(lower), hash.IgnoringCase(upper));
    EXPECT_EQ(hash.Exact(lower), hash.Exact(std::string(lower)));
    if (size > 0) {
      EXPECT_NE(hash.Exact(lower), hash.Exact(upper));
      EXPECT_NE(hash.IgnoringCase(lower), hash.IgnoringCase(other));
    }
  }
}

TEST(TextHash, SpreadsSimilarTextsAndDependsOnTheSeed) {
  std::set<std::uint32_t> values;
  const TextHash hash(7), other(8);
  int same = 0;
  for (int i = 0; i < 20000; ++i) {
    const std::string text = "http://h/page" + std::to_string(i);
    values.insert(hash.Exact(text));
    same += hash.Exact(text) == other.Exact(text);
  }
  EXPECT_GT(values.size(), 19990u);
  EXPECT_LT(same, 3);
}

TEST(IndexTable, FindsEveryNumberPutIn) {
  IndexTable table;
  EXPECT_FALSE(table.Contains(5, [](std::uint32_t) { return true; }));
  for (std::uint32_t i = 0; i < 5000; ++i) table.Insert(i % 1000 * 0x9E3779B9u, i);
  for (std::uint32_t i = 0; i < 5000; ++i) {
    EXPECT_TRUE(table.Contains(i % 1000 * 0x9E3779B9u, [&](std::uint32_t number) { return number == i; }));
    EXPECT_FALSE(
        table.Contains(i % 1000 * 0x9E3779B9u, [&](std::uint32_t number) { return number % 1000 != i % 1000; }));
  }
  EXPECT_FALSE(table.Contains(12345, [](std::uint32_t) { return true; }));
}

}  // namespace
}  // namespace quenlar
