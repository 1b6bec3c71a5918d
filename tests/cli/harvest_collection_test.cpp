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
  {
    const auto database = Database::Open("/user/quenlar/data/all.sqlite", Database::Mode::kWrite);
    ASSERT_TRUE(database.ok()) << database.status().message();
    ASSERT_TRUE(database.value()
                    ->Execute("UPDATE facts SET value = replace(value, '.0 ', ' ') WHERE name LIKE 'harvest %'")
                    .ok());
  }
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

}  // namespace
}  // namespace quenlar
