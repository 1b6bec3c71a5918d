// The commands beside extract and analyze, over a platform in memory.
#include <gtest/gtest.h>

#include "cli/exit_status.h"
#include "cli/paths.h"
#include "command_system.h"
#include "settings/settings_store.h"

namespace quenlar {
namespace {

constexpr const char* kHeader = "Brenvy Quenlar Pro, http://www.quenlar.example\r\n";

class CommandTest : public testing::Test {
 protected:
  // A project with files, as a run leaves it behind.
  void AddProject(const std::string& list_name, const std::string& file_name, const std::string& report) {
    system.fake.files.Put(
        "/user/quenlar/data/" + file_name + ".dat",
        std::string(kHeader) + "[A]\r\n[B]\r\n[C]\r\n[D]\r\n[E]\r\n[M]\r\n[F]\r\n[G]\r\n[H]\r\n[I]\r\n[J]\r\n");
    system.fake.files.Put("/user/quenlar/report/" + file_name + ".rpt", report);
    names.insert(names.begin(), list_name);
    for (std::size_t i = 0; i < names.size(); ++i) {
      system.fake.registry.SaveRegValue(kProjectKey, "Project" + std::to_string(i + 1), names[i]);
    }
    system.fake.registry.SaveRegValue(kProjectKey, "ProjectNum", std::to_string(names.size()));
  }
  void AddTwoProjects() {
    AddProject("shop.example", "shop_example", "a@shop.test\r\n");
    AddProject("roses_en", "roses_en", "b@roses.test\r\n");
  }
  std::string Projects() {
    system.Run({"projects"});
    return system.output();
  }

  std::vector<std::string> names;
  CommandSystem system;
};

TEST_F(CommandTest, ProjectsAreListedNewestFirstAndNothingIsWritten) {
  EXPECT_EQ(system.Run({"projects"}), kExitDone);
  EXPECT_EQ(system.output(), "");
  EXPECT_EQ(system.fake.registry.changes(), 0);
  AddTwoProjects();
  const int changes = system.fake.registry.changes();
  EXPECT_EQ(Projects(), "roses_en\nshop.example\n");
  EXPECT_EQ(system.fake.registry.changes(), changes);
}

TEST_F(CommandTest, DeleteAsksAndDeletesNothingUnlessTheAnswerIsYes) {
  AddTwoProjects();
  for (const char* answer : {"", "n\n", "no\n", "yess\n", "\n"}) {
    system.streams = FakeConsole();
    system.streams.input = answer;
    EXPECT_EQ(system.Run({"delete", "roses_en"}), kExitFailed) << answer;
    EXPECT_EQ(system.errors(), "roses_en: Are you sure to delete it ? [y/N] ");
  }
  EXPECT_EQ(Projects(), "roses_en\nshop.example\n");
  EXPECT_NE(system.FileText("report/roses_en.rpt"), "(no file)");
  for (const char* answer : {" YES \r\n"}) {
    system.streams = FakeConsole();
    system.streams.input = answer;
    EXPECT_EQ(system.Run({"delete", "roses_en"}), kExitDone);
  }
  EXPECT_EQ(Projects(), "shop.example\n");
  EXPECT_EQ(system.FileText("report/roses_en.rpt"), "(no file)");
  EXPECT_EQ(system.FileText("data/roses_en.dat"), "(no file)");
  EXPECT_NE(system.FileText("data/shop_example.dat"), "(no file)");
}

TEST_F(CommandTest, DeleteTakesAKeywordWithoutItsLanguage) {
  AddTwoProjects();
  EXPECT_EQ(system.Run({"delete", "roses", "--yes"}), kExitDone);
  EXPECT_EQ(Projects(), "shop.example\n");
  EXPECT_EQ(system.FileText("data/roses_en.dat"), "(no file)");
}

TEST_F(CommandTest, DeleteTakesAKeywordInTheLanguageOfTheSettingAlone) {
  AddTwoProjects();
  system.fake.registry.SaveRegValue(kProjectKey, "Search", "2");
  EXPECT_EQ(system.Run({"delete", "roses", "--yes"}), kExitFailed);
  EXPECT_EQ(system.errors(), "There is no project roses !\n");
  EXPECT_EQ(Projects(), "roses_en\nshop.example\n");
}

TEST_F(CommandTest, DeletingTheLastProjectEmptiesTheList) {
  AddProject("shop.example", "shop_example", "");
  EXPECT_EQ(system.Run({"delete", "shop.example", "-y"}), kExitDone);
  EXPECT_EQ(Projects(), "");
  EXPECT_EQ(system.fake.registry.Stored(kProjectKey, "ProjectNum"), "0");
}

TEST_F(CommandTest, DeletingAProjectWhoseTextIsNotInTheListRemovesTheOldestEntry) {
  AddTwoProjects();
  system.fake.files.Put("/user/quenlar/data/other_example.dat", kHeader);
  EXPECT_EQ(system.Run({"delete", "other.example", "-y"}), kExitDone);
  EXPECT_EQ(Projects(), "roses_en\n");
  EXPECT_EQ(system.FileText("data/other_example.dat"), "(no file)");
  EXPECT_NE(system.FileText("data/shop_example.dat"), "(no file)");
}

TEST_F(CommandTest, DeleteRefusesAProjectThatDoesNotExist) {
  AddTwoProjects();
  EXPECT_EQ(system.Run({"delete", "nobody.example", "--yes"}), kExitFailed);
  EXPECT_EQ(system.errors(), "There is no project nobody.example !\n");
  EXPECT_EQ(Projects(), "roses_en\nshop.example\n");
}

TEST_F(CommandTest, ReportIsRewrittenAndItsPathPrinted) {
  AddTwoProjects();
  system.fake.files.Put("/user/quenlar/report/shop_example.rpt", "a@shop.test\r\nb@shop.test\r\n");
  EXPECT_EQ(system.Run({"report", "shop.example"}), kExitDone);
  EXPECT_EQ(system.output(), "/user/quenlar/report/shop_example.rpt\n");
  EXPECT_EQ(system.FileText("report/shop_example.rpt"), std::string(kHeader) + "\r\na@shop.test\r\nb@shop.test\r\n");
}

TEST_F(CommandTest, ReportOfAProjectWithoutAddressesIsNoReport) {
  EXPECT_EQ(system.Run({"report", "nobody.example"}), kExitFailed);
  EXPECT_EQ(system.errors(), "No eMail address found\n");
  EXPECT_EQ(system.FileText("report/nobody_example.rpt"), "(no file)");
}

TEST_F(CommandTest, AReportThatCannotBeReadIsNotTakenForAnEmptyOne) {
  AddTwoProjects();
  ASSERT_TRUE(system.fake.files.Delete("/user/quenlar/report/roses_en.rpt").ok());
  system.fake.files.AddFolder("/user/quenlar/report/roses_en.rpt");
  EXPECT_EQ(system.Run({"report", "roses_en"}), kExitFailed);
  EXPECT_NE(system.errors().find("/user/quenlar/report/roses_en.rpt"), std::string::npos) << system.errors();
}

TEST_F(CommandTest, OptionsAreListedWithTheirDefaultsBeforeAnythingIsStored) {
  EXPECT_EQ(system.Run({"options"}), kExitDone);
  for (const char* line : {"Search        0      ", "StopNumber    99999  ", "Correlation   1      "}) {
    EXPECT_NE(system.output().find(line), std::string::npos) << system.output();
  }
  EXPECT_EQ(system.fake.registry.changes(), 0);
}

TEST_F(CommandTest, AnOptionIsSetAndShown) {
  EXPECT_EQ(system.Run({"options", "stopnumber", "250"}), kExitDone);
  EXPECT_EQ(system.output(), "");
  EXPECT_EQ(system.Run({"options", "StopNumber"}), kExitDone);
  EXPECT_EQ(system.output(), "250\n");
  EXPECT_EQ(system.fake.registry.Stored(kProjectKey, "StopNumber"), "250");
  EXPECT_EQ(system.fake.registry.Stored(kProjectKey, "Correlation"), "1");  // the first start's defaults
}

TEST_F(CommandTest, AnOptionThatDoesNotExistOrFitIsWrongUsage) {
  const std::vector<std::string> kWrong[] = {{"options", "Nope"},
                                             {"options", "ProjectNum"},
                                             {"options", "Search", "6"},
                                             {"options", "Search", "-1"},
                                             {"options", "Search", "1x"},
                                             {"options", "Search", ""},
                                             {"options", "StopNumber", "0"},
                                             {"options", "Save", "999999999999"}};
  for (const auto& arguments : kWrong) EXPECT_EQ(system.Run(arguments), kExitUsage) << arguments.back();
  EXPECT_EQ(system.fake.registry.changes(), 0);
}

TEST_F(CommandTest, AnOptionThatCannotBeStoredIsAFailure) {
  system.fake.registry.SetReadOnly(true);
  EXPECT_EQ(system.Run({"options", "Search", "1"}), kExitFailed);
  EXPECT_EQ(system.errors(), "Search could not be stored !\n");
}

TEST_F(CommandTest, SettingsThatCannotBeReadAreAFailureAndNothingIsDeletedOrRewritten) {
  AddTwoProjects();
  system.fake.registry.FailFlush(1, {StatusKind::kDenied, "/user/quenlar/quenlar.conf: Permission denied"});
  const std::vector<std::string> kCommands[] = {
      {"options"}, {"options", "Search"}, {"projects"}, {"delete", "roses_en", "--yes"}, {"report", "roses_en"}};
  for (const auto& arguments : kCommands) {
    EXPECT_EQ(system.Run(arguments), kExitFailed) << arguments[0];
    EXPECT_EQ(system.output(), "");
    EXPECT_EQ(system.errors(), "/user/quenlar/quenlar.conf: Permission denied !\n") << arguments[0];
  }
  EXPECT_EQ(system.Run({"options", "Search", "1"}), kExitFailed);
  EXPECT_EQ(system.errors(), "Search could not be stored: /user/quenlar/quenlar.conf: Permission denied !\n");
  EXPECT_EQ(system.FileText("report/roses_en.rpt"), "b@roses.test\r\n");
  EXPECT_NE(system.FileText("data/roses_en.dat"), "(no file)");
}

TEST_F(CommandTest, DeleteSaysThatTheListCannotBeStored) {
  AddTwoProjects();
  system.fake.registry.FailFlush(2, {StatusKind::kFull, "quenlar.conf: No space left"});
  EXPECT_EQ(system.Run({"delete", "roses_en", "--yes"}), kExitFailed);
  EXPECT_EQ(system.errors(), "quenlar.conf: No space left !\n");
}

TEST_F(CommandTest, FilterWordsAreReplacedListByListAndShown) {
  EXPECT_EQ(system.Run({"filter"}), kExitDone);
  EXPECT_EQ(system.output(), "");
  EXPECT_EQ(system.Run({"filter", "--remove", "cat", "[ab]", " cat ", "--extract", "dog*x"}), kExitDone);
  EXPECT_EQ(system.Run({"filter"}), kExitDone);
  EXPECT_EQ(system.output(), "remove\tcat\nremove\t[ab]\nextract\tdog*x\n");
  EXPECT_EQ(system.Run({"filter", "--remove=-x", "--remove", "y"}), kExitDone);
  EXPECT_EQ(system.Run({"filter"}), kExitDone);
  EXPECT_EQ(system.output(), "remove\t-x\nremove\ty\nextract\tdog*x\n");
  EXPECT_EQ(system.Run({"filter", "--remove"}), kExitDone);
  EXPECT_EQ(system.Run({"filter"}), kExitDone);
  EXPECT_EQ(system.output(), "extract\tdog*x\n");
  EXPECT_EQ(system.Run({"filter", "--extract", ""}), kExitDone);
  EXPECT_EQ(system.Run({"filter"}), kExitDone);
  EXPECT_EQ(system.output(), "");
}

TEST_F(CommandTest, AFilterWordThatIsNoExpressionIsStoredAndTold) {
  EXPECT_EQ(system.Run({"filter", "--remove", "("}), kExitDone);
  EXPECT_NE(system.errors(), "");
}

TEST_F(CommandTest, MoreFilterWordsThanAreCountedAreAnOverflowAndTheFileStays) {
  std::string words;
  for (int i = 0; i <= 32768; ++i) words += "<r>w" + std::to_string(i) + "</r>\r\n";
  system.fake.files.Put("/user/quenlar/data/ExtractFilter.dat", words);
  EXPECT_EQ(system.Run({"filter", "--extract", "a"}), kExitFailed);
  EXPECT_EQ(system.errors(), "Overflow !\n");
  EXPECT_EQ(system.FileText("data/ExtractFilter.dat"), words);
}

TEST_F(CommandTest, AFilterWordThatTheFileCannotHoldIsWrongUsage) {
  EXPECT_EQ(system.Run({"filter", "--remove", "a\nb"}), kExitUsage);
  EXPECT_EQ(system.Run({"filter", "--extract", "a</E>b"}), kExitUsage);
  EXPECT_EQ(system.Run({"filter", "--extract", "\xC3\xBC\xE6\xBC\xA2"}), kExitUsage);
  EXPECT_TRUE(system.errors().ends_with(" !\n")) << system.errors();
  EXPECT_TRUE(system.fake.files.AllFiles().empty());
}

TEST_F(CommandTest, FilterWordsThatCannotBeReadAreAFailure) {
  system.fake.files.AddFolder("/user/quenlar/data/ExtractFilter.dat");
  EXPECT_EQ(system.Run({"filter"}), kExitFailed);
  EXPECT_NE(system.errors().find("cannot be read"), std::string::npos) << system.errors();
}

TEST_F(CommandTest, AFilterWordMayHoldWhatTheCodePageHolds) {
  EXPECT_EQ(system.Run({"filter", "--extract", "\xC3\xBC\xE2\x82\xAC"}), kExitDone);
  EXPECT_EQ(system.Run({"filter"}), kExitDone);
  EXPECT_EQ(system.output(), "extract\t\xC3\xBC\xE2\x82\xAC\n");
}

class MergeTest : public CommandTest {
 protected:
  MergeTest() {
    system.fake.files.AddFolder(AbsolutePath("."));
    Put("one.txt", "a@x.test A@X.test\r\nb@x.test\r\n");
    Put("two.txt", "B@x.test c@x.test");
  }
  void Put(const std::string& name, const std::string& text) { system.fake.files.Put(AbsolutePath(name), text); }
  std::string Text(const std::string& name) {
    return system.fake.files.Contents(AbsolutePath(name)).value_or("(no file)");
  }
};

TEST_F(MergeTest, MergesInTheOrderOfFirstOccurrence) {
  EXPECT_EQ(system.Run({"merge", "one.txt", "two.txt", "--output", "all.txt"}), kExitDone);
  EXPECT_EQ(Text("all.txt"), "a@x.test \r\nb@x.test \r\nc@x.test \r\n");
  EXPECT_EQ(system.errors(), "");
}

TEST_F(MergeTest, RefusesAnExistingFileUnlessForced) {
  Put("all.txt", "keep");
  EXPECT_EQ(system.Run({"merge", "one.txt", "-o", "all.txt"}), kExitFailed);
  EXPECT_EQ(system.errors(), "all.txt file existed , --force overwrites it !\n");
  EXPECT_EQ(Text("all.txt"), "keep");
  EXPECT_EQ(system.Run({"merge", "two.txt", "-o", "all.txt", "--force"}), kExitDone);
  EXPECT_EQ(Text("all.txt"), "B@x.test \r\nc@x.test \r\n");
}

TEST_F(MergeTest, MayReplaceOneOfItsBooksWhenForced) {
  EXPECT_EQ(system.Run({"merge", "one.txt", "two.txt", "-f", "-o", "one.txt"}), kExitDone);
  EXPECT_EQ(Text("one.txt"), "a@x.test \r\nb@x.test \r\nc@x.test \r\n");
}

TEST_F(MergeTest, PassesOverABookThatCannotBeReadAndMergesTheOthers) {
  EXPECT_EQ(system.Run({"merge", "one.txt", "missing.txt", "two.txt", "-o", "all.txt"}), kExitFailed);
  EXPECT_NE(system.errors().find("missing.txt"), std::string::npos);
  EXPECT_EQ(Text("all.txt"), "a@x.test \r\nb@x.test \r\nc@x.test \r\n");
}

TEST_F(MergeTest, SaysThatABookIsPassedOverWhoseNameDiffersInCaseAlone) {
  Put("One.txt", "d@x.test");
  EXPECT_EQ(system.Run({"merge", "one.txt", "One.txt", "one.txt", "-o", "all.txt"}), kExitFailed);
  EXPECT_EQ(system.errors(), "One.txt is passed over, its name differs from another book's in case alone !\n");
  EXPECT_EQ(Text("all.txt"), "a@x.test \r\nb@x.test \r\n");
}

TEST_F(MergeTest, TakesABookThatIsNamedTwiceOnceWithoutAWord) {
  EXPECT_EQ(system.Run({"merge", "one.txt", "./one.txt", "-o", "all.txt"}), kExitDone);
  EXPECT_EQ(system.errors(), "");
  EXPECT_EQ(Text("all.txt"), "a@x.test \r\nb@x.test \r\n");
}

TEST_F(MergeTest, WritesNothingWhenNoAddressIsFound) {
  Put("none.txt", "nothing here");
  EXPECT_EQ(system.Run({"merge", "none.txt", "-o", "all.txt"}), kExitFailed);
  EXPECT_EQ(system.errors(), "No valid Email address are available !\n");
  EXPECT_EQ(Text("all.txt"), "(no file)");
}

TEST_F(MergeTest, SaysWhyTheOutputCannotBeWritten) {
  system.fake.files.AddFolder(AbsolutePath("folder"));
  EXPECT_EQ(system.Run({"merge", "one.txt", "-o", "folder", "--force"}), kExitFailed);
  EXPECT_EQ(system.Run({"merge", "one.txt", "-o", "nowhere/all.txt"}), kExitFailed);
  EXPECT_TRUE(system.errors().ends_with(" !\n"));
}

TEST_F(CommandTest, NetShowsTheTableAndTheTotals) {
  InterfaceRow row;
  row.description = "Ethernet";
  row.index = 2;
  row.in_octets = 1000;
  row.out_octets = 50;
  system.fake.interfaces.rows = {row, row};
  EXPECT_EQ(system.Run({"net"}), kExitDone);
  EXPECT_NE(system.output().find("Ethernet\n"), std::string::npos);
  EXPECT_NE(system.output().find("Total         2000         100  on line\n"), std::string::npos) << system.output();
}

TEST_F(CommandTest, NetWatchPrintsTheRateEveryHalfSecondUntilItIsStopped) {
  InterfaceRow row;
  row.in_octets = 5000;
  system.fake.interfaces.rows = {row};
  system.fake.loop.OnPump([&] {
    system.fake.interfaces.rows[0].in_octets =
        static_cast<std::uint32_t>(5000 + 51200 * (system.fake.loop.now() / std::chrono::milliseconds(500)));
    if (system.output().size() > 20) system.stop();
  });
  EXPECT_EQ(system.Run({"net", "--watch"}), kExitStopped);
  EXPECT_EQ(system.output().substr(0, 7), "0 Kbps\n");
  EXPECT_NE(system.output().find("50 Kbps\n"), std::string::npos) << system.output();
}

TEST_F(CommandTest, NetWatchEndsWhenNobodyReads) {
  system.streams.readers_patience = 2;
  EXPECT_EQ(system.Run({"net", "--watch"}), kExitDone);
}

TEST_F(CommandTest, CommandsThatWriteRefuseAFolderInWhichAnotherProgramWorks) {
  system.fake.files.AddFolder("/user/quenlar");
  const auto other = system.fake.files.Lock("/user/quenlar", "quenlar.lock");
  ASSERT_TRUE(other.ok());
  const std::vector<std::string> kCommands[] = {
      {"delete", "a.example", "-y"}, {"report", "a.example"}, {"options", "Search", "1"}, {"filter", "--remove", "a"}};
  for (const auto& arguments : kCommands) {
    EXPECT_EQ(system.Run(arguments), kExitFailed) << arguments[0];
    EXPECT_EQ(system.errors(), "Another Quenlar is at work in /user/quenlar !\n");
  }
  EXPECT_EQ(system.fake.registry.changes(), 0);
  for (const auto& arguments : {std::vector<std::string>{"projects"}, {"options"}, {"filter"}, {"net"}}) {
    EXPECT_EQ(system.Run(arguments), kExitDone) << arguments[0];
  }
}

}  // namespace
}  // namespace quenlar
