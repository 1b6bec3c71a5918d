#include "engine/upgrade_check.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(UpgradeCheck, FindsANewerVersionByTheFirstLinesLeadingNumber) {
  const struct {
    std::string page;
    bool newer;
  } kCases[] = {{"3.0", false},
                {"3.01", true},
                {"4", true},
                {"", false},
                {"3.1beta", true},
                {"2.9\r\n4", false},
                {"4\r\n2", true},
                {"  3.5\r\nmore", true},
                {"\r\n4", false},
                {"\n4", false},  // a lone line feed ends no line, and is no blank
                {"3.0\n4.0", false},
                {"v4", false},
                {"<html>4", false},
                {"-4", false},
                {"999", true},
                {"1e400", false},
                {std::string(400, '9'), false},
                {"nan", false},
                {"inf", false},
                {std::string("\0"
                             "4",
                             2),
                 false},
                {std::string("4\0\0", 3), true}};
  for (const auto& c : kCases) EXPECT_EQ(NewerVersionPublished(c.page), c.newer) << c.page;
}

}  // namespace
}  // namespace quenlar
