// Fails the n-th call to the files and the database, the n-th byte of the disk, and the n-th download, of a collection
// and of an erasure. What is looked at in the ordinary tests is a sample; QUENLAR_EVERY_FAULT takes every n.
#include "collect_world.h"
#include "torture_world.h"

namespace quenlar {
namespace {

std::string AddressesOfACalmRun() {
  CollectWorld calm;
  EXPECT_EQ(calm.Collect(), 0) << calm.errors();
  std::string addresses = calm.Addresses();
  EXPECT_EQ(std::count(addresses.begin(), addresses.end(), '\n'), 2 * kWebPages + 3) << addresses;
  return addresses;
}

struct Collecting {
  CollectWorld world;
  int Act() { return world.Collect(); }
  void Check() {
    static const std::string expected = AddressesOfACalmRun();
    EXPECT_EQ(world.Addresses(), expected);
  }
};

TEST(Torture, ACollectionSurvivesAFailureOfEveryCallToItsFilesAndItsDatabase) {
  FailEveryCall<Collecting>("calls to files and database, of a collection", FaultStep(3));
  HoldEveryLock<Collecting>("locks that are held, in a collection", FaultStep(3));
}

TEST(Torture, ADiskThatFillsUpUnderACollectionLosesNothing) {
  FillDisk<Collecting>("bytes at which the disk is full, of a collection");
}

void FailEveryDownload(WebFailure failure, bool cut, const char* what) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE(std::string(what) + ", download " + std::to_string(n));
    Collecting test;
    test.world.client.FailAnswer(n, failure, cut);
    const int status = test.Act();
    const bool reached = test.world.client.reached();
    test.world.ExpectOrderlyEnd(status);
    EXPECT_TRUE(reached || status == 0);
    test.world.client.FailAnswer(0);
    // A page that failed is asked for again by another visit, one whose host gave no answer by the next run.
    EXPECT_EQ(test.world.Collect(), 0) << test.world.errors();
    EXPECT_EQ(test.world.Collect({"--again"}), 0) << test.world.errors();
    test.Check();
    if (testing::Test::HasFailure()) return;
    if (reached) continue;
    EXPECT_GT(n, kWebPages);
    return TellFaults(what, static_cast<std::uint64_t>(n - 1));
  }
}

TEST(Torture, ACollectionSurvivesAFailureOfEveryDownload) {
  FailEveryDownload(WebFailure::kBroken, true, "downloads that break off, of a collection");
  FailEveryDownload(WebFailure::kTimeout, false, "downloads that time out, of a collection");
  FailEveryDownload(WebFailure::kNoConnection, false, "connections that fail, of a collection");
  FailEveryDownload(WebFailure::kNoMemory, false, "downloads that memory does not hold, of a collection");
}

}  // namespace
}  // namespace quenlar
