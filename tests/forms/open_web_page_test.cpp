#include "forms/open_web_page.h"

#include <gmock/gmock.h>

#include "support/recorders.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Opened = RecordingShell::Opened;

RecordingShell Open(const std::string& address, std::optional<std::string> command = "\"C:\\b.exe\" -- \"%1\"") {
  RecordingShell shell;
  shell.http_open_command = std::move(command);
  OpenWebPage(shell, address);
  return shell;
}

TEST(BrowserProgram, IsTheQuotedPathOrTheTextBeforeTheFirstHyphen) {
  const std::pair<const char*, const char*> rows[] = {
      {"\"C:\\Program Files\\B\\b.exe\" -osint -url \"%1\"", "C:\\Program Files\\B\\b.exe"},
      {"\" C:\\b.exe \" -x", "C:\\b.exe"},
      {"C:\\b.exe -nohome", "C:\\b.exe"},
      {"  C:\\b.exe  ", "C:\\b.exe"},
      {"C:\\my-browser\\b.exe -x", "C:\\my"},  // an unquoted path ends at its first hyphen
      {" \"C:\\b.exe\"", "\"C:\\b.exe\""},
      {"\"C:\\b.exe", "C:\\b.exe"},
      {"", ""},
      {"\"", ""},
      {"-x", ""},
  };
  for (const auto& [command, program] : rows) EXPECT_EQ(BrowserProgram(command), program) << command;
}

TEST(OpenWebPage, HandsAWebAddressOverAsItIs) {
  for (const char* const address : {"http://x.de/a?b=c&d=%20#e", "https://x.de/a?b=c&d=%20#e"}) {
    EXPECT_THAT(Open(address).opened, ElementsAre(Opened{"C:\\b.exe", address}));
  }
}

TEST(OpenWebPage, AddressInUpperCaseLettersIsAWebAddress) {
  EXPECT_THAT(Open("HTTP://X.DE/\\A").opened, ElementsAre(Opened{"C:\\b.exe", "HTTP://X.DE/\\A"}));
}

TEST(OpenWebPage, LocalPathBecomesAFileAddress) {
  EXPECT_THAT(Open("C:\\My Files\\help.htm").opened,
              ElementsAre(Opened{"C:\\b.exe", "file:///C:/My%20Files/help.htm"}));
}

TEST(OpenWebPage, AddressStaysOneArgument) {
  EXPECT_THAT(Open("http://x.de/a b\t\"c\"\r\n").opened,
              ElementsAre(Opened{"C:\\b.exe", "http://x.de/a%20b%09%22c%22%0D%0A"}));
  EXPECT_THAT(Open("C:\\a\"b\tc").opened, ElementsAre(Opened{"C:\\b.exe", "file:///C:/a%22b%09c"}));
  EXPECT_THAT(Open("http://x.de/m\xC3\xBCller").opened, ElementsAre(Opened{"C:\\b.exe", "http://x.de/m\xC3\xBCller"}));
}

TEST(OpenWebPage, DoesNothingWithoutARegisteredProgram) {
  EXPECT_THAT(Open("http://x.de", std::nullopt).opened, IsEmpty());
  EXPECT_THAT(Open("http://x.de", "").opened, IsEmpty());
  EXPECT_THAT(Open("http://x.de", "\"\" %1").opened, IsEmpty());
}

TEST(OpenWebPage, LongCommandLineIsNoTrouble) {
  const std::string path = "C:\\" + std::string(10'000, 'x') + ".exe";
  EXPECT_THAT(Open("http://x.de", "\"" + path + "\" -x").opened, ElementsAre(Opened{path, "http://x.de"}));
}

}  // namespace
}  // namespace quenlar
