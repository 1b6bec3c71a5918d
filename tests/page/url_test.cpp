#include "page/url.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "support/fake_idna.h"

namespace quenlar {
namespace {

// The serialised URL, or "" where the text is not one.
std::string Parsed(std::string_view text, std::string_view base = "") {
  const FakeIdna idna;
  std::optional<Url> page;
  if (!base.empty()) page = ParseUrl(base, nullptr, idna);
  const auto url = ParseUrl(text, page ? &*page : nullptr, idna);
  return url ? url->href() : "";
}

Url Valid(std::string_view text) { return ParseUrl(text, nullptr, FakeIdna()).value(); }

struct TextCase {
  const char* text;
  const char* href;
};

void ExpectParsed(std::initializer_list<TextCase> cases, std::string_view base = "") {
  for (const TextCase& c : cases) EXPECT_EQ(Parsed(c.text, base), c.href) << c.text;
}

TEST(Url, AbsoluteAddressesAreSerialised) {
  ExpectParsed({
      {"https://www.firma.example/team/index.html?lang=de", "https://www.firma.example/team/index.html?lang=de"},
      {"HTTP://WWW.Firma.Example", "http://www.firma.example/"},
      {"http://h?q", "http://h/?q"},
      {"http://h?", "http://h/?"},
      {"http://h/?", "http://h/?"},
      {"http://h#top", "http://h/"},
      {"http://h/a?#", "http://h/a?"},
      {"http:h", "http://h/"},
      {"http:/h/x", "http://h/x"},
      {"https:\\\\h\\x\\y", "https://h/x/y"},
      {"http://////h/x", "http://h/x"},
      {"  \x01http://h/a b \t", "http://h/a%20b"},
      {"ht\ntp://h\t/a\r\nb", "http://h/ab"},
  });
}

TEST(Url, OtherSchemesAndMissingHostsAreRefused) {
  for (const char* text : {"",
                           "h/x",
                           "/x",
                           "//h/x",
                           "?q",
                           "ftp://h/",
                           "mailto:a@b.de",
                           "javascript:void(0)",
                           "httpx://h/",
                           "http",
                           "http:",
                           "http://",
                           "http:///",
                           "http://?q",
                           "http://#f",
                           "http://@/",
                           "http://u@/",
                           "http://:80/",
                           "http://u:p@:80/",
                           "1http://h/"}) {
    EXPECT_EQ(Parsed(text), "") << text;
  }
}

TEST(Url, RelativeAddressesAreResolved) {
  ExpectParsed(
      {
          {"", "https://h:8080/a/b/c?q"},
          {"#f", "https://h:8080/a/b/c?q"},
          {"?r#f", "https://h:8080/a/b/c?r"},
          {"?", "https://h:8080/a/b/c?"},
          {"d", "https://h:8080/a/b/d"},
          {"d/", "https://h:8080/a/b/d/"},
          {"./d", "https://h:8080/a/b/d"},
          {".", "https://h:8080/a/b/"},
          {"..", "https://h:8080/a/"},
          {"../d?e", "https://h:8080/a/d?e"},
          {"../../../../d", "https://h:8080/d"},
          {"/d", "https://h:8080/d"},
          {"\\d", "https://h:8080/d"},
          {"/", "https://h:8080/"},
          {"/..", "https://h:8080/"},
          {"//i", "https://i/"},
          {"\\\\i\\d", "https://i/d"},
          {"///i/d", "https://i/d"},
          {"https:d", "https://h:8080/a/b/d"},
          {"https:/d", "https://h:8080/d"},
          {"https:?r", "https://h:8080/a/b/c?r"},
          {"https:", "https://h:8080/a/b/c?q"},
          {"https://i", "https://i/"},
          {"http:i", "http://i/"},
          {"x:d", ""},
          {"d:e/f", ""},
          {"./d:e", "https://h:8080/a/b/d:e"},
          {"1:2", "https://h:8080/a/b/1:2"},
          {"//", ""},
      },
      "https://h:8080/a/b/c?q#f");
  EXPECT_EQ(Parsed("d", "http://u:p@h/"), "http://u:p@h/d");
}

TEST(Url, DotSegmentsAreTakenOut) {
  ExpectParsed({
      {"http://h/a/./b/../c", "http://h/a/c"},
      {"http://h/a/%2e/b/%2E./c/.%2e/d", "http://h/a/d"},
      {"http://h/a/..", "http://h/"},
      {"http://h/a/b/..", "http://h/a/"},
      {"http://h/a/.", "http://h/a/"},
      {"http://h/..//..", "http://h/"},
      {"http://h//../a", "http://h/a"},
      {"http://h/...", "http://h/..."},
      {"http://h/a/..b/.c/d.", "http://h/a/..b/.c/d."},
      {"http://h/%2e%2e%2e", "http://h/%2e%2e%2e"},
      {"http://h/a/..?b/../c", "http://h/?b/../c"},
      {"http://h/a/%2f../b", "http://h/a/%2f../b"},
      {"http://h/a//b///", "http://h/a//b///"},
  });
}

TEST(Url, EachPartEncodesItsOwnCharacters) {
  ExpectParsed({
      {"http://h/ \"<>^`{}|'[]@:;=&+$!~%zz%", "http://h/%20%22%3C%3E%5E%60%7B%7D|'[]@:;=&+$!~%zz%"},
      {"http://h/? \"<>^`{}|'[]@\\/?", "http://h/?%20%22%3C%3E^`{}|%27[]@\\/?"},
      {"http://u ?", ""},
      {"http://a:b:c@d@h/", "http://a:b%3Ac%40d@h/"},
      {"http://\"<>^`{}|'[];=@h/", "http://%22%3C%3E%5E%60%7B%7D%7C'%5B%5D%3B%3D@h/"},
      {"http://:p@h/", "http://:p@h/"},
      {"http://u:@h/", "http://u@h/"},
      {"http://:@h/", "http://h/"},
      {"http://h/\x7F\xC3\xA4?\xC3\xA4", "http://h/%7F%C3%A4?%C3%A4"},
      {"http://h/\xFF", "http://h/%FF"},
  });
  EXPECT_EQ(Parsed(std::string_view("http://h/a\0b", 12)), "http://h/a%00b");
}

TEST(Url, PortsAreNumbers) {
  ExpectParsed({
      {"http://h:80/", "http://h/"},
      {"http://h:443/", "http://h:443/"},
      {"https://h:443/", "https://h/"},
      {"http://h:/x", "http://h/x"},
      {"http://h:0/", "http://h:0/"},
      {"http://h:00081/", "http://h:81/"},
      {"http://h:65535/", "http://h:65535/"},
      {"http://h:65536/", ""},
      {"http://h:99999999999999999999/", ""},
      {"http://h:8x/", ""},
      {"http://h: 80/", ""},
      {"http://h:-1/", ""},
      {"http://h:80:80/", ""},
  });
  EXPECT_EQ(Valid("http://h").port(), 80);
  EXPECT_EQ(Valid("https://h").port(), 443);
  EXPECT_EQ(Valid("https://h:0080").port(), 80);
}

TEST(Url, PartsAreViewsIntoTheWhole) {
  const Url url = Valid("https://user:secret@[::1]:8443/a/b?c=d#e");
  EXPECT_TRUE(url.secure());
  EXPECT_EQ(url.scheme(), "https");
  EXPECT_EQ(url.host(), "[::1]");
  EXPECT_EQ(url.port(), 8443);
  EXPECT_EQ(url.path(), "/a/b");
  EXPECT_EQ(url.query(), "?c=d");
  EXPECT_EQ(url.target(), "/a/b?c=d");
  EXPECT_EQ(url.Origin(), "https://[::1]:8443");
  EXPECT_EQ(Valid("http://h").query(), "");
  EXPECT_EQ(Valid("http://h?").query(), "?");
  EXPECT_FALSE(Valid("http://h").secure());
}

TEST(Url, PagesAreTheSameWhateverSchemeUserAndFragment) {
  const auto key = [](std::string_view text) { return std::string(Valid(text).PageKey()); };
  EXPECT_EQ(key("http://h/x?y#a"), key("https://h/x?y#b"));
  EXPECT_EQ(key("http://u:p@h/x"), key("http://h/x"));
  EXPECT_EQ(key("http://h"), key("http://H/"));
  EXPECT_NE(key("http://h/x"), key("http://h/X"));
  EXPECT_NE(key("http://h/x"), key("http://h/x?"));
  EXPECT_NE(key("http://h:81/x"), key("http://h/x"));
}

TEST(Url, HostsBeyondAsciiAreSpelledByTheSeam) {
  ExpectParsed({
      {"http://M\xC3\xBCnchen.de/", "http://xn--mnchen-3ya.de/"},
      {"http://m%C3%BCnchen.de/", "http://xn--mnchen-3ya.de/"},
      {"http://\xFF.de/", ""},
  });
}

TEST(Url, TenTimesTheTextTakesNoMoreStepsAByte) {
  // Each of these made a naive parser look at the same bytes again and again; a megabyte of them is done in no time.
  std::string dots = "http://h", encoded = "http://h/", signs = "http://", slashes = "http:";
  for (int i = 0; i < 250'000; ++i) {
    dots += i % 2 == 0 ? "/a/.." : "/%2e";
    encoded += "/ %";
    signs += ":@";
    slashes += "/\\";
  }
  EXPECT_EQ(Parsed(dots), "http://h/");
  EXPECT_TRUE(Parsed(encoded).ends_with("/%20%/%20%"));
  EXPECT_TRUE(Parsed(signs + "h/").ends_with("%3A@h/"));
  EXPECT_EQ(Parsed(slashes + "h"), "http://h/");
}

}  // namespace
}  // namespace quenlar
