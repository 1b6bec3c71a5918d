// What the dispatcher decides, over a transport and a resolver that a test answers for.
#include "platform/web_dispatcher.h"

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform_under_test.h"
#include "web_log.h"

namespace quenlar {
namespace {

class FakeTransport : public WebTransport {
 public:
  struct Sent {
    WebExchangeId id;
    WebHostId host;
    std::string url, to;  // `to`: the address, "" behind a proxy
  };
  std::vector<Sent> sent;         // everything, in order
  std::vector<WebHostId> closed;  // connections that were idle
  bool keeps = true, proxy = false;

  void SetTransportListener(WebTransportListener* listener) override { listener_ = listener; }
  [[nodiscard]] bool UsesProxy(const WireAddress&) const override { return proxy; }
  void Begin(const WebExchange& exchange) override {
    const std::string to = exchange.address ? exchange.address->Text() : "";
    sent.push_back({exchange.id, exchange.host, exchange.request.url, to});
    ++under_way;
    most_under_way = std::max(most_under_way, under_way);
  }
  [[nodiscard]] std::chrono::steady_clock::time_point LastByte(WebExchangeId) const override { return {}; }
  [[nodiscard]] Outcome Take(WebExchangeId id) override {
    --under_way;
    Outcome outcome{.answer = std::move(answers_[id]), .kept = keeps};
    if (outcome.answer.failure != WebFailure::kNone) outcome.kept = false;
    return outcome;
  }
  void CloseIdle(WebHostId host) override { closed.push_back(host); }

  void End(std::size_t index, WebFailure failure = WebFailure::kNone) {
    answers_[sent[index].id].failure = failure;
    listener_->OnTransportEnd(sent[index].id);
  }
  void CloseByServer(std::size_t index) { listener_->OnIdleClosed(sent[index].host); }

  std::size_t under_way = 0, most_under_way = 0;

 private:
  WebTransportListener* listener_ = nullptr;
  std::map<WebExchangeId, WebAnswer> answers_;
};

class Dispatcher : public testing::Test {
 protected:
  void Use(std::size_t most_connections) {
    auto transport = std::make_unique<FakeTransport>();
    transport_ = transport.get();
    const auto look_up = [this](const std::string& host) {
      const std::lock_guard lock(mutex_);
      ++lookups_;
      return names_[host];
    };
    client_ = std::make_unique<WebDispatcher>(platform_->loop(), std::move(transport), look_up, most_connections);
    client_->SetListener(&log_);
  }
  void SetUp() override { Use(1000); }
  void Name(const std::string& host, const std::vector<const char*>& addresses) {
    const std::lock_guard lock(mutex_);
    names_[host].clear();
    for (const char* address : addresses) names_[host].push_back(*ParseIpAddress(address));
  }
  void Start(const std::string& url, bool private_addresses = false) {
    client_->Start({.url = url, .private_addresses = private_addresses}, url);
  }
  [[nodiscard]] bool WaitForSent(std::size_t count) {
    return PumpUntil(platform_->loop(), [&] { return transport_->sent.size() >= count; });
  }
  [[nodiscard]] bool WaitForEnds(std::size_t count) {
    return PumpUntil(platform_->loop(), [&] { return log_.ends() >= count; });
  }

  std::unique_ptr<TestPlatform> platform_ = MakeTestPlatform();
  WebLog log_;
  FakeTransport* transport_ = nullptr;
  std::unique_ptr<WebDispatcher> client_;
  std::mutex mutex_;  // guards what follows, which the resolver's threads use
  std::map<std::string, std::vector<IpAddress>> names_;
  int lookups_ = 0;
};

TEST_F(Dispatcher, TheAddressesOfAHostAreTriedInTheirOrder) {
  Name("a.example", {"8.8.8.1", "8.8.8.2", "8.8.8.3"});
  Start("http://a.example/");
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0, WebFailure::kNoConnection);
  ASSERT_TRUE(WaitForSent(2));
  EXPECT_EQ(transport_->sent[0].to, "8.8.8.1");
  EXPECT_EQ(transport_->sent[1].to, "8.8.8.2");
  transport_->End(1);
  ASSERT_TRUE(WaitForEnds(1));
  EXPECT_EQ(log_.ended["http://a.example/"].failure, WebFailure::kNone);
}

TEST_F(Dispatcher, AHostWithoutAnAddressThatAnswersFailsOnce) {
  Name("a.example", {"8.8.8.1", "8.8.8.2"});
  Start("http://a.example/");
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0, WebFailure::kNoConnection);
  ASSERT_TRUE(WaitForSent(2));
  transport_->End(1, WebFailure::kNoConnection);
  ASSERT_TRUE(WaitForEnds(1));
  EXPECT_EQ(log_.ended["http://a.example/"].failure, WebFailure::kNoConnection);
  EXPECT_EQ(client_->connections(), 0u);
}

TEST_F(Dispatcher, OtherFailuresAreNotTriedAgain) {
  Name("a.example", {"8.8.8.1", "8.8.8.2"});
  Start("http://a.example/");
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0, WebFailure::kBroken);
  ASSERT_TRUE(WaitForEnds(1));
  EXPECT_EQ(transport_->sent.size(), 1u);
}

TEST_F(Dispatcher, PrivateAddressesAreLeftOut) {
  Name("mixed.example", {"127.0.0.1", "::ffff:10.0.0.1", "8.8.8.8"});
  Start("http://mixed.example/");
  ASSERT_TRUE(WaitForSent(1));
  EXPECT_EQ(transport_->sent[0].to, "8.8.8.8");
  Name("inside.example", {"127.0.0.1", "fe80::1"});
  Start("http://inside.example/");
  ASSERT_TRUE(WaitForEnds(1));
  EXPECT_EQ(log_.ended["http://inside.example/"].failure, WebFailure::kPrivateAddress);
  EXPECT_EQ(transport_->sent.size(), 1u);
}

TEST_F(Dispatcher, ANameThatChangesItsMeaningGoesNowhereElse) {
  transport_->keeps = false;
  Name("a.example", {"8.8.8.8"});
  Start("http://a.example/1");
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0);
  Name("a.example", {"127.0.0.1"});
  Start("http://a.example/2");
  ASSERT_TRUE(WaitForSent(2));
  EXPECT_EQ(transport_->sent[1].to, "8.8.8.8");  // as it was judged, for a minute
}

// A name whose owner lets it mean another address every minute.
class DispatcherOverTime : public Dispatcher {
 protected:
  void SetUp() override {
    platform_ = MakeFakeTestPlatform();  // its time jumps
    Use(1000);
  }
  // Until what a name means is asked anew, and idle connections are closed.
  void LetAMinutePass() {
    const auto end = platform_->loop().Now() + std::chrono::seconds(61);
    while (platform_->loop().Now() < end) platform_->loop().Wait(std::chrono::milliseconds(500));
  }
};

TEST_F(DispatcherOverTime, ANameThatComesToMeanAPrivateAddressIsRefused) {
  for (const bool keeps : {false, true}) {
    transport_->keeps = keeps;
    transport_->sent.clear();
    log_.ended.clear();
    const std::string host = keeps ? "http://kept.example/" : "http://a.example/";
    const std::string name = keeps ? "kept.example" : "a.example";
    Name(name, {"8.8.8.8"});
    Start(host + "1");
    ASSERT_TRUE(WaitForSent(1));
    transport_->End(0);
    Name(name, {"127.0.0.1", "::1", "169.254.169.254"});
    LetAMinutePass();
    Start(host + "2");
    ASSERT_TRUE(PumpUntil(platform_->loop(), [&] { return log_.ended.contains(host + "2"); }));
    EXPECT_EQ(log_.ended[host + "2"].failure, WebFailure::kPrivateAddress);
    EXPECT_EQ(transport_->sent.size(), 1u) << "nothing went there";
  }
}

TEST_F(DispatcherOverTime, OfANameThatComesToMeanBothThePublicAddressIsTaken) {
  transport_->keeps = false;
  Name("a.example", {"8.8.8.8"});
  Start("http://a.example/1");
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0);
  Name("a.example", {"10.0.0.1", "8.8.8.9"});
  LetAMinutePass();
  Start("http://a.example/2");
  ASSERT_TRUE(WaitForSent(2));
  EXPECT_EQ(transport_->sent[1].to, "8.8.8.9");
}

TEST_F(Dispatcher, AConnectionToAPrivateAddressServesOnlyThoseWhoMayGoThere) {
  Name("a.example", {"127.0.0.1"});
  Start("http://a.example/1", true);
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0);
  Start("http://a.example/2");
  ASSERT_TRUE(WaitForEnds(2));
  EXPECT_EQ(log_.ended["http://a.example/2"].failure, WebFailure::kPrivateAddress);
  EXPECT_EQ(transport_->closed.size(), 1u);
}

TEST_F(Dispatcher, AtMostFourHostsOfAnAddressAreAskedAtATime) {
  for (int i = 0; i < 10; ++i) {
    const std::string host = "h" + std::to_string(i) + ".example";
    Name(host, {"8.8.8.8"});
    Start("http://" + host + "/");
  }
  ASSERT_TRUE(WaitForSent(4));  // whatever time the names take to be looked up
  for (std::size_t i = 0; i < 10; ++i) {
    ASSERT_TRUE(WaitForSent(i + 1));
    transport_->End(i);
  }
  ASSERT_TRUE(WaitForEnds(10));
  EXPECT_EQ(transport_->most_under_way, 4u);
  EXPECT_EQ(client_->connections(), 4u);
  EXPECT_EQ(transport_->closed.size(), 6u);
}

TEST_F(Dispatcher, ConnectionsAreBoundedInAllAndTheLongestIdleMakesWay) {
  Use(3);
  for (int i = 0; i < 9; ++i) Start("http://8.8.8." + std::to_string(i) + "/");
  for (std::size_t i = 0; i < 9; ++i) {
    ASSERT_TRUE(WaitForSent(i + 1));
    EXPECT_LE(client_->connections(), 3u);
    transport_->End(i);
  }
  ASSERT_TRUE(WaitForEnds(9));
  EXPECT_EQ(client_->connections(), 3u);
  Start("http://8.8.8.100/");
  ASSERT_TRUE(WaitForSent(10));
  EXPECT_EQ(transport_->closed.back(), transport_->sent[6].host);
}

TEST_F(Dispatcher, ALimitClosesTheLongestIdleConnections) {
  for (int i = 0; i < 5; ++i) {
    Start("http://8.8.8." + std::to_string(i) + "/");
    ASSERT_TRUE(WaitForSent(static_cast<std::size_t>(i) + 1));
    transport_->End(static_cast<std::size_t>(i));
    ASSERT_TRUE(WaitForEnds(static_cast<std::size_t>(i) + 1));
  }
  client_->LimitConnections(2);
  EXPECT_EQ(client_->connections(), 2u);
  ASSERT_EQ(transport_->closed.size(), 3u);
  EXPECT_EQ(transport_->closed[0], transport_->sent[0].host);
  Start("http://8.8.8.100/");
  ASSERT_TRUE(WaitForSent(6));
  EXPECT_EQ(client_->connections(), 2u);
}

TEST_F(Dispatcher, AConnectionThatTheServerClosesIsNotCounted) {
  Start("http://8.8.8.8/");
  ASSERT_TRUE(WaitForSent(1));
  transport_->End(0);
  ASSERT_TRUE(WaitForEnds(1));
  EXPECT_EQ(client_->connections(), 1u);
  transport_->CloseByServer(0);
  EXPECT_EQ(client_->connections(), 0u);
}

TEST_F(Dispatcher, WhatWaitsForAnAddressOrANameCanBeCancelled) {
  for (int i = 0; i < 8; ++i) Start("http://8.8.8.8:" + std::to_string(1000 + i) + "/");
  Name("slow.example", {"8.8.4.4"});
  Start("http://slow.example/");
  client_->Cancel("http://slow.example/");
  for (int i = 4; i < 7; ++i) client_->Cancel("http://8.8.8.8:" + std::to_string(1000 + i) + "/");
  ASSERT_TRUE(WaitForSent(4));
  transport_->End(0);
  ASSERT_TRUE(WaitForSent(5));
  EXPECT_EQ(transport_->sent[4].url, "http://8.8.8.8:1007/");
}

TEST_F(Dispatcher, ANameIsLookedUpOnceForManyRequests) {
  transport_->keeps = false;
  Name("a.example", {"8.8.8.8"});
  for (int i = 0; i < 20; ++i) Start("http://a.example/" + std::to_string(i));
  for (std::size_t i = 0; i < 20; ++i) {
    ASSERT_TRUE(WaitForSent(i + 1));
    transport_->End(i);
  }
  ASSERT_TRUE(WaitForEnds(20));
  const std::lock_guard lock(mutex_);
  EXPECT_EQ(lookups_, 1);
}

TEST_F(Dispatcher, BehindAProxyNoNameIsLookedUpAndNoAddressCounted) {
  transport_->proxy = true;
  for (int i = 0; i < 10; ++i) Start("http://h" + std::to_string(i) + ".example/");
  ASSERT_TRUE(WaitForSent(10));
  for (const auto& sent : transport_->sent) EXPECT_EQ(sent.to, "");
  for (const char* url : {"http://localhost/", "http://10.0.0.1/", "http://[::1]/", "http://2130706433/"}) {
    Start(url);
    ASSERT_TRUE(PumpUntil(platform_->loop(), [&] { return log_.ended.contains(url); }));
    EXPECT_EQ(log_.ended[url].failure, WebFailure::kPrivateAddress) << url;
  }
  const std::lock_guard lock(mutex_);
  EXPECT_EQ(lookups_, 0);
}

TEST(NameLookups, ThousandsOfNamesWaitForTheirTurnsAndASlowOneHoldsUpNoOther) {
  const auto platform = MakeTestPlatform();
  std::mutex slow;
  slow.lock();
  std::size_t found = 0, slow_found = 0;
  {
    NameLookups lookups(platform->loop(), [&](const std::string& host) {
      if (host == "slow.example") const std::lock_guard wait(slow);
      return std::vector<IpAddress>(1);
    });
    lookups.Find("slow.example", [&](const auto&) { ++slow_found; });
    for (int i = 0; i < 2000; ++i) lookups.Find("h.example", [&](const auto& all) { found += all.size(); });
    EXPECT_TRUE(PumpUntil(platform->loop(), [&] { return found == 2000; }));
    EXPECT_EQ(slow_found, 0u);
    slow.unlock();
    EXPECT_TRUE(PumpUntil(platform->loop(), [&] { return slow_found == 1; }));
  }
}

}  // namespace
}  // namespace quenlar
