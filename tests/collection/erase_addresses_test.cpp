#include "collection/erase_addresses.h"

#include <fstream>
#include <iterator>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/ascii.h"
#include "collection/untidy_collection.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool KeepsAllButAnna(std::string_view address) { return !EqualsIgnoreCase(address, "anna@firma.de"); }

class EraseAddressesTest : public CollectionTest {
 protected:
  // A page with a title that shows these addresses.
  void Read(const std::string& url, const std::string& title, const std::vector<std::string>& addresses) {
    PageEnd end;
    end.title = title;
    std::vector<SeenAddress> seen;
    for (const std::string& address : addresses) seen.push_back({address, address, AddressPlace::kText});
    End(Offer(url), end, seen);
  }
  void Close() {
    ASSERT_TRUE(collection_->Commit().ok());
    collection_.reset();
  }
  // Of every file of the folder.
  [[nodiscard]] std::string AllBytes() const {
    std::string bytes;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path_).parent_path())) {
      std::ifstream file(entry.path(), std::ios::binary);
      bytes.append(std::istreambuf_iterator<char>(file), {});
    }
    return bytes;
  }
  [[nodiscard]] bool IsInTheFiles(const std::string& lower) const { return ContainsIgnoreCase(AllBytes(), lower); }
};

TEST_F(EraseAddressesTest, NothingThatARunRemembersNamesTheAddress) {
  ASSERT_TRUE(collection_->BeginPass(false, "obey remove anna@firma.de").ok());
  const OfferedPage page = Offer("https://www.firma.de/");
  const std::string reason = "its robots.txt leads to https://www.firma.de/anna@firma.de: status 500";
  ASSERT_TRUE(collection_->SaveHostState(page.host, kHostGivenUp, reason).ok());
  Close();
  const auto erased = EraseAddresses(path_, KeepsAllButAnna);
  ASSERT_TRUE(erased.ok()) << erased.status().message();
  EXPECT_EQ(erased.value().texts, 1u);
  EXPECT_FALSE(IsInTheFiles("anna@firma.de"));
}

TEST_F(EraseAddressesTest, TakesAnAddressOutAndLeavesTheOthers) {
  Read("https://www.firma.de/", "A page", {"Anna@firma.de", "bert@firma.de"});
  Read("https://www.firma.de/b", "B page", {"anna@firma.de"});
  Close();
  const auto erased = EraseAddresses(path_, KeepsAllButAnna);
  ASSERT_TRUE(erased.ok()) << erased.status().message();
  EXPECT_THAT(erased.value().addresses, ElementsAre("anna@firma.de"));
  EXPECT_EQ(erased.value().texts, 0u);
  EXPECT_FALSE(IsInTheFiles("anna@firma.de"));
  Reopen();
  EXPECT_EQ(collection_->addresses(), 1);
  EXPECT_THAT(Query("SELECT address FROM addresses"), ElementsAre("bert@firma.de"));
  EXPECT_THAT(Query("SELECT written FROM sightings"), ElementsAre("bert@firma.de"));
  EXPECT_THAT(Query("SELECT url FROM pages"), ElementsAre("https://www.firma.de/", "https://www.firma.de/b"));
}

TEST_F(EraseAddressesTest, NoByteOfThemStaysInAnyFileOfALargeCollection) {
  const std::set<std::string, std::less<>> names = FillUntidily(*collection_);
  Close();
  const auto erased = EraseAddresses(path_, [&](std::string_view address) { return !names.contains(address); });
  ASSERT_TRUE(erased.ok()) << erased.status().message();
  EXPECT_EQ(erased.value().addresses.size(), names.size());
  const std::string bytes = AllBytes();
  // Whole addresses: what stands before one is the name of a place, or a count in the record's head.
  for (const std::string& name : names) EXPECT_EQ(bytes.find(name), std::string::npos) << name;
}

TEST_F(EraseAddressesTest, ClearsTheTextsThatNameIt) {
  Read("https://www.firma.de/", "Anna: anna@firma.de", {"bert@firma.de"});
  Read("https://www.firma.de/?by=anna%40firma.de", "Joanna: joanna@firma.de", {"carl@firma.de"});
  const HostId host = Offer("https://www.firma.de/?to=anna@firma.de", 1).host;
  Offer("https://www.firma.de/?to=joanna@firma.de", 1);
  ASSERT_TRUE(collection_->SaveRobots(host, 1000, 200, "User-agent: *\n# anna@firma.de\n").ok());
  ASSERT_TRUE(collection_->AddStart("https://www.firma.de/?by=anna@firma.de", "site", 0).ok());
  Close();
  const auto erased = EraseAddresses(path_, KeepsAllButAnna);
  ASSERT_TRUE(erased.ok()) << erased.status().message();
  EXPECT_THAT(erased.value().addresses, IsEmpty());
  EXPECT_EQ(erased.value().texts, 5u);
  EXPECT_FALSE(IsInTheFiles("anna%40firma.de"));
  Reopen();
  EXPECT_THAT(
      Query("SELECT url || ' ' || state || ' ' || coalesce(title, 'none') FROM pages"),
      ElementsAre("https://www.firma.de/ read none", "https://www.firma.de/(erased) read Joanna: joanna@firma.de",
                  "https://www.firma.de/(erased) refused none",
                  "https://www.firma.de/?to=joanna@firma.de waiting none"));
  EXPECT_THAT(Query("SELECT text FROM starts"), ElementsAre("erased 1"));
  EXPECT_EQ(collection_->waiting(), 1);
  EXPECT_FALSE(collection_->Host(host).value().robots_time) << "they are asked for again";
  EXPECT_EQ(NextUrl(host), "https://www.firma.de/?to=joanna@firma.de");
}

TEST_F(EraseAddressesTest, ALinkToAPageWhoseAddressWasClearedIsANewPage) {
  Read("https://www.firma.de/?by=anna@firma.de", "A page", {"bert@firma.de"});
  Close();
  ASSERT_TRUE(EraseAddresses(path_, KeepsAllButAnna).ok());
  Reopen();
  EXPECT_TRUE(Offer("https://www.firma.de/?by=anna@firma.de").queued);
  EXPECT_TRUE(Offer("https://www.firma.de/(erased)").queued);
}

TEST_F(EraseAddressesTest, NothingChangesWhereNobodyHasIt) {
  Read("https://www.firma.de/", "A page", {"bert@firma.de"});
  Close();
  const auto before = std::filesystem::last_write_time(path_);
  const auto erased = EraseAddresses(path_, KeepsAllButAnna);
  ASSERT_TRUE(erased.ok()) << erased.status().message();
  EXPECT_THAT(erased.value().addresses, IsEmpty());
  EXPECT_EQ(std::filesystem::last_write_time(path_), before);
}

TEST_F(EraseAddressesTest, ACollectionThatAnotherOneHasOpenIsBusy) {
  Read("https://www.firma.de/", "A page", {"anna@firma.de"});
  ASSERT_TRUE(collection_->Commit().ok());
  EXPECT_EQ(EraseAddresses(path_, KeepsAllButAnna).status().kind(), StatusKind::kBusy);
  EXPECT_THAT(Query("SELECT address FROM addresses"), ElementsAre("anna@firma.de"));
}

TEST_F(EraseAddressesTest, WhatIsNotACollectionIsRefused) {
  Close();
  {
    auto database = Database::Open(path_, Database::Mode::kWrite);
    ASSERT_TRUE(database.value()->Execute("PRAGMA user_version = 99").ok());
  }
  EXPECT_EQ(EraseAddresses(path_, KeepsAllButAnna).status().kind(), StatusKind::kLimit);
  const std::string other = folder_.File("other.sqlite");
  std::ofstream(other) << std::string(4096, 'x');
  EXPECT_EQ(EraseAddresses(other, KeepsAllButAnna).status().kind(), StatusKind::kFormat);
}

}  // namespace
}  // namespace quenlar
