#include "base/number.h"

#include <cmath>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(LeadingNumber, ReadsWhatBeginsTheText) {
  const struct {
    const char* text;
    double value;
  } kCases[] = {{"", 0},    {"   ", 0},   {"abc", 0},  {"12abc", 12},    {"  7", 7},   {"-3", -3},
                {"+4", 4},  {"2.5", 2.5}, {".5", 0.5}, {"3.1beta", 3.1}, {"1e2", 100}, {"1e", 1},
                {"--1", 0}, {"nan", 0},   {"inf", 0},  {"1e-400", 0},    {"5\0001", 5}};
  for (const auto& c : kCases) EXPECT_EQ(LeadingNumber(c.text), c.value) << c.text;
}

TEST(LeadingNumber, IsInfiniteWhereTheNumberIsTooLarge) {
  EXPECT_TRUE(std::isinf(LeadingNumber("1e400")));
  EXPECT_TRUE(std::isinf(LeadingNumber(std::string(400, '9'))));
}

TEST(RoundToInt16, RoundsHalvesToEvenAndRefusesWhatDoesNotFit) {
  EXPECT_EQ(RoundToInt16(2.5), 2);
  EXPECT_EQ(RoundToInt16(3.5), 4);
  EXPECT_EQ(RoundToInt16(-2.5), -2);
  EXPECT_EQ(RoundToInt16(32767.4), 32767);
  EXPECT_FALSE(RoundToInt16(32767.5));
  EXPECT_FALSE(RoundToInt16(70000));
  EXPECT_FALSE(RoundToInt32(HUGE_VAL));
  EXPECT_EQ(RoundToInt32(70000), 70000);
}

TEST(Counted, AgreesWithTheNumber) {
  EXPECT_EQ(Counted(0, "page"), "0 pages");
  EXPECT_EQ(Counted(1, "page"), "1 page");
  EXPECT_EQ(Counted(2, "page"), "2 pages");
  EXPECT_EQ(Counted(1, "address", "es"), "1 address");
  EXPECT_EQ(Counted(21, "address", "es"), "21 addresses");
}

}  // namespace
}  // namespace quenlar
