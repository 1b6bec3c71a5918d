#include <ctime>
#include <functional>
#include <random>

#include <gmock/gmock.h>

#include "project/report_file.h"
#include "support/reference_report.h"
#include "support/rounds.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Records = std::vector<ReferenceReportRecord>;

Records Read(std::string_view text) {
  FoundAddresses found;
  ReadReport(text, found, [] { return true; });
  Records records;
  for (std::uint32_t i = 0; i < found.Count(); ++i) {
    const FoundAddress record = found.At(i);
    EXPECT_FALSE(record.TagOnly);
    records.push_back({std::string(record.URL), std::string(record.Address), std::string(record.Title)});
  }
  return records;
}

ReferenceReportRecord Row(std::string url, std::string address, std::string title) {
  return {std::move(url), std::move(address), std::move(title)};
}
ReferenceReportRecord Line(std::string address) { return {"", std::move(address), ""}; }

TEST(ReportReader, TableRowGivesAddressUrlAndTitle) {
  EXPECT_THAT(Read("1     a@b.cc     http://www.x.de/p?q=1&r=%20     The title\r\n"),
              ElementsAre(Row("http://www.x.de/p?q=1&r=%20", "a@b.cc", "The title")));
  EXPECT_THAT(Read("A.B%+-_@B-c.D.info\thttps://x.y\r\n"),
              ElementsAre(Row("https://x.y", "A.B%+-_@B-c.D.info", "\t")));  // titles are trimmed of blanks alone
}

TEST(ReportReader, RowMayBeginOnOneLineAndHaveItsUrlOnALaterOne) {
  EXPECT_THAT(Read("a@b.cc\r\n\r\n \v\f ftp://x.y z\r\n"), ElementsAre(Row("ftp://x.y", "a@b.cc", "\v\f  z")));
}

TEST(ReportReader, UrlMustBeginRightBehindTheWhiteSpace) {
  EXPECT_THAT(Read("a@b.cc  see http://x.y\r\n"), IsEmpty());
  EXPECT_THAT(Read("a@b.cchttp://x.y\r\n"), IsEmpty());
}

TEST(ReportReader, UrlNeedsAHostOfTwoLabels) {
  for (const char* url :
       {"http://x", "http://.x.y", "http://x.", "http://x..y", "http://", "gopher://x.y", "http:/x.y"}) {
    EXPECT_THAT(Read("a@b.cc        " + std::string(url) + "\r\n"), IsEmpty()) << url;
  }
  EXPECT_THAT(Read("a@b.cc http://x.y..z/p\r\n"), ElementsAre(Row("http://x.y", "a@b.cc", "..z/p")));
  EXPECT_THAT(Read("a@b.cc HTTP://x.y./p\r\n"), ElementsAre(Row("HTTP://x.y", "a@b.cc", "./p")));
}

TEST(ReportReader, PathOfTheUrlEndsWhereItsCharactersEnd) {
  EXPECT_THAT(Read("a@b.cc http://x.y/a;b~c-d_e%f#g\r\n"), ElementsAre(Row("http://x.y/a;b~c-d_e%f", "a@b.cc", "#g")));
  EXPECT_THAT(Read("a@b.cc http://x.y:80/a\r\n"), ElementsAre(Row("http://x.y", "a@b.cc", ":80/a")));
}

TEST(ReportReader, TitleLosesEveryOccurrenceOfAddressAndUrl) {
  EXPECT_THAT(Read("a@b.cc http://x.y Mail a@b.cc or a@b.ccc, see http://x.y/z and HTTP://x.y\r\n"),
              ElementsAre(Row("http://x.y", "a@b.cc", "Mail  or c, see /z and HTTP://x.y")));
}

TEST(ReportReader, TitleRunsToTheFirstLineEnd) {
  EXPECT_THAT(Read("a@b.cc http://x.y one\rtwo\nthree\r\nfour\r\n"),
              ElementsAre(Row("http://x.y", "a@b.cc", "one\rtwo\nthree")));
}

TEST(ReportReader, RowWithoutALineEndIsNoRow) {
  EXPECT_THAT(Read("a@b.cc http://x.y title"), IsEmpty());
  EXPECT_THAT(Read("a@b.cc http://x.y title\n"), IsEmpty());
}

TEST(ReportReader, AddressMustEndWithTwoToFourLettersBeforeTheWhiteSpace) {
  for (const char* address :
       {"a@b.c", "a@b.museum", "a@b", "@b.cc", "a@.cc", "a@b.c1", "a@b.cc.", "a@b_c.de!", "a@b.cc@"}) {
    EXPECT_THAT(Read(std::string(address) + "\r\n"), IsEmpty()) << address;
  }
  EXPECT_THAT(Read("\xC3\xBC.x@b..cc\r\n"), ElementsAre(Line(".x@b..cc")));
}

TEST(ReportReader, PaddedLineNeedsSevenBlanks) {
  EXPECT_THAT(Read("x@y.zz http://x.y\r\na@b.cc       \r\nc@d.ee      \r\n"),
              ElementsAre(Row("http://x.y", "x@y.zz", ""), Line("a@b.cc")));
  EXPECT_THAT(Read("a@b.cc \t\v\f\r\n \r\n  x"), ElementsAre(Line("a@b.cc \t\v\f")));
}

TEST(ReportReader, PaddedLineEndsAtTheLastLineEndOfTheWhiteSpace) {
  EXPECT_THAT(Read("a@b.cc       \r\n\r\n   \r\nb@c.dd        \r\n"), ElementsAre(Line("a@b.cc"), Line("b@c.dd")));
}

TEST(ReportReader, PlainLinesCountOnlyWhereNothingElseWasFound) {
  EXPECT_THAT(Read("a@b.cc\r\nb@c.dd\r\nc@d.ee"), ElementsAre(Line("a@b.cc"), Line("b@c.dd")));
  EXPECT_THAT(Read("a@b.cc\r\nb@c.dd        \r\n"), ElementsAre(Line("b@c.dd")));
}

TEST(ReportReader, PageAddressThatEndsInAnAddressGivesOneExtraRecord) {
  EXPECT_THAT(
      Read("1     a@b.com     http://x.de/?m=a@b.com     T\r\n\r\n\r\nhttp://x.de/?m=a@b.com\r\nhttp://y.de\r\n"),
      ElementsAre(Row("http://x.de/?m=a", "a@b.com", "http://x.de/?m=     T"), Row("http://y.de", "a@b.com", "")));
}

TEST(ReportReader, EmptyAndBinaryTextsGiveNothing) {
  EXPECT_THAT(Read(""), IsEmpty());
  EXPECT_THAT(Read("@"), IsEmpty());
  std::string binary;
  for (int i = 0; i < 100'000; ++i) binary += static_cast<char>(i * 7919 >> 3);
  EXPECT_EQ(Read(binary), ReferenceReadReport(binary));
}

TEST(ReportReader, PumpIsCalledOnceAMatchAndCanStopTheReading) {
  FoundAddresses found;
  int pumps = 0;
  ReadReport("a@b.cc\r\nb@c.dd\r\nc@d.ee\r\n", found, [&] { return ++pumps < 3; });
  EXPECT_EQ(pumps, 3);
  EXPECT_EQ(found.Count(), 2u);
}

TEST(ReportReader, FinishingInsideAPumpTakesEachRecordOnce) {
  FoundAddresses found;
  ReportReader reader("a@b.cc\r\nb@c.dd\r\nc@d.ee\r\n");
  ASSERT_TRUE(reader.Advance());
  reader.FinishNow(found);
  reader.Take(found);
  EXPECT_FALSE(reader.Advance());
  EXPECT_EQ(found.Count(), 3u);
}

TEST(ReportReader, FindsWhatThePatternsFindOnRandomTexts) {
  const std::vector<std::string> pieces = {"a@b.cc",
                                           "x.y-z@q.de",
                                           "@",
                                           "a",
                                           "Z9",
                                           ".",
                                           ".de",
                                           ".info",
                                           ".museum",
                                           "-",
                                           "_",
                                           "%",
                                           "+",
                                           " ",
                                           "       ",
                                           "\t",
                                           "\v",
                                           "\f",
                                           "\r",
                                           "\n",
                                           "\r\n",
                                           "\r\n",
                                           "http://",
                                           "HTTPS://",
                                           "ftp://",
                                           "x.y",
                                           "www.a.b",
                                           "/",
                                           "?a=b&c",
                                           ";",
                                           "~",
                                           ":",
                                           "#",
                                           "\xC3\xBC",
                                           std::string(1, '\0'),
                                           "1     ",
                                           "http://x.y/a@b.cc"};
  std::mt19937 random(1);
  for (std::size_t round = Rounds(8'000); round > 0; --round) {
    std::string text;
    for (std::size_t n = random() % 30 + 1; n > 0; --n) text += pieces[random() % pieces.size()];
    if (random() % 2 == 0) text += "\r\n";
    ASSERT_EQ(Read(text), ReferenceReadReport(text)) << testing::PrintToString(text);
  }
}

TEST(ReportReader, FindsWhatThePatternsFindOnRandomRows) {
  const std::vector<std::string> pieces = {"a@b.cc", "b@b.cc", "@b.cc", "a@b.c", "http://a.b", "http://a.b/c",
                                           "://a.b", "a.b",    "\r",    "\n",    " ",          "c"};
  std::mt19937 random(2);
  for (std::size_t round = Rounds(8'000); round > 0; --round) {
    std::string text = "b.cca@b.cc http://a.b";
    for (std::size_t n = random() % 12; n > 0; --n) text += pieces[random() % pieces.size()];
    text += "\r\n";
    ASSERT_EQ(Read(text), ReferenceReadReport(text)) << testing::PrintToString(text);
  }
}

// Quadratic work on these would take minutes, and recursion the stack.
TEST(ReportReader, HostileTextsOfMegabytesAreReadAtOnce) {
  const auto repeat = [](const std::string& piece, std::size_t bytes) {
    std::string text;
    while (text.size() < bytes) text += piece;
    return text;
  };
  const std::vector<std::function<std::string(std::size_t)>> families = {
      [&](std::size_t n) { return std::string(n, 'a'); },
      [&](std::size_t n) { return std::string(n, '@'); },
      [&](std::size_t n) { return repeat("a@", n); },
      [&](std::size_t n) { return repeat("a@b.cc ", n); },
      [&](std::size_t n) { return repeat("a@b.cc http://a.b ", n); },
      [&](std::size_t n) { return repeat("a@b.cc\r\n", n); },
      [&](std::size_t n) { return "a@b.cc" + std::string(n, ' '); },
      [&](std::size_t n) { return "a@b.cc http://" + repeat("a.", n); },
      [&](std::size_t n) { return repeat("a@b.cc        \r", n); },
      [&](std::size_t n) { return std::string(n / 2, 'a') + "@b.cc http://a.b " + std::string(n / 2, 'a') + "\r\n"; },
      [&](std::size_t n) {
        return "a@b.cc http://a.b/" + std::string(n / 2, 'x') + repeat("http://a.b/x", n / 2) + "\r\n";
      },
      [&](std::size_t n) { return "a@" + repeat("b.", n) + "cc http://a.b " + repeat("a@b.", n) + "\r\n"; },
  };
  for (std::size_t family = 0; family < families.size(); ++family) {
    const std::string text = families[family](8u << 20);
    const std::clock_t start = std::clock();
    (void)Read(text);
    EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 20) << "family " << family;
  }
}

}  // namespace
}  // namespace quenlar
