#include "platform/answer_head.h"

#include <string>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "platform/page_fetcher.h"

namespace quenlar {
namespace {

// False as soon as one of the lines is refused.
bool AddAll(AnswerHead& head, const std::string& lines) {
  for (const std::string_view line : Split(lines, "\n")) {
    if (!head.AddLine(line)) return false;
  }
  return true;
}
bool Accepts(const std::string& lines) {
  AnswerHead head;
  return AddAll(head, lines);
}

TEST(AnswerHead, TellsStatusLengthAndCoding) {
  AnswerHead head;
  ASSERT_TRUE(AddAll(head, "HTTP/1.1 200 OK\r\ncontent-LENGTH: \t42 \r\nContent-Encoding:gzip\r"));
  EXPECT_FALSE(head.complete());
  ASSERT_TRUE(head.AddLine("\r\n"));
  EXPECT_TRUE(head.complete());
  EXPECT_EQ(head.status(), 200);
  EXPECT_EQ(head.content_length(), 42u);
  EXPECT_EQ(head.coding(), ContentCoding::kGzip);
  EXPECT_FALSE(head.chunked());
}

TEST(AnswerHead, AnnouncesNoLengthForChunks) {
  AnswerHead head;
  ASSERT_TRUE(AddAll(head, "HTTP/1.1 200 OK\nContent-Length: 42\nTransfer-Encoding: Chunked\n"));
  EXPECT_TRUE(head.chunked());
  EXPECT_FALSE(head.content_length());
}

TEST(AnswerHead, StartsAnewAfterAnInterimAnswer) {
  AnswerHead head;
  ASSERT_TRUE(AddAll(head, "HTTP/1.1 103 Early Hints\nContent-Length: 7\nLocation: /x\n"));
  EXPECT_FALSE(head.complete());
  ASSERT_TRUE(AddAll(head, "HTTP/1.1 200 OK\nContent-Length: 8\n"));
  EXPECT_TRUE(head.complete());
  EXPECT_EQ(head.content_length(), 8u);
  EXPECT_EQ(head.location(), "");
}

TEST(AnswerHead, KnowsALocationOnlyInARedirect) {
  for (const int status : {301, 302, 303, 307, 308}) {
    AnswerHead head;
    ASSERT_TRUE(AddAll(head, "HTTP/1.1 " + std::to_string(status) + " Moved\nlocation:  /new \nLocation: /other\n"));
    EXPECT_EQ(head.location(), "/new") << status;
  }
  for (const int status : {200, 201, 300, 304, 305, 404, 503}) {
    AnswerHead head;
    ASSERT_TRUE(AddAll(head, "HTTP/1.1 " + std::to_string(status) + " X\nLocation: /new\n"));
    EXPECT_EQ(head.location(), "") << status;
  }
}

TEST(AnswerHead, TakesStatusLinesOfEveryVersion) {
  for (const char* line : {"HTTP/1.1 200 OK", "HTTP/1.0 404 Not Found", "HTTP/1.1 200", "HTTP/2 200", "HTTP/1.1 200 ",
                           "HTTP/1.1 999 Whatever"}) {
    EXPECT_TRUE(Accepts(line)) << line;
  }
}

TEST(AnswerHead, RefusesWhatIsNoStatusLine) {
  for (const char* line : {"", "200 OK", "http/1.1 200 OK", "HTTP/1.1", "HTTP/1.1 ", "HTTP/1.1 20", "HTTP/1.1 2000",
                           "HTTP/1.1 0x1", "HTTP/1.1 099 X", "HTTP/ 200 OK", "HTTP/x.y 200 OK", "HTTP/1.1  200 OK",
                           "HTTP/1.1 200x", "<html>", "SSH-2.0-x"}) {
    EXPECT_FALSE(Accepts(line)) << line;
  }
}

TEST(AnswerHead, RefusesAProxysRequestForAPassword) {
  EXPECT_FALSE(Accepts("HTTP/1.1 407 Proxy Authentication Required"));
  EXPECT_TRUE(Accepts("HTTP/1.1 401 Unauthorized"));
}

TEST(AnswerHead, RefusesImpossibleLengths) {
  for (const char* length : {"", "-1", "+1", "1.5", "0x10", "many", "1 1", "1,1", "9999999999999999999",
                             "18446744073709551617", "67108865"}) {
    EXPECT_FALSE(Accepts(std::string("HTTP/1.1 200 OK\nContent-Length: ") + length)) << length;
  }
  EXPECT_TRUE(Accepts("HTTP/1.1 200 OK\nContent-Length: " + std::to_string(kMaxBodyBytes)));
  EXPECT_FALSE(Accepts("HTTP/1.1 200 OK\nContent-Length: 1\nContent-Length: 2"));
  EXPECT_FALSE(Accepts("HTTP/1.1 200 OK\nContent-Length: 1\nContent-Length: 1"));
}

TEST(AnswerHead, RefusesEncodingsThatWereNotAskedFor) {
  for (const char* coding : {"br", "zstd", "compress", "gzip, gzip", "gzip,br", "gzipped", "x"}) {
    EXPECT_FALSE(Accepts(std::string("HTTP/1.1 200 OK\nContent-Encoding: ") + coding)) << coding;
  }
  for (const char* coding : {"gzip", "GZIP", "x-gzip", "deflate", "identity", ""}) {
    EXPECT_TRUE(Accepts(std::string("HTTP/1.1 200 OK\nContent-Encoding: ") + coding)) << coding;
  }
  EXPECT_FALSE(Accepts("HTTP/1.1 200 OK\nContent-Encoding: gzip\nContent-Encoding: deflate"));
  EXPECT_TRUE(Accepts("HTTP/1.1 200 OK\nContent-Encoding: gzip\nContent-Encoding: identity"));
  for (const char* transfer : {"gzip", "gzip, chunked", "x"}) {
    EXPECT_FALSE(Accepts(std::string("HTTP/1.1 200 OK\nTransfer-Encoding: ") + transfer)) << transfer;
  }
}

TEST(AnswerHead, PassesOverWhatIsNoHeader) {
  AnswerHead head;
  ASSERT_TRUE(
      AddAll(head, "HTTP/1.1 200 OK\nno header\n Content-Length: x\n\tContent-Length: y\n: z\nContent-Length: 5\n"));
  EXPECT_EQ(head.content_length(), 5u);
  EXPECT_TRUE(head.AddLine("Content-Length: a trailer"));
  EXPECT_EQ(head.content_length(), 5u);
}

TEST(AnswerHead, RefusesMoreThanItsShareOfBytes) {
  AnswerHead one_line;
  ASSERT_TRUE(one_line.AddLine("HTTP/1.1 200 OK"));
  EXPECT_FALSE(one_line.AddLine("X: " + std::string(kMaxHeadBytes, 'x')));

  AnswerHead many;
  std::size_t lines = 0;
  ASSERT_TRUE(many.AddLine("HTTP/1.1 200 OK"));
  while (many.AddLine("X-Header: value\r\n") && lines < kMaxHeadBytes) ++lines;
  EXPECT_LE(lines, kMaxHeadBytes / 17);

  AnswerHead interim;
  std::size_t answers = 0;
  while (interim.AddLine("HTTP/1.1 100 Continue\r\n") && interim.AddLine("\r\n") && answers < kMaxHeadBytes) ++answers;
  EXPECT_LT(answers, kMaxHeadBytes / 20);
}

}  // namespace
}  // namespace quenlar
