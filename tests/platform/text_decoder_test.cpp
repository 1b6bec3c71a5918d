// The system's charsets: what each makes of some bytes, by the tables of the Encoding Standard.
#include "platform/text_decoder.h"

#include "platform_under_test.h"

namespace quenlar {
namespace {

class TextDecoderTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Decode(Charset charset, std::string_view bytes) {
    return platform_->text_decoder().ToUtf8(charset, bytes);
  }
  std::unique_ptr<TestPlatform> platform_ = MakeTestPlatform();
};

struct Sample {
  Charset charset;
  const char* bytes;
  const char* text;
};

TEST_F(TextDecoderTest, BytesBecomeTheCharactersOfTheirCharset) {
  const Sample samples[] = {
      {Charset::kIbm866, "\x8F\xE0\xA8\xA2\xA5\xE2", "Привет"},
      {Charset::kIso8859Part2, "\xA3\xF3\x64\xBC", "Łódź"},
      {Charset::kIso8859Part5, "\xBF\xE0\xD8\xD2\xD5\xE2", "Привет"},
      {Charset::kIso8859Part7, "\xC5\xEB\xEB\xDC\xF2", "Ελλάς"},
      {Charset::kIso8859Part15, "\xA4 \xBD", "€ œ"},
      {Charset::kKoi8R, "\xF0\xD2\xC9\xD7\xC5\xD4", "Привет"},
      {Charset::kKoi8U, "\xF0\xD2\xC9\xD7\xA6\xD4", "Привіт"},
      {Charset::kMacintosh, "caf\x8E", "café"},
      {Charset::kWindows874, "\xCA\xC7\xD1\xCA\xB4\xD5", "สวัสดี"},
      {Charset::kWindows1250, "\x8A koda \x9E", "Š koda ž"},
      {Charset::kWindows1251, "\xCF\xF0\xE8\xE2\xE5\xF2", "Привет"},
      {Charset::kWindows1253, "\xC5\xEB\xEB\xDC\xF2", "Ελλάς"},
      {Charset::kWindows1254, "\xDD stanbul \xFE", "İ stanbul ş"},
      {Charset::kWindows1255, "\xF9\xEC\xE5\xED", "שלום"},
      {Charset::kWindows1256, "\xE3\xD1\xCD\xC8\xC7", "مرحبا"},
      {Charset::kWindows1257, "\xC0\xFE", "Ąž"},
      {Charset::kGb18030, "\xC4\xE3\xBA\xC3", "你好"},
      {Charset::kBig5, "\xA7\x41\xA6\x6E", "你好"},
      {Charset::kEucJp, "\xA4\xB3\xA4\xF3\xA4\xCB\xA4\xC1\xA4\xCF", "こんにちは"},
      {Charset::kShiftJis, "\x82\xB1\x82\xF1\x83\x5C", "こんソ"},
      {Charset::kEucKr, "\xBE\xC8\xB3\xE7", "안녕"},
  };
  for (const Sample& sample : samples) {
    EXPECT_EQ(Decode(sample.charset, sample.bytes), sample.text) << static_cast<int>(sample.charset);
  }
}

TEST_F(TextDecoderTest, EveryCharsetLeavesAsciiAsItIs) {
  const std::string text = "Write to <a href=\"mailto:info@firma.de\">us</a>\n";
  for (int i = static_cast<int>(kFirstSystemCharset); i <= static_cast<int>(kLastSystemCharset); ++i) {
    EXPECT_EQ(Decode(static_cast<Charset>(i), text), text) << i;
    EXPECT_EQ(Decode(static_cast<Charset>(i), ""), "") << i;
  }
}

TEST_F(TextDecoderTest, MalformedBytesLoseNothingOfTheTextBehindThem) {
  for (const Charset charset : {Charset::kShiftJis, Charset::kGb18030, Charset::kBig5, Charset::kEucKr}) {
    EXPECT_TRUE(Decode(charset, "\x80\xFF\xFF <b> info@firma.de").ends_with(" info@firma.de"))
        << static_cast<int>(charset);
  }
}

TEST_F(TextDecoderTest, ATextThatBreaksOffWithinACharacterConverts) {
  EXPECT_TRUE(Decode(Charset::kShiftJis, "abc\x82").starts_with("abc"));
  EXPECT_TRUE(Decode(Charset::kGb18030, "abc\xC4").starts_with("abc"));
}

TEST_F(TextDecoderTest, TextsThatAreLongerThanAnyBufferConvert) {
  std::string bytes, text;
  for (int i = 0; i < 20'000; ++i) {
    bytes += "\x82\xB1.";
    text += "こ.";
  }
  EXPECT_EQ(Decode(Charset::kShiftJis, bytes), text);
}

}  // namespace
}  // namespace quenlar
