#include "archive/http_message.h"

#include <gtest/gtest.h>

#include "warc_text.h"

namespace quenlar {
namespace {

// The decoded body; "(unknown)" for a coding that nobody knows, "(none)" for what is not an answer.
std::string Body(std::string_view block, std::size_t limit = 1000) {
  HttpMessage message;
  if (!ParseHttpMessage(block, message)) return "(none)";
  std::string storage;
  std::string_view decoded;
  return DecodeBody(message, limit, storage, decoded) ? std::string(decoded) : "(unknown)";
}
std::string Coded(const std::string& codings, std::string_view body) {
  return Body(HttpText(body, "Content-Encoding: " + codings + "\r\n"));
}
std::string Chunked(std::string_view body) { return Body(HttpText(body, "Transfer-Encoding: chunked\r\n")); }

TEST(HttpMessageTest, TheHeadIsTaken) {
  HttpMessage message;
  ASSERT_TRUE(
      ParseHttpMessage("HTTP/1.1 404 Not Found\r\ncontent-TYPE: text/html; charset=x\r\nX-Robots-Tag: noindex\r\n"
                       "Content-Length: 99999\r\nx-robots-tag: none\r\nno field\r\n\r\nbody",
                       message));
  EXPECT_EQ(message.status, 404);
  EXPECT_EQ(message.content_type, "text/html; charset=x");
  EXPECT_EQ(message.robots_headers, (std::vector<std::string>{"noindex", "none"}));
  EXPECT_EQ(message.body, "body");
}

TEST(HttpMessageTest, LineFeedsAndInterimAnswersAreRead) {
  EXPECT_EQ(Body("HTTP/1.0 200 OK\nA: b\n\nbody"), "body");
  EXPECT_EQ(Body("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n\r\nbody"), "body");
  EXPECT_EQ(Body("HTTP/1.1 200"), "");
}

TEST(HttpMessageTest, WhatIsNoAnswerIsNone) {
  for (const char* block : {"", "GET / HTTP/1.1\r\n\r\n", "<html>", "HTTP/1.1 2000 OK\r\n\r\n"})
    EXPECT_EQ(Body(block), "(none)");
}

TEST(HttpMessageTest, ChunksAreJoined) {
  EXPECT_EQ(Chunked("3\r\nabc\r\n5;name=value\r\ndefgh\r\n0\r\nTrailer: x\r\n\r\n"), "abcdefgh");
  EXPECT_EQ(Chunked("3 \nabc\n0\n\n"), "abc");
  EXPECT_EQ(Chunked("a\r\n0123456789\r\n0\r\n\r\n"), "0123456789");
}

TEST(HttpMessageTest, OfChunksThatLieEverythingIsKept) {
  EXPECT_EQ(Chunked("<html>not in chunks</html>"), "<html>not in chunks</html>");
  EXPECT_EQ(Chunked("ff\r\ncut here"), "cut here");
  EXPECT_EQ(Chunked("3\r\nabc\r\nno size\r\nrest"), "abcno size\r\nrest");
  EXPECT_EQ(Chunked("ffffffffffffffffffffff\r\nx"), "ffffffffffffffffffffff\r\nx");
  EXPECT_EQ(Chunked(""), "");
}

TEST(HttpMessageTest, CodingsAreTakenOffInTheirOrder) {
  const std::string text = "some text, some text";
  EXPECT_EQ(Coded("gzip", Gzip(text)), text);
  EXPECT_EQ(Coded("X-GZIP", Gzip(text)), text);
  EXPECT_EQ(Coded("deflate", Deflated(text, 15)), text);
  EXPECT_EQ(Coded("deflate", Deflated(text, -15)), text);
  EXPECT_EQ(Coded("deflate, gzip", Gzip(Deflated(text, 15))), text);
  EXPECT_EQ(Coded("deflate", "not packed"), "not packed");
  EXPECT_EQ(Coded("gzip", "\x1F\x8B not packed"), "");
  EXPECT_EQ(Coded("gzip\r\nContent-Encoding: gzip", Gzip(Gzip(text))), text);
  EXPECT_EQ(Coded("identity, gzip", Gzip(text)), text);
  EXPECT_EQ(Coded("gzip", Gzip(text.substr(0, 9)) + Gzip(text.substr(9))), text);
  const std::string chunks = "14\r\n" + text + "\r\n0\r\n\r\n";
  EXPECT_EQ(Body(HttpText(chunks, "Transfer-Encoding: chunked\r\nContent-Encoding: gzip\r\n")), text);
  const std::string packed = Gzip(text);
  EXPECT_EQ(Body(HttpText("1\r\n" + packed.substr(0, 1) + "\r\nff\r\n" + packed.substr(1),
                          "Transfer-Encoding: gzip, chunked\r\n")),
            text);
}

TEST(HttpMessageTest, TheFirstBytesDecideWhereTheHeadLies) {
  for (const char* coding : {"gzip", "deflate", "gzip, deflate"})
    EXPECT_EQ(Coded(coding, "<p>plain"), "<p>plain") << coding;
}

TEST(HttpMessageTest, ACodingThatNobodyKnowsGivesNothing) {
  EXPECT_EQ(Coded("aes128gcm", "abc"), "(unknown)");
  EXPECT_EQ(Coded("gzip, compress", "abc"), "(unknown)");
}

TEST(HttpMessageTest, OfATornBodyWhatIsThereIsRead) {
  std::string text;
  for (int i = 0; i < 500; ++i) text += "word" + std::to_string(i * 7919) + " ";
  const std::string packed = Gzip(text);
  const std::string read = Body(HttpText(packed.substr(0, packed.size() / 2), "Content-Encoding: gzip\r\n"), 100'000);
  EXPECT_GT(read.size(), 500u);
  EXPECT_EQ(read, text.substr(0, read.size()));
}

TEST(HttpMessageTest, NoMoreThanTheLimitIsUnpacked) {
  const std::string once = Gzip(std::string(20'000'000, 'a')),
                    bomb = HttpText(Gzip(once), "Content-Encoding: gzip, gzip\r\n");
  EXPECT_EQ(Body(bomb, 1000), std::string(1000, 'a'));
  EXPECT_EQ(Body(HttpText(std::string(2000, 'a')), 1000).size(), 1000u);
  HttpMessage message;
  std::string unpacked;
  std::string_view body;
  ASSERT_TRUE(ParseHttpMessage(bomb, message));
  ASSERT_TRUE(DecodeBody(message, 1000, unpacked, body));
  EXPECT_EQ(unpacked.size(), 1000u);
}

}  // namespace
}  // namespace quenlar
