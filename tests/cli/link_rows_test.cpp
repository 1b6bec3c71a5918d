#include "cli/link_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(LinkRowsTest, ARowHasAUrlAndMayHaveTheRest) {
  const auto links = ParseLinkRows(
      "{\"url\":\"http://a.example/\"}\n\n"
      "{\"url\":\"https://b.example/x\",\"depth\":3,\"private\":true,\"https_first\":true,\"other\":[1]}\r\n");
  ASSERT_TRUE(links.ok()) << links.status().message();
  ASSERT_EQ(links.value().size(), 2u);
  const HandedLink& plain = links.value()[0];
  EXPECT_EQ(plain.url, "http://a.example/");
  EXPECT_EQ(plain.depth, 0);
  EXPECT_FALSE(plain.may_be_private);
  EXPECT_FALSE(plain.https_first);
  const HandedLink& full = links.value()[1];
  EXPECT_EQ(full.url, "https://b.example/x");
  EXPECT_EQ(full.depth, 3);
  EXPECT_TRUE(full.may_be_private);
  EXPECT_TRUE(full.https_first);
}

TEST(LinkRowsTest, WhatIsNotALinkIsRefusedWithTheNumberOfItsLine) {
  for (const char* line : {"http://a.example/", "[]", "{}", "{\"url\":1}", "{\"url\":\"x\",\"depth\":-1}",
                           "{\"url\":\"x\",\"depth\":1.5}", "{\"url\":\"x\",\"depth\":99999999999}",
                           "{\"url\":\"x\",\"private\":1}", "{\"url\":\"x\",\"https_first\":\"yes\"}"}) {
    const auto links = ParseLinkRows("{\"url\":\"http://a.example/\"}\n" + std::string(line));
    ASSERT_FALSE(links.ok()) << line;
    EXPECT_EQ(links.status().kind(), StatusKind::kFormat);
    EXPECT_THAT(links.status().message(), testing::HasSubstr("Line 2 ")) << line;
  }
}

TEST(LinkRowsTest, AnEmptyFileHasNoLinks) {
  const auto links = ParseLinkRows("");
  ASSERT_TRUE(links.ok());
  EXPECT_TRUE(links.value().empty());
}

}  // namespace
}  // namespace quenlar
