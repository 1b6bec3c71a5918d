// The log that a killed run leaves beside a collection: cut at any byte, or with a byte that has changed.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "collection/collection_reader.h"
#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

constexpr int kCommits = 12;

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class TornLog : public CollectionTest {
 protected:
  // A page with an address of its own, twelve times, each committed; then the files as a kill would leave them.
  TornLog() {
    for (int i = 0; i < kCommits; ++i) {
      const std::string number = std::to_string(i), address = "a" + number + "@firma.de";
      End(Offer("https://www.firma.de/" + number), {}, {{address, address, AddressPlace::kText}});
      EXPECT_TRUE(collection_->CommitSoon().ok());
    }
    database_ = BytesOf(path_);
    log_ = BytesOf(path_ + "-wal");
    collection_.reset();
  }
  static void Write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
  }

  // How many pages there are with such a log; each has its address, and they are the first ones.
  std::int64_t PagesWith(const std::string& log) {
    collection_.reset();
    std::filesystem::remove(path_ + "-shm");
    Write(path_, database_);
    Write(path_ + "-wal", log);
    Reopen();
    EXPECT_EQ(kept_aside_, "");
    const auto reader = CollectionReader::Open(path_);
    EXPECT_TRUE(reader.ok()) << reader.status().message();
    if (!reader.ok()) return -1;
    const Result<CollectionFigures> figures = reader.value()->Figures();
    EXPECT_TRUE(figures.ok()) << figures.status().message();
    if (!figures.ok()) return -1;
    std::int64_t listed = 0;
    const Status status = reader.value()->Addresses({}, [&](const Sighting& row) {
      EXPECT_EQ(row.address, "a" + std::to_string(listed++) + "@firma.de");
      return true;
    });
    EXPECT_TRUE(status.ok()) << status.message();
    EXPECT_EQ(listed, figures.value().addresses);
    EXPECT_EQ(listed, figures.value().pages);
    return listed;
  }

  // The ordinary tests take a sample.
  [[nodiscard]] static std::size_t Step() { return std::getenv("QUENLAR_EVERY_FAULT") != nullptr ? 31 : 4999; }

  std::string database_, log_;
};

TEST_F(TornLog, ThatIsCutAnywhereLosesWhatWasCommittedLastAndNothingElse) {
  std::int64_t last = 0;
  for (std::size_t size = 0; size < log_.size(); size += Step()) {
    SCOPED_TRACE(size);
    const std::int64_t pages = PagesWith(log_.substr(0, size));
    EXPECT_GE(pages, last);
    last = pages;
    if (HasFailure()) return;
  }
  EXPECT_GT(last, 0);
  EXPECT_EQ(PagesWith(log_), kCommits);
}

TEST_F(TornLog, InWhichAByteHasChangedHoldsUpToThatCommit) {
  std::int64_t last = 0;
  for (std::size_t at = 0; at < log_.size(); at += Step()) {
    SCOPED_TRACE(at);
    std::string log = log_;
    log[at] = static_cast<char>(~log[at]);
    const std::int64_t pages = PagesWith(log);
    EXPECT_LT(pages, kCommits);
    EXPECT_GE(pages, last);
    last = pages;
    if (HasFailure()) return;
  }
  EXPECT_GT(last, 0);
}

TEST_F(TornLog, OfAnotherDatabaseIsPassedOver) {
  std::string log = log_;
  log[16] = static_cast<char>(~log[16]);  // the salt
  EXPECT_EQ(PagesWith(log), 0);
  EXPECT_EQ(PagesWith(std::string(log_.size(), 'x')), 0);
}

}  // namespace
}  // namespace quenlar
