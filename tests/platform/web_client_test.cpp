// The contract of WebClient that needs nothing but a well-behaved server.
#include "platform/web_client.h"

#include <memory>
#include <string>
#include <vector>

#include "platform_under_test.h"
#include "web_log.h"

namespace quenlar {
namespace {

ServedAnswer Answer(const ServedRequest& request) {
  const std::string& path = request.url;
  if (path == "/empty") return {.body = ""};
  if (path == "/missing") return {.status = 404, .body = "not here"};
  if (path == "/from") return {.status = 302, .location = "/to", .body = "moved"};
  if (path == "/picture") return {.content_type = "image/png", .body = std::string(3 << 20, 'P')};
  if (path == "/large") return {.body = std::string(3 << 20, 'L')};
  return {.body = "page " + path};
}

class WebContract : public PlatformContract {
 protected:
  WebContract() {
    platform_->Serve(Answer);
    client_->SetListener(&log_);
  }
  [[nodiscard]] WebRequest Request(const std::string& path) const {
    return {.url = platform_->ServerAddress() + path, .user_agent = "Quenlar/3.0", .private_addresses = true};
  }
  void Start(const std::string& path, const std::string& key) { client_->Start(Request(path), key); }
  [[nodiscard]] bool Finish(std::size_t ends) {
    return PumpUntil(loop_, [&] { return log_.ends() >= ends; });
  }

  EventLoop& loop_ = platform_->loop();
  WebLog log_;
  std::unique_ptr<WebClient> client_ = platform_->MakeWebClient("", "", {});
};
INSTANTIATE_TEST_SUITE_P(Platforms, WebContract, testing::Values(MakeTestPlatform, MakeFakeTestPlatform), PlatformName);

using Calls = std::vector<std::string>;

TEST_P(WebContract, AnAnswerBringsItsHeadThenItsBodyInsideAPump) {
  Start("/a", "k");
  EXPECT_TRUE(log_.calls.empty());
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls, (Calls{"head k 200", "end k"}));
  const WebAnswer& answer = log_.ended["k"];
  EXPECT_EQ(answer.failure, WebFailure::kNone);
  EXPECT_EQ(answer.message, "");
  EXPECT_EQ(answer.body, "page /a");
  EXPECT_EQ(answer.head.status, 200);
  EXPECT_EQ(answer.head.ip, "127.0.0.1");
  ASSERT_NE(answer.head.Find("CONTENT-type"), nullptr);
  EXPECT_EQ(answer.head.Find("content-type")->substr(0, 9), "text/html");
  EXPECT_EQ(answer.head.Find("x-nothing"), nullptr);
  EXPECT_FALSE(answer.truncated);
  EXPECT_FALSE(answer.wire.has_value());
  EXPECT_GE(answer.bytes_received, answer.body.size());
}

TEST_P(WebContract, ARedirectIsAnAnswerLikeAnyOther) {
  Start("/from", "k");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls, (Calls{"head k 302", "end k"}));
  ASSERT_NE(log_.ended["k"].head.Find("Location"), nullptr);
  EXPECT_EQ(*log_.ended["k"].head.Find("Location"), "/to");
}

TEST_P(WebContract, AnErrorStatusIsAnAnswerLikeAnyOther) {
  Start("/missing", "k");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.ended["k"].failure, WebFailure::kNone);
  EXPECT_EQ(log_.ended["k"].head.status, 404);
  EXPECT_EQ(log_.ended["k"].body, "not here");
}

TEST_P(WebContract, ABodyThatIsNotWantedIsDropped) {
  log_.on_head = [](const std::string&, const WebHead& head) { return *head.Find("Content-Type") != "image/png"; };
  Start("/picture", "picture");
  Start("/a", "page");
  ASSERT_TRUE(Finish(2));
  EXPECT_EQ(log_.EndOrder(), (Calls{"picture", "page"}));
  EXPECT_EQ(log_.ended["picture"].failure, WebFailure::kNone);
  EXPECT_EQ(log_.ended["picture"].body, "");
  EXPECT_EQ(log_.ended["picture"].head.status, 200);
  EXPECT_EQ(log_.ended["page"].body, "page /a");
}

TEST_P(WebContract, ABodyIsCutAtItsLimitAndSaysSo) {
  for (const std::size_t limit : {std::size_t{0}, std::size_t{1}, std::size_t{100'000}, std::size_t{3 << 20}}) {
    WebRequest request = Request("/large");
    request.body_limit = limit;
    client_->Start(request, std::to_string(limit));
  }
  ASSERT_TRUE(Finish(4));
  for (const auto& [key, answer] : log_.ended) {
    EXPECT_EQ(answer.failure, WebFailure::kNone) << key;
    EXPECT_EQ(std::to_string(answer.body.size()), key);
    EXPECT_EQ(answer.truncated, answer.body.size() < 3 << 20) << key;
  }
}

TEST_P(WebContract, AnEmptyBodyIsWhole) {
  Start("/empty", "k");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.ended["k"].failure, WebFailure::kNone);
  EXPECT_EQ(log_.ended["k"].body, "");
  EXPECT_FALSE(log_.ended["k"].truncated);
}

TEST_P(WebContract, TheRequestsOfAHostAreAnsweredInTheirOrder) {
  Calls keys;
  for (int i = 0; i < 40; ++i) {
    keys.push_back(std::to_string(i));
    Start("/" + keys.back(), keys.back());
  }
  ASSERT_TRUE(Finish(keys.size()));
  EXPECT_EQ(log_.EndOrder(), keys);
  EXPECT_LE(client_->connections(), 1u);
}

TEST_P(WebContract, TheBytesOfTheWireComeWhereTheyAreAskedFor) {
  WebRequest request = Request("/a");
  request.keep_wire = true;
  client_->Start(request, "k");
  ASSERT_TRUE(Finish(1));
  ASSERT_TRUE(log_.ended["k"].wire.has_value());
  const WebWire& wire = *log_.ended["k"].wire;
  EXPECT_TRUE(wire.request.starts_with("GET ")) << wire.request;
  EXPECT_TRUE(wire.request.ends_with("\r\n\r\n")) << wire.request;
  EXPECT_TRUE(wire.head.starts_with("HTTP/1.1")) << wire.head;
  EXPECT_TRUE(wire.head.ends_with("\r\n\r\n")) << wire.head;
  EXPECT_NE(wire.body, "");  // compressed, where the server thinks it worth it
}

TEST_P(WebContract, ACancelledRequestIsSilent) {
  Start("/a", "first");
  Start("/b", "second");
  Start("/c", "third");
  client_->Cancel("first");
  client_->Cancel("second");
  client_->Cancel("nobody");
  ASSERT_TRUE(Finish(1));
  loop_.Yield();
  EXPECT_EQ(log_.calls, (Calls{"head third 200", "end third"}));
}

TEST_P(WebContract, ACancelInsideTheHeadIsTheEndOfIt) {
  log_.on_head = [&](const std::string& key, const WebHead& head) {
    if (key == "k") client_->Cancel(key);
    return head.status == 200;
  };
  Start("/large", "k");
  Start("/a", "other");
  ASSERT_TRUE(Finish(1));
  EXPECT_EQ(log_.calls, (Calls{"head k 200", "head other 200", "end other"}));
}

TEST_P(WebContract, AKeyIsFreeAgainInsideItsEnd) {
  int left = 30;
  log_.on_end = [&](const std::string& key) {
    if (left-- > 0) Start("/again", key);
  };
  Start("/first", "k");
  ASSERT_TRUE(Finish(31));
  EXPECT_EQ(log_.ended["k"].body, "page /again");
}

TEST_P(WebContract, APumpInsideAnEndDeliversTheOtherAnswers) {
  constexpr std::size_t kRequests = 5;
  int depth = 0, deepest = 0;
  log_.on_end = [&](const std::string&) {
    deepest = std::max(deepest, ++depth);
    EXPECT_TRUE(Finish(kRequests));
    --depth;
  };
  for (std::size_t i = 0; i < kRequests; ++i) Start("/page", std::to_string(i));
  ASSERT_TRUE(Finish(kRequests));
  EXPECT_GT(deepest, 1);
}

TEST_P(WebContract, APumpInsideAHeadMayBringItsEnd) {
  log_.on_head = [&](const std::string&, const WebHead& head) {
    EXPECT_TRUE(Finish(1));
    EXPECT_EQ(head.status, 200);
    return true;
  };
  WebRequest other = Request("/a");
  other.url = "http://nobody.invalid/";
  Start("/a", "k");
  client_->Start(other, "other");  // the fake delivers head and end in one piece
  ASSERT_TRUE(Finish(2));
  EXPECT_EQ(log_.ended["k"].body, "page /a");
  EXPECT_EQ(log_.ended["k"].head.status, 200);
}

TEST_P(WebContract, HundredsOfRequestsAtOnceAllEnd) {
  constexpr std::size_t kRequests = 300;
  for (std::size_t i = 0; i < kRequests; ++i) Start("/" + std::to_string(i), std::to_string(i));
  ASSERT_TRUE(Finish(kRequests));
  for (const auto& [key, answer] : log_.ended) EXPECT_EQ(answer.body, "page /" + key);
}

TEST_P(WebContract, AUrlThatCannotBeAskedForFailsInsideAPump) {
  const char* const kUrls[] = {
      "",        "www.example.org", "ftp://127.0.0.1/x", "file:///etc/passwd", "javascript:alert(1)",
      "http://", "http:///path",    "https://:80/"};
  std::size_t ended = 0;
  for (const char* url : kUrls) {
    client_->Start({.url = url}, url);
    EXPECT_EQ(log_.calls.size(), ended) << url;
    ASSERT_TRUE(Finish(++ended)) << url;
    EXPECT_EQ(log_.ended[url].failure, WebFailure::kBadUrl) << url;
    EXPECT_EQ(log_.ended[url].head.status, 0) << url;
    EXPECT_NE(log_.ended[url].message, "") << url;
  }
}

TEST_P(WebContract, AClientMayDieWithRequestsUnderWay) {
  for (int i = 0; i < 10; ++i) Start("/large", std::to_string(i));
  loop_.Yield();
  const std::size_t told = log_.calls.size();
  client_.reset();
  for (int i = 0; i < 20; ++i) loop_.Wait(std::chrono::milliseconds(1));
  EXPECT_EQ(log_.calls.size(), told);
}

TEST_P(WebContract, AClientMayDieInsideACall) {
  log_.on_head = [&](const std::string&, const WebHead&) {
    client_.reset();
    return true;
  };
  Start("/a", "k");
  ASSERT_TRUE(PumpUntil(loop_, [&] { return !client_; }));
  for (int i = 0; i < 20; ++i) loop_.Wait(std::chrono::milliseconds(1));
  EXPECT_EQ(log_.calls, Calls{"head k 200"});
}

}  // namespace
}  // namespace quenlar
