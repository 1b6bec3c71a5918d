// Redirects that lead nowhere good, addresses that try to break a request, and proxies.
#include "hostile_server.h"

namespace quenlar {
namespace {

using Addresses = std::vector<std::string>;

TEST_F(HostileServer, EveryKindOfRedirectIsFollowed) {
  for (const char* status : {"301", "302", "303", "307", "308"}) {
    const Fetched fetched = Fetch(std::string("/redirect/") + status);
    EXPECT_FALSE(fetched.failed) << status;
    EXPECT_EQ(fetched.redirects, Addresses{Address("/page")}) << status;
  }
}

TEST_F(HostileServer, AnAnswerThatIsNoRedirectIsAPageWhateverItsHeadersSay) {
  for (const char* path : {"/redirect/200", "/redirect/300"}) {
    const Fetched fetched = Fetch(path);
    EXPECT_EQ(fetched.body, "<p>moved</p>") << path;
    EXPECT_EQ(fetched.redirects, Addresses{}) << path;
  }
  ExpectPage("/redirect/no-location", "<p>nowhere</p>");
  ExpectPage("/redirect/empty", "<p>moved</p>");
}

TEST_F(HostileServer, ARelativeTargetIsResolvedAgainstItsPage) {
  const Fetched fetched = Fetch("/redirect/relative");
  EXPECT_FALSE(fetched.failed);
  EXPECT_EQ(fetched.redirects, Addresses{Address("/page?from=relative")});
}

TEST_F(HostileServer, ARedirectToItselfFailsAfterTwentyHops) {
  const Fetched fetched = Fetch("/redirect/loop");
  EXPECT_TRUE(fetched.failed);
  EXPECT_EQ(fetched.redirects, Addresses(kMaxRedirects, Address("/redirect/loop")));
}

TEST_F(HostileServer, TwoPagesThatRedirectToEachOtherFailAfterTwentyHops) {
  const Fetched fetched = Fetch("/redirect/ping");
  EXPECT_TRUE(fetched.failed);
  ASSERT_EQ(fetched.redirects.size(), static_cast<std::size_t>(kMaxRedirects));
  EXPECT_EQ(fetched.redirects[0], Address("/redirect/pong"));
  EXPECT_EQ(fetched.redirects[1], Address("/redirect/ping"));
}

TEST_F(HostileServer, TwentyHopsArriveAndTwentyOneFail) {
  const Fetched twenty = Fetch("/redirect/hops?n=20");
  EXPECT_EQ(twenty.body, "the end of the hops");
  EXPECT_EQ(twenty.redirects.size(), 20u);
  const Fetched more = Fetch("/redirect/hops?n=21");
  EXPECT_TRUE(more.failed);
  EXPECT_EQ(more.redirects.size(), 20u);
  ExpectFailure("/redirect/hops?n=1000");
}

TEST_F(HostileServer, ARedirectToAForeignSchemeIsToldAndFails) {
  for (const char* which : {"file", "javascript", "data", "ftp"}) {
    const Fetched fetched = Fetch(std::string("/redirect/") + which);
    EXPECT_TRUE(fetched.failed) << which;
    ASSERT_EQ(fetched.redirects.size(), 1u) << which;
    EXPECT_TRUE(fetched.redirects[0].starts_with(std::string(which) + ":")) << fetched.redirects[0];
  }
}

TEST_F(HostileServer, ADeviceNameIsAPathOnTheServer) {
  const Fetched fetched = Fetch("/redirect/device");
  ASSERT_EQ(fetched.redirects.size(), 1u);
  EXPECT_TRUE(fetched.redirects[0].starts_with(Address("/"))) << fetched.redirects[0];
}

TEST_F(HostileServer, ARedirectToAnotherHostIsTold) {
  UseProxy();
  const Fetched fetched = Fetch("http://one.example/redirect/to?http://two.example/page");
  EXPECT_FALSE(fetched.failed);
  EXPECT_EQ(fetched.redirects, Addresses{"http://two.example/page"});
}

TEST_F(HostileServer, ARedirectToLoopbackIsFollowed) {
  UseFetcher(platform_->MakeFetcher("", ""));
  EXPECT_FALSE(Fetch("/redirect/to?" + Address("/page")).failed);
}

TEST_F(HostileServer, ATargetOfAMegabyteFails) {
  ExpectMemoryBelow(16, [&] { ExpectRefusal("/redirect/megabyte"); });
}

// The line of the request that was answered by /echo, and nothing else of it. The port that http has anyway may be told
// or not (RFC 3986, 6.2.3).
std::string RequestLine(const std::string& head) {
  std::string line = head.substr(0, head.find("\r\n"));
  if (const auto port = line.find(":80/"); port != line.npos) line.erase(port, 3);
  return line;
}

TEST_F(HostileServer, ControlBytesOfATargetNeverReachTheWire) {
  for (const char* which : {"carriage-return", "tab", "nul"}) {
    const Fetched fetched = Fetch(std::string("/redirect/") + which);
    for (const std::string& address : fetched.redirects) {
      EXPECT_EQ(address.find_first_of(std::string("\r\n\t\0", 4)), std::string::npos) << which;
    }
    const std::string line = RequestLine(fetched.body);
    EXPECT_EQ(line.find_first_of(std::string("\r\n\t\0", 4)), std::string::npos) << which;
    EXPECT_EQ(fetched.body.find("\nX-Injected"), std::string::npos) << which;
    EXPECT_EQ(fetched.body.find("\rX-Injected"), std::string::npos) << which;
  }
}

TEST_F(HostileServer, ATargetBeyondAsciiIsAskedForByItsBytes) {
  EXPECT_EQ(RequestLine(Fetch("/redirect/utf8").body), "GET /echo/caf%C3%A9 HTTP/1.1");
  EXPECT_EQ(RequestLine(Fetch("/redirect/latin1").body), "GET /echo/caf%E9 HTTP/1.1");
  EXPECT_EQ(RequestLine(Fetch("/redirect/blanks").body), "GET /echo/a%20b%22c HTTP/1.1");
}

TEST_F(HostileServer, TheBodyOfARedirectIsOfNoInterest) {
  ExpectMemoryBelow(16, [&] { EXPECT_FALSE(Fetch("/redirect/endless-body").failed); });
  EXPECT_FALSE(Fetch("/redirect/short-body").failed);
}

TEST_F(HostileServer, WhatARequestLineCannotHoldIsPercentEncoded) {
  const struct {
    const char* asked;
    const char* sent;
  } kCases[] = {
      {"/echo/a b", "/echo/a%20b"},
      {"/echo/\"quoted\"", "/echo/%22quoted%22"},
      {"/echo/'single'", "/echo/%27single%27"},
      {"/echo/a\tb\rc\nd", "/echo/a%09b%0Dc%0Ad"},
      {"/echo/m\xC3\xBCller?name=\xE6\x97\xA5", "/echo/m%C3%BCller?name=%E6%97%A5"},
      {"/echo/100%25?a=b+c&d=%20", "/echo/100%25?a=b+c&d=%20"},
      {"/echo/x#fragment", "/echo/x"},
      {"/echo?a=b#c?d", "/echo?a=b"},
      {"/echo/x HTTP/1.1\r\nX-Injected: yes\r\n\r\nGET /",
       "/echo/x%20HTTP/1.1%0D%0AX-Injected:%20yes%0D%0A%0D%0AGET%20/"},
  };
  for (const auto& c : kCases) {
    const std::string head = Fetch(c.asked).body;
    EXPECT_EQ(RequestLine(head), std::string("GET ") + c.sent + " HTTP/1.1");
    EXPECT_EQ(head.find("X-Injected: yes"), std::string::npos);
  }
}

TEST_F(HostileServer, ARequestSaysWhatItHasToAndNotMore) {
  ExpectPage("/cookie", "page");  // no later request is to bring it back
  const std::string head = Fetch("http://user:secret@" + server_ + "/echo").body;
  EXPECT_NE(head.find("\r\nHost: " + server_ + "\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("\r\nAccept-Encoding: gzip, deflate\r\n"), std::string::npos) << head;
  EXPECT_NE(head.find("\r\nUser-Agent: "), std::string::npos) << head;
  for (const char* banned : {"Authorization", "secret", "Cookie", "Referer"}) {
    EXPECT_EQ(head.find(banned), std::string::npos) << head;
  }
}

TEST_F(HostileServer, AHostIsWrittenAsTheNameSystemSpellsIt) {
  UseProxy();
  EXPECT_EQ(RequestLine(Fetch("http://b\xC3\xBC"
                              "cher.example/echo")
                            .body),
            "GET http://xn--bcher-kva.example/echo HTTP/1.1");
  EXPECT_EQ(RequestLine(Fetch("http://WWW.Example.ORG:80/echo").body), "GET http://www.example.org/echo HTTP/1.1");
}

TEST_F(HostileServer, AProxyIsAskedForEveryHost) {
  UseProxy();
  EXPECT_EQ(RequestLine(Fetch("http://invented.example/echo?x").body), "GET http://invented.example/echo?x HTTP/1.1");
  EXPECT_EQ(RequestLine(Fetch("http://127.0.0.2:1/echo").body), "GET http://127.0.0.2:1/echo HTTP/1.1");
}

TEST_F(HostileServer, ANumberOfIpVersion6GoesOverTheWireInItsBrackets) {
  UseProxy();
  const std::string head = Fetch("http://[2001:DB8::1]:8080/echo").body;
  EXPECT_EQ(RequestLine(head), "GET http://[2001:db8::1]:8080/echo HTTP/1.1");
  EXPECT_NE(head.find("\r\nHost: [2001:db8::1]:8080\r\n"), std::string::npos) << head;
}

TEST_F(HostileServer, ADeadProxyIsNotGoneAround) {
  const std::string dead = "http://127.0.0.1:" + Fetch("/closed-port").body;
  UseFetcher(platform_->MakeFetcher(dead, ""));
  ExpectFailure("/hit-and-close?around");
  ExpectFailure("http://invented.example/");
  UseFetcher(platform_->MakeFetcher("", ""));
  EXPECT_EQ(HitsOf("around"), 0);
}

TEST_F(HostileServer, AProxyThatLoopsFails) {
  UseProxy();
  ExpectFailure("http://invented.example/redirect/loop");
}

TEST_F(HostileServer, AProxyThatAnswersHtmlToEverythingGivesPages) {
  UseProxy();
  const Fetched fetched = Fetch("http://whatever.example/some/page");
  EXPECT_NE(fetched.body.find("Anything"), std::string::npos);
}

TEST_F(HostileServer, AProxyThatRefusesATunnelFails) {
  UseProxy();
  ExpectFailure("https://secure.example/");
}

}  // namespace
}  // namespace quenlar
