#include "netstat/last_change.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(SingleText, HasUpToSevenDigitsAndAnExponentFromTenMillionOn) {
  const struct {
    float value;
    const char* text;
  } kCases[] = {{0, "0"},
                {7, "7"},
                {-12, "-12"},
                {1234567, "1234567"},
                {9999999, "9999999"},
                {10000000, "1E+07"},
                {12345678, "1.234568E+07"},
                {-20000000, "-2E+07"},
                {1200000000, "1.2E+09"},
                {2147483648.0F, "2.147484E+09"}};
  for (const auto& c : kCases) EXPECT_EQ(SingleText(c.value), c.text);
}

TEST(DateFromNumberText, TakesANumberForDaysAndNothingElse) {
  const struct {
    const char* text;
    std::optional<double> date;
  } kCases[] = {{"0", 0.0},      {"1.5", 1.5},
                {"-2", -2.0},    {"+3", 3.0},
                {"-1E+0", -1.0}, {"", {}},
                {"-", {}},       {"1.2E+", {}},
                {"1.23E", {}},   {"1E+07", {}},
                {"12:30", {}},   {" 1", {}},
                {"1 ", {}},      {"nan", {}},
                {"inf", {}},     {"2958465", 2958465.0},
                {"2958466", {}}, {"-657434", -657434.0},
                {"-657435", {}}, {"--1", {}}};
  for (const auto& c : kCases) EXPECT_EQ(DateFromNumberText(c.text), c.date) << c.text;
}

TEST(LastChange, GoesThroughTheFirstFiveCharactersOfASinglePrecisionText) {
  const struct {
    std::uint32_t ticks;
    std::optional<double> date;
  } kCases[] = {{0, 0.0},
                {31, 31.0},
                {36526, 36526.0},
                {365261, 36526.0},  // "365261" loses its last digit
                {9999999, 99999.0},
                {10000000, {}},        // "1E+07" is beyond the year 9999
                {12000000, {}},        // "1.2E+"
                {12300000, {}},        // "1.23E"
                {12345678, 1.234},     // "1.234568E+07"
                {4294967295u, -1.0},   // bit for bit a signed -1
                {2147483648u, -2.14},  // "-2.147484E+09"
                {3294967296u, -1.0}};  // "-1E+09" cut to "-1E+0"
  for (const auto& c : kCases) EXPECT_EQ(LastChangeDate(c.ticks), c.date) << c.ticks;
}

}  // namespace
}  // namespace quenlar
