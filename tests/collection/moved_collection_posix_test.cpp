// Files of a collection that go away while it is written. Windows does not allow it.
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
