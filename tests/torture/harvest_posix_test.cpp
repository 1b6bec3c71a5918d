// Fails the n-th call to the files and the database, and the n-th byte of the disk, of a harvest that fills a
// collection.
#include <set>

#include "collect_world.h"
#include "torture_world.h"

namespace quenlar {
namespace {

struct Harvesting {
  CollectWorld world;
  std::set<std::string, std::less<>> printed;

  Harvesting() { PutArchives(world.fake.files); }
  // What is printed is in the collection by then, so nothing is printed twice.
  int Act() {
    const int status = world.Run({"harvest", "--name", "firma", "--jobs", "1", "/in"});
    for (const std::string_view row : Split(world.output(), "\n")) {
      EXPECT_TRUE(row.empty() || printed.emplace(row).second) << row << " is printed twice";
    }
    return status;
  }
  void Check() { EXPECT_EQ(world.Addresses(), kOfTheArchives); }
};

TEST(Torture, AHarvestSurvivesAFailureOfEveryCallToItsFilesAndItsDatabase) {
  FailEveryCall<Harvesting>("calls to files and database, of a harvest", FaultStep(2));
  HoldEveryLock<Harvesting>("locks that are held, in a harvest", FaultStep(3));
}

TEST(Torture, ADiskThatFillsUpUnderAHarvestLosesNothing) {
  FillDisk<Harvesting>("bytes at which the disk is full, of a harvest");
}

}  // namespace
}  // namespace quenlar
