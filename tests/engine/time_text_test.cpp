#include "engine/time_text.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(TimeText, IsRfc3339InUtc) {
  EXPECT_EQ(TimeText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(TimeText(951782399), "2000-02-28T23:59:59Z");
  EXPECT_EQ(TimeText(951782400), "2000-02-29T00:00:00Z");
  EXPECT_EQ(TimeText(-1), "1969-12-31T23:59:59Z");
  EXPECT_EQ(TimeText(4102444800), "2100-01-01T00:00:00Z");
}

TEST(ParseTime, TakesDatesAndTimes) {
  EXPECT_EQ(ParseTime("1970-01-01"), 0);
  EXPECT_EQ(ParseTime("2000-02-29"), 951782400);
  EXPECT_EQ(ParseTime("2000-02-28T23:59:59Z"), 951782399);
  EXPECT_EQ(ParseTime("2000-02-28 23:59"), 951782399 - 59);
  EXPECT_EQ(ParseTime("2000-02-28t23:59:59"), 951782399);
}

TEST(ParseTime, RefusesWhatIsNoTime) {
  for (const char* const text :
       {"", "yesterday", "2000", "2000-13-01", "2000-02-30", "2000-2-3", "2000-02-28T", "2000-02-28T24:00",
        "2000-02-28T10:60", "2000-02-28T10:00:60", "2000-02-28T10:00Z1", "-200-01-01", "2000-02-28T+1:00"}) {
    EXPECT_EQ(ParseTime(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace quenlar
