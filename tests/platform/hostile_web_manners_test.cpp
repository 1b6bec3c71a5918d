// How the crawler's client behaves towards servers: connections, addresses, certificates, what it says of itself.
#include <set>

#include "hostile_web.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;

TEST_F(HostileWeb, ARequestSaysWhatItIsGivenAndNothingMore) {
  WebRequest request = Request("/echo");
  request.user_agent = "Quenlar/3.0 (+mailto:me@firma.example)";
  request.if_none_match = "\"tag\"";
  request.if_modified_since = "Sun, 06 Nov 1994 08:49:37 GMT";
  // No later request is to speak of them.
  Fetch("/redirect/to?/page");
  ExpectPage("/cookie", "page");
  const std::string head = Fetch(request).body;
  EXPECT_NE(head.find("GET /echo HTTP/1.1\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("User-Agent: Quenlar/3.0 (+mailto:me@firma.example)\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("If-None-Match: \"tag\"\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("If-Modified-Since: Sun, 06 Nov 1994 08:49:37 GMT\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("Accept-Encoding: gzip, deflate\r\n"), std::string::npos) << head;
  for (const char* field : {"Cookie", "Referer", "Authorization"}) EXPECT_EQ(head.find(field), std::string::npos);
  const std::string plain = Fetch("/echo").body;
  EXPECT_EQ(plain.find("If-"), std::string::npos) << plain;
}

TEST_F(HostileWeb, AUrlGoesOverTheWireAsItStands) {
  const std::string target = "/echo/../a//b/./c;d?x={y}|[z]^`'%7e%2F\\&=";
  const std::string head = Fetch("http://user:secret@" + server_ + target + "#fragment").body;
  EXPECT_NE(Fetch("http://" + server_ + target).body, "");
  EXPECT_EQ(head.find("secret"), std::string::npos) << head;
  EXPECT_EQ(head.find("fragment"), std::string::npos) << head;
  const std::string echoed = Fetch("/echo/%7Ea//b;c?x={y}|[z]'%2f").body;
  EXPECT_NE(echoed.find("GET /echo/%7Ea//b;c?x={y}|[z]'%2f HTTP/1.1\r\n"), std::string::npos) << echoed;
}

TEST_F(HostileWeb, TheRequestsOfAHostShareOneConnectionAndNeverOverlap) {
  Fetch("/peaks/forget");
  for (int i = 0; i < 20; ++i) client_->Start(Request("/connection"), "k" + std::to_string(i));
  for (int i = 0; i < 5; ++i) client_->Start(Request("/slow-page?ms=20"), "slow" + std::to_string(i));
  ASSERT_TRUE(PumpUntil(loop_, [&] { return log_.ended.size() >= 25; }));
  std::set<std::string> numbers;
  for (int i = 0; i < 20; ++i) numbers.insert(log_.ended["k" + std::to_string(i)].body);
  EXPECT_EQ(numbers.size(), 1u);
  EXPECT_EQ(Fetch("/peaks/port").body, "1");
  EXPECT_EQ(client_->connections(), 1u);
}

TEST_F(HostileWeb, ConnectionsThatCloseAtBadMomentsNeverOverlapEither) {
  Fetch("/peaks/forget");
  for (int i = 0; i < 20; ++i) {
    ExpectPage("/closed-on-next", "first");
    ExpectPage("/closed-after", "first");
    ExpectOrdinaryService();
  }
  EXPECT_EQ(Fetch("/peaks/port").body, "1");
}

TEST_F(HostileWeb, NeverMoreThanFourConnectionsGoToOneAddress) {
  const auto urls = HostsOfOneAddress("/slow-page?ms=20");
  ASSERT_GT(urls.size(), 8u);
  Fetch("/peaks/forget");
  log_.ended.clear();
  std::size_t started = 0;
  for (int round = 0; round < 3; ++round) {
    for (const std::string& url : urls) client_->Start(Request(url), url + std::to_string(round));
    started += urls.size();
  }
  ASSERT_TRUE(PumpUntil(loop_, [&] { return log_.ended.size() >= started; }));
  for (const auto& [key, answer] : log_.ended) EXPECT_EQ(answer.body, "slow") << key;
  EXPECT_LE(client_->connections(), kConnectionsPerAddress);
  if (!platform_->HttpIsStrict()) return;  // it keeps connections that it was told to close
  EXPECT_EQ(Fetch("/peaks/all").body, "4");
  EXPECT_EQ(Fetch("/peaks/port").body, "1");
}

TEST_F(HostileWeb, ARequestThatWaitsForItsAddressCanBeCancelled) {
  const auto urls = HostsOfOneAddress("/never");
  for (const std::string& url : urls) client_->Start(Request(url), url);
  for (std::size_t i = urls.size(); i-- > 4;) client_->Cancel(urls[i]);
  for (std::size_t i = 0; i < 4; ++i) client_->Cancel(urls[i]);
  ExpectOrdinaryService();
  EXPECT_EQ(client_->connections(), 1u);
}

TEST_F(HostileWeb, AnIdleConnectionMakesWayForAnotherHost) {
  Fetch("/peaks/forget");
  for (const std::string& url : HostsOfOneAddress("/page")) {
    EXPECT_EQ(Fetch(url).failure, WebFailure::kNone);
    EXPECT_LE(client_->connections(), kConnectionsPerAddress);
  }
  if (!platform_->HttpIsStrict()) return;
  EXPECT_EQ(Fetch("/peaks/all").body, "4");
}

TEST_F(HostileWeb, APrivateAddressIsRefusedBeforeAnythingIsSent) {
  const std::string port = server_.substr(server_.find(':'));
  for (const std::string host :
       {"127.0.0.1", "localhost", "2130706433", "0x7f.1", "127.1", "0.0.0.0", "[::1]", "[::ffff:127.0.0.1]",
        "[::ffff:7f00:1]", "10.1.2.3", "192.168.1.1", "169.254.169.254", "[fe80::1]", "[fc00::1]", "100.64.0.1"}) {
    WebRequest request = Request("http://" + host + port + "/hit-and-close?private");
    request.private_addresses = false;
    const WebAnswer answer = Fetch(request);
    // A name that the system's resolver does not take for an address has none.
    EXPECT_TRUE(answer.failure == WebFailure::kPrivateAddress || answer.failure == WebFailure::kNoName)
        << host << ": " << answer.message;
  }
  EXPECT_EQ(Fetch("/hits?private").body, "0");
}

// A name that is judged by one answer of its server and connected to by another one would lead anywhere. The system
// takes "localhost" for this machine, whatever the answer was that has been judged.
std::vector<IpAddress> PublicAddressOfNobody(const std::string&) { return {*ParseIpAddress("2000::1")}; }

TEST_F(HostileWeb, NothingIsSentWhereANameHasNotBeenJudgedToLead) {
  UseClient("", "", PublicAddressOfNobody);
  WebRequest request = Request("http://localhost" + server_.substr(server_.find(':')) + "/hit-and-close?rebound");
  request.private_addresses = false;
  request.connect_limit = milliseconds(1000);
  const WebAnswer answer = Fetch(request);
  EXPECT_TRUE(answer.failure == WebFailure::kNoConnection || answer.failure == WebFailure::kPrivateAddress)
      << answer.message;
  EXPECT_EQ(answer.body, "");
  UseClient("", "");
  EXPECT_EQ(Fetch("/hits?rebound").body, "0");
}

TEST_F(HostileWeb, AKeptConnectionOfAPrivateHostIsNoWayInForOthers) {
  ExpectOrdinaryService();
  WebRequest request = Request("/hit-and-close?kept-private");
  request.private_addresses = false;
  EXPECT_EQ(Fetch(request).failure, WebFailure::kPrivateAddress);
  EXPECT_EQ(Fetch("/hits?kept-private").body, "0");
}

TEST_F(HostileWeb, BehindAProxyNamesAndLiteralAddressesAreJudged) {
  UseClient("http://" + server_, "");
  ExpectPage("http://invented.example/page", "<html><title>Page</title>a page</html>");
  WebRequest request = Request("http://invented.example/page");
  request.private_addresses = false;
  EXPECT_EQ(Fetch(request).failure, WebFailure::kNone);
  for (const char* host : {"localhost", "www.localhost", "127.0.0.1", "10.0.0.1", "[::1]", "2130706433"}) {
    request.url = std::string("http://") + host + "/page";
    EXPECT_EQ(Fetch(request).failure, WebFailure::kPrivateAddress) << host;
  }
}

TEST_F(HostileWeb, AProxyThatRefusesIsNotGoneAround) {
  UseClient("http://" + server_, "");
  ExpectFailure("http://invented.example/407", WebFailure::kProxy);
  if (platform_->HttpIsStrict()) ExpectFailure("https://invented.example/", WebFailure::kProxy);
  const std::string closed = Fetch("http://invented.example/closed-port").body;
  UseClient("http://127.0.0.1:" + closed, "");
  ExpectFailure("/page", WebFailure::kProxy);
}

TEST_F(HostileWeb, TheWireShowsWhatWasSentAndReceived) {
  WebRequest request = Request("/chunks/right");
  request.keep_wire = true;
  const WebAnswer answer = Fetch(request);
  EXPECT_EQ(answer.body, "hello world");
  ASSERT_TRUE(answer.wire.has_value());
  EXPECT_TRUE(answer.wire->request.starts_with("GET /chunks/right HTTP/1.1\r\n")) << answer.wire->request;
  EXPECT_NE(answer.wire->request.find("Quenlar/3.0"), std::string::npos);
  EXPECT_TRUE(answer.wire->head.starts_with("HTTP/1.1 200 OK\r\n")) << answer.wire->head;
  if (!answer.wire->chunks_joined) {
    EXPECT_TRUE(answer.wire->body.ends_with("\r\n0\r\n\r\n")) << answer.wire->body;
  }
  request.url = "http://" + server_ + "/gzip/right";
  const WebAnswer compressed = Fetch(request);
  EXPECT_EQ(compressed.wire->body.substr(0, 2), "\x1F\x8B");
  EXPECT_NE(compressed.body.substr(0, 2), "\x1F\x8B");
}

class SecureWeb : public HostileWeb {
 protected:
  void SetUp() override {
    HostileWeb::SetUp();
    authority_ = platform_->Folder() + "/authority.pem";
    ASSERT_TRUE(WriteWhole(platform_->files(), authority_, Fetch("/tls/authority").body).ok());
    UseClient("", authority_);
  }
  std::string Secure(const std::string& which) { return "https://localhost:" + Fetch("/tls/" + which).body + "/page"; }

  std::string authority_;  // file of the certificate that has signed those of the server
};

TEST_F(SecureWeb, ACertificateOfATrustedAuthorityIsAccepted) {
  ExpectPage(Secure("right"), "secure page");
  ExpectPage(Secure("asks"), "secure page");
}

TEST_F(SecureWeb, AWrongCertificateIsAFailureOfItsOwn) {
  for (const char* which :
       {"stranger", "expired", "not-yet", "wrong-name", "self-signed", "forged", "keyless", "keyless-tls12"}) {
    const WebFailure failure = Fetch(Secure(which)).failure;
    // Some look-alikes of Windows do not tell why TLS failed.
    EXPECT_TRUE(failure == WebFailure::kCertificate || (failure == WebFailure::kNoTls && !platform_->HttpIsStrict()))
        << which;
  }
}

TEST_F(SecureWeb, AServerThatDoesNotSpeakTlsIsNoMatterOfCertificates) {
  ExpectFailure("https://" + server_ + "/page", WebFailure::kNoTls);
  const WebFailure noise = Fetch(Secure("garbage")).failure;
  EXPECT_TRUE(noise == WebFailure::kNoTls || (noise != WebFailure::kNone && !platform_->HttpIsStrict()));
  // Windows, and its look-alikes too, have a policy of their own.
  if (platform_->HttpIsStrict()) ExpectFailure(Secure("old"), WebFailure::kNoTls);
}

TEST_F(SecureWeb, NothingIsSentWhereANameHasNotBeenJudgedToLead) {
  const std::string url = Secure("counting");
  UseClient("", authority_, PublicAddressOfNobody);
  WebRequest request = Request(url);
  request.private_addresses = false;
  request.connect_limit = milliseconds(1000);
  const WebAnswer answer = Fetch(request);
  EXPECT_TRUE(answer.failure == WebFailure::kNoConnection || answer.failure == WebFailure::kPrivateAddress)
      << answer.message;
  UseClient("", authority_);
  ExpectPage(url, "1");
}

TEST_F(SecureWeb, ARedirectToPlainHttpIsAnAnswer) {
  const WebAnswer answer = Fetch(Secure("downgrade"));
  EXPECT_EQ(answer.head.status, 302);
  ASSERT_NE(answer.head.Find("Location"), nullptr);
}

}  // namespace
}  // namespace quenlar
