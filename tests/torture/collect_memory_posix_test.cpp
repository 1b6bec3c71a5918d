// Fails the n-th allocation of a collection, an erasure and a harvest, SQLite's own ones included.
#include "collect_world.h"
#include "fail_every_allocation_posix.h"

namespace quenlar {
namespace {

// The faults that a sample has at least; under the sanitizers its steps are longer.
std::uint64_t LeastOfASample() { return 20 / FaultStep(1); }

// A command over the small web.
struct StoredCommand {
  CollectWorld world;
  std::vector<std::string> arguments;
  int status = 1;

  explicit StoredCommand(std::vector<std::string> command) : arguments(std::move(command)) {
    world.streams.errors.reserve(1 << 16);
    world.streams.output.reserve(1 << 16);
  }
  void Act() { status = RunCommandLine(world, arguments); }
  void CheckThisOne(const Outcome& outcome) {
    EXPECT_FALSE(outcome.thrown) << "the command ends in order";
    world.ExpectOrderlyEnd(status);
    EXPECT_TRUE(status == 0 || world.errors().find("memory") != std::string::npos) << world.errors();
    EXPECT_TRUE(outcome.reached || status == 0) << world.errors();
  }
  // The next start finds the files of this one.
  void CheckNext(StoredCommand& next, const std::string& expected) {
    CopyFiles(world.fake.files, next.world.fake.files);
    next.Act();
    EXPECT_EQ(next.status, 0) << next.world.errors();
    EXPECT_EQ(next.world.Addresses(), expected);
    next.world.ExpectOrderlyEnd(0);
  }
};

const std::string& WhatIsThere() {
  static const std::string addresses = [] {
    CollectWorld calm;
    EXPECT_EQ(calm.Collect(), 0) << calm.errors();
    return calm.Addresses();
  }();
  return addresses;
}

const std::vector<std::string> kCollect = {"collect", "https://www.firma.de/", "--name", "firma", "--contact",
                                           "me@x.de"};

struct CollectCommand : StoredCommand {
  CollectCommand() : StoredCommand(kCollect) {}
  void Check(const Outcome& outcome) {
    CheckThisOne(outcome);
    CollectCommand next;
    CheckNext(next, WhatIsThere());
  }
};

TEST(Torture, ACollectionThatMemoryDoesNotHoldLosesNothing) {
  ShareMemoryWithSqlite();
  FailEveryAllocation<CollectCommand>("allocations of a collection", FaultStep(229), AllocationsOfParsing(kCollect) + 1,
                                      LeastOfASample());
}

const std::vector<std::string> kErase = {"erase", "p1@firma.de", "--yes"};

struct EraseCommand : StoredCommand {
  EraseCommand() : StoredCommand(kErase) {
    static InMemoryFiles collected;
    if (collected.AllFiles().empty()) {
      CollectWorld calm;
      EXPECT_EQ(calm.Collect(), 0);
      CopyFiles(calm.fake.files, collected);
    }
    CopyFiles(collected, world.fake.files);
  }
  void Check(const Outcome& outcome) {
    CheckThisOne(outcome);
    std::string expected = WhatIsThere();
    expected.erase(expected.find("p1@firma.de\n"), 12);
    EraseCommand next;
    CheckNext(next, expected);
    EXPECT_FALSE(next.world.Stores("p1@firma.de"));
  }
};

TEST(Torture, AnErasureThatMemoryDoesNotHoldIsFinishedByTheNextOne) {
  ShareMemoryWithSqlite();
  FailEveryAllocation<EraseCommand>("allocations of an erasure", FaultStep(331), AllocationsOfParsing(kErase) + 1,
                                    LeastOfASample());
}

const std::vector<std::string> kHarvest = {"harvest", "--name", "firma", "--jobs", "1", "/in"};

struct HarvestCommand : StoredCommand {
  HarvestCommand() : StoredCommand(kHarvest) { PutArchives(world.fake.files); }
  void Check(const Outcome& outcome) {
    CheckThisOne(outcome);
    HarvestCommand next;
    CheckNext(next, kOfTheArchives);
  }
};

TEST(Torture, AHarvestThatMemoryDoesNotHoldLosesNothing) {
  ShareMemoryWithSqlite();
  FailEveryAllocation<HarvestCommand>("allocations of a harvest", FaultStep(97), AllocationsOfParsing(kHarvest) + 1,
                                      LeastOfASample());
}

}  // namespace
}  // namespace quenlar
