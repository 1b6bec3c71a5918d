#include "page/site.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

struct SiteCase {
  const char* host;
  const char* site;
};

void ExpectSites(std::initializer_list<SiteCase> cases) {
  for (const SiteCase& c : cases) EXPECT_EQ(RegistrableDomain(c.host), c.site) << c.host;
}

TEST(Site, IsTheSuffixAndOneLabelMore) {
  ExpectSites({
      {"firma.de", "firma.de"},
      {"www.firma.de", "firma.de"},
      {"a.b.c.firma.de", "firma.de"},
      {"shop.firma.co.uk", "firma.co.uk"},
      {"firma.co.uk", "firma.co.uk"},
      {"www.firma.de.", "firma.de"},
  });
}

TEST(Site, ASuffixAloneHasNone) { ExpectSites({{"de", ""}, {"co.uk", ""}, {"", ""}, {".", ""}, {"xn--fiqs8s", ""}}); }

TEST(Site, WildcardsAndExceptionsCount) {
  ExpectSites({
      {"ck", ""},
      {"any.ck", ""},
      {"firma.any.ck", "firma.any.ck"},
      {"x.firma.any.ck", "firma.any.ck"},
      {"www.ck", "www.ck"},
      {"a.www.ck", "www.ck"},
      {"any.kobe.jp", ""},
      {"city.kobe.jp", "city.kobe.jp"},
      {"a.city.kobe.jp", "city.kobe.jp"},
  });
}

TEST(Site, ThePrivateSectionCounts) {
  ExpectSites({{"github.io", ""}, {"firma.github.io", "firma.github.io"}, {"a.firma.github.io", "firma.github.io"}});
}

TEST(Site, RulesBeyondAsciiAreALabels) {
  ExpectSites({
      {"www.firma.xn--fiqs8s", "firma.xn--fiqs8s"},
      {"www.firma.xn--55qx5d.cn", "firma.xn--55qx5d.cn"},
      {"xn--55qx5d.cn", ""},
  });
}

TEST(Site, UnknownLastLabelsAreSuffixes) {
  ExpectSites({{"firma.unknownlabel", "firma.unknownlabel"},
               {"www.firma.unknownlabel", "firma.unknownlabel"},
               {"localhost", ""}});
}

TEST(Site, WhatIsNoNameHasNone) {
  ExpectSites({{"127.0.0.1", ""}, {"[::1]", ""}, {".firma.de", ""}, {"a..firma.de", ""}, {"firma.de..", ""}});
}

TEST(Site, ItIsAViewIntoTheHost) {
  const std::string host = "www.firma.de";
  EXPECT_EQ(RegistrableDomain(host).data(), host.data() + 4);
}

TEST(TopLevelDomains, AreTheLastLabelsOfAllRules) {
  for (const char* label : {"de", "com", "museum", "xn--p1ai", "ck"}) {
    EXPECT_TRUE(IsTopLevelDomain(label)) << label;
  }
  for (const char* label : {"", "*", "example", "png", "local", "co.uk", "DE"})
    EXPECT_FALSE(IsTopLevelDomain(label)) << label;
}

}  // namespace
}  // namespace quenlar
