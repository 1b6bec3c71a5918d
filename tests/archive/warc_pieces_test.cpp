#include "archive/warc_pieces.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "warc_text.h"

namespace quenlar {
namespace {

using Kind = WarcPiece::Kind;

// The blocks of a whole text; "!" before a damaged one, "?" for lost bytes.
std::vector<std::string> Blocks(std::string_view text) {
  std::vector<std::string> blocks;
  while (!text.empty()) {
    const WarcPiece piece = NextWarcPiece(text, false);
    if (piece.kind == Kind::kEnd) break;
    if (piece.kind == Kind::kLost) blocks.emplace_back("?");
    if (piece.kind == Kind::kRecord) blocks.push_back((piece.damaged ? "!" : "") + std::string(piece.block));
    EXPECT_GT(piece.size, 0u);
    text.remove_prefix(piece.size);
  }
  return blocks;
}
std::string Record(std::string_view block, const RecordText& how = {}) { return WarcText(how, block); }
using Texts = std::vector<std::string>;

TEST(WarcPiecesTest, RecordsFollowEachOther) {
  EXPECT_EQ(Blocks(Record("one") + Record("") + Record("two")), (Texts{"one", "", "two"}));
}

TEST(WarcPiecesTest, BlanksBetweenRecordsMayBeTooFewOrTooMany) {
  for (const char* behind : {"", "\n", "\r\n", "\r\n\r\n\r\n\r\n", "\n\n"}) {
    EXPECT_EQ(Blocks(Record("one", {.behind = behind}) + Record("two", {.behind = behind})), (Texts{"one", "two"}));
  }
  const std::string nuls(1000, '\0');
  EXPECT_EQ(Blocks(nuls + Record("one", {.behind = nuls}) + Record("two") + nuls), (Texts{"one", "two"}));
}

TEST(WarcPiecesTest, LinesMayEndInLineFeeds) {
  const RecordText how{.line_end = "\n", .behind = "\n\n"};
  EXPECT_EQ(Blocks(Record("one", how) + Record("two", how)), (Texts{"one", "two"}));
}

TEST(WarcPiecesTest, BehindALengthThatIsTooLargeTheNextHeadCounts) {
  EXPECT_EQ(Blocks(Record("one", {.wrong_length = 300}) + Record("two") + Record("three")),
            (Texts{"!one\r\n\r\n", "two", "three"}));
  EXPECT_EQ(Blocks(Record("one", {.wrong_length = 1'000'000'000}) + Record("two")), (Texts{"!one\r\n\r\n", "two"}));
}

TEST(WarcPiecesTest, BehindALengthThatIsTooSmallTheNextHeadCounts) {
  EXPECT_EQ(Blocks(Record("one and more", {.wrong_length = -5}) + Record("two")),
            (Texts{"!one and more\r\n\r\n", "two"}));
}

TEST(WarcPiecesTest, ARecordWithoutALengthEndsAtTheNextHead) {
  EXPECT_EQ(Blocks("WARC/1.0\r\nWARC-Type: response\r\n\r\none" + Record("two")), (Texts{"!one", "two"}));
}

TEST(WarcPiecesTest, ATornRecordKeepsWhatIsThere) {
  const std::string text = Record("one two three");
  EXPECT_EQ(Blocks(text.substr(0, text.size() - 10)), (Texts{"!one two"}));
}

TEST(WarcPiecesTest, BytesBetweenRecordsAreLost) {
  EXPECT_EQ(Blocks("junk" + Record("one") + "WARC/1.0 junk\r\n" + Record("two")), (Texts{"?", "one", "?", "two"}));
  EXPECT_EQ(Blocks("no archive at all"), (Texts{"?"}));
}

TEST(WarcPiecesTest, AnArchiveInARecordIsNotLookedAt) {
  const std::string inside = Record("inside") + Record("inside too");
  EXPECT_EQ(Blocks(Record(inside) + Record("two")), (Texts{inside, "two"}));
}

TEST(WarcPiecesTest, MoreIsAskedForUntilTheEndOfARecordIsSure) {
  const std::string first = Record("one"), text = first + Record("two");
  for (std::size_t size = 0; size < first.size() + 6; ++size) {
    EXPECT_EQ(NextWarcPiece(std::string_view(text).substr(0, size), true).kind, Kind::kMore) << size;
  }
  const WarcPiece piece = NextWarcPiece(std::string_view(text).substr(0, first.size() + 6), true);
  EXPECT_EQ(piece.kind, Kind::kRecord);
  EXPECT_EQ(piece.size, first.size());
  EXPECT_FALSE(piece.damaged);
}

TEST(WarcPiecesTest, WhatIsLostMayBeDroppedButForTheBeginningOfAHead) {
  const WarcPiece piece = NextWarcPiece("junk junk junk WAR", true);
  EXPECT_EQ(piece.kind, Kind::kLost);
  EXPECT_LE(piece.size, 15u);
  EXPECT_GT(piece.size, 5u);
}

TEST(WarcPiecesTest, ALengthBeyondTheWindowIsTold) {
  std::string text = Record("", {.behind = "", .wrong_length = 200'000'000});
  EXPECT_EQ(NextWarcPiece(text, true).kind, Kind::kMore);
  text.resize(kWarcWindow, 'x');
  const WarcPiece piece = NextWarcPiece(text, true);
  EXPECT_EQ(piece.kind, Kind::kLarge);
  EXPECT_EQ(piece.head.length, 200'000'000u);
}

}  // namespace
}  // namespace quenlar
