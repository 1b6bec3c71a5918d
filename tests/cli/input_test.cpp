// What the command line reads: lines of standard input, base64, requests of analyze, values of options.
#include <memory>

#include <gtest/gtest.h>

#include "cli/analyze_request.h"
#include "cli/base64.h"
#include "cli/line_reader.h"
#include "cli/option_checks.h"
#include "fake_console.h"

namespace quenlar {
namespace {

std::vector<std::string> LinesOf(const std::string& input, std::size_t longest, std::size_t block) {
  FakeConsole console;
  console.input = input;
  console.largest_read = block;
  const auto reader = std::make_unique<LineReader>(console, longest);
  std::vector<std::string> lines;
  std::string line;
  for (;;) {
    const auto outcome = reader->Next(line);
    if (outcome == LineReader::Outcome::kEnd) return lines;
    lines.push_back(outcome == LineReader::Outcome::kTooLong ? "too long" : line);
  }
}

TEST(LineReader, GivesTheLastLineWithOrWithoutItsEnd) {
  using Lines = std::vector<std::string>;
  for (const std::size_t block : {std::size_t{1}, std::size_t{3}, std::size_t{100}}) {
    EXPECT_EQ(LinesOf("", 10, block), Lines({}));
    EXPECT_EQ(LinesOf("a\nb\n", 10, block), Lines({"a", "b"}));
    EXPECT_EQ(LinesOf("a\n\nb", 10, block), Lines({"a", "", "b"}));
    EXPECT_EQ(LinesOf("\n", 10, block), Lines({""}));
  }
}

TEST(LineReader, PassesOverALineThatIsTooLongAndGoesOn) {
  using Lines = std::vector<std::string>;
  for (const std::size_t block : {std::size_t{1}, std::size_t{3}, std::size_t{100}}) {
    EXPECT_EQ(LinesOf("1234\n12345\n1\n", 4, block), Lines({"1234", "too long", "1"}));
    EXPECT_EQ(LinesOf("1234567890", 4, block), Lines({"too long"}));
  }
}

TEST(LineReader, HoldsNoLineThatIsTooLong) {
  FakeConsole console;
  console.endless = 'x';
  const auto reader = std::make_unique<LineReader>(console, 1000);
  std::string line;
  console.read_limit = std::size_t{200} << 20;
  EXPECT_EQ(reader->Next(line), LineReader::Outcome::kTooLong);
  EXPECT_LT(line.capacity(), 2000u);
}

TEST(DecodeBase64, DecodesWhatIsBase64AndNothingElse) {
  EXPECT_EQ(DecodeBase64(""), "");
  EXPECT_EQ(DecodeBase64("Zg=="), "f");
  EXPECT_EQ(DecodeBase64("Zm8="), "fo");
  EXPECT_EQ(DecodeBase64("Zm9v"), "foo");
  EXPECT_EQ(DecodeBase64("AP+/"), std::string("\x00\xff\xbf", 3));
  for (const char* wrong : {"Z", "Zg", "Zg=", "Zg===", "====", "=Zg=", "Z===", "Zm9v\n", "Zm 9", "Zm9-", "Zg==Zg=="}) {
    EXPECT_EQ(DecodeBase64(wrong), std::nullopt) << wrong;
  }
}

template <typename Request>
Request Parsed(const char* line) {
  ParsedLine parsed = ParseAnalyzeLine(line);
  EXPECT_TRUE(parsed.request.ok()) << line << ": " << parsed.request.status().message();
  return parsed.request.ok() ? std::get<Request>(parsed.request.take()) : Request{};
}

TEST(ParseAnalyzeLine, ReadsEveryKindOfRequest) {
  EXPECT_EQ(Parsed<OpenRequest>(R"({"open":"a b"})").text, "a b");
  EXPECT_EQ(Parsed<PageRequest>(R"({"text":"p","name":"M1"})").contents, "p");
  EXPECT_TRUE(Parsed<PageRequest>(R"({"name":"M1","body":"Zm9v"})").is_body);
  EXPECT_EQ(Parsed<RedirectRequest>(R"({"name":"M1","redirect":"http://x"})").address, "http://x");
  EXPECT_EQ(Parsed<FailRequest>(R"({"name":"M1","failed":true})").name, "M1");
  EXPECT_EQ(Parsed<ResolveRequest>(R"({"resolve":"x","page":"http://y"})").page, "http://y");
  EXPECT_EQ(Parsed<HostRequest>(R"({"host":"x"})").address, "x");
  Parsed<SaveRequest>(R"({"save":true})");
  Parsed<ResetRequest>(R"({"reset":true})");
  const auto settings = Parsed<SettingsRequest>(
      R"({"settings":{"SearchLanguage":-5,"StopNumber":2147483647,"SaveInterval":1.0,"RemoveFilterWords":["a","b"]}})");
  Settings changed;
  Apply(settings.changes, changed);
  EXPECT_EQ(settings.changes.size(), 3u);
  EXPECT_EQ(changed.SearchLanguage, -5);
  EXPECT_EQ(changed.SaveInterval, 1);
  EXPECT_EQ(changed.StopNumber, 2147483647);
  EXPECT_EQ(settings.remove_words, std::vector<std::string>({"a", "b"}));
  EXPECT_FALSE(settings.extract_words);
}

TEST(ParseAnalyzeLine, RefusesWhatIsNoRequest) {
  const char* const kWrong[] = {"",
                                " ",
                                "x",
                                "{",
                                "[]",
                                "null",
                                "1",
                                "\"a\"",
                                "{}",
                                R"({"id":1})",  // no request at all
                                R"({"open":"a"} x)",
                                R"({"open":"a",})",
                                "{\"open\":\"\xff\"}",
                                R"({"open":"\ud800"})",  // no JSON
                                R"({"open":1})",
                                R"({"open":null})",
                                R"({"host":[]})",
                                R"({"resolve":"x"})",  // wrong types
                                R"({"resolve":"x","page":1})",
                                R"({"name":"M1"})",
                                R"({"name":1,"text":"p"})",  //
                                R"({"name":"M1","body":"?"})",
                                R"({"name":"M1","body":"Zg="})",
                                R"({"name":"M1","body":1})",  //
                                R"({"name":"M1","failed":false})",
                                R"({"save":1})",
                                R"({"reset":"true"})",  //
                                R"({"open":"a","extra":1})",
                                R"({"name":"M","text":"","body":""})",
                                R"({"unknown":1})",  // unknown members
                                R"({"open":"a","save":true})",
                                R"({"settings":[]})",
                                R"({"settings":{"Nope":1}})",  //
                                R"({"settings":{"StopNumber":1.5}})",
                                R"({"settings":{"StopNumber":2147483648}})",  // numbers
                                R"({"settings":{"SearchLanguage":32768}})",
                                R"({"settings":{"SearchLanguage":-32769}})",  //
                                R"({"settings":{"SearchLanguage":"1"}})",
                                R"({"settings":{"SearchLanguage":true}})",  //
                                R"({"settings":{"StopNumber":1e400}})",
                                R"({"settings":{"StopNumber":18446744073709551615}})",
                                R"({"settings":{"RemoveFilterWords":"a"}})",
                                R"({"settings":{"RemoveFilterWords":["a",1]}})"};
  for (const char* line : kWrong) EXPECT_FALSE(ParseAnalyzeLine(line).request.ok()) << line;
}

TEST(ParseAnalyzeLine, TakesAByteOrderMarkAndACarriageReturn) {
  EXPECT_EQ(Parsed<HostRequest>("\xef\xbb\xbf{\"host\":\"x\"}\r").address, "x");
}

TEST(ParseAnalyzeLine, GivesTheIdAlsoOfALineThatIsWrong) {
  EXPECT_EQ(*ParseAnalyzeLine(R"({"id":[1,{"a":2}],"host":"x"})").id, Json::parse(R"([1,{"a":2}])"));
  const ParsedLine wrong = ParseAnalyzeLine(R"({"id":"seven","host":1})");
  EXPECT_FALSE(wrong.request.ok());
  EXPECT_EQ(*wrong.id, "seven");
  EXPECT_FALSE(ParseAnalyzeLine(R"({"host":"x"})").id);
}

TEST(ParseAnalyzeLine, RefusesWhatIsNestedTooDeepOrHoldsTooMuch) {
  const std::string deep = "{\"id\":" + std::string(100'000, '[') + std::string(100'000, ']') + ",\"host\":\"x\"}";
  EXPECT_FALSE(ParseAnalyzeLine(deep).request.ok());
  std::string wide = "{\"id\":[1";
  for (int i = 0; i < 1'100'000; ++i) wide += ",1";
  EXPECT_FALSE(ParseAnalyzeLine(wide + "],\"host\":\"x\"}").request.ok());
  const std::string fits = "{\"id\":" + std::string(60, '[') + std::string(60, ']') + ",\"host\":\"x\"}";
  EXPECT_TRUE(ParseAnalyzeLine(fits).request.ok());
}

TEST(OptionChecks, TakeASchemeAndAHostForTheSearchEngine) {
  for (const char* right :
       {"http://a", "https://a.example", "HTTP://a.example:8080/", "http://127.0.0.1:1", "http://[::1]:80"}) {
    EXPECT_EQ(CheckHostUrl(right), "") << right;
  }
  for (const char* wrong :
       {"", "a.example", "ftp://a", "http://", "http:///", "http://a/b", "http://a?b", "http://a:", "http://a:0",
        "http://a:65536", "http://a:8x", "http://a b", "http://a\r\nb", "http://[::1", "http://user@a"}) {
    EXPECT_NE(CheckHostUrl(wrong), "") << wrong;
  }
}

TEST(OptionChecks, TakeAnHttpUrlForTheProxy) {
  EXPECT_EQ(CheckProxyUrl("http://127.0.0.1:8080"), "");
  EXPECT_NE(CheckProxyUrl("https://127.0.0.1:8080"), "");
  EXPECT_NE(CheckProxyUrl("127.0.0.1:8080"), "");
}

TEST(CheckNumber, TakesDigitsWithinTheBounds) {
  EXPECT_EQ(CheckNumber("1", 1, UINT64_MAX), "");
  EXPECT_EQ(CheckNumber("18446744073709551615", 1, UINT64_MAX), "");
  EXPECT_EQ(CheckNumber("0", 0, 5), "");
  for (const char* const wrong : {"", "0", "6", "-1", "+1", " 1", "1 ", "1.0", "0x1", "18446744073709551617"}) {
    EXPECT_EQ(CheckNumber(wrong, 1, 5), "must be a number from 1 to 5") << wrong;
  }
}

TEST(CheckSeconds, TakesFractionsWithinTheBounds) {
  for (const char* const right : {"0", "0.25", ".5", "1", "3600", "1e-3"}) EXPECT_EQ(CheckSeconds(right, 3600), "");
  for (const char* const wrong : {"", "nan", "-nan", "inf", "-1", "3600.1", "1e400", "1s", "x"}) {
    EXPECT_EQ(CheckSeconds(wrong, 3600), "must be a number from 0 to 3600") << wrong;
  }
}

}  // namespace
}  // namespace quenlar
