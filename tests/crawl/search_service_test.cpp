#include "crawl/search_service.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kService = "http://127.0.0.1:8888";

WebAnswer Answer(int status, std::string body) {
  WebAnswer answer;
  answer.head.status = status;
  answer.body = std::move(body);
  return answer;
}

TEST(SearchService, AsksForJsonInTheLanguageOfTheSearch) {
  EXPECT_EQ(SearchUrl(kService, "red cars & more", "de", 3),
            "http://127.0.0.1:8888/search?q=red%20cars%20%26%20more&format=json&language=de&pageno=3");
}

TEST(SearchService, TakesItsAddressWithAndWithoutSearch) {
  EXPECT_THAT(SearchUrl("https://s.example/sx/", "a", "en", 1), HasSubstr("https://s.example/sx/search?q=a&"));
  EXPECT_THAT(SearchUrl("https://s.example/search", "a", "en", 1), HasSubstr("https://s.example/search?q=a&"));
}

TEST(SearchService, GivesTheAddressesOfTheResultsInTheirOrder) {
  const SearchReply reply = ReadSearchAnswer(kService, Answer(200, R"({"query": "x", "results": [
      {"url": "https://b.example/", "title": "B"}, {"title": "no url"}, 7, {"url": "https://a.example/x"}]})"));
  EXPECT_THAT(reply.urls, ElementsAre("https://b.example/", "https://a.example/x"));
  EXPECT_THAT(reply.problem, IsEmpty());
}

TEST(SearchService, AnEmptyListIsTheEndOfTheResults) {
  const SearchReply reply = ReadSearchAnswer(kService, Answer(200, R"({"results": []})"));
  EXPECT_THAT(reply.urls, IsEmpty());
  EXPECT_THAT(reply.problem, IsEmpty());
}

TEST(SearchService, AnEngineThatFailsIsNamedWithItsReason) {
  const SearchReply reply = ReadSearchAnswer(
      kService,
      Answer(200, R"({"results": [], "unresponsive_engines": [["local", "HTTP error"], ["other", "timeout"]]})"));
  EXPECT_EQ(reply.problem, "local: HTTP error; other: timeout");
}

TEST(SearchService, AServiceThatRefusesJsonSaysWhatToDo) {
  EXPECT_THAT(ReadSearchAnswer(kService, Answer(403, "")).problem, HasSubstr("add json to search.formats"));
}

TEST(SearchService, OtherAnswersSayWhatIsWrong) {
  EXPECT_THAT(ReadSearchAnswer(kService, Answer(404, "")).problem, HasSubstr("status 404"));
  EXPECT_THAT(ReadSearchAnswer(kService, Answer(429, "")).problem, HasSubstr("too often"));
  for (const char* const garbage : {"", "<html>", "[]", "{}", R"({"results": 5})", "{\"results\": [", "\xff\xfe"}) {
    EXPECT_THAT(ReadSearchAnswer(kService, Answer(200, garbage)).problem, HasSubstr("no results that can be read"))
        << garbage;
  }
  WebAnswer lost;
  lost.failure = WebFailure::kNoConnection;
  lost.message = "the connection was refused";
  EXPECT_THAT(ReadSearchAnswer(kService, lost).problem, HasSubstr("does not answer: the connection was refused"));
}

TEST(SearchService, DeepNestingDoesNoHarm) {
  EXPECT_THAT(ReadSearchAnswer(kService, Answer(200, std::string(1'000'000, '['))).problem,
              HasSubstr("no results that can be read"));
}

}  // namespace
}  // namespace quenlar
