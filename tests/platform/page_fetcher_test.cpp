// The contract of PageFetcher that needs nothing but a well-behaved server. hostile_server_test.cpp has the others.
#include "platform/page_fetcher.h"

#include <memory>
#include <string>
#include <vector>

#include "fetch_log.h"
#include "platform_under_test.h"

namespace quenlar {
namespace {

ServedAnswer Answer(const ServedRequest& request) {
  const std::string& path = request.url;
  if (path == "/empty") return {.body = ""};
  if (path == "/missing") return {.status = 404, .body = "not here"};
  if (path == "/error") return {.status = 500, .body = "a@b.example"};
  if (path == "/from") return {.status = 302, .location = "/to", .body = "moved"};
  if (path == "/twice") return {.status = 301, .location = "/from", .body = ""};
  if (path == "/large") return {.body = std::string(3 << 20, 'L')};
  return {.body = "page " + path};
}

class FetcherContract : public PlatformContract {
 protected:
  FetcherContract() {
    platform_->Serve(Answer);
    fetcher_->SetListener(&log_);
  }
  void Start(const std::string& path, const std::string& key) {
    fetcher_->Start(platform_->ServerAddress() + path, key);
  }
  [[nodiscard]] bool Finish(std::size_t downloads) {
    return PumpUntil(loop_, [&] { return log_.Finished() >= downloads; });
  }

  EventLoop& loop_ = platform_->loop();
  FetchLog log_;
  std::unique_ptr<PageFetcher> fetcher_ = platform_->MakeFetcher("", "");
};
INSTANTIATE_TEST_SUITE_P(Platforms, FetcherContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform),
                         PlatformName);

using Calls = std::vector<std::string>;

TEST_P(FetcherContract, APageIsDeliveredWholeInsideAPumpAfterItsFirstBytes) {
  Start("/a", "M0a");
  EXPECT_TRUE(log_.calls.empty());
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls, (Calls{"14 M0a", "done M0a"}));
  EXPECT_EQ(log_.bodies["M0a"], "page /a");
}

TEST_P(FetcherContract, ALargePageArrivesWhole) {
  Start("/large", "k");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls, (Calls{"14 k", "done k"}));
  EXPECT_TRUE(log_.bodies["k"] == std::string(3 << 20, 'L'));
}

TEST_P(FetcherContract, AnEmptyPageIsAPage) {
  Start("/empty", "k");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls.back(), "done k");
  EXPECT_EQ(log_.bodies["k"], "");
}

TEST_P(FetcherContract, APageWithAnErrorStatusIsAPage) {
  Start("/missing", "1");
  Start("/error", "2");
  ASSERT_TRUE(Finish(2));
  EXPECT_EQ(log_.bodies["1"], "not here");
  EXPECT_EQ(log_.bodies["2"], "a@b.example");
}

TEST_P(FetcherContract, EachHopOfARedirectIsTold) {
  Start("/twice", "k");
  ASSERT_TRUE(Finish(1));
  const std::string at = platform_->ServerAddress();
  EXPECT_EQ(log_.calls, (Calls{"3 k " + at + "/from", "3 k " + at + "/to", "14 k", "done k"}));
  EXPECT_EQ(log_.bodies["k"], "page /to");
}

TEST_P(FetcherContract, ACancelledDownloadIsSilent) {
  Start("/a", "k");
  Start("/b", "other");
  fetcher_->Cancel("k");
  ASSERT_TRUE(Finish(1));
  loop_.Yield();
  EXPECT_EQ(log_.calls, (Calls{"14 other", "done other"}));
}

TEST_P(FetcherContract, CancellingAnUnknownKeyDoesNothing) {
  fetcher_->Cancel("nobody");
  Start("/a", "k");
  ASSERT_TRUE(Finish(1));
  fetcher_->Cancel("k");
  EXPECT_EQ(log_.calls, (Calls{"14 k", "done k"}));
}

TEST_P(FetcherContract, WhatHasArrivedForACancelledKeyIsDropped) {
  constexpr int kDownloads = 40;
  for (int i = 0; i < kDownloads; ++i) Start("/page", "k" + std::to_string(i));
  log_.on_complete = [&](const std::string&) {
    for (int i = 0; i < kDownloads; ++i) fetcher_->Cancel("k" + std::to_string(i));
  };
  ASSERT_TRUE(Finish(1));
  const auto calls = log_.calls;
  Start("/last", "last");
  ASSERT_TRUE(Finish(2));
  EXPECT_EQ(log_.Finished(), 2u);
  EXPECT_EQ(log_.calls.size(), calls.size() + 2) << "nothing but the last download may have been told";
}

TEST_P(FetcherContract, ACancelInARedirectStopsItBeforeTheNextHop) {
  log_.on_progress = [&](const std::string& key, FetchCode code) {
    if (code == FetchCode::kRedirecting) fetcher_->Cancel(key);
  };
  Start("/from", "k");
  ASSERT_TRUE(PumpUntil(loop_, [&] { return !log_.calls.empty(); }));
  Start("/a", "other");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls, (Calls{"3 k " + platform_->ServerAddress() + "/to", "14 other", "done other"}));
}

TEST_P(FetcherContract, APumpInsideACompletionDeliversTheOtherPages) {
  constexpr int kDownloads = 5;
  int depth = 0, deepest = 0;
  log_.on_complete = [&](const std::string&) {
    deepest = std::max(deepest, ++depth);
    EXPECT_TRUE(Finish(kDownloads));
    --depth;
  };
  for (int i = 0; i < kDownloads; ++i) Start("/page", "k" + std::to_string(i));
  ASSERT_TRUE(Finish(kDownloads));
  EXPECT_GT(deepest, 1);
  EXPECT_EQ(log_.Finished(), static_cast<std::size_t>(kDownloads));
}

TEST_P(FetcherContract, ADownloadMayBeStartedInsideACompletion) {
  int left = 30;
  log_.on_complete = [&](const std::string&) {
    if (left-- > 0) Start("/next", "k" + std::to_string(left));
  };
  Start("/first", "k");
  ASSERT_TRUE(Finish(31));
  EXPECT_EQ(log_.Finished(), 31u);
}

TEST_P(FetcherContract, TwoDownloadsOfOneKeyBothArrive) {
  Start("/a", "k");
  Start("/b", "k");
  ASSERT_TRUE(Finish(2));
  EXPECT_EQ(log_.Count("done k"), 2u);
}

TEST_P(FetcherContract, HundredsOfDownloadsAtOnceAllArrive) {
  constexpr std::size_t kDownloads = 300;
  for (std::size_t i = 0; i < kDownloads; ++i) Start("/" + std::to_string(i), std::to_string(i));
  ASSERT_TRUE(Finish(kDownloads));
  for (std::size_t i = 0; i < kDownloads; ++i) EXPECT_EQ(log_.bodies[std::to_string(i)], "page /" + std::to_string(i));
}

TEST_P(FetcherContract, AnAddressThatCannotBeSpokenFailsInsideAPump) {
  const char* const kAddresses[] = {"",
                                    "www.example.org",
                                    "ftp://127.0.0.1/x",
                                    "file:///etc/passwd",
                                    "file://localhost/etc/passwd",
                                    "javascript:alert(1)",
                                    "data:text/html,<p>x",
                                    "mailto:a@b.example",
                                    "http://",
                                    "http:///path",
                                    "http://:80/",
                                    "http://127.0.0.1:99999/",
                                    "http://127.0.0.1:x/",
                                    "http://bad host/",
                                    "http://[::1/"};
  std::size_t failed = 0;
  for (const char* address : kAddresses) {
    fetcher_->Start(address, address);
    EXPECT_EQ(log_.calls.size(), failed) << address;
    ASSERT_TRUE(Finish(++failed)) << address;
    EXPECT_EQ(log_.calls.back(), std::string("0 ") + address);
  }
}

TEST_P(FetcherContract, AFetcherMayDieWithDownloadsInFlight) {
  for (int i = 0; i < 10; ++i) Start("/large", "k" + std::to_string(i));
  loop_.Yield();
  const std::size_t told = log_.calls.size();
  fetcher_.reset();
  for (int i = 0; i < 20; ++i) loop_.Wait(std::chrono::milliseconds(1));
  EXPECT_EQ(log_.calls.size(), told);
}

TEST_P(FetcherContract, AFetcherMayDieInARedirect) {
  log_.on_progress = [&](const std::string&, FetchCode) { fetcher_.reset(); };
  Start("/from", "k");
  ASSERT_TRUE(PumpUntil(loop_, [&] { return !fetcher_; }));
  for (int i = 0; i < 20; ++i) loop_.Wait(std::chrono::milliseconds(1));
  EXPECT_EQ(log_.calls, Calls{"3 k " + platform_->ServerAddress() + "/to"});
}

TEST_P(FetcherContract, AKeyIsOnlyText) {
  const std::string key("X1http://a/\r\n\0 x", 16);
  Start("/a", key);
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.bodies[key], "page /a");
}

}  // namespace
}  // namespace quenlar
