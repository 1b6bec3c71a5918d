// A collection in a folder of its own, which goes with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "collection/collection.h"
#include "page/url.h"
#include "platform/idna.h"

namespace quenlar {

// The system's own files (system_files_posix.cpp, system_files_win32.cpp).
std::unique_ptr<Files> SystemFiles();

// Tests spell hosts in ASCII.
class NoIdna final : public Idna {
 public:
  Result<std::string> ToAscii(std::string_view) const override { return Status(StatusKind::kFormat, "not ASCII"); }
};

class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("quenlar-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

inline Url UrlOf(const std::string& text) {
  static const NoIdna idna;
  const auto url = ParseUrl(text, nullptr, idna);
  if (!url) std::abort();
  return *url;
}

class CollectionTest : public testing::Test {
 protected:
  CollectionTest() { Reopen(); }

  // As the next run finds it. What was not committed is gone.
  void Reopen() {
    collection_.reset();
    auto opened = Collection::Open(*files_, path_);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    kept_aside_ = opened.value().kept_aside;
    collection_ = std::move(opened.value().collection);
  }

  OfferedPage Offer(const std::string& text, int depth = 0, int rank = 1, std::string_view refused = {}) {
    const Url url = UrlOf(text);
    PageOffer offer{url, "example.org"};
    offer.depth = depth;
    offer.rank = rank;
    offer.refused = refused;
    auto offered = collection_->Offer(offer);
    EXPECT_TRUE(offered.ok()) << offered.status().message();
    return offered.ok() ? offered.value() : OfferedPage{};
  }

  // Ends the pass at hand, and begins another one.
  void VisitAgain() {
    ASSERT_TRUE(collection_->EndPass().ok());
    ASSERT_TRUE(collection_->BeginPass(true, "").ok());
  }

  std::string NextUrl(HostId host) {
    const auto next = collection_->Next(host);
    EXPECT_TRUE(next.ok()) << next.status().message();
    return next.ok() && next.value() ? next.value()->url : "";
  }

  // How many of the addresses are new.
  std::size_t End(const OfferedPage& page, const PageEnd& end, const std::vector<SeenAddress>& addresses = {},
                  std::int64_t now = 1000) {
    const auto fresh = collection_->End(page.host, page.page, end, addresses, now);
    EXPECT_TRUE(fresh.ok()) << fresh.status().message();
    return fresh.ok() ? fresh.value().size() : 0;
  }

  // The first column of the rows that `sql` gives, in a second connection: what is committed.
  std::vector<std::string> Query(const char* sql) {
    EXPECT_TRUE(collection_->Commit().ok());
    auto database = Database::Open(path_, Database::Mode::kRead);
    EXPECT_TRUE(database.ok()) << database.status().message();
    auto statement = database.value()->Prepare(sql);
    EXPECT_TRUE(statement.ok()) << statement.status().message();
    std::vector<std::string> rows;
    while (statement.value().Step().value()) rows.emplace_back(statement.value().Text(0));
    return rows;
  }

  ScratchFolder folder_;
  std::unique_ptr<Files> files_ = SystemFiles();
  std::string path_ = folder_.File("www.example.org.sqlite");
  std::unique_ptr<Collection> collection_;
  std::string kept_aside_;
};

}  // namespace quenlar
