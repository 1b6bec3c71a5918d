#include "platform/content_decoder.h"

#include <string>

#include <gtest/gtest.h>
#include <zlib.h>

namespace quenlar {
namespace {

constexpr int kGzip = 15 + 16, kZlib = 15, kRaw = -15;
constexpr std::size_t kNoLimit = SIZE_MAX;

std::string Compress(const std::string& text, int window) {
  z_stream stream{};
  deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&stream, text.size()) + 64, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

struct Decoded {
  std::string text = {};
  bool ok = true, at_end = false;
};

Decoded Decode(ContentCoding coding, const std::string& bytes, std::size_t block, std::size_t limit = kNoLimit) {
  ContentDecoder decoder(coding, limit);
  Decoded decoded;
  for (std::size_t at = 0; at < bytes.size() && decoded.ok; at += block) {
    decoded.ok = decoder.Add(std::string_view(bytes).substr(at, block), decoded.text);
  }
  decoded.at_end = decoder.AtEnd();
  return decoded;
}

std::string SampleText() {
  std::string text;
  for (int i = 0; i < 20'000; ++i) text += "line " + std::to_string(i * i) + "\r\n";
  return text;
}

TEST(ContentDecoder, GivesBackTheTextHoweverItIsCut) {
  const std::string text = SampleText();
  const struct {
    ContentCoding coding;
    std::string bytes;
  } kCases[] = {{ContentCoding::kIdentity, text},
                {ContentCoding::kGzip, Compress(text, kGzip)},
                {ContentCoding::kDeflate, Compress(text, kZlib)},
                {ContentCoding::kDeflate, Compress(text, kRaw)}};
  for (const auto& c : kCases) {
    for (const std::size_t block : {std::size_t{1}, std::size_t{2}, std::size_t{1000}, c.bytes.size()}) {
      const Decoded decoded = Decode(c.coding, c.bytes, block);
      EXPECT_TRUE(decoded.ok && decoded.at_end) << block;
      EXPECT_TRUE(decoded.text == text) << block;
    }
  }
}

TEST(ContentDecoder, TakesNoDataForAnEmptyBody) {
  for (const auto coding : {ContentCoding::kIdentity, ContentCoding::kGzip, ContentCoding::kDeflate}) {
    EXPECT_TRUE(Decode(coding, "", 1).at_end);
  }
  EXPECT_TRUE(Decode(ContentCoding::kGzip, Compress("", kGzip), 1).at_end);
}

TEST(ContentDecoder, NoticesWhereTheDataIsCut) {
  const std::string bytes = Compress("some text to compress", kGzip);
  for (std::size_t size = 1; size < bytes.size(); ++size) {
    EXPECT_FALSE(Decode(ContentCoding::kGzip, bytes.substr(0, size), 7).at_end) << size;
  }
  EXPECT_FALSE(Decode(ContentCoding::kDeflate, "x", 1).at_end);
}

TEST(ContentDecoder, RefusesDamage) {
  std::string bytes = Compress(SampleText(), kGzip);
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x55);
  const Decoded damaged = Decode(ContentCoding::kGzip, bytes, 1000);
  EXPECT_FALSE(damaged.ok && damaged.at_end);
  EXPECT_FALSE(Decode(ContentCoding::kGzip, "<html>no gzip</html>", 100).ok);
}

TEST(ContentDecoder, RefusesEverythingAfterAFailure) {
  ContentDecoder decoder(ContentCoding::kGzip, kNoLimit);
  std::string out;
  EXPECT_FALSE(decoder.Add("no gzip at all", out));
  EXPECT_FALSE(decoder.Add(Compress("x", kGzip), out));
  EXPECT_FALSE(decoder.AtEnd());
}

TEST(ContentDecoder, JoinsGzipMembersHoweverTheyAreCut) {
  const std::string bytes = Compress("one ", kGzip) + Compress("", kGzip) + Compress("two", kGzip);
  for (std::size_t block = 1; block <= bytes.size(); ++block) {
    const Decoded decoded = Decode(ContentCoding::kGzip, bytes, block);
    EXPECT_TRUE(decoded.ok && decoded.at_end) << block;
    EXPECT_EQ(decoded.text, "one two") << block;
  }
}

TEST(ContentDecoder, PassesOverWhatFollowsTheEnd) {
  const Decoded padded = Decode(ContentCoding::kGzip, Compress("text", kGzip) + std::string(1000, '\0'), 10);
  EXPECT_TRUE(padded.ok && padded.at_end);
  EXPECT_EQ(padded.text, "text");
  EXPECT_EQ(Decode(ContentCoding::kDeflate, Compress("text", kZlib) + "rest", 3).text, "text");
  // Also where it holds the byte that a gzip member begins with, wherever the pieces begin.
  for (std::size_t piece = 1; piece < 40; ++piece) {
    const Decoded followed = Decode(ContentCoding::kGzip,
                                    Compress("text", kGzip) +
                                        "1\x1F\x1F"
                                        "1\x1F",
                                    piece);
    EXPECT_TRUE(followed.ok && followed.at_end) << piece;
    EXPECT_EQ(followed.text, "text") << piece;
  }
}

TEST(ContentDecoder, CountsDecodedBytesAgainstTheLimit) {
  const std::string zeros = Compress(std::string(1'000'000, '\0'), kGzip);
  EXPECT_TRUE(Decode(ContentCoding::kGzip, zeros, 100, 1'000'000).ok);
  const Decoded too_long = Decode(ContentCoding::kGzip, zeros, 100, 999'999);
  EXPECT_FALSE(too_long.ok);
  EXPECT_LE(too_long.text.size(), 999'999u);
  EXPECT_TRUE(Decode(ContentCoding::kIdentity, std::string(1000, 'x'), 10, 1000).ok);
  EXPECT_FALSE(Decode(ContentCoding::kIdentity, std::string(1001, 'x'), 10, 1000).ok);
}

TEST(ContentDecoder, CountsDataThatDecodesToNothingToo) {
  std::string members;
  while (members.size() < 10'000) members += Compress("", kGzip);
  EXPECT_FALSE(Decode(ContentCoding::kGzip, members, 100, 5'000).ok);
}

TEST(ContentDecoder, ManyTinyMembersTakeNoStack) {
  std::string members;
  const std::string member = Compress("", kGzip);
  while (members.size() < (4 << 20)) members += member;
  EXPECT_TRUE(Decode(ContentCoding::kGzip, members, members.size()).at_end);
}

}  // namespace
}  // namespace quenlar
