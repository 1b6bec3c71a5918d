#include "page/url_host.h"

#include <string>

#include <gtest/gtest.h>

#include "support/fake_idna.h"

namespace quenlar {
namespace {

std::string Host(std::string_view text) {
  std::string host;
  return AppendHost(text, FakeIdna(), host) ? host : "";
}

struct HostCase {
  const char* text;
  const char* host;
};

void ExpectHosts(std::initializer_list<HostCase> cases) {
  for (const HostCase& c : cases) EXPECT_EQ(Host(c.text), c.host) << c.text;
}

TEST(UrlHost, DomainsAreMadeSmallAndDecoded) {
  ExpectHosts({
      {"www.firma.example", "www.firma.example"},
      {"WWW.Firma.Example", "www.firma.example"},
      {"w%57w%2Eh", "www.h"},
      {"a_b-c.", "a_b-c."},
      {".a", ".a"},
      {"a..b", "a..b"},
      {"XN--A", "xn--a"},
      {"a!\"$&'()*+,;={}~`b", "a!\"$&'()*+,;={}~`b"},
  });
}

TEST(UrlHost, ForbiddenCharactersAreRefused) {
  for (const char* text : {"",
                           "a b",
                           "a%20b",
                           "a#b",
                           "a/b",
                           "a:b",
                           "a<b",
                           "a>b",
                           "a?b",
                           "a@b",
                           "a[b",
                           "a\\b",
                           "a]b",
                           "a^b",
                           "a|b",
                           "a%b",
                           "a%zz",
                           "a%00b",
                           "a%7Fb",
                           "a\x01"
                           "b"}) {
    EXPECT_EQ(Host(text), "") << text;
  }
}

TEST(UrlHost, Ipv4AddressesHaveManySpellings) {
  ExpectHosts({
      {"127.0.0.1", "127.0.0.1"},
      {"127.0.0.1.", "127.0.0.1"},
      {"127.1", "127.0.0.1"},
      {"127.0.1", "127.0.0.1"},
      {"2130706433", "127.0.0.1"},
      {"0x7f.1", "127.0.0.1"},
      {"0X7F000001", "127.0.0.1"},
      {"0177.0.0.01", "127.0.0.1"},
      {"0", "0.0.0.0"},
      {"0x", "0.0.0.0"},
      {"1.0x.1", "1.0.0.1"},
      {"4294967295", "255.255.255.255"},
      {"1.2.65535", "1.2.255.255"},
      {"1.16777215", "1.255.255.255"},
      {"%31.1", "1.0.0.1"},
  });
}

TEST(UrlHost, WhatEndsInANumberIsAnAddressOrNothing) {
  for (const char* text :
       {"256.1.1.1", "1.256.1", "1.2.65536", "1.16777216", "4294967296", "0x100000000", "1.2.3.4.5", "1.2.3.256", "08",
        "1.09", "a.1", "1..1", ".1", "a.0x1", "99999999999999999999", "0xffffffffffffffffffffff.1"}) {
    EXPECT_EQ(Host(text), "") << text;
  }
  ExpectHosts({{"1.0x", "1.0.0.0"},
               {"1.a", "1.a"},
               {"1.0xg", "1.0xg"},
               {"1.x1", "1.x1"},
               {"1..", "1.."},
               {"1.1a", "1.1a"},
               {".", "."}});
}

TEST(UrlHost, Ipv6AddressesAreShortened) {
  ExpectHosts({
      {"[::1]", "[::1]"},
      {"[::]", "[::]"},
      {"[0:0:0:0:0:0:0:1]", "[::1]"},
      {"[2001:DB8:0:0:1:0:0:1]", "[2001:db8::1:0:0:1]"},
      {"[1:0:0:2:0:0:0:3]", "[1:0:0:2::3]"},
      {"[1:2:3:4:5:6:0:8]", "[1:2:3:4:5:6:0:8]"},
      {"[1:2:3:4:5:6:7::]", "[1:2:3:4:5:6:7:0]"},
      {"[::2:3:4:5:6:7:8]", "[0:2:3:4:5:6:7:8]"},
      {"[1::8]", "[1::8]"},
      {"[1::]", "[1::]"},
      {"[::127.0.0.1]", "[::7f00:1]"},
      {"[1:2:3:4:5:6:1.2.3.4]", "[1:2:3:4:5:6:102:304]"},
      {"[1::3:4:5:6:1.2.3.4]", "[1:0:3:4:5:6:102:304]"},
      {"[0001::000a]", "[1::a]"},
  });
}

TEST(UrlHost, BrokenIpv6AddressesAreRefused) {
  for (const char* text : {"[",
                           "[]",
                           "[::1",
                           "::1]",
                           "[::1]x",
                           "[:1]",
                           "[1:]",
                           "[:::]",
                           "[1::2::3]",
                           "[1:2:3:4:5:6:7]",
                           "[1:2:3:4:5:6:7:8:9]",
                           "[1:2:3:4:5:6:7:8::]",
                           "[1:2:3:4::5:6:7:8]",
                           "[12345::]",
                           "[g::]",
                           "[::1%eth0]",
                           "[::1.2.3]",
                           "[::1.2.3.4.5]",
                           "[::1.2.3.256]",
                           "[::1.2.3.04]",
                           "[::.1.2.3]",
                           "[::1.2.3.]",
                           "[1:2:3:4:5:6:7:1.2.3.4]",
                           "[::1.2.3.4:5]",
                           "[::%31]"}) {
    EXPECT_EQ(Host(text), "") << text;
  }
}

}  // namespace
}  // namespace quenlar
