#include "archive/warc_head.h"

#include <string>

#include <gtest/gtest.h>

namespace quenlar {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

WarcHead Head(std::string_view text) {
  WarcHead head;
  EXPECT_EQ(ParseWarcHead(text, head), WarcHeadOutcome::kHead) << text;
  return head;
}
WarcHeadOutcome OutcomeOf(std::string_view text) {
  WarcHead head;
  return ParseWarcHead(text, head);
}

TEST(WarcHeadTest, FieldsAreTakenWhateverTheirCaseAndOrder) {
  const std::string text =
      "WARC/1.0\r\ncontent-length:  12 \r\nWARC-TARGET-URI: <http://a/>\r\nwarc-type:response\r\n"
      "WARC-Date: 2026-11-22T13:20:32Z\r\nContent-Type: text/html\r\n\r\n";
  const std::string record = text + "block";
  const WarcHead head = Head(record);
  EXPECT_EQ(head.length, 12u);
  EXPECT_EQ(head.target, "http://a/");
  EXPECT_EQ(head.type, "response");
  EXPECT_EQ(head.date, "2026-11-22T13:20:32Z");
  EXPECT_EQ(head.content_type, "text/html");
  EXPECT_EQ(head.size, text.size());
}

TEST(WarcHeadTest, OfAFieldThatComesTwiceTheFirstOneCounts) {
  const WarcHead head =
      Head("WARC/1.1\r\nContent-Length: 1\r\nContent-Length: 2\r\nWARC-Type: a\r\nWARC-Type: b\r\n\r\n");
  EXPECT_EQ(head.length, 1u);
  EXPECT_EQ(head.type, "a");
}

TEST(WarcHeadTest, LineFeedsEndLinesToo) {
  EXPECT_EQ(Head("WARC/1.0\nWARC-Type: resource\nContent-Length: 3\n\nabc").type, "resource");
}

TEST(WarcHeadTest, LinesThatAreNotFieldsArePassedOver) {
  EXPECT_EQ(Head("WARC/1.0\r\nnonsense\r\n folded: 1\r\nContent-Length: 3\r\n\r\n").length, 3u);
}

TEST(WarcHeadTest, ALengthThatIsNoNumberIsNone) {
  for (const char* length : {"", "-1", "1x", "0x10", "99999999999999999999"}) {
    EXPECT_FALSE(Head(std::string("WARC/1.0\r\nContent-Length: ") + length + "\r\n\r\n").length) << length;
  }
}

TEST(WarcHeadTest, WhatIsNotAHeadIsSo) {
  for (const char* text : {"", "W", "WARC/1.0", "WARC/1.0\r\n", "WARC/1.0\r\nA: b\r\n"}) {
    EXPECT_EQ(OutcomeOf(text), WarcHeadOutcome::kCut) << text;
  }
  for (const char* text : {"x", "WARD", "WARC/x.0\r\n\r\n", "WARC/1\r\n\r\n", "WARC/1.\r\n\r\n", "WARC/1.0 \r\n\r\n"}) {
    EXPECT_EQ(OutcomeOf(text), WarcHeadOutcome::kNotOne) << text;
  }
  EXPECT_EQ(OutcomeOf("WARC/1.0\r\n" + std::string(kMostWarcHead, 'a')), WarcHeadOutcome::kNotOne);
}

TEST(WarcHeadTest, TheNextSoundHeadIsFound) {
  const std::string sound = "WARC/1.0\r\nWARC-Type: response\r\nContent-Length: 1\r\n\r\n";
  for (const char* before : {"", "x", "WARC/1.0\r\n", "WARC/1.0\r\nWARC-Type: a\r\n\r\n", "WARC/1.0\r\nno field\r\n",
                             "WARC/1.0\r\nContent-Length: x\r\nWARC-Type: a\r\n\r\n", "WWARC", "WARC/1.0\r\na: "}) {
    const std::string text = std::string(before) + sound;
    const std::size_t expected = std::string_view(before) == "WARC/1.0\r\na: " ? 0 : std::string_view(before).size();
    EXPECT_EQ(FindWarcHead(text, 0), expected) << before;
  }
  EXPECT_EQ(FindWarcHead(sound, 1), kNone);
  EXPECT_EQ(FindWarcHead("text WARC/1.0\r\nWARC-Ty", 0), 5u);
  EXPECT_EQ(FindWarcHead("text WARC-Type: WARC/one", 0), kNone);
}

TEST(WarcHeadTest, ASearchThroughHeadsThatNeverEndIsLinear) {
  std::string text;
  while (text.size() < (8u << 20)) text += "WARC/1.0\na: WARC/1.0\n";
  EXPECT_EQ(FindWarcHead(text + "\x01\n\n", 0), kNone);
}

}  // namespace
}  // namespace quenlar
