#include "platform/ip_address.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(IpAddress, TheStrictFormIsReadAndWritten) {
  const struct {
    const char* text;
    const char* written;
  } kCases[] = {
      {"192.0.2.1", "192.0.2.1"},
      {"0.0.0.0", "0.0.0.0"},
      {"255.255.255.255", "255.255.255.255"},
      {"::", "::"},
      {"::1", "::1"},
      {"[::1]", "::1"},
      {"2001:DB8::0:1", "2001:db8::1"},
      {"2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},
      {"1:0:0:2:0:0:0:3", "1:0:0:2::3"},
      {"2001:0db8:1:2:3:4:5:6", "2001:db8:1:2:3:4:5:6"},
      {"1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"},
      {"::ffff:127.0.0.1", "::ffff:7f00:1"},
      {"64:ff9b::10.0.0.1", "64:ff9b::a00:1"},
  };
  for (const auto& [text, written] : kCases) {
    const auto address = ParseIpAddress(text);
    ASSERT_TRUE(address.has_value()) << text;
    EXPECT_EQ(address->Text(), written);
    EXPECT_EQ(ParseIpAddress(address->Text()), address) << text;
  }
}

TEST(IpAddress, EverythingElseIsNone) {
  for (const char* text :
       {"",        "1",       "1.2.3",        "1.2.3.4.5",         "256.1.1.1", "01.2.3.4444", "1.2.3.4 ", "1..2.3",
        "1.2.3.",  ".1.2.3",  "2130706433",   "0x7f.0.0.1",        "-1.2.3.4",  ":",           ":::",      "1::2::3",
        "1:2:3:4", "12345::", "g::",          "1:2:3:4:5:6:7:8:9", "::1.2.3",   "1.2.3.4::",   "[::1",     "::1]",
        "::1:",    ":1::",    "fe80::1%eth0", "1:2:3:4:5:6:7:8::", "localhost"}) {
    EXPECT_FALSE(ParseIpAddress(text).has_value()) << text;
  }
}

TEST(IpAddress, KindsAreThoseOfTheRegistries) {
  using enum AddressKind;
  const struct {
    const char* text;
    AddressKind kind;
  } kCases[] = {
      {"0.0.0.0", kReserved},
      {"0.255.255.255", kReserved},
      {"1.0.0.0", kPublic},
      {"9.255.255.255", kPublic},
      {"10.0.0.0", kPrivate},
      {"10.255.255.255", kPrivate},
      {"11.0.0.0", kPublic},
      {"100.63.255.255", kPublic},
      {"100.64.0.0", kPrivate},
      {"100.127.255.255", kPrivate},
      {"100.128.0.0", kPublic},
      {"126.255.255.255", kPublic},
      {"127.0.0.1", kLoopback},
      {"127.255.255.255", kLoopback},
      {"128.0.0.0", kPublic},
      {"169.254.169.254", kLinkLocal},
      {"169.255.0.0", kPublic},
      {"172.15.255.255", kPublic},
      {"172.16.0.0", kPrivate},
      {"172.31.255.255", kPrivate},
      {"172.32.0.0", kPublic},
      {"192.0.0.1", kReserved},
      {"192.0.0.8", kReserved},
      {"192.0.0.9", kPublic},
      {"192.0.0.10", kPublic},
      {"192.0.0.170", kReserved},
      {"192.0.1.0", kPublic},
      {"192.0.2.1", kReserved},
      {"192.31.196.1", kPublic},
      {"192.88.99.1", kReserved},
      {"192.168.0.1", kPrivate},
      {"192.169.0.0", kPublic},
      {"198.17.255.255", kPublic},
      {"198.18.0.0", kReserved},
      {"198.19.255.255", kReserved},
      {"198.20.0.0", kPublic},
      {"198.51.100.1", kReserved},
      {"203.0.113.1", kReserved},
      {"223.255.255.255", kPublic},
      {"224.0.0.1", kReserved},
      {"240.0.0.1", kReserved},
      {"255.255.255.255", kReserved},
      {"::", kReserved},
      {"::1", kLoopback},
      {"::2", kReserved},
      {"::127.0.0.1", kReserved},
      {"::ffff:127.0.0.1", kLoopback},
      {"::ffff:8.8.8.8", kPublic},
      {"::ffff:10.1.2.3", kPrivate},
      {"64:ff9b::8.8.8.8", kPublic},
      {"64:ff9b::192.168.1.1", kPrivate},
      {"64:ff9b:1::1", kPrivate},
      {"100::1", kReserved},
      {"2001::1", kReserved},
      {"2001:1::1", kPublic},
      {"2001:1::4", kReserved},
      {"2001:4:112::1", kPublic},
      {"2001:1ff:ffff::1", kReserved},
      {"2001:200::1", kPublic},
      {"2001:db8::1", kReserved},
      {"2002:0a00:0001::1", kPrivate},
      {"2002:0808:0808::1", kPublic},
      {"2606:2800:220:1::1", kPublic},
      {"3fff::1", kReserved},
      {"3fff:1000::1", kPublic},
      {"4000::1", kReserved},
      {"5f00::1", kReserved},
      {"fc00::1", kPrivate},
      {"fdff::1", kPrivate},
      {"fe80::1", kLinkLocal},
      {"febf::1", kLinkLocal},
      {"fec0::1", kPrivate},
      {"ff02::1", kReserved},
  };
  for (const auto& [text, kind] : kCases) {
    const auto address = ParseIpAddress(text);
    ASSERT_TRUE(address.has_value()) << text;
    EXPECT_EQ(KindOf(*address), kind) << text;
    EXPECT_EQ(IsPublicAddress(*address), kind == kPublic) << text;
  }
}

TEST(IpAddress, LoopbackNamesAreLocalhostAndBelow) {
  for (const char* name : {"localhost", "localhost.", "www.localhost", "a.b.localhost."}) {
    EXPECT_TRUE(IsLoopbackName(name)) << name;
  }
  for (const char* name : {"", ".", "localhost.org", "notlocalhost", "local"}) EXPECT_FALSE(IsLoopbackName(name));
}

}  // namespace
}  // namespace quenlar
