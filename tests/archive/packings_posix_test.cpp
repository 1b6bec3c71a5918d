// Archives and bodies packed by brotli and zstd. Only Linux has the libraries for them.
#include <memory>
#include <string>
#include <vector>

#include <brotli/encode.h>
#include <gtest/gtest.h>
#include <zstd.h>

#include "archive/http_message.h"
#include "archive/unpack_body.h"
#include "harvest_world.h"
#include "warc_text.h"

namespace quenlar {
namespace {

std::string Brotli(std::string_view text) {
  std::string packed(BrotliEncoderMaxCompressedSize(text.size()) + 64, '\0');
  std::size_t size = packed.size();
  EXPECT_EQ(BrotliEncoderCompress(5, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_GENERIC, text.size(),
                                  reinterpret_cast<const std::uint8_t*>(text.data()), &size,
                                  reinterpret_cast<std::uint8_t*>(packed.data())),
            BROTLI_TRUE);
  packed.resize(size);
  return packed;
}

std::string Zstd(std::string_view text, std::string_view dictionary = {}) {
  const std::unique_ptr<ZSTD_CCtx, decltype(&ZSTD_freeCCtx)> context(ZSTD_createCCtx(), ZSTD_freeCCtx);
  std::string packed(ZSTD_compressBound(text.size()), '\0');
  const std::size_t size = ZSTD_compress_usingDict(context.get(), packed.data(), packed.size(), text.data(),
                                                   text.size(), dictionary.data(), dictionary.size(), 3);
  packed.resize(size);
  return packed;
}

// The first frame of an archive, which decoders skip.
std::string DictionaryFrame(std::string_view dictionary) {
  std::string frame = "\x5D\x2A\x4D\x18";
  for (int shift = 0; shift < 32; shift += 8) frame += static_cast<char>(dictionary.size() >> shift & 0xFF);
  return frame + std::string(dictionary);
}

std::string Body(const std::string& coding, std::string_view body, std::size_t limit = 100'000) {
  const std::string block = HttpText(body, "Content-Encoding: " + coding + "\r\n");
  HttpMessage message;
  std::string storage;
  std::string_view decoded;
  EXPECT_TRUE(ParseHttpMessage(block, message));
  return DecodeBody(message, limit, storage, decoded) ? std::string(decoded) : "(unknown)";
}

TEST(PackingsTest, BodiesAreRead) {
  const std::string text = "<p>some text, some text";
  EXPECT_EQ(Body("br", Brotli(text)), text);
  EXPECT_EQ(Body("zstd", Zstd(text)), text);
  EXPECT_EQ(Body("zstd", Zstd("<p>") + Zstd("two")), "<p>two");
  EXPECT_EQ(Body("gzip, br, zstd", Zstd(Brotli(Gzip(text)))), text);
}

TEST(PackingsTest, TheFirstBytesDecideWhereTheHeadLies) {
  for (const char* coding : {"br", "zstd", "gzip, br"})
    EXPECT_EQ(Body(coding, "<p>plain text"), "<p>plain text") << coding;
}

TEST(PackingsTest, TornBodiesAreReadAsFarAsTheyGoAndBombsAreCut) {
  std::string text;
  for (unsigned i = 1; text.size() < 500'000; i = i * 1103515245u + 12345u) text += std::to_string(i) + " ";
  for (const auto& [coding, packed] : {std::pair{"br", Brotli(text)}, std::pair{"zstd", Zstd(text)}}) {
    const std::string read = Body(coding, std::string_view(packed).substr(0, packed.size() / 2), 1'000'000);
    EXPECT_GT(read.size(), 1000u) << coding;
    EXPECT_EQ(read, text.substr(0, read.size()));
    EXPECT_EQ(Body(coding, packed, 1000), text.substr(0, 1000));
  }
  const std::string bomb(50'000'000, 'a');
  for (const auto& [coding, packed] :
       {std::pair{BodyCoding::kBrotli, Brotli(bomb)}, std::pair{BodyCoding::kZstd, Zstd(bomb)}}) {
    std::string unpacked;
    EXPECT_EQ(UnpackBody(coding, packed, 1000, unpacked), UnpackOutcome::kUnpacked);
    EXPECT_EQ(unpacked, std::string(1000, 'a'));
  }
}

class ZstdArchiveTest : public testing::Test {
 protected:
  static std::string Row(const std::string& name) { return name + "@firma.de http://www.firma.de/" + name; }
  static std::string Report(std::size_t damaged) {
    return "/a " + std::to_string(static_cast<int>(InputKind::kWarc)) + " " + std::to_string(damaged);
  }
  HarvestWorld world_;
};

TEST_F(ZstdArchiveTest, FramesAreRecordsOrPartsOfThem) {
  const std::string one = PageRecord("one"), two = PageRecord("two");
  const std::string rows = Row("one") + "," + Row("two");
  EXPECT_EQ(world_.Of(Zstd(one) + Zstd(two)), rows);
  EXPECT_EQ(world_.Of(Zstd(one + two)), rows);
  EXPECT_EQ(world_.Of(Zstd(one + two.substr(0, 50)) + Zstd(two.substr(50))), rows);
  world_.standard_input = Zstd(one) + Zstd(two);
  EXPECT_EQ(world_.Run({"-"}), rows);
  EXPECT_EQ(world_.Of(Zstd("<p>a@firma.de")), "a@firma.de /a");
}

TEST_F(ZstdArchiveTest, TheDictionaryOfTheFirstFrameIsUsed) {
  const std::string dictionary = PageRecord("dictionary") + HttpText("words that come again and again");
  const std::string frames = Zstd(PageRecord("one"), dictionary) + Zstd(PageRecord("two"), dictionary);
  const std::string rows = Row("one") + "," + Row("two");
  EXPECT_EQ(world_.Of(DictionaryFrame(dictionary) + frames), rows);
  EXPECT_EQ(world_.Of(DictionaryFrame(Zstd(dictionary)) + frames), rows);
  EXPECT_EQ(world_.reports, std::vector<std::string>{Report(0)});
}

TEST_F(ZstdArchiveTest, ADamagedFrameCostsNoMoreThanItself) {
  std::string damaged = Zstd(PageRecord("two"));
  damaged = damaged.substr(0, damaged.size() / 2);
  EXPECT_EQ(world_.Of(Zstd(PageRecord("one")) + damaged + Zstd(PageRecord("three"))), Row("one") + "," + Row("three"));
  EXPECT_EQ(world_.reports, std::vector<std::string>{Report(1)});
}

TEST_F(ZstdArchiveTest, ReadingGoesOnWhereAPortionHasEnded) {
  std::string archive;
  unsigned random = 1;
  for (int i = 0; i < 300; ++i) {
    std::string body = std::to_string(i) + "@firma.de ";
    for (; body.size() < 20'000; random = random * 1103515245u + 12345u) body += std::to_string(random) + " ";
    archive += Zstd(WarcText({.target = "http://www.firma.de/" + std::to_string(i)}, HttpText(body)));
  }
  (void)world_.Of(archive);
  const std::vector<std::string> all = world_.rows;
  ASSERT_GT(world_.behind.size(), 3u);
  world_.places["/a"] = world_.behind[2];
  const std::size_t before = world_.rows_before[2];
  (void)world_.Of(archive, 2);
  EXPECT_EQ(world_.rows, std::vector<std::string>(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()));
}

}  // namespace
}  // namespace quenlar
