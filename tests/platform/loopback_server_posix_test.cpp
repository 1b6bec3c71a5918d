// The server of the demonstration as the crawler's client sees it: a proxy whose tunnels end in TLS of its own.
#include <memory>
#include <string>

#include "platform/files.h"
#include "platform/posix/loopback_server.h"
#include "platform_under_test.h"
#include "web_log.h"

namespace quenlar {
namespace {

class LoopbackServerTest : public testing::Test {
 protected:
  LoopbackServerTest() {
    auto made = MakePosixLoopbackServer([](const ServedRequest& request) {
      return ServedAnswer{.body =
                              std::string(request.url == "https://a.example/large" ? 3 << 20 : 1, 'x') + request.url};
    });
    EXPECT_TRUE(made.ok()) << made.status().message();
    server_ = made.take();
    authority_ = platform_->Folder() + "/authority.pem";
    EXPECT_TRUE(WriteWhole(platform_->files(), authority_, server_->authority()).ok());
  }

  WebAnswer Fetch(const std::string& url, const std::string& authority) {
    client_ = platform_->MakeWebClient("http://127.0.0.1:" + std::to_string(server_->port()), authority, {});
    client_->SetListener(&log_);
    client_->Start({.url = url, .user_agent = "Quenlar/3.0"}, url);
    EXPECT_TRUE(PumpUntil(platform_->loop(), [&] { return log_.ended.contains(url); })) << url;
    return std::move(log_.ended[url]);
  }

  std::unique_ptr<TestPlatform> platform_ = MakeTestPlatform();
  WebLog log_;
  std::unique_ptr<LoopbackServer> server_;
  std::string authority_;
  std::unique_ptr<WebClient> client_;
};

TEST_F(LoopbackServerTest, ItsAuthorityVouchesForEveryHost) {
  for (const char* url :
       {"https://a.example/", "https://www.b.example/x?y", "https://c.example:8443/", "http://d.example/"}) {
    const WebAnswer answer = Fetch(url, authority_);
    EXPECT_EQ(answer.failure, WebFailure::kNone) << url << ": " << answer.message;
    EXPECT_EQ(answer.body, "x" + std::string(url));
  }
  EXPECT_EQ(Fetch("https://a.example/large", authority_).body.size(), (3u << 20) + 23);
}

TEST_F(LoopbackServerTest, NobodyTrustsItWithoutBeingTold) {
  EXPECT_EQ(Fetch("https://a.example/", "").failure, WebFailure::kCertificate);
  const auto other = MakePosixLoopbackServer([](const ServedRequest&) { return ServedAnswer(); });
  ASSERT_TRUE(other.ok());
  ASSERT_TRUE(WriteWhole(platform_->files(), authority_, other.value()->authority()).ok());
  EXPECT_NE(Fetch("https://b.example/", authority_).failure, WebFailure::kNone) << "the name alone is the same";
}

TEST_F(LoopbackServerTest, ItEndsWhileClientsKeepTheirConnections) {
  EXPECT_EQ(Fetch("https://a.example/", authority_).failure, WebFailure::kNone);
  server_.reset();
}

}  // namespace
}  // namespace quenlar
