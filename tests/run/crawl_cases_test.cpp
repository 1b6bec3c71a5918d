#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "base/ascii.h"
#include "run/crawl_case.h"
#include "run/crawl_world.h"

namespace quenlar {
namespace {

using Lines = std::vector<std::string>;

std::filesystem::path CasesFolder() {
  const char* const tests = std::getenv("QUENLAR_TEST_DATA");
  return std::filesystem::path(tests != nullptr ? tests : "tests") / "run" / "cases";
}

std::string Joined(const Lines& lines, const char* line_end) {
  std::string text;
  for (const std::string& line : lines) text += line + line_end;
  return text;
}

std::string WithoutPrefix(const std::string& text, const std::string& prefix) { return text.substr(prefix.size()); }

// The lines of a file, each with a "$" behind it.
Lines FileLines(const InMemoryFiles& files, const std::string& path) {
  const auto contents = files.Contents(path);
  Lines lines;
  if (!contents) return lines;
  for (const std::string_view line : Split(*contents, "\r\n")) lines.push_back(std::string(line) + "$");
  lines.pop_back();  // behind the last line end
  return lines;
}

class CaseRunner {
 public:
  void Take(const CrawlStep& step) {
    const std::string& command = step.command;
    if (command.starts_with("about")) return;
    if (command == "settings") return Settings(step.lines);
    if (command == "filter") return Filter(step.lines);
    if (command.starts_with("file ")) return PutFile(step);
    if (command.starts_with("page ")) return Page(step);
    if (command.starts_with("fail ")) return world_.fakes.fetcher.Serve(WithoutPrefix(command, "fail "), Failure());
    if (command.starts_with("open ")) return world_.Open(WithoutPrefix(command, "open "));
    if (command.starts_with("at ")) return Prepare(command);
    if (command == "run") return Run();
    if (command == "upgrade check") return CheckUpgrade();
    if (command.starts_with("expect ")) return Expect(step);
    FAIL() << "unknown command: " << command;
  }

 private:
  void Settings(const Lines& lines) {
    for (const std::string& line : lines) {
      std::istringstream words(line);
      std::string name;
      int value = 0;
      words >> name >> value;
      quenlar::Settings& settings = world_.engine.settings;
      const std::map<std::string, std::int16_t*> kShort = {{"SearchLanguage", &settings.SearchLanguage},
                                                           {"SaveInterval", &settings.SaveInterval},
                                                           {"CorrelationMode", &settings.CorrelationMode},
                                                           {"ExportMode", &settings.ExportMode}};
      if (name == "StopNumber") {
        settings.StopNumber = value;
      } else {
        ASSERT_TRUE(kShort.count(name)) << name;
        *kShort.at(name) = static_cast<std::int16_t>(value);
      }
    }
  }

  void Filter(const Lines& lines) {
    FilterWords& filter = world_.engine.filter;
    for (const std::string& line : lines) {
      const bool remove = line.starts_with("remove ");
      (remove ? filter.RemoveFilterWords : filter.ExtractFilterWords).push_back(line.substr(remove ? 7 : 8));
      (remove ? world_.engine.settings.RemoveFilterOn : world_.engine.settings.ExtractFilterOn) = 1;
    }
    EXPECT_TRUE(filter.BuildFilterPatterns().empty());
  }

  void PutFile(const CrawlStep& step) {
    world_.fakes.files.Put(WithoutPrefix(step.command, "file "), Joined(step.lines, "\r\n"));
  }

  void Page(const CrawlStep& step) {
    std::istringstream words(WithoutPrefix(step.command, "page "));
    std::string url, word;
    words >> url;
    ScriptedAnswer answer{.body = Joined(step.lines, "\n")};
    while (words >> word) {
      if (word == "after") {
        int seconds = 0;
        words >> seconds;
        answer.delay = std::chrono::seconds(seconds);
      } else {
        ASSERT_EQ(word, "by");
        while (words >> word) answer.redirects.push_back(word);
      }
    }
    world_.fakes.fetcher.Serve(url, answer);
  }

  void Prepare(const std::string& command) {
    std::istringstream words(command);
    std::string at, first;
    int seconds = 0;
    words >> at >> seconds >> first;
    const std::string rest = first + (words >> at ? " " + at : "");
    ASSERT_TRUE(rest == "stop" || rest == "off line" || rest == "on line") << rest;
    prepared_.emplace_back(std::chrono::seconds(seconds), [this, rest] {
      if (rest == "stop") {
        world_.Stop();
      } else {
        world_.fakes.interfaces.alive = rest == "on line";
      }
    });
  }

  void Run() {
    for (const auto& [delay, what] : prepared_) world_.fakes.loop.Schedule(delay, what);
    prepared_.clear();
    world_.calls.clear();
    world_.Run();
  }

  void CheckUpgrade() {
    world_.engine.settings.NeverUpgradeFlag = 0;
    world_.engine.OnNewerVersion([this] { world_.calls.emplace_back("newer version"); });
    world_.engine.watchdog.Tick();
    world_.fakes.loop.Yield();
  }

  void Expect(const CrawlStep& step) {
    const std::string what = WithoutPrefix(step.command, "expect ");
    Lines actual;
    if (what == "requests") {
      actual = world_.Requests();
    } else if (what == "addresses") {
      actual = world_.Addresses();
    } else if (what == "panel1") {
      actual = std::exchange(world_.view.stages, {});  // since the last look
    } else if (what == "panel2") {
      actual = {world_.view.address_count};
    } else if (what == "panel3") {
      actual = {world_.view.scan_count};
    } else if (what == "queues") {
      actual = world_.Queues();
    } else if (what == "messages") {
      actual = world_.fakes.boxes.texts();
    } else if (what == "calls") {
      actual = world_.calls;
    } else if (what.starts_with("file ")) {
      actual = FileLines(world_.fakes.files, WithoutPrefix(what, "file "));
    } else {
      FAIL() << "unknown expectation: " << what;
    }
    Lines expected = step.lines;
    if (!what.starts_with("file ")) {
      for (std::string& line : expected) {
        if (line.ends_with(" $")) line.pop_back();
      }
    }
    EXPECT_EQ(Joined(actual, "\n"), Joined(expected, "\n")) << "line " << step.line << ": " << step.command;
  }

  CrawlWorld world_;
  std::vector<std::pair<std::chrono::seconds, std::function<void()>>> prepared_;
};

class CrawlCase : public testing::TestWithParam<std::string> {};

TEST_P(CrawlCase, ComesOutAsItsFileSays) {
  std::ifstream file(CasesFolder() / (GetParam() + ".txt"), std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  const std::vector<CrawlStep> steps = ReadCrawlCase(text.str());
  ASSERT_TRUE(
      std::any_of(steps.begin(), steps.end(), [](const CrawlStep& s) { return s.command.starts_with("expect"); }));
  CaseRunner runner;
  for (const CrawlStep& step : steps) {
    SCOPED_TRACE("line " + std::to_string(step.line));
    runner.Take(step);
    if (HasFatalFailure()) return;
  }
}

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  std::error_code no_folder;  // the first test below says so
  for (const auto& entry : std::filesystem::directory_iterator(CasesFolder(), no_folder)) {
    if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(CrawlCases, AreFound) { EXPECT_GE(CaseNames().size(), 10u) << CasesFolder(); }

INSTANTIATE_TEST_SUITE_P(Cases, CrawlCase, testing::ValuesIn(CaseNames()),
                         [](const auto& named) { return named.param; });

}  // namespace
}  // namespace quenlar
