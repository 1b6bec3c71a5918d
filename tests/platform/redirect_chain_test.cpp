#include "platform/redirect_chain.h"

#include <gtest/gtest.h>

#include "platform/page_fetcher.h"

namespace quenlar {
namespace {

// "-" where the download fails.
std::string Url(const RedirectChain& chain) {
  const auto wire = chain.Wire();
  return wire ? wire->Url() : "-";
}

TEST(RedirectChain, BeginsWithTheAddressAsItWasGiven) {
  const RedirectChain chain("HTTP://Host/a b#c");
  EXPECT_EQ(chain.address(), "HTTP://Host/a b#c");
  EXPECT_EQ(Url(chain), "http://host/a%20b");
  EXPECT_EQ(Url(RedirectChain("ftp://host/")), "-");
}

TEST(RedirectChain, GoesFromEachAddressToTheNext) {
  RedirectChain chain("http://host/a/b");
  EXPECT_TRUE(chain.Follow("c"));
  EXPECT_EQ(chain.address(), "http://host/a/c");
  EXPECT_TRUE(chain.Follow("http://other/"));
  EXPECT_TRUE(chain.Follow("d"));
  EXPECT_EQ(Url(chain), "http://other/d");
}

TEST(RedirectChain, IsOverAfterTwentyRedirects) {
  RedirectChain chain("http://host/");
  for (int i = 0; i < kMaxRedirects; ++i) EXPECT_TRUE(chain.Follow("/" + std::to_string(i)));
  EXPECT_EQ(Url(chain), "http://host/19");
  EXPECT_FALSE(chain.Follow("/20"));
}

TEST(RedirectChain, NeverGoesFromHttpsBackToPlainHttp) {
  RedirectChain chain("http://host/");
  EXPECT_TRUE(chain.Follow("https://host/"));
  EXPECT_TRUE(chain.Follow("HTTPS://other/"));
  EXPECT_EQ(Url(chain), "https://other/");
  EXPECT_TRUE(chain.Follow("http://host/page"));
  EXPECT_EQ(chain.address(), "http://host/page");  // it is told all the same
  EXPECT_EQ(Url(chain), "-");
}

TEST(RedirectChain, ReachesNothingOfAForeignScheme) {
  RedirectChain chain("http://host/");
  EXPECT_TRUE(chain.Follow("file:///etc/passwd"));
  EXPECT_EQ(chain.address(), "file:///etc/passwd");
  EXPECT_EQ(Url(chain), "-");
}

}  // namespace
}  // namespace quenlar
