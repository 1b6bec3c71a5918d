// quenlar analyze: each file of requests in tests/cli/analyze is answered, line by line, as its file of replies says.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "cli/exit_status.h"
#include "cli/json_text.h"
#include "command_system.h"

namespace quenlar {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

std::string FileText(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

Strings LinesOf(const std::string& text) {
  Strings lines;
  for (const std::string_view line : Split(text, "\n")) lines.emplace_back(line);
  if (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

fs::path Folder() {
  const char* const tests = std::getenv("QUENLAR_TEST_DATA");
  return fs::path(tests == nullptr ? "." : tests) / "cli" / "analyze";
}

// Answers requests on a new computer.
std::string Answers(CommandSystem& system, const std::string& requests) {
  system.streams = FakeConsole();
  system.streams.input = requests;
  EXPECT_EQ(system.Run({"analyze", "--jsonl"}), kExitDone);
  return system.output();
}

class AnalyzeGolden : public testing::TestWithParam<std::string> {};

TEST_P(AnalyzeGolden, IsAnsweredAsTheFileSays) {
  const Strings requests = LinesOf(FileText(Folder() / (GetParam() + ".requests.jsonl")));
  const Strings replies = LinesOf(FileText(Folder() / (GetParam() + ".replies.jsonl")));
  ASSERT_FALSE(requests.empty());
  CommandSystem system;
  std::string input;
  for (const std::string& line : requests) input += line + "\n";
  const Strings answers = LinesOf(Answers(system, input));
  ASSERT_EQ(answers.size(), requests.size());
  ASSERT_EQ(replies.size(), requests.size());
  for (std::size_t i = 0; i < answers.size(); ++i) {
    EXPECT_EQ(answers[i], replies[i]) << "line " << i + 1 << ": " << requests[i];
  }
}

Strings GoldenNames() {
  constexpr std::string_view kEnd = ".requests.jsonl";
  Strings names;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(Folder(), error)) {
    const std::string name = entry.path().filename().string();
    if (name.ends_with(kEnd)) names.push_back(name.substr(0, name.size() - kEnd.size()));
  }
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(Files, AnalyzeGolden, testing::ValuesIn(GoldenNames()),
                         [](const auto& name) { return name.param; });

TEST(Analyze, FindsItsFilesOfRequests) { EXPECT_GE(GoldenNames().size(), 10u) << Folder(); }

TEST(Analyze, WritesNothingBeforeAProjectIsOpened) {
  CommandSystem system;
  std::string page;
  for (int i = 0; i < 200; ++i) page += "<p>n" + std::to_string(i) + "@a.test</p>";
  Answers(system, JsonLine({{"settings", {{"SaveInterval", 0}}}}) +
                      JsonLine({{"name", "M1http://a.example"}, {"text", page}}) + JsonLine({{"save", true}}));
  EXPECT_TRUE(system.fake.files.AllFiles().empty());
  EXPECT_FALSE(system.fake.files.FolderExists("/user"));
  EXPECT_EQ(system.fake.registry.changes(), 0);
  EXPECT_EQ(Json::parse(LinesOf(system.output()).back())["error"], "no project is open");
}

TEST(Analyze, SavesAtTheSaveIntervalOnceAProjectIsOpen) {
  CommandSystem system;
  std::string page;
  for (int i = 0; i < 30; ++i) page += "<p>n" + std::to_string(i) + "@a.test</p>";
  Answers(system, JsonLine({{"open", "a.example"}}) + JsonLine({{"name", "M1http://a.example"}, {"text", page}}));
  EXPECT_NE(system.FileText("report/a_example.rpt").find("n29@a.test"), std::string::npos);
  EXPECT_NE(system.FileText("data/a_example.dat").find("[M]"), std::string::npos);
}

TEST(Analyze, DependsOnNoSettingListOrFilterOfTheComputer) {
  const std::string requests = FileText(Folder() / "a_site_page_gives_addresses_and_links.requests.jsonl");
  CommandSystem plain, other;
  other.fake.registry.SaveRegValue(kProjectKey, "StopNumber", "1");
  other.fake.registry.SaveRegValue(kProjectKey, "ExtractFilter", "1");
  other.fake.files.Put("/user/quenlar/data/ExtractFilter.dat", "\r\n\r\n<e>nothing</e>\r\n");
  other.fake.clock.time_text = "23:59:59";
  other.fake.interfaces.alive = false;
  EXPECT_EQ(Answers(plain, requests), Answers(other, requests));
}

TEST(Analyze, AnswersEachPageAloneAfterAReset) {
  const Strings pages = LinesOf(FileText(Folder() / "a_site_page_gives_addresses_and_links.requests.jsonl"));
  std::string forwards, backwards;
  for (const std::string& page : pages) {
    forwards += "{\"reset\":true}\n" + page + "\n";
    backwards = "{\"reset\":true}\n" + page + "\n" + backwards;
  }
  CommandSystem system;
  const Strings there = LinesOf(Answers(system, forwards));
  const Strings back = LinesOf(Answers(system, backwards));
  ASSERT_EQ(there.size(), 2 * pages.size());
  for (std::size_t i = 0; i < pages.size(); ++i) {
    EXPECT_EQ(there[2 * i + 1], back[2 * (pages.size() - 1 - i) + 1]) << pages[i];
  }
}

TEST(Analyze, RefusesToOpenAProjectInAFolderInWhichAnotherProgramWorks) {
  CommandSystem system;
  system.fake.files.AddFolder("/user/quenlar");
  const auto other = system.fake.files.Lock("/user/quenlar", "quenlar.lock");
  ASSERT_TRUE(other.ok());
  EXPECT_EQ(Answers(system, "{\"open\":\"a.example\"}\n{\"save\":true}\n"),
            "{\"error\":\"Another Quenlar is at work in /user/quenlar\"}\n{\"error\":\"no project is open\"}\n");
}

TEST(Analyze, NeedsAProgramFolderFromTheFirstOpenedProjectOn) {
  CommandSystem system;
  system.default_home = "";
  EXPECT_EQ(Answers(system, "{\"host\":\"http://a.example/b\"}\n{\"open\":\"a.example\"}\n"),
            "{\"host\":\"http://a.example\"}\n"
            "{\"error\":\"There is no program folder; name one by --home\"}\n");
  EXPECT_TRUE(system.fake.files.AllFiles().empty());
}

TEST(Analyze, GivesTheFolderBackAtAReset) {
  CommandSystem system;
  Answers(system, "{\"open\":\"a.example\"}\n{\"reset\":true}\n{\"open\":\"b.example\"}\n");
  EXPECT_EQ(system.output().find("error"), std::string::npos);
  EXPECT_TRUE(system.fake.files.Lock("/user/quenlar", "quenlar.lock").ok());
}

TEST(Analyze, TellsWhyAProjectCannotBeSaved) {
  CommandSystem system;
  system.fake.files.AddFolder("/user/quenlar/data");
  system.fake.files.Protect("/user/quenlar/data");
  const Strings answers = LinesOf(Answers(system, "{\"open\":\"a.example\"}\n{\"save\":true}\n"));
  EXPECT_TRUE(Json::parse(answers[1]).contains("error")) << answers[1];
}

TEST(Analyze, SavesNothingWhereTheProjectHasNoFiles) {
  CommandSystem system;
  const Strings answers =
      LinesOf(Answers(system, "{\"settings\":{\"SearchLanguage\":9}}\n{\"open\":\"roses\"}\n{\"save\":true}\n"));
  EXPECT_EQ(Json::parse(answers[1])["DataFile"], "");
  EXPECT_EQ(answers[2], "{\"error\":\"no project is open\"}");
}

TEST(Analyze, EndsQuietlyWhenNobodyReadsTheAnswers) {
  CommandSystem system;
  system.streams.input = "{\"host\":\"a\"}\n{\"host\":\"b\"}\n{\"host\":\"c\"}\n";
  system.streams.readers_patience = 1;
  EXPECT_EQ(system.Run({"analyze", "--jsonl"}), kExitDone);
  EXPECT_EQ(LinesOf(system.output()).size(), 1u);
  EXPECT_EQ(system.errors(), "");
}

TEST(Analyze, AnswersALineThatIsTooLongWithAnErrorAndGoesOn) {
  CommandSystem system;
  system.streams.endless = ' ';
  system.streams.read_limit = (std::size_t{128} << 20) + 10;
  system.streams.input = "{\"host\":\"a\"}\n";
  EXPECT_EQ(system.Run({"analyze", "--jsonl"}), kExitDone);
  EXPECT_EQ(system.output(), "{\"host\":\"http://a\"}\n{\"error\":\"a line holds at most 134217728 bytes\"}\n");
}

}  // namespace
}  // namespace quenlar
