// The crawler's client against the misbehaving server of tests/server, which scripts/with_server.sh starts.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform_under_test.h"
#include "web_log.h"

namespace quenlar {

class HostileWeb : public testing::Test {
 protected:
  void SetUp() override {
    const char* server = std::getenv("QUENLAR_TEST_SERVER");
    ASSERT_NE(server, nullptr) << "run this through scripts/with_server.sh";
    server_ = server;
    UseClient("", "");
    LeaveBadConnections();
  }
  void UseClient(const std::string& proxy, const std::string& authorities, LookUpName look_up = {}) {
    client_ = platform_->MakeWebClient(proxy, authorities, std::move(look_up));
    client_->SetListener(&log_);
  }

  // Of a path of the server, or of a whole URL.
  [[nodiscard]] WebRequest Request(const std::string& url) const {
    WebRequest request;
    request.url = url.starts_with("/") ? "http://" + server_ + url : url;
    request.user_agent = "Quenlar/3.0";
    request.private_addresses = true;
    return request;
  }
  WebAnswer Fetch(WebRequest request) {
    const std::string key = "key" + std::to_string(next_key_++);
    const std::string url = request.url;
    client_->Start(std::move(request), key);
    EXPECT_TRUE(PumpUntil(loop_, [&] { return log_.ended.contains(key); })) << url << " has not come to an end";
    return std::move(log_.ended[key]);
  }
  WebAnswer Fetch(const std::string& url) { return Fetch(Request(url)); }
  [[nodiscard]] bool Finish(std::size_t ends) {
    return PumpUntil(loop_, [&] { return log_.ends() >= ends; });
  }

  void ExpectFailure(const std::string& url, WebFailure failure) {
    const WebAnswer answer = Fetch(url);
    EXPECT_EQ(answer.failure, failure) << url << ": " << answer.message;
    EXPECT_NE(answer.message, "") << url;
  }
  // For answers that break the rules of HTTP itself. Whether they are refused is up to the system's client.
  void ExpectBroken(const std::string& url) {
    const WebAnswer answer = Fetch(url);
    EXPECT_TRUE(answer.failure == WebFailure::kBroken || !platform_->HttpIsStrict()) << url << ": " << answer.message;
    LeaveBadConnections();
  }
  void ExpectPage(const std::string& url, const std::string& body) {
    const WebAnswer answer = Fetch(url);
    EXPECT_EQ(answer.failure, WebFailure::kNone) << url << ": " << answer.message;
    EXPECT_TRUE(answer.body == body) << url << " gave " << answer.body.substr(0, 1000);
  }
  void ExpectOrdinaryService() { ExpectPage("/page", "<html><title>Page</title>a page</html>"); }

  // URLs of `path` on hosts of their own at one address.
  [[nodiscard]] std::vector<std::string> HostsOfOneAddress(const std::string& path) {
    std::vector<std::string> urls;
    std::string ports = Fetch("/ports").body;
    for (std::size_t blank = ports.find(' '); blank != std::string::npos; blank = ports.find(' ')) {
      urls.push_back("http://127.0.0.1:" + ports.substr(0, blank) + path);
      ports.erase(0, blank + 1);
    }
    return urls;
  }

  // Runs `action`; the process may hold `megabytes` more than before meanwhile.
  template <typename Action>
  void ExpectMemoryBelow(std::uint64_t megabytes, Action action) {
    ExpectOrdinaryService();  // what is allocated once is there by now
    platform_->ForgetPeakMemory();
    const auto before = platform_->PeakMemory();
    action();
    const auto peak = platform_->PeakMemory();
    if (!before || !peak) return;
    EXPECT_LE(*peak > *before ? (*peak - *before) >> 20 : 0, megabytes) << "megabytes at the peak";
  }

  std::unique_ptr<TestPlatform> platform_ = MakeTestPlatform();
  EventLoop& loop_ = platform_->loop();
  WebLog log_;
  std::string server_;
  std::unique_ptr<WebClient> client_;

 private:
  // Until kept connections on which the rest of an earlier answer stands are used up.
  void LeaveBadConnections() {
    if (platform_->HttpIsStrict()) return;
    for (int good = 0, tries = 0; good < 3 && tries < 50; ++tries) {
      good = Fetch("/page").failure == WebFailure::kNone ? good + 1 : 0;
    }
  }

  int next_key_ = 0;
};

}  // namespace quenlar
