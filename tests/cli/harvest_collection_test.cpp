// quenlar harvest into a collection, over a platform in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/exit_status.h"
#include "cli/paths.h"
#include "collection/database.h"
#include "command_system.h"
#include "in_memory_databases.h"

namespace quenlar {
namespace {

using testing::HasSubstr;

class HarvestCollectionTest : public testing::Test {
 protected:
  // Of one length whatever the letter.
  void PutPage(char letter) { system.fake.files.Put(page, std::string("<p>") + letter + "@x.de"); }
  int Harvest(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments = {"harvest", "--name", "all", "--jobs", "1", "/page.html"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return system.Run(std::move(arguments));
  }

  // What a harvest of a page that asks not to be indexed prints.
  std::string Found(std::vector<std::string> more) {
    if (!system.fake.files.Contents(page)) {
      system.fake.files.Put(page, "<meta name=robots content=noindex>anna@x.de bert@x.de <p>carl [at] x [dot] de");
    }
    EXPECT_EQ(Harvest(std::move(more)), kExitDone) << system.errors();
    return system.output();
  }
  static void Change(const char* sql) {
    const auto database = Database::Open(kCollection, Database::Mode::kWrite);
    ASSERT_TRUE(database.ok()) << database.status().message();
    ASSERT_TRUE(database.value()->Execute(sql).ok());
  }
  static std::int64_t Number(const char* sql) {
    const auto database = Database::Open(kCollection, Database::Mode::kRead);
    return database.ok() ? database.value()->Number(sql).value() : -1;
  }

  static constexpr const char* kCollection = "/user/quenlar/data/all.sqlite";
  const std::string page = AbsolutePath("/page.html");
  CommandSystem system;
  InMemoryDatabases databases{system.fake.files};
};

TEST_F(HarvestCollectionTest, AnInputThatChangesWithinASecondIsReadAgain) {
  PutPage('a');
  EXPECT_EQ(Harvest(), kExitDone);
  EXPECT_EQ(system.output(), "a@x.de\n");
  EXPECT_EQ(Harvest(), kExitDone);
  EXPECT_THAT(system.errors(), HasSubstr("This harvest is finished"));
  PutPage('b');
  system.fake.files.SetModifiedNanoseconds(page, 1);
  EXPECT_EQ(Harvest(), kExitDone);
  EXPECT_EQ(system.output(), "b@x.de\n");
  EXPECT_EQ(Harvest(), kExitDone);
  EXPECT_EQ(system.output(), "");
  EXPECT_THAT(system.errors(), HasSubstr("This harvest is finished"));
}

TEST_F(HarvestCollectionTest, AnInputThatWasNotedBySecondsIsReadOnceMore) {
  PutPage('a');
  EXPECT_EQ(Harvest(), kExitDone);
  Change("UPDATE facts SET value = replace(value, '.0 ', ' ') WHERE name LIKE 'harvest %'");
  EXPECT_EQ(Harvest({"--format", "csv"}), kExitDone);
  EXPECT_EQ(system.output(), "\"a@x.de\",\"/page.html\",\"\",\"text\"\n");
  EXPECT_EQ(Harvest({"--format", "csv"}), kExitDone);
  EXPECT_EQ(system.output(), "");
}

TEST_F(HarvestCollectionTest, ASecondProgramInTheFolderIsRefusedBeforeAnythingIsWritten) {
  PutPage('a');
  system.fake.files.AddFolder("/user/quenlar");
  const std::vector<std::string> before = system.fake.files.AllFiles();
  {
    const auto other = system.fake.files.Lock("/user/quenlar", "quenlar.lock");
    ASSERT_TRUE(other.ok());
    EXPECT_EQ(Harvest(), kExitFailed);
    EXPECT_EQ(system.errors(), "Another Quenlar is at work in /user/quenlar !\n");
    EXPECT_EQ(system.output(), "");
    EXPECT_EQ(system.fake.files.AllFiles(), before);
    // Without a collection nothing is written, and nobody is in the way.
    EXPECT_EQ(system.Run({"harvest", "/page.html"}), kExitDone);
    EXPECT_EQ(system.output(), "a@x.de\n");
  }
  EXPECT_EQ(Harvest(), kExitDone);
  EXPECT_EQ(system.output(), "a@x.de\n");
}

TEST_F(HarvestCollectionTest, AnInputIsReadAgainWhereOtherAddressesAreAskedFor) {
  const std::vector<std::string> one_word = {"--robots", "ignore", "--extract", "anna"};
  const std::vector<std::string> protected_too = {"--robots", "ignore", "--decode-protected"};
  EXPECT_EQ(Found({}), "");
  EXPECT_EQ(Found(one_word), "anna@x.de\n");
  EXPECT_EQ(Found(one_word), "");
  EXPECT_THAT(system.errors(), HasSubstr("This harvest is finished"));
  EXPECT_EQ(Found({"--robots", "ignore", "--remove", "anna"}), "bert@x.de\n");
  EXPECT_EQ(Found({"--robots", "ignore"}), "");
  EXPECT_EQ(system.errors(), "0 addresses on 1 of 1 page.\n");
  EXPECT_EQ(Found(protected_too), "carl@x.de\n");
  EXPECT_EQ(Found(protected_too), "");
  EXPECT_THAT(system.errors(), HasSubstr("This harvest is finished"));
}

TEST_F(HarvestCollectionTest, AnInputIsReadAgainWhereTheStoredFilterIsAnotherOne) {
  ASSERT_EQ(system.Run({"filter", "--remove", "bert"}), kExitDone);
  ASSERT_EQ(system.Run({"options", "RemoveFilter", "1"}), kExitDone);
  EXPECT_EQ(Found({"--robots", "ignore"}), "anna@x.de\n");
  ASSERT_EQ(system.Run({"options", "RemoveFilter", "0"}), kExitDone);
  EXPECT_EQ(Found({"--robots", "ignore"}), "bert@x.de\n");
}

TEST_F(HarvestCollectionTest, OfTheFiltersADigestIsStoredAlone) {
  Found({"--robots", "ignore", "--extract", "anna@x.de"});
  EXPECT_EQ(Number("SELECT count(*) FROM facts WHERE name LIKE 'harvest %'"), 1);
  EXPECT_EQ(Number("SELECT count(*) FROM facts WHERE name || value LIKE '%anna%'"), 0);
}

TEST_F(HarvestCollectionTest, ARunWhoseReaderGoesAwayIsNotCalledFinished) {
  system.streams.readers_patience = 0;
  Found({"--robots", "ignore", "--summary", "/s"});
  EXPECT_THAT(system.fake.files.Contents(AbsolutePath("/s")).value_or(""), HasSubstr(R"("reason":"failed")"));
  EXPECT_EQ(Number("SELECT count(*) FROM runs WHERE reason = 'failed' AND ended > 0"), 1);
  system.streams = FakeConsole();
  Found({"--robots", "ignore"});
  EXPECT_EQ(Number("SELECT count(*) FROM runs WHERE reason = 'finished' AND ended > 0"), 1);
}

}  // namespace
}  // namespace quenlar
