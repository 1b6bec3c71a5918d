// Fails the n-th call to the files and the database, and the n-th byte of the disk, of an erasure.
#include <cstring>

#include "collect_world.h"
#include "collection/erase_addresses.h"
#include "collection/untidy_collection.h"

namespace quenlar {
namespace {

struct Erasing {
  CollectWorld world;
  std::string expected;

  Erasing() {
    EXPECT_EQ(world.Collect(), 0);
    expected = world.Addresses();
    expected.erase(expected.find("p1@firma.de\n"), std::strlen("p1@firma.de\n"));
    EXPECT_TRUE(world.Stores("p1@firma.de"));
  }
  int Act() { return world.Run({"erase", "p1@firma.de", "--yes"}); }
  void Check() {
    EXPECT_EQ(world.Addresses(), expected);
    EXPECT_FALSE(world.Stores("p1@firma.de"));
  }
};

TEST(Torture, AnErasureSurvivesAFailureOfEveryCallToItsFilesAndItsDatabase) {
  FailEveryCall<Erasing>("calls to files and database, of an erasure", FaultStep(3));
  HoldEveryLock<Erasing>("locks that are held, in an erasure", FaultStep(1));
}

TEST(Torture, ADiskThatFillsUpUnderAnErasureLosesNothing) {
  FillDisk<Erasing>("bytes at which the disk is full, of an erasure");
}

// A collection in memory with a thousand addresses to erase, and what is left of them.
class UntidyWorld {
 public:
  InMemoryFiles files;
  InMemoryDatabases databases{files};

  UntidyWorld() {
    static const Filled filled;
    files.Put(kPath, filled.bytes);
    names_ = &filled.names;
  }
  Status Erase() {
    return EraseAddresses(kPath, [&](std::string_view address) { return !names_->contains(address); }).status();
  }
  // One of those addresses that still stands in a file; empty without one.
  [[nodiscard]] std::string Left() const {
    for (const std::string& path : files.AllFiles()) {
      const std::string bytes = *files.Contents(path);
      const std::string_view text = bytes;
      for (std::size_t at = text.find(kHost); at != text.npos; at = text.find(kHost, at + 1)) {
        for (std::size_t letters = 13; letters < 48 && letters <= at; ++letters) {
          const std::string_view name = text.substr(at - letters, letters + kHost.size());
          if (names_->contains(name)) return std::string(name);
        }
      }
    }
    return "";
  }

 private:
  static constexpr const char* kPath = "/c.sqlite";
  static constexpr std::string_view kHost = "@firma.de";
  struct Filled {
    std::string bytes;
    std::set<std::string, std::less<>> names;

    Filled() {
      InMemoryFiles files;
      const InMemoryDatabases databases(files);
      auto opened = Collection::Open(files, kPath);
      EXPECT_TRUE(opened.ok());
      names = FillUntidily(*opened.value().collection);
      opened.value().collection.reset();
      bytes = files.Contents(kPath).value_or("");
    }
  };
  const std::set<std::string, std::less<>>* names_;
};

// Where it fails behind its commit nothing is left to delete, and yet pieces of what was deleted lie in the files.
TEST(Torture, AnErasureThatIsCutShortIsFinishedByTheNextOne) {
  UntidyWorld calm;
  calm.files.FailCall(0);
  ASSERT_TRUE(calm.Erase().ok());
  const int calls = calm.files.calls(), step = static_cast<int>(FaultStep(static_cast<std::uint64_t>(calls), 31));
  EXPECT_EQ(calm.Left(), "");
  int faults = 0;
  for (int n = calls / 2 % step; n <= calls; n += step, ++faults) {
    SCOPED_TRACE("call " + std::to_string(n));
    UntidyWorld world;
    world.files.FailCall(n);
    const Status status = world.Erase();
    world.files.FailCall(0);
    EXPECT_TRUE(status.ok() || status.message().starts_with("/c.sqlite: ")) << status.message();
    EXPECT_TRUE(!status.ok() || world.Left().empty());
    EXPECT_TRUE(world.Erase().ok());
    EXPECT_EQ(world.Left(), "");
  }
  TellFaults("calls to the database, of an erasure from a large collection", static_cast<std::uint64_t>(faults));
}

}  // namespace
}  // namespace quenlar
