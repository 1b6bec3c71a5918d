// What the command line prints: formats, JSON lines, terminal text, progress.
#include <gtest/gtest.h>

#include "cli/address_format.h"
#include "cli/json_text.h"
#include "cli/progress_line.h"
#include "cli/terminal_text.h"

namespace quenlar {
namespace {

constexpr FoundAddress kRecord = {"http://a.example/x", "me@a.test", "A \"title\"", true};

TEST(AddressFormat, HasTheAddressAloneInLines) {
  EXPECT_EQ(FormatAddress(kRecord, AddressFormat::kLines), "me@a.test\n");
}

TEST(AddressFormat, QuotesEveryFieldInCsv) {
  EXPECT_EQ(FormatAddress(kRecord, AddressFormat::kCsv),
            "\"me@a.test\",\"http://a.example/x\",\"A \"\"title\"\"\",\"1\"\n");
}

TEST(AddressFormat, HasTheRecordAsAnObjectInJsonl) {
  EXPECT_EQ(FormatAddress(kRecord, AddressFormat::kJsonl),
            "{\"URL\":\"http://a.example/x\",\"Address\":\"me@a.test\",\"Title\":\"A \\\"title\\\"\","
            "\"TagOnly\":true}\n");
}

TEST(CsvField, IsNoFormulaForASpreadsheet) {
  const struct {
    const char* text;
    const char* field;
  } kCases[] = {{"=HYPERLINK(1)", "\"'=HYPERLINK(1)\""},
                {"+1", "\"'+1\""},
                {"-1", "\"'-1\""},
                {"@a", "\"'@a\""},
                {"\ta", "\"'\ta\""},
                {"\ra", "\"' a\""},
                {"a=b", "\"a=b\""},
                {"a\r\nb", "\"a  b\""},
                {"", "\"\""}};
  for (const auto& c : kCases) EXPECT_EQ(CsvField(c.text), c.field);
}

TEST(JsonLine, IsOneLineOfValidUtf8WhateverTheTextsHold) {
  const std::string hostile = std::string("\x00\x1b\n\"\\", 5) + "\x7f\xc2\x85\xe2\x80\xa8\xe2\x80\xa9\xc3\xbc";
  EXPECT_EQ(JsonLine({{"t", hostile}}), "{\"t\":\"\\u0000\\u001b\\n\\\"\\\\\\u007f\\u0085\\u2028\\u2029\xc3\xbc\"}\n");
  EXPECT_EQ(JsonLine({{"t", "\xff\xed\xa0\x80"}}).find('\xff'), std::string::npos);
  EXPECT_TRUE(IsUtf8(JsonLine({{"t", "\xff\xed\xa0\x80\xc3"}})));
}

TEST(JsonLine, IsReadBackAsWhatItWasMadeOf) {
  const std::string text = "a\xe2\x80\xa8\x7f\xc2\x9f\xc2\xa0 b";
  EXPECT_EQ(Json::parse(JsonLine({{"t", text}}))["t"], text);
}

TEST(ForTerminal, LeavesNothingThatSteersATerminal) {
  const struct {
    const char* text;
    const char* shown;
  } kCases[] = {{"plain", "plain"},
                {"a\tb", "a\tb"},
                {"a\x1b[2Jb\r\n", "a?[2Jb??"},
                {"\xc3\xbc\xe2\x98\x85\xf0\x9f\x98\x80", "\xc3\xbc\xe2\x98\x85\xf0\x9f\x98\x80"},
                {"\x7f\xc2\x9b", "??"},
                {"\xe2\x80\xae right to left", "? right to left"},
                {"\xe2\x81\xa6", "?"},
                {"\xff\xc3", "??"},
                {"\xed\xa0\x80", "???"},
                {"\xc0\xaf", "??"}};
  for (const auto& c : kCases) EXPECT_EQ(ForTerminal(c.text), c.shown);
}

TEST(FirstColumns, CutsBetweenCharacters) {
  EXPECT_EQ(FirstColumns("\xc3\xbc\xc3\xbc\xc3\xbc", 2), "\xc3\xbc\xc3\xbc");
  EXPECT_EQ(FirstColumns("ab", 5), "ab");
  EXPECT_EQ(FirstColumns("ab", 0), "");
  EXPECT_EQ(FirstColumns("ab", -1), "");
}

TEST(IsUtf8, TellsMalformedText) {
  EXPECT_TRUE(IsUtf8(""));
  EXPECT_TRUE(IsUtf8("a\xc3\xbc\xf4\x8f\xbf\xbf"));
  for (const char* wrong :
       {"\x80", "\xc3", "\xe2\x82", "\xf4\x90\x80\x80", "\xed\xbf\xbf", "\xc1\xbf", "\xf0\x80\x80\x80"}) {
    EXPECT_FALSE(IsUtf8(wrong));
  }
}

TEST(ProgressText, ShowsHowMuchOfWhatIsKnownIsDone) {
  ProgressLine::Figures figures;
  figures.addresses = 12;
  figures.scanned = 30;
  figures.links = 40;
  figures.visited = 30;
  figures.stage = "Parsing data ...";
  EXPECT_EQ(ProgressText(figures, 200),
            "[###############.....] 12 addresses, 30 pages, 10 links left  Parsing data ...");
  EXPECT_EQ(ProgressText({}, 200), "[....................] 0 addresses, 0 pages, 0 links left  ");
}

TEST(ProgressText, FitsTheTerminalAndCannotSteerIt) {
  ProgressLine::Figures figures;
  figures.stage = "Connecting: http://a.example/\x1b]0;x\x07";
  EXPECT_EQ(ProgressText(figures, 20).size(), 19u);
  EXPECT_EQ(ProgressText(figures, 300).find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace quenlar
