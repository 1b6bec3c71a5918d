// Answers whose head is wrong, and what a connection may do to a request.
#include "hostile_server.h"

namespace quenlar {
namespace {

constexpr std::uint64_t kMegabytesForNothing = 16;

TEST_F(HostileServer, AGarbageStatusLineFails) {
  for (const char* path :
       {"/start/garbage", "/start/http09", "/start/other-protocol", "/start/no-code", "/start/code-too-long",
        "/start/no-version", "/start/nothing", "/start/cut-in-line", "/start/cut-in-head"}) {
    ExpectRefusal(path);
  }
  ExpectOrdinaryService();
}

TEST_F(HostileServer, AStatusLineMayBeOldOrShort) {
  ExpectPageOfStrictHttp("/start/without-words", "page");
  ExpectPage("/start/line-feeds-only", "page");
  ExpectPage("/start/http10", "page");
}

TEST_F(HostileServer, HugeHeadsFailWithinBoundedMemory) {
  ExpectMemoryBelow(kMegabytesForNothing, [&] {
    ExpectRefusal("/header/line-of-a-megabyte");
    ExpectFailure("/header/many?count=10000");
    if (!platform_->HttpIsStrict()) return;
    ExpectFailure("/header/endless");
    ExpectFailure("/header/endless-line");
    ExpectFailure("/interim/endless");
  });
  ExpectOrdinaryService();
}

TEST_F(HostileServer, ManyHeadersWithinTheLimitArePassedOver) { ExpectPage("/header/many?count=500", "page"); }

TEST_F(HostileServer, FoldedHeadersArePassedOver) { ExpectPageOfStrictHttp("/header/folded", "page"); }

TEST_F(HostileServer, LinesThatNoServerSendsFailOrArePassedOver) {
  for (const char* path : {"/header/no-colon", "/header/nul"}) {
    const Fetched fetched = Fetch(path);
    EXPECT_TRUE(fetched.failed || fetched.body == "page" || !platform_->HttpIsStrict()) << path;
  }
  ExpectOrdinaryService();
}

TEST_F(HostileServer, InterimAnswersArePassedOver) { ExpectPageOfStrictHttp("/interim", "page"); }

TEST_F(HostileServer, APageWithAnErrorStatusIsAPage) {
  for (const char* code : {"200", "203", "400", "403", "404", "410", "429", "500", "502", "503", "999"}) {
    ExpectPage(std::string("/status?code=") + code, std::string("<p>status ") + code + " of a@b.example</p>");
  }
  ExpectPage("/no-content", "");
}

TEST_F(HostileServer, ARequestForAPasswordIsAPageLikeAnyOther) {
  ExpectPage("/401", "<p>who are you?</p>");
  ExpectPage("/401/no-challenge", "<p>who are you?</p>");
}

TEST_F(HostileServer, AProxysRequestForAPasswordFails) {
  ExpectFailure("/407");
  ExpectMemoryBelow(kMegabytesForNothing, [&] { ExpectFailure("/407/huge"); });
  UseProxy();
  ExpectFailure("http://invented.example/407");
}

TEST_F(HostileServer, AKeptConnectionThatClosesAsTheRequestLeavesIsReplacedByAFreshOne) {
  for (int i = 0; i < 5; ++i) {
    ExpectPage("/closed-on-next", "first");
    ExpectOrdinaryService();
  }
}

TEST_F(HostileServer, EveryKeptConnectionThatClosesIsReplacedHoweverManyThereAre) {
  for (int i = 0; i < 20; ++i) ExpectPage("/closed-on-next", "first");
}

TEST_F(HostileServer, AKeptConnectionThatIsClosedInTheMeantimeIsReplacedByAFreshOne) {
  for (int i = 0; i < 5; ++i) {
    ExpectPage("/closed-after", "first");
    ExpectOrdinaryService();
  }
}

TEST_F(HostileServer, ARequestOnAFreshConnectionIsNotRepeated) {
  ExpectFailure("/hit-and-close?fresh");
  EXPECT_LE(HitsOf("fresh"), platform_->HttpIsStrict() ? 1 : 2);
}

TEST_F(HostileServer, ARequestOnAKeptConnectionIsRepeatedOnceAtMost) {
  ExpectOrdinaryService();
  ExpectFailure("/hit-and-close?kept");
  EXPECT_LE(HitsOf("kept"), 2);
}

TEST_F(HostileServer, ConnectionsAreKeptForTheNextRequests) {
  const std::string first = Fetch("/connection").body;
  EXPECT_NE(first, "");
  for (int i = 0; i < 20; ++i) ExpectPage("/connection", first);
}

class SecureServer : public HostileServer {
 protected:
  void SetUp() override {
    HostileServer::SetUp();
    const std::string path = platform_->Folder() + "/authority.pem";
    ASSERT_TRUE(WriteWhole(platform_->files(), path, Fetch("/tls/authority").body).ok());
    UseFetcher(platform_->MakeFetcher("", path));
  }
  // By name: not every system looks for a number among the names of a certificate.
  std::string Secure(const std::string& which) { return "https://localhost:" + Fetch("/tls/" + which).body + "/page"; }
};

TEST_F(SecureServer, ACertificateOfATrustedAuthorityIsAccepted) { ExpectPage(Secure("right"), "secure page"); }

TEST_F(SecureServer, ACertificateOfAnUnknownAuthorityFails) { ExpectFailure(Secure("stranger")); }

TEST_F(SecureServer, AServerThatAsksForACertificateAndCanDoWithoutIsAccepted) {
  ExpectPage(Secure("asks"), "secure page");
}

TEST_F(SecureServer, AnExpiredCertificateFails) { ExpectFailure(Secure("expired")); }

TEST_F(SecureServer, ACertificateForAnotherNameFails) { ExpectFailure(Secure("wrong-name")); }

TEST_F(SecureServer, ACertificateThatIsNotValidFailsBehindARedirectToo) {
  const Fetched fetched = Fetch("/redirect/to?" + Secure("expired"));
  EXPECT_TRUE(fetched.failed);
  EXPECT_EQ(fetched.redirects.size(), 1u);
}

TEST_F(SecureServer, ARedirectFromHttpsToHttpIsToldAndNotFollowed) {
  const Fetched fetched = Fetch(Secure("downgrade"));
  EXPECT_TRUE(fetched.failed);
  EXPECT_EQ(fetched.redirects, std::vector<std::string>{Address("/page")});
}

TEST_F(SecureServer, AServerThatDoesNotSpeakTlsFails) { ExpectFailure("https://" + server_ + "/page"); }

}  // namespace
}  // namespace quenlar
