// Files of a collection that go away while it is written. Windows does not allow it.
#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

using testing::HasSubstr;

class MovedCollection : public CollectionTest {
 protected:
  void ExpectGone(const Status& status) {
    EXPECT_FALSE(status.ok());
    EXPECT_EQ(status.message(), path_ + ": the file was deleted, moved or replaced during the run");
  }
};

TEST_F(MovedCollection, ADeletedFileIsNoticedAtTheNextCommit) {
  Offer("https://www.example.org/a");
  ASSERT_TRUE(collection_->Commit().ok());
  std::filesystem::remove(path_);
  Offer("https://www.example.org/b");
  ExpectGone(collection_->Commit());
}

// A run commits all the time, and looks for its file about once a second.
TEST_F(MovedCollection, ADeletedFileIsNoticedWhileARunGoesOn) {
  ASSERT_TRUE(collection_->SetFact("n", "0").ok());
  ASSERT_TRUE(collection_->CommitSoon().ok());
  std::filesystem::remove(path_);
  Status status;
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (status.ok() && std::chrono::steady_clock::now() < end) {
    status = collection_->SetFact("n", "1");
    if (status.ok()) status = collection_->CommitSoon();
  }
  ExpectGone(status);
}

TEST_F(MovedCollection, AMovedFileHasAllThatWasCommitted) {
  Offer("https://www.example.org/a");
  ASSERT_TRUE(collection_->Commit().ok());
  const std::string moved = folder_.File("moved.sqlite");
  std::filesystem::rename(path_, moved);
  Offer("https://www.example.org/b");
  ExpectGone(collection_->Commit());
  collection_.reset();
  auto database = Database::Open(moved, Database::Mode::kRead);
  ASSERT_TRUE(database.ok());
  EXPECT_EQ(database.value()->Number("SELECT count(*) FROM pages").value(), 2);
}

TEST_F(MovedCollection, OfALogThatGoesAwayEverythingCommittedIsKept) {
  for (const bool moved : {false, true}) {
    SCOPED_TRACE(moved ? "moved" : "deleted");
    Reopen();
    Offer("https://www.example.org/a");
    ASSERT_TRUE(collection_->Commit().ok());
    Offer(moved ? "https://www.example.org/c" : "https://www.example.org/b");
    if (moved) {
      std::filesystem::rename(path_ + "-wal", folder_.File("log"));
    } else {
      std::filesystem::remove(path_ + "-wal");
    }
    const Status status = collection_->Commit();
    EXPECT_EQ(status.message(), path_ + ": the file beside it that ends in -wal was deleted or moved during the run");
    Reopen();
    EXPECT_EQ(kept_aside_, "");
    EXPECT_EQ(Query("SELECT count(*) FROM pages"), std::vector<std::string>{moved ? "3" : "2"});
  }
}

TEST_F(MovedCollection, AReplacedFileIsNotTakenForTheCollection) {
  Offer("https://www.example.org/a");
  ASSERT_TRUE(collection_->Commit().ok());
  const std::string copy = folder_.File("copy.sqlite");
  std::filesystem::copy_file(path_, copy);
  std::filesystem::rename(copy, path_);
  ExpectGone(collection_->Commit());
}

}  // namespace
}  // namespace quenlar
