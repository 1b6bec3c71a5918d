// Downloads from the misbehaving server of tests/server, which scripts/with_server.sh starts.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fetch_log.h"
#include "platform_under_test.h"

namespace quenlar {

// What a download has come to.
struct Fetched {
  bool failed = true;
  std::string body = {};
  std::vector<std::string> redirects = {};  // as they were told
};

class HostileServer : public testing::Test {
 protected:
  void SetUp() override {
    const char* server = std::getenv("QUENLAR_TEST_SERVER");
    ASSERT_NE(server, nullptr) << "run this through scripts/with_server.sh";
    server_ = server;
    UseFetcher(platform_->MakeFetcher("", ""));
    LeaveBadConnections();
  }
  void UseFetcher(std::unique_ptr<PageFetcher> fetcher) {
    fetcher_ = std::move(fetcher);
    fetcher_->SetListener(&log_);
  }
  // From now on everything goes through the server as its proxy.
  void UseProxy() { UseFetcher(platform_->MakeFetcher("http://" + server_, "")); }

  [[nodiscard]] std::string Address(const std::string& path) const { return "http://" + server_ + path; }

  // Downloads a path of the server, or a whole address, and waits for the end.
  Fetched Fetch(const std::string& address) {
    const std::string key = "key" + std::to_string(next_key_++);
    const std::size_t first_call = log_.calls.size();
    const std::size_t finished = log_.Finished();
    fetcher_->Start(address.starts_with("/") ? Address(address) : address, key);
    EXPECT_TRUE(PumpUntil(loop_, [&] { return log_.Finished() > finished; })) << address << " has not come to an end";
    Fetched fetched;
    fetched.failed = log_.Count("done " + key) == 0;
    EXPECT_EQ(log_.Count("done " + key) + log_.Count("0 " + key), 1u) << address;
    fetched.body = log_.bodies[key];
    const std::string redirect = "3 " + key + " ";
    for (std::size_t i = first_call; i < log_.calls.size(); ++i) {
      if (log_.calls[i].starts_with(redirect)) fetched.redirects.push_back(log_.calls[i].substr(redirect.size()));
    }
    if (fetched.failed) {
      EXPECT_EQ(fetched.body, "");
    }
    log_.bodies.erase(key);
    return fetched;
  }
  void ExpectFailure(const std::string& path) { EXPECT_TRUE(Fetch(path).failed) << path; }
  void ExpectPage(const std::string& path, const std::string& body) {
    const Fetched fetched = Fetch(path);
    EXPECT_FALSE(fetched.failed) << path;
    EXPECT_TRUE(fetched.body == body) << path << " gave " << fetched.body.substr(0, 1000);
  }
  // For answers that break the rules of HTTP itself. Whether they are refused is up to the system's client.
  void ExpectRefusal(const std::string& path) {
    const Fetched fetched = Fetch(path);
    EXPECT_TRUE(fetched.failed || !platform_->HttpIsStrict()) << path;
    LeaveBadConnections();
  }
  void ExpectPageOfStrictHttp(const std::string& path, const std::string& body) {
    if (platform_->HttpIsStrict()) return ExpectPage(path, body);
    Fetch(path);
    LeaveBadConnections();
  }
  // Still able to do its work.
  void ExpectOrdinaryService() { ExpectPage("/page", "<html><title>Page</title>a page</html>"); }

  int HitsOf(const std::string& name) { return std::stoi(Fetch("/hits?" + name).body); }

  // Runs `action`; the process may hold `megabytes` more than before meanwhile.
  template <typename Action>
  void ExpectMemoryBelow(std::uint64_t megabytes, Action action) {
    ExpectOrdinaryService();  // what is allocated once is there by now
    platform_->ForgetPeakMemory();
    const auto before = platform_->PeakMemory();
    action();
    const auto peak = platform_->PeakMemory();
    if (!before || !peak) return;
    const std::uint64_t used = *peak > *before ? (*peak - *before) >> 20 : 0;
    RecordProperty("peak_megabytes", static_cast<int>(used));
    EXPECT_LE(used, megabytes) << "megabytes at the peak";
  }

  std::unique_ptr<TestPlatform> platform_ = MakeTestPlatform();
  EventLoop& loop_ = platform_->loop();
  FetchLog log_;
  std::string server_;
  std::unique_ptr<PageFetcher> fetcher_;

 private:
  // Until kept connections on which the rest of an earlier answer stands are used up.
  void LeaveBadConnections() {
    if (platform_->HttpIsStrict()) return;
    for (int good = 0, tries = 0; good < 3 && tries < 50; ++tries) good = Fetch("/page").failed ? 0 : good + 1;
  }

  int next_key_ = 0;
};

}  // namespace quenlar
