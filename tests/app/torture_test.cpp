// Fails the n-th call into the file system, for every n, of an open, a whole run with its saves, and a merge.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/engine.h"
#include "project/data_file.h"
#include "support/fake_platform.h"

namespace quenlar {
namespace {

constexpr int kPages = 12;

std::string StartPage() {
  std::string page = "<title>Start</title>";
  for (int i = 0; i < kPages; ++i) page += "<a href=\"/p" + std::to_string(i) + ".html\">x</a>";
  return page;
}

std::string Page(int i) {
  std::string page = "<title>Page</title>";
  for (int k = 0; k < 7; ++k) page += "<p>u" + std::to_string(i) + "n" + std::to_string(k) + "@h.example.org</p>";
  return page;
}

// The front end of a run that nobody looks at, but for its messages.
class QuietFrontEnd : public RunView, public RunHost, public ProjectView {
 public:
  void ShowStage(const std::string& text) override { stages.push_back(text); }
  void ShowAddressCount(std::uint32_t) override {}
  void ShowScanCount(std::int64_t) override {}
  void AddRow(std::uint32_t, bool) override {}
  void ClearRows() override {}
  bool StopButtonShown() const override { return true; }
  void ShowEnd(const std::string& reason) override { ends.push_back(reason); }
  void SaveDataAtEnd() override { Note(engine->projects.WriteData()); }
  void SaveReportAtEnd() override { Note(engine->projects.WriteReport()); }
  void RestoreIdle(bool) override {}
  void ShowEndTime() override {}
  void EnableExit() override {}
  void EnableDelete(bool) override {}
  void EnableExport(bool) override {}
  void EnableExtract() override {}
  bool Ready() const override { return true; }
  void SetInputText(const std::string& text) override { engine->projects.OpenProject(text); }

  Engine* engine = nullptr;
  std::vector<std::string> stages, ends, failures;

 private:
  void Note(const Status& status) {
    if (!status.ok()) failures.push_back(status.message());
  }
};

struct World {
  FakePlatform fakes;
  QuietFrontEnd front;
  Engine engine{fakes.platform, MakeSite(), {front, front, front}};

  World() {
    front.engine = &engine;
    fakes.files.AddFolder("/home");
    fakes.fetcher.Serve("http://www.h.example", StartPage());
    for (int i = 0; i < kPages; ++i)
      fakes.fetcher.Serve("http://www.h.example/p" + std::to_string(i) + ".html", Page(i));
  }
  static Site MakeSite() {
    Site site;
    site.program_folder = "/home";
    return site;
  }
  [[nodiscard]] std::string File(const char* path) const { return fakes.files.Contents(path).value_or("(none)"); }
};

constexpr const char* kData = "/home/data/h_example.dat";
constexpr const char* kReport = "/home/report/h_example.rpt";

// A data file is whole when it has its header, and all sections in order.
bool IsWholeDataFile(const std::string& text) {
  if (!text.starts_with(HeaderLine() + "\r\n") || !text.ends_with("\r\n")) return false;
  std::size_t from = 0;
  for (const char letter : std::string("ABCDEMFGHIJ")) {
    const std::size_t at = text.find(std::string("\r\n[") + letter + "]\r\n", from == 0 ? 0 : from - 2);
    if (at == text.npos) return false;
    from = at + 5;
  }
  return true;
}

TEST(Torture, AWholeRunSurvivesAFailureOfEveryCallToTheFileSystem) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE("call " + std::to_string(n) + " fails");
    World world;
    ASSERT_TRUE(world.engine.Start().folders.ok());
    world.fakes.files.Put(kReport, "old report\r\n");
    world.fakes.files.FailCall(n, StatusKind::kFull);
    world.engine.projects.OpenProject("h.example");
    world.engine.driver.Run();

    EXPECT_EQ(world.front.ends, std::vector<std::string>{kEndAllParsed});
    EXPECT_EQ(world.engine.project.found.Count(), 7u * kPages);  // the run itself lost nothing
    const std::string data = world.File(kData), report = world.File(kReport);
    EXPECT_TRUE(data == "(none)" || IsWholeDataFile(data)) << data;
    EXPECT_TRUE(report == "old report\r\n" || report.ends_with("@h.example.org\r\n")) << report;
    for (const std::string& file : world.fakes.files.AllFiles()) {
      // A report that could not be read is kept aside before the first save replaces it.
      const bool kept_aside = file == std::string(kReport) + ".bak" && n == 1;
      EXPECT_TRUE(file == kData || file == kReport || kept_aside) << "left behind: " << file;
    }
    if (n > world.fakes.files.calls()) {
      EXPECT_TRUE(world.front.failures.empty());
      EXPECT_GT(n, 10);
      return;
    }
    // A failed save at the end is told; one during the run is put right by the next save.
    EXPECT_TRUE(report != "old report\r\n" || !world.front.failures.empty());
  }
}

TEST(Torture, AFullDiskAtAnyByteLeavesTheFilesOfTheLastGoodSave) {
  World calm;
  ASSERT_TRUE(calm.engine.Start().folders.ok());
  calm.engine.projects.OpenProject("h.example");
  calm.engine.driver.Run();
  const std::string whole = calm.File(kReport);
  ASSERT_NE(whole, "(none)");

  for (std::size_t free = 0; free < whole.size() + 16; free += 37) {
    SCOPED_TRACE(free);
    World world;
    ASSERT_TRUE(world.engine.Start().folders.ok());
    world.engine.projects.OpenProject("h.example");
    world.fakes.files.Put(kReport, "old report\r\n");
    world.engine.project.found.Add({"http://www.h.example", "first@h.example.org", "", false});
    world.fakes.files.SetFreeSpace(free);
    const Status saved = world.engine.projects.WriteReport();
    EXPECT_EQ(world.File(kReport) == "old report\r\n", !saved.ok());
    EXPECT_TRUE(saved.ok() || saved.message().ends_with(" !")) << saved.message();
  }
}

TEST(Torture, StartUpSurvivesAFailureOfEveryCallAndSaysSo) {
  for (int n = 1; n <= 3; ++n) {
    World world;
    world.fakes.files.FailCall(n, StatusKind::kDenied);
    const Engine::StartNotes notes = world.engine.Start();
    EXPECT_EQ(notes.folders.ok(), n > 2);
    EXPECT_EQ(notes.folders.message().empty(), n > 2);
  }
}

TEST(Torture, AMergeSkipsTheBookThatFailsAndMergesTheOthers) {
  for (int n = 1; n <= 3; ++n) {
    SCOPED_TRACE(n);
    World world;
    for (const char* name : {"/home/a.txt", "/home/b.txt", "/home/c.txt"}) {
      world.fakes.files.Put(name, std::string("person@") + name[6] + ".example.org\r\n");
      ASSERT_TRUE(world.engine.books.AddBook(name).ok());
    }
    world.fakes.files.FailCall(n, StatusKind::kDenied);
    const auto messages = world.engine.books.Extract(world.fakes.files, world.fakes.code_page, world.fakes.loop);
    EXPECT_EQ(messages.size(), 1u);
    EXPECT_EQ(world.engine.books.Addresses.Count(), 2u);
  }
}

}  // namespace
}  // namespace quenlar
