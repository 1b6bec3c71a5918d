#include "page/robots.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

// "+3" where line 3 allows, "-3" where it forbids, "+" where no line decides.
std::string Decision(std::string_view body, std::string_view target, std::string_view agent = "Quenlar") {
  const RobotsRules::Verdict verdict = RobotsRules(body, agent).Check(target);
  return (verdict.allowed ? "+" : "-") + (verdict.line ? std::to_string(*verdict.line) : "");
}

TEST(Robots, WithoutRulesEverythingIsAllowed) {
  EXPECT_EQ(Decision("", "/"), "+");
  EXPECT_EQ(Decision("Disallow: /\n", "/"), "+");
  EXPECT_EQ(Decision("User-agent: Other\nDisallow: /\n", "/"), "+");
  EXPECT_EQ(Decision("User-agent: *\nDisallow:\n", "/"), "+");
  EXPECT_TRUE(RobotsRules().Check("/").allowed);
}

TEST(Robots, TheGroupsThatNameTheProgramCountAndNoOthers) {
  constexpr const char* kBody =
      "User-agent: *\nDisallow: /\n"
      "user-agent: QUENLAR/3.0\nDisallow: /a\n"
      "User-agent: other\nUser-agent: quenlar\nDisallow: /b\n";
  EXPECT_EQ(Decision(kBody, "/c"), "+");
  EXPECT_EQ(Decision(kBody, "/a"), "-4");
  EXPECT_EQ(Decision(kBody, "/b"), "-7");
  EXPECT_EQ(Decision(kBody, "/b", "Other"), "-7");
  EXPECT_EQ(Decision(kBody, "/a", "Other"), "+");
  EXPECT_EQ(Decision(kBody, "/a", "third"), "-2");
  EXPECT_EQ(Decision("User-agent: *\nDisallow: /\nUser-agent: quenlar\n", "/"), "+");
}

TEST(Robots, AgentsAreWholeTokens) {
  EXPECT_EQ(Decision("User-agent: quenlarbot\nDisallow: /\n", "/"), "+");
  EXPECT_EQ(Decision("User-agent: quen\nDisallow: /\n", "/"), "+");
  EXPECT_EQ(Decision("User-agent: quenlar 2\nDisallow: /\n", "/"), "-2");
  EXPECT_EQ(Decision("User-agent: quen-lar_x/9\nDisallow: /\n", "/", "Quen-Lar_X"), "-2");
  EXPECT_EQ(Decision("User-agent: * \nDisallow: /\n", "/"), "-2");
  EXPECT_EQ(Decision("User-agent: *x\nDisallow: /\n", "/"), "+");
  EXPECT_EQ(Decision("User-agent:\nDisallow: /\n", "/", ""), "+");
}

TEST(Robots, OnlyRulesEndTheAgentsOfAGroup) {
  constexpr const char* kBody =
      "User-agent: a\nCrawl-delay: 4\nSitemap: http://h/s\nnonsense: x\n\n# comment\nUser-agent: b\nDisallow: /x\n"
      "\nUser-agent: c\nDisallow: /y\n";
  for (const char* agent : {"a", "b"}) {
    EXPECT_EQ(Decision(kBody, "/x", agent), "-8") << agent;
    EXPECT_EQ(Decision(kBody, "/y", agent), "+") << agent;
    EXPECT_EQ(RobotsRules(kBody, agent).delay(), 4) << agent;
  }
  EXPECT_EQ(Decision(kBody, "/x", "c"), "+");
  EXPECT_FALSE(RobotsRules(kBody, "c").delay());
}

TEST(Robots, TheLongestMatchDecides) {
  constexpr const char* kBody = "User-agent: *\nAllow: /a/b\nDisallow: /a\nDisallow: /a/b/c\nAllow: /\n";
  EXPECT_EQ(Decision(kBody, "/a/b"), "+2");
  EXPECT_EQ(Decision(kBody, "/a/x"), "-3");
  EXPECT_EQ(Decision(kBody, "/a/b/cd"), "-4");
  EXPECT_EQ(Decision(kBody, "/x"), "+5");
  EXPECT_EQ(Decision("User-agent: *\nDisallow: /a\nAllow: /a\nAllow: /a\n", "/ab"), "+3");
}

TEST(Robots, StarsAndDollars) {
  const struct {
    const char* rule;
    const char* target;
    bool matches;
  } kCases[] = {
      {"/*.php", "/a/b.php5?x", true},
      {"/*.php$", "/a.php", true},
      {"/*.php$", "/a.php.php", true},
      {"/*.php$", "/a.php?x", false},
      {"/a$", "/a", true},
      {"/a$", "/ab", false},
      {"/$", "/", true},
      {"/a*b*c", "/a__b__b__c__", true},
      {"/a*b*c", "/a__c__b__", false},
      {"/a*b*b$", "/ab", false},
      {"/a*b*b$", "/abb", true},
      {"/**a", "/xa", true},
      {"/a*", "/a", true},
      {"/a*$", "/abc", true},
      {"*", "/", true},
      {"*a", "/xa", true},
      {"a", "/a", false},
      {"/a$b", "/a$b", true},
      {"/a$b", "/a", false},
      {"/a$*", "/a$b", true},
      {"/a%2A", "/ab", false},
      {"/a%2a", "/a%2Ab", true},
      {"/a?b*", "/a?bc", true},
      {"/ab", "/a", false},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Decision(std::string("User-agent: *\nDisallow: ") + c.rule, c.target), c.matches ? "-2" : "+")
        << c.rule << " " << c.target;
  }
}

TEST(RobotsEncoding, IsComparedInOneForm) {
  const struct {
    const char* rule;
    const char* target;
    bool matches;
  } kCases[] = {
      {"/%c3%a4", "/%C3%A4", true},
      {"/\xC3\xA4", "/%c3%a4", true},
      {"/a b", "/a%20b", true},
      {"/%7ejoe", "/~joe", true},
      {"/~joe", "/%7Ejoe", true},
      {"/%2e%2D%5F", "/.-_", true},
      {"/a%2fb", "/a%2Fb", true},
      {"/a%2fb", "/a/b", false},
      {"/a?b='c", "/a?b=%27c", true},
      {"/a?b={c}", "/a?b=%7Bc%7D", true},
      {"/100%", "/100%", true},
      {"/100%2", "/100%2", true},
      // What nobody needs to encode and what nobody can ask for.
      {"/%6c%6f%6e", "/%6C%6F%6E", true},
      {"/%6c%6f%6e", "/lon", false},
      {"/\xC3\xA4", "/\xC3\xA4", false},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Decision(std::string("User-agent: *\nDisallow: ") + c.rule, c.target), c.matches ? "-2" : "+")
        << c.rule << " " << c.target;
  }
}

TEST(Robots, RobotsTxtItselfIsAllowed) {
  constexpr const char* kBody = "User-agent: *\nDisallow: /\n";
  EXPECT_EQ(Decision(kBody, "/robots.txt"), "+");
  EXPECT_EQ(Decision(kBody, "/robots.txt?x"), "+");
  EXPECT_EQ(Decision(kBody, "/robots.txt.bak"), "-2");
}

TEST(Robots, AFoldersStartPageAllowsTheFolder) {
  constexpr const char* kBody = "User-agent: *\nDisallow: /\nAllow: /a/index.html\n";
  EXPECT_EQ(Decision(kBody, "/a/"), "+3");
  EXPECT_EQ(Decision(kBody, "/a/index.html"), "+3");
  EXPECT_EQ(Decision(kBody, "/a/b"), "-2");
}

TEST(Robots, LinesMayBeWrittenAnyWay) {
  EXPECT_EQ(Decision("\xEF\xBB\xBFUser-agent: *\r\n\r\nDisallow: /\r\n", "/"), "-3");
  EXPECT_EQ(Decision("User-agent: *\rDisallow: /\r", "/"), "-2");
  EXPECT_EQ(Decision("User-agent: *\n\r\nDisallow: /", "/"), "-3");
  EXPECT_EQ(Decision(" \tuSeR-aGeNt\t : * # all\n DISALLOW :\t/a # b\n", "/a"), "-2");
  EXPECT_EQ(Decision("user-agent *\ndisallow /\n", "/"), "-2");
  EXPECT_EQ(Decision("user-agent *\ndisallow / a\n", "/"), "+");
  EXPECT_EQ(Decision("user-agent: *\ndisallow: /a#b\n", "/a"), "-2");
  EXPECT_EQ(Decision("user-agent: *\ndisallow\n:\n\n", "/"), "+");
}

TEST(Robots, DelaysAreCapped) {
  const auto delay = [](const std::string& lines) { return RobotsRules("User-agent: *\n" + lines, "Quenlar").delay(); };
  EXPECT_EQ(delay("Crawl-delay: 1.5\n"), 1.5);
  EXPECT_EQ(delay("crawl-delay: 10\nCrawl-Delay: 20\nCrawl-delay: 5\n"), 20);
  EXPECT_EQ(delay("Crawl-delay: 3\nDisallow: /\nUser-agent: *\nCrawl-delay: 2\n"), 3);
  EXPECT_EQ(delay("Crawl-delay: 31\n"), 30);
  EXPECT_EQ(delay("Crawl-delay: 1e400\n"), 30);
  EXPECT_EQ(delay("Crawl-delay: 0\n"), 0);
  EXPECT_FALSE(delay("Crawl-delay: -1\nCrawl-delay: soon\nCrawl-delay:\n"));
}

TEST(Robots, SitemapsHoldForAll) {
  const RobotsRules rules("Sitemap: https://h/a.xml\nUser-agent: other\nsitemap:https://h/b.xml # x\nSitemap:\n",
                          "Quenlar");
  EXPECT_THAT(rules.sitemaps(), testing::ElementsAre("https://h/a.xml", "https://h/b.xml"));
}

TEST(Robots, WhatIsTooLongIsCutAtALine) {
  const std::string rule = "User-agent: *\nDisallow: /a\n";
  std::string body = rule;
  while (body.size() + 11 <= kMostRobotsBytes) body += "# comment\n\n";
  EXPECT_EQ(Decision(body + "Disallow: /b\n", "/b"), "+");
  EXPECT_EQ(Decision(body + "Disallow: /b\n", "/a"), "-2");
  EXPECT_EQ(Decision("User-agent: *\nDisallow: /" + std::string(kMostRobotsBytes, 'x'), "/"), "+");
}

TEST(Robots, HostileRulesEnd) {
  std::string stars = "User-agent: *\nDisallow: /";
  for (int i = 0; i < 100'000; ++i) stars += "*a";
  EXPECT_EQ(Decision(stars + "b\n", "/" + std::string(100'000, 'a')), "+");
}

}  // namespace
}  // namespace quenlar
