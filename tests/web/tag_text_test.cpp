#include "web/tag_text.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

TEST(GetAttributeValue, ReadsQuotedAndBareValues) {
  const struct {
    const char* tag;
    const char* value;
  } kCases[] = {
      {"a", ""},
      {"a href=x.html", "x.html"},
      {"a href=x.html target=y", "x.html"},
      {"a HREF='X.html'", "X.html"},
      {"a hReF=\"x.html\" id=\"y\"", "x.html"},
      {"a href=\"x y\"", "x"},  // a blank ends it, quoted or not
      {"a href=\" x\"", ""},
      {"a href= \"x\"", ""},
      {"a href=\"x", "x"},  // the quote is never closed
      {"a href=\"", ""},
      {"a href=", ""},
      {"a href=\"x'y\"", "x'y"},
      {"a href='x\"y'", "x\"y"},
      {"a href=x\r\ny", "x"},
      {"a href=x\ny", "x\ny"},  // a lone line feed does not end it
      {"a href=x?a=1&amp;b=2&amp;c", "x?a=1&b=2&c"},
      {"a href=xamp;amp;y", "xy"},
      {"a href=x\ramp;\ny", "x\r\ny"},  // it ends at CR LF before "amp;" is taken out, not after
      {"a data-href=1 href=2", "1"},    // the name is found inside another name
      {"a href =x", ""},
      {"a href=\"\" href=\"x\"", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(GetAttributeValue(c.tag, "href="), c.value) << c.tag;
  EXPECT_EQ(GetAttributeValue("frame SRC=menu.html", "src="), "menu.html");
}

TEST(TextBetween, SearchesForwardOrBackward) {
  const auto forward = [](std::string_view text, std::string_view open, std::string_view close) {
    return TextBetween(text, open, close, SearchFrom::kStart);
  };
  EXPECT_EQ(forward("a<b>c</b>", "<b>", "</b>"), "c");
  EXPECT_EQ(forward("a<b>c", "<b>", "</b>"), "");
  EXPECT_EQ(forward("a</b>c<b>d", "<b>", "</b>"), "");
  EXPECT_EQ(forward("[a]b[c]", "[", "]"), "a");
  EXPECT_EQ(forward("<<a<", "<<", "<"), "a");  // one character cannot be of both delimiters
  EXPECT_EQ(forward("", "<", ">"), "");
  const auto backward = [](std::string_view text, std::string_view open, std::string_view close) {
    return TextBetween(text, open, close, SearchFrom::kEnd);
  };
  EXPECT_EQ(backward("[a]b[c]d", "[", "]"), "c");
  EXPECT_EQ(backward("[a[b]c[d", "[", "]"), "b");
  EXPECT_EQ(backward("x<b>y</b>z</b>", "<b>", "</b>"), "y</b>z");
  EXPECT_EQ(backward("a]b", "[", "]"), "");
  EXPECT_EQ(backward("]a[", "[", "]"), "");
  EXPECT_EQ(backward("", "[", "]"), "");
}

TEST(CleanText, BlanksOutWhatIsNotPrintableAscii) {
  EXPECT_EQ(CleanText(" a\tb\r\nc\x7F "), "a b  c");
  EXPECT_EQ(CleanText("M\xC3\xBCller & \xE2\x82\xAC"), "M ller &");
  EXPECT_EQ(CleanText("a\xC3\xBC\xC3\xBC"
                      "b"),
            "a  b");  // one blank a character, not a byte
  EXPECT_EQ(CleanText("\xC3\xBC"), "");
  EXPECT_EQ(CleanText(""), "");
}

TEST(CleanText, ReplacesItsEntitiesInOrder) {
  EXPECT_EQ(CleanText("&#9733; &#8250; &laquo; &amp; &#038; &#38; a&#10;b &gt; a&nbsp;b"),
            "\xE2\x98\x85 > << & & & a b > a b");
  EXPECT_EQ(CleanText("&amp;gt;"), ">");
  EXPECT_EQ(CleanText("&amp;amp;"), "&amp;");
  EXPECT_EQ(CleanText("&amp;#9733;"), "&#9733;");  // the star comes first, so this one stays
  EXPECT_EQ(CleanText("&#3&#8250;8;"), "&#3>8;");
  EXPECT_EQ(CleanText("&#&amp;38;"), "&#&38;");
  EXPECT_EQ(CleanText("&AMP; &lt; &quot;"), "&AMP; &lt; &quot;");  // these are not in the set
  EXPECT_EQ(CleanText("&nbsp;a&nbsp;"), "a");
}

TEST(GetPageTitle, TakesTheFirstTitleUpToTheFirstTagInIt) {
  const struct {
    const char* page;
    const char* title;
  } kCases[] = {
      {"", ""},
      {"<title>A page</title>", "A page"},
      {"<html><TiTlE> A\npage </tItLe>", "A page"},
      {"<title>a <b>c</b></title>", "a"},
      {"<title>a > b</title>", "a > b"},
      {"<title></title>", ""},
      {"<title>a", ""},
      {"<title>a</title", ""},
      {"<title lang=en>a</title>", ""},
      {"</title><title>a</title>", "a"},
      {"<title>a<title>b</title>", "a"},
      {"<title>a</title><title>b</title>", "a"},
      {"<<title>a</title>", "a"},
      {"<title>R&amp;D &gt; all</title>", "R&D > all"},
  };
  for (const auto& c : kCases) EXPECT_EQ(GetPageTitle(c.page), c.title) << c.page;
}

}  // namespace
}  // namespace quenlar
