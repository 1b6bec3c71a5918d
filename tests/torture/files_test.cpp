// Fails the n-th call into the file system, for every n, of an open, a whole run with its saves, and a merge.
#include "run/end_reasons.h"
#include "torture_world.h"

namespace quenlar {
namespace {

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
    EXPECT_EQ(world.engine.project.found.Count(), kAddresses * kPages + 0u);  // the run itself lost nothing
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
      return TellFaults("calls to the file system, of a whole run", static_cast<std::uint64_t>(n - 1));
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
  ASSERT_EQ(MissingIn(calm.File(kReport)), "");

  for (std::uint64_t free = 0;; ++free) {
    SCOPED_TRACE(free);
    World world;
    CopyFiles(calm.fakes.files, world.fakes.files);
    world.engine.projects.OpenProject("h.example");
    const std::string old_report = world.File(kReport), old_data = world.File(kData);
    world.engine.project.found.Add({"http://www.h.example", "last@h.example.org", "", false});
    world.engine.project.queues[2].AddIfNew("http://www.h.example/last");
    world.fakes.files.SetFreeSpace(free);
    const Status report = world.engine.projects.WriteReport(), data = world.engine.projects.WriteData();
    EXPECT_EQ(world.File(kReport) == old_report, !report.ok());
    EXPECT_EQ(world.File(kData) == old_data, !data.ok());
    for (const Status& saved : {report, data}) {
      EXPECT_TRUE(saved.ok() || saved.message().ends_with(" cannot be saved: no space left !")) << saved.message();
    }
    // Once there is space, both are saved.
    world.fakes.files.SetFreeSpace(std::nullopt);
    EXPECT_TRUE(world.engine.projects.WriteReport().ok() && world.engine.projects.WriteData().ok());
    EXPECT_EQ(MissingIn(world.File(kReport)), "");
    EXPECT_NE(world.File(kReport).find("last@h.example.org"), std::string::npos);
    EXPECT_NE(world.File(kData).find("http://www.h.example/last"), std::string::npos);
    if (HasFailure()) return;
    if (report.ok() && data.ok()) return TellFaults("bytes at which the disk is full", free);
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
