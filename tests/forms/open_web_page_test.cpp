#include "forms/open_web_page.h"

#include <gmock/gmock.h>

#include "support/recorders.h"

namespace quenlar {
namespace {

using testing::ElementsAre;

std::vector<std::string> Opened(const std::string& address) {
  RecordingShell shell;
  OpenWebPage(shell, address);
  return shell.opened;
}

TEST(OpenWebPage, HandsAWebAddressOverAsItIs) {
  for (const char* const address : {"http://x.de/a?b=c&d=%20#e", "https://x.de/a?b=c&d=%20#e"}) {
    EXPECT_THAT(Opened(address), ElementsAre(address));
  }
}

TEST(OpenWebPage, AddressInUpperCaseLettersIsAWebAddress) {
  EXPECT_THAT(Opened("HTTP://X.DE/\\A"), ElementsAre("HTTP://X.DE/\\A"));
}

TEST(OpenWebPage, LocalPathBecomesAFileAddress) {
  EXPECT_THAT(Opened("C:\\My Files\\help.htm"), ElementsAre("file:///C:/My%20Files/help.htm"));
}

TEST(OpenFileInBrowser, CharactersThatMeanSomethingInAnAddressArePercentEncoded) {
  RecordingShell shell;
  OpenFileInBrowser(shell, "C:\\C# ?\\localhost%3A8080.web.html");
  EXPECT_THAT(shell.opened, ElementsAre("file:///C:/C%23%20%3F/localhost%253A8080.web.html"));
}

TEST(OpenWebPage, AddressStaysOneArgument) {
  EXPECT_THAT(Opened("http://x.de/a b\t\"c\"\r\n"), ElementsAre("http://x.de/a%20b%09%22c%22%0D%0A"));
  EXPECT_THAT(Opened("C:\\a\"b\tc"), ElementsAre("file:///C:/a%22b%09c"));
  EXPECT_THAT(Opened("http://x.de/m\xC3\xBCller"), ElementsAre("http://x.de/m\xC3\xBCller"));
}

}  // namespace
}  // namespace quenlar
