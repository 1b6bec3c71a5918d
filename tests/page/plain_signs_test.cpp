// Reading a page for its plain addresses alone finds those that a whole reading finds, and the page's title with them.
#include <array>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "page/page_reader.h"
#include "page/page_signs.h"
#include "support/fake_idna.h"
#include "support/fake_text_decoder.h"

namespace quenlar {
namespace {

// What addresses, their signs and what is beside them are made of.
const std::vector<std::string> kPieces = {"@",
                                          "@",
                                          "@",
                                          "@",
                                          "&#64;",
                                          "&#x40;",
                                          "&commat;",
                                          "%40",
                                          "\\u0040",
                                          "\\x40",
                                          "&#37;40",
                                          "&percnt;40",
                                          ".",
                                          "-",
                                          "_",
                                          "'",
                                          "\"",
                                          "=",
                                          "/",
                                          "?",
                                          "#",
                                          "{",
                                          "}",
                                          "|",
                                          "`",
                                          "+",
                                          "!",
                                          "*",
                                          "~",
                                          "^",
                                          "$",
                                          ",",
                                          ";",
                                          ":",
                                          "(",
                                          ")",
                                          "[",
                                          "]",
                                          " ",
                                          "\n",
                                          "\t",
                                          "\r",
                                          "\f",
                                          "&nbsp;",
                                          "\\n",
                                          "\\",
                                          "a",
                                          "name",
                                          "a.b",
                                          "firma.de",
                                          "firma.de",
                                          "x.org",
                                          "de",
                                          "\xE4",
                                          "\xC3\xA4",
                                          "\xE3\x81\x82",
                                          "&auml;",
                                          std::string(1, '\0'),
                                          "<b>",
                                          "</b>",
                                          "<i class=\"x y\">",
                                          "</i >",
                                          "<img alt=\"a>\">",
                                          "<br/>",
                                          "<p>",
                                          "<span hidden>",
                                          "</span>",
                                          "<a href=\"mailto:",
                                          "<a href='",
                                          "\">",
                                          "'>",
                                          "<!--",
                                          "-->",
                                          "<script>",
                                          "</script>",
                                          "<style>",
                                          "</style>",
                                          "<title>",
                                          "</title>",
                                          "<textarea>",
                                          "</textarea>",
                                          "<meta name=robots content=noindex>",
                                          "<img alt=\"",
                                          "mailto:",
                                          "&amp;",
                                          "&lt;",
                                          "[at]",
                                          " dot ",
                                          "name@firma.de",
                                          "<svg>",
                                          "</svg>",
                                          "<![CDATA[",
                                          "]]>",
                                          "<div style=display:none>"};

std::vector<std::string> Found(const ReadResult& page) {
  std::vector<std::string> found;
  if (page.addresses.empty()) return found;
  for (const PageAddress& address : page.addresses) {
    found.push_back(std::string(address.address) + " " + std::string(address.written) + " " +
                    std::string(PlaceName(address.place)));
  }
  found.push_back(page.title.value_or("(none)"));
  found.emplace_back(page.robots.noindex() ? "noindex" : "index");
  return found;
}

class PlainSignsTest : public testing::Test {
 protected:
  // With `whole` links and protected addresses too.
  std::vector<std::string> Read(const std::string& page, const char* type, bool whole) {
    ReadRequest request;
    request.body = page;
    request.content_type = type;
    request.links = request.count_protected = whole;
    return Found(ReadPage(request, idna_, decoder_));
  }
  const FakeIdna idna_;
  const FakeTextDecoder decoder_;
};

TEST_F(PlainSignsTest, TheSameAddressesAreFoundAtRandom) {
  std::mt19937 random(20261122);
  std::size_t with_addresses = 0, without_a_sign = 0;
  for (int round = 0; round < 40'000; ++round) {
    std::string page;
    for (std::size_t pieces = 3 + random() % 40; pieces > 0; --pieces) page += kPieces[random() % kPieces.size()];
    const char* const type = std::array{"text/html", "text/html; charset=utf-8", "text/plain"}[random() % 3];
    const std::vector<std::string> expected = Read(page, type, true);
    ASSERT_EQ(Read(page, type, false), expected) << page;
    if (!expected.empty()) ++with_addresses;
    if (MayHoldPlainAddress(page)) continue;
    ++without_a_sign;
    ASSERT_TRUE(expected.empty()) << page;
  }
  EXPECT_GT(with_addresses, 500u);
  EXPECT_GT(without_a_sign, 2000u);
}

TEST_F(PlainSignsTest, WhatPagesOfProgrammersSayIsNoSign) {
  for (const char* page :
       {"@import url(x)", " @param x", "a @ b", "{@link x}", "(@x)", "\"@\"", "x@", "@x", "&#8217;", "%41",
        "<b>@daily</b>. x.", "a@b c.d", "a@b</i>. x", "<i class=\"x\">@name</i></b> <a title=\"b.c\">c.d", "&#37; 40",
        " &#64;b.c", "a&#64;b, c.d"}) {
    EXPECT_FALSE(MayHoldPlainAddress(page)) << page;
  }
  const std::string long_name(300, 'b');
  for (const std::string& page :
       {std::string("a@b.c"), std::string("<b>@</b>b.c"), std::string("a&#64;b.c"), std::string("%40"),
        std::string("\\u0040"), std::string("\\x40"), std::string("\xE4@\xE4"), std::string("a;@&a"),
        std::string("a@b<br/>.c"), std::string("a@b<!-- -->.c"), std::string("&percnt;40"), std::string("&#37;&#52;0"),
        "a@" + long_name + ".c", "a@b<i class=\"" + long_name + "\">.c", std::string("a@b\\u002Ec"),
        std::string("a@b%2Ec")}) {
    EXPECT_TRUE(MayHoldPlainAddress(page)) << page;
  }
}

TEST_F(PlainSignsTest, ProtectedAddressesAreFoundWhereTheyAreWanted) {
  ReadRequest request;
  request.body = "<p>name [at] firma [dot] de";
  request.links = request.count_protected = false;
  EXPECT_EQ(ReadPage(request, idna_, decoder_).protected_addresses, 0u);
  request.decode_protected = true;
  EXPECT_EQ(ReadPage(request, idna_, decoder_).addresses.size(), 1u);
}

}  // namespace
}  // namespace quenlar
