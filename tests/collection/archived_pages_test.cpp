// What a harvest puts into a collection.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/collection.h"
#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

using testing::ElementsAre;

const SeenAddress kAnna{"anna@example.org", "anna@example.org", AddressPlace::kText};
const SeenAddress kBert{"bert@example.org", "bert@example.org", AddressPlace::kMailto};

class ArchivedPagesTest : public CollectionTest {
 protected:
  // Puts a page in and gives the number of its addresses that were new.
  std::size_t Add(const std::string& text, std::int64_t seen, const std::vector<SeenAddress>& addresses) {
    ArchivedPage page;
    page.url = text;
    const bool is_url = text.starts_with("http");
    const Url url = UrlOf(is_url ? text : "http://unused.example/");
    if (is_url) page.parsed = &url;
    page.site = is_url ? "example.org" : "";
    page.type = "text/html";
    page.title = "A title";
    page.status = is_url ? 200 : 0;
    page.seen = seen;
    const auto fresh = collection_->AddArchived(page, addresses);
    EXPECT_TRUE(fresh.ok());
    return fresh.ok() ? fresh.value().size() : 0;
  }
};

TEST_F(ArchivedPagesTest, APageIsReadWithItsAddresses) {
  EXPECT_EQ(Add("https://www.example.org/a", 500, {kAnna, kBert}), 2u);
  EXPECT_EQ(Add("https://www.example.org/b", 600, {kAnna}), 0u);
  EXPECT_THAT(Query("SELECT state || reason || status || type || title || time FROM pages"),
              ElementsAre("readarchive200text/htmlA title500", "readarchive200text/htmlA title600"));
  EXPECT_THAT(Query("SELECT origin || ' ' || site FROM hosts"), ElementsAre("https://www.example.org example.org"));
  EXPECT_EQ(collection_->addresses(), 2);
  EXPECT_EQ(collection_->waiting(), 0);
}

TEST_F(ArchivedPagesTest, SightingsOfOnePageAreOneWhoseTimesGrow) {
  for (const std::int64_t seen : {500, 700, 300, 600}) Add("https://www.example.org/a", seen, {kAnna});
  Add("http://www.example.org/a", 400, {kAnna});
  EXPECT_THAT(Query("SELECT first_seen || ' ' || last_seen FROM sightings"), ElementsAre("300 700"));
  EXPECT_THAT(Query("SELECT first_seen FROM addresses"), ElementsAre("300"));
  EXPECT_THAT(Query("SELECT count(*) FROM pages"), ElementsAre("1"));
}

TEST_F(ArchivedPagesTest, FilesAreKnownByTheirNames) {
  Add("a.txt", 500, {kAnna});
  Add("b.txt", 500, {kAnna});
  Add("a.txt", 600, {kAnna});
  Add("folder//c.txt", 600, {kAnna});
  EXPECT_THAT(Query("SELECT url || ' ' || last_seen FROM pages JOIN sightings ON page = pages.id ORDER BY url"),
              ElementsAre("a.txt 600", "b.txt 500", "folder//c.txt 600"));
}

TEST_F(ArchivedPagesTest, ACrawlVisitsWhatOnlyAnArchiveHad) {
  Add("https://www.example.org/a", 500, {kAnna});
  VisitAgain();
  EXPECT_EQ(collection_->waiting(), 0);
  EXPECT_TRUE(Offer("https://www.example.org/a").queued);
  EXPECT_EQ(collection_->waiting(), 1);
}

TEST_F(ArchivedPagesTest, WhatIsGoneComesBackOnlyWhenItWasSeenLater) {
  Add("https://www.example.org/a", 500, {kAnna});
  PageEnd read;
  read.status = 200;
  End(Offer("https://www.example.org/a"), read, {}, 550);
  EXPECT_THAT(Query("SELECT gone FROM sightings"), ElementsAre("1"));
  Add("https://www.example.org/a", 400, {kAnna});
  EXPECT_THAT(Query("SELECT gone FROM sightings"), ElementsAre("1"));
  Add("https://www.example.org/a", 600, {kAnna});
  EXPECT_THAT(Query("SELECT gone FROM sightings"), ElementsAre("0"));
}

}  // namespace
}  // namespace quenlar
