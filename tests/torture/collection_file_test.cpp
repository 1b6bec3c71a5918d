// What every command says and leaves behind where the file of a collection is not as it should be: write-protected,
// locked by another program, cut short, of a newer program, or empty.
#include "collect_world.h"

namespace quenlar {
namespace {

const std::string kFile = "/user/quenlar/data/firma.sqlite";
const std::string kAside = kFile + ".bak";

const std::vector<std::vector<std::string>> kReadingCommands = {
    {"addresses", "firma"},
    {"addresses", "firma", "--sources", "--format", "jsonl"},
    {"addresses", "firma", "--format", "html"},
    {"why", "firma", "p1@firma.de"},
    {"collections"},
};
const std::vector<std::vector<std::string>> kWritingCommands = {
    {"collect", "https://www.firma.de/", "--name", "firma", "--contact", "me@x.de", "--again"},
    {"harvest", "--name", "firma", "--jobs", "1", "/in"},
    {"erase", "p1@firma.de", "--yes"},
    {"suppress", "p1@firma.de"},
};

// A collection of the small web. Its file and a message are what a test looks at.
class CollectionFile : public testing::Test {
 protected:
  CollectionFile() {
    static const std::string collected = [] {
      CollectWorld world;
      EXPECT_EQ(world.Collect(), 0) << world.errors();
      return world.fake.files.Contents(kFile).value_or("");
    }();
    PutArchives(world_.fake.files);
    Put(collected);
  }

  void Put(std::string bytes) {
    world_.fake.files.Put(kFile, std::move(bytes));
    whole_ = *world_.fake.files.Contents(kFile);
  }
  // Whether the command fails with status 1 and a sentence that has `message` in it, and the file stays as it was.
  void ExpectRefusal(const std::vector<std::string>& command, const std::string& message) {
    SCOPED_TRACE(testing::PrintToString(command));
    EXPECT_EQ(world_.Run(command), 1);
    EXPECT_NE(world_.errors().find(message), std::string::npos) << world_.errors();
    world_.ExpectOrderlyEnd(1);
    EXPECT_TRUE(world_.fake.files.Contents(kFile) == whole_);
    EXPECT_FALSE(world_.fake.files.FileExists(kAside));
  }

  CollectWorld world_;
  std::string whole_;
};

TEST_F(CollectionFile, ThatIsWriteProtectedIsReadAndNotWritten) {
  for (const char* const path : {"/user/quenlar/data/firma.sqlite", "/user/quenlar/data"}) {
    SCOPED_TRACE(path);
    world_.fake.files.Protect(path);
    for (const auto& command : kReadingCommands) {
      SCOPED_TRACE(testing::PrintToString(command));
      EXPECT_EQ(world_.Run(command), 0) << world_.errors();
      EXPECT_FALSE(world_.output().empty());
    }
    for (const auto& command : kWritingCommands) {
      ExpectRefusal(command, "firma.sqlite: the file or its folder is write-protected !");
    }
    world_.fake.files.Unprotect(path);
  }
}

TEST_F(CollectionFile, ThatIsWriteProtectedAfterAKillIsNotReadByHalf) {
  world_.fake.files.Put(kFile + "-wal", "what the last run wrote last");
  world_.fake.files.Protect("/user/quenlar/data");
  for (const auto& command : kReadingCommands) ExpectRefusal(command, "copy it, together with the file");
}

TEST_F(CollectionFile, ThatAnotherProgramHasLockedIsLeftAlone) {
  world_.databases.HoldLocks(1);
  for (const auto& command : kReadingCommands) ExpectRefusal(command, "firma.sqlite: database is locked !");
  ExpectRefusal(kWritingCommands[0], "firma.sqlite: database is locked !");
  ExpectRefusal(kWritingCommands[1], "firma.sqlite: database is locked !");
  ExpectRefusal(kWritingCommands[2], "The collection firma is in use");
  ExpectRefusal(kWritingCommands[3], "The collection firma is in use");
}

TEST_F(CollectionFile, OfANewerProgramIsLeftAlone) {
  constexpr std::size_t kUserVersion = 60;  // where the header has it, in four bytes
  std::string newer = whole_;
  newer[kUserVersion + 3] = 2;
  Put(newer);
  for (const auto* const commands : {&kReadingCommands, &kWritingCommands}) {
    for (const auto& command : *commands) {
      ExpectRefusal(command, "a newer version of Quenlar has made this collection !");
    }
  }
}

// Readers and erasures say so and change nothing; what collects keeps it aside and begins anew.
TEST_F(CollectionFile, ThatIsCutAnywhereIsKeptAsideByTheNextRun) {
  std::vector<std::size_t> sizes = {1, 15, 16, 99, 100, 101, 4095, 4096, 4097, whole_.size() - 1, whole_.size() - 4096};
  const std::uint64_t step = FaultStep(9973, 211);
  for (std::size_t size = 500; size < whole_.size(); size += step) sizes.push_back(size);
  const std::string whole = whole_, addresses = world_.Addresses();
  EXPECT_NE(addresses, "");
  for (const std::size_t size : sizes) {
    SCOPED_TRACE(size);
    Put(whole.substr(0, size));
    for (const auto& command : kReadingCommands) ExpectRefusal(command, "firma.sqlite: ");
    ExpectRefusal({"erase", "p1@firma.de", "--yes"}, "firma.sqlite: ");
    EXPECT_EQ(world_.Collect(), 0) << world_.errors();
    EXPECT_NE(world_.errors().find("It lies in " + kAside + " now"), std::string::npos) << world_.errors();
    EXPECT_TRUE(world_.fake.files.Contents(kAside) == whole.substr(0, size));
    EXPECT_EQ(world_.Addresses(), addresses);
    ASSERT_TRUE(world_.fake.files.Delete(kAside).ok());
    if (testing::Test::HasFailure()) return;
  }
  TellFaults("bytes at which the file of a collection is cut", sizes.size());
}

// A run that is killed in its first moments leaves one.
TEST_F(CollectionFile, ThatIsEmptyIsACollectionWithoutAnything) {
  const std::string addresses = world_.Addresses();
  for (const char* const name : {"firma", "other"}) {
    world_.fake.files.Put("/user/quenlar/data/" + std::string(name) + ".sqlite", "");
  }
  for (const auto& command : {kReadingCommands[0], kReadingCommands[3]}) {
    EXPECT_EQ(world_.Run(command), 1);
    EXPECT_EQ(world_.errors(), kFile + ": nothing has been collected yet !\n");
  }
  EXPECT_EQ(world_.Run({"erase", "p1@firma.de", "--yes"}), 0) << world_.errors();
  EXPECT_EQ(world_.Run({"suppress", "p1@firma.de"}), 0) << world_.errors();
  EXPECT_EQ(world_.Run({"suppress", "--remove", "p1@firma.de"}), 0) << world_.errors();
  EXPECT_EQ(world_.Collect(), 0) << world_.errors();
  EXPECT_EQ(world_.Addresses(), addresses);
  EXPECT_EQ(world_.Run({"collections"}), 0) << world_.errors();
  EXPECT_TRUE(world_.output().starts_with("firma\t")) << world_.output();
  EXPECT_EQ(std::count(world_.output().begin(), world_.output().end(), '\n'), 1) << world_.output();
}

}  // namespace
}  // namespace quenlar
