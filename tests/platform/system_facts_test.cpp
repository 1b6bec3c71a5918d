// The contracts of CodePage, Clock, InterfaceTable and LoopbackServer.
#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "fetch_log.h"
#include "platform_under_test.h"

namespace quenlar {
namespace {

class CodePageContract : public PlatformContract {};
INSTANTIATE_TEST_SUITE_P(Platforms, CodePageContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(CodePageContract, AsciiStaysAsItIs) {
  std::string ascii;
  for (int c = 0; c < 128; ++c) ascii += static_cast<char>(c);
  EXPECT_EQ(platform_->code_page().ToUtf8(ascii), ascii);
  EXPECT_EQ(platform_->code_page().FromUtf8(ascii), ascii);
  EXPECT_EQ(platform_->code_page().ToUtf8(""), "");
}

// The tests run where the system's code page is Windows-1252 or nothing else is known.
TEST_P(CodePageContract, EveryByteConvertsAndComesBack) {
  std::string bytes;
  for (int c = 0; c < 256; ++c) bytes += static_cast<char>(c);
  const std::string text = platform_->code_page().ToUtf8(bytes);
  EXPECT_NE(text.find("\xE2\x82\xAC"), std::string::npos);  // the euro sign, 0x80
  EXPECT_NE(text.find("\xC3\xBC"), std::string::npos);
  EXPECT_EQ(platform_->code_page().FromUtf8(text), bytes);
}

TEST_P(CodePageContract, WhatTheCodePageLacksBecomesAQuestionMark) {
  EXPECT_EQ(platform_->code_page().FromUtf8("a\xE6\x97\xA5"
                                            "b"),
            "a?b");
  const std::string malformed = platform_->code_page().FromUtf8(
      "a\xFF"
      "b");
  EXPECT_TRUE(malformed.starts_with('a') && malformed.ends_with('b')) << malformed;
  EXPECT_NE(malformed.find('?'), std::string::npos);
}

class ClockContract : public PlatformContract {};
INSTANTIATE_TEST_SUITE_P(Platforms, ClockContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(ClockContract, TheTimeIsHoursMinutesAndSeconds) {
  const std::string time = platform_->clock().TimeText();
  ASSERT_EQ(time.size(), 8u) << time;
  for (std::size_t i = 0; i < time.size(); ++i) {
    EXPECT_TRUE(i % 3 == 2 ? time[i] == ':' : time[i] >= '0' && time[i] <= '9') << time;
  }
}

class InterfaceTableContract : public PlatformContract {};
INSTANTIATE_TEST_SUITE_P(Platforms, InterfaceTableContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

TEST_P(InterfaceTableContract, RowsAreReplacedAndEachHasAnIndexOfItsOwn) {
  std::vector<InterfaceRow> rows(1000);
  ASSERT_EQ(platform_->interfaces().Read(rows), TableOutcome::kRead);
  EXPECT_LT(rows.size(), 1000u);
  std::vector<std::uint32_t> indices;
  for (const InterfaceRow& row : rows) {
    indices.push_back(row.index);
    EXPECT_LE(row.physical_address_length, row.physical_address.size());
  }
  std::sort(indices.begin(), indices.end());
  EXPECT_EQ(std::adjacent_find(indices.begin(), indices.end()), indices.end());
}

TEST_P(InterfaceTableContract, ReadingOverAndOverKeepsWorking) {
  std::vector<InterfaceRow> first, again;
  ASSERT_EQ(platform_->interfaces().Read(first), TableOutcome::kRead);
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(platform_->interfaces().Read(again), TableOutcome::kRead);
  EXPECT_EQ(again.size(), first.size());
}

class LoopbackServerContract : public PlatformContract {};
INSTANTIATE_TEST_SUITE_P(Platforms, LoopbackServerContract, testing::Values(MakeTestPlatform), PlatformName);

TEST_P(LoopbackServerContract, TheHandlerSeesTheTargetAsItCame) {
  platform_->Serve([](const ServedRequest& request) { return ServedAnswer{.body = request.url}; });
  FetchLog log;
  const auto direct = platform_->MakeFetcher("", "");
  const auto through_proxy = platform_->MakeFetcher(platform_->ServerAddress(), "");
  direct->SetListener(&log);
  through_proxy->SetListener(&log);
  direct->Start(platform_->ServerAddress() + "/a%20b?c=d", "direct");
  through_proxy->Start("http://www.demo.example/page?x=y", "proxy");
  ASSERT_TRUE(PumpUntil(platform_->loop(), [&] { return log.Finished() == 2; }));
  EXPECT_EQ(log.bodies["direct"], "/a%20b?c=d");
  // The port that http has anyway may be told or not (RFC 3986, 6.2.3).
  EXPECT_THAT(log.bodies["proxy"],
              testing::AnyOf("http://www.demo.example/page?x=y", "http://www.demo.example:80/page?x=y"));
}

TEST_P(LoopbackServerContract, StatusTypeAndLocationAreSent) {
  platform_->Serve([](const ServedRequest& request) {
    ServedAnswer answer{.status = 404, .content_type = "text/plain", .body = "none"};
    if (request.url == "/from") answer = {.status = 301, .location = "http://elsewhere.invalid/"};
    return answer;
  });
  FetchLog log;
  const auto fetcher = platform_->MakeFetcher("", "");
  fetcher->SetListener(&log);
  fetcher->Start(platform_->ServerAddress() + "/from", "k");
  ASSERT_TRUE(PumpUntil(platform_->loop(), [&] { return !log.calls.empty(); }));
  EXPECT_EQ(log.calls[0], "3 k http://elsewhere.invalid/");
  fetcher->Cancel("k");
  fetcher->Start(platform_->ServerAddress() + "/other", "other");
  ASSERT_TRUE(PumpUntil(platform_->loop(), [&] { return log.Finished() == 1; }));
  EXPECT_EQ(log.bodies["other"], "none");
}

}  // namespace
}  // namespace quenlar
