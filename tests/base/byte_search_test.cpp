#include "base/byte_search.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(FindByte, FindsAByteAtEveryPlaceOfEveryLength) {
  for (std::size_t size = 0; size < 450; size += size < 200 ? 1 : 17) {
    const std::string blank(size, '.');
    EXPECT_EQ(FindByte(blank, 'x'), kNone);
    EXPECT_EQ(FindLastByte(blank, 'x', 0, size), kNone);
    for (std::size_t at = 0; at < size; ++at) {
      std::string text = blank;
      text[at] = 'x';
      ASSERT_EQ(FindByte(text, 'x'), at);
      ASSERT_EQ(FindByte(text, 'x', at), at);
      ASSERT_EQ(FindByte(text, 'x', at + 1), kNone);
      ASSERT_EQ(FindLastByte(text, 'x', 0, size), at);
      ASSERT_EQ(FindLastByte(text, 'x', at, at + 1), at);
      ASSERT_EQ(FindLastByte(text, 'x', 0, at), kNone);
      ASSERT_EQ(FindLastByte(text, 'x', at + 1, size), kNone);
    }
  }
}

TEST(FindOneOf, FindsTheFirstOfItsBytesFromEveryPlace) {
  for (std::size_t size = 0; size < 70; ++size) {
    std::string text(size, '.');
    for (std::size_t i = 5; i < size; i += i % 11 + 3) text[i] = "xyz"[i % 3];
    for (std::size_t from = 0; from <= size; ++from) {
      ASSERT_EQ(FindOneOf(text, {'x', 'y', 'z'}, from), text.find_first_of("xyz", from)) << text << ' ' << from;
    }
  }
}

TEST(FindByte, TakesTheNearestOfMany) {
  std::string text(300, '.');
  for (const std::size_t at : {7u, 70u, 71u, 222u}) text[at] = '\xFF';
  EXPECT_EQ(FindByte(text, '\xFF'), 7u);
  EXPECT_EQ(FindByte(text, '\xFF', 8), 70u);
  EXPECT_EQ(FindByte(text, '\xFF', 72), 222u);
  EXPECT_EQ(FindLastByte(text, '\xFF', 0, 300), 222u);
  EXPECT_EQ(FindLastByte(text, '\xFF', 0, 222), 71u);
  EXPECT_EQ(FindLastByte(text, '\xFF', 0, 71), 70u);
  EXPECT_EQ(FindByte(text, '\xFF', 1000), kNone);
}

TEST(FindByte, ReadsNothingOutsideTheText) {
  for (std::size_t size = 0; size < 150; ++size) {
    const std::string heap(size, 'x');  // a read past its end is seen by the sanitizer
    EXPECT_EQ(FindByte(heap, 'y'), kNone);
    EXPECT_EQ(FindLastByte(heap, 'y', 0, size), kNone);
  }
}

}  // namespace
}  // namespace quenlar
