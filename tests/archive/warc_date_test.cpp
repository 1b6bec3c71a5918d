#include "archive/warc_date.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(WarcDateTest, DatesAreSecondsWhateverTheirForm) {
  constexpr std::int64_t kTime = 1'795'353'632;  // 2026-11-22 13:20:32
  for (const char* text :
       {"2026-11-22T13:20:32Z", "2026-11-22T13:20:32.999999Z", "2026-11-22t13:20:32z", "2026-11-22 13:20:32",
        "20261122132032", "2026-11-22T14:20:32+01:00", "2026-11-22T09:50:32-0330", " 2026-11-22T13:20:32Z "}) {
    EXPECT_EQ(ParseWarcDate(text), kTime) << text;
  }
  EXPECT_EQ(ParseWarcDate("2026-11-22T13:20Z"), kTime - 32);
  EXPECT_EQ(ParseWarcDate("2026-11-22"), kTime - 32 - 20 * 60 - 13 * 3600);
  EXPECT_EQ(ParseWarcDate("1970"), 0);
  EXPECT_EQ(ParseWarcDate("1970-02"), 31 * 86400);
}

TEST(WarcDateTest, WhatIsNoDateIsNone) {
  for (const char* text : {"", "yesterday", "2026-13-01", "2026-02-30T00:00:00Z", "2026-11-22T25:00:00Z", "2026-1-2",
                           "2026-11-22T13:20:32X", "Sun, 22 Nov 2026 13:20:32 GMT", "2026-11-22T13:20:32+"}) {
    EXPECT_FALSE(ParseWarcDate(text)) << text;
  }
}

}  // namespace
}  // namespace quenlar
