#include "collection/collection.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

PageEnd Read(const std::string& title = "A page") {
  PageEnd end;
  end.state = PageState::kRead;
  end.status = 200;
  end.type = "text/html";
  end.title = title;
  return end;
}

PageEnd Failed(int status) {
  PageEnd end;
  end.state = PageState::kFailed;
  end.reason = "status";
  end.status = status;
  return end;
}

const SeenAddress kAnna{"anna@example.org", "anna@example.org", AddressPlace::kText};
const SeenAddress kBert{"bert@example.org", "bert@example.org", AddressPlace::kMailto};

TEST_F(CollectionTest, ANewOneIsEmpty) {
  EXPECT_EQ(collection_->waiting(), 0);
  EXPECT_EQ(collection_->addresses(), 0);
  EXPECT_FALSE(collection_->last_run_unfinished());
  EXPECT_THAT(Query("PRAGMA user_version"), ElementsAre("1"));
}

TEST_F(CollectionTest, APageThatIsOfferedWaits) {
  const OfferedPage page = Offer("https://www.example.org/");
  EXPECT_TRUE(page.queued);
  EXPECT_EQ(collection_->waiting(), 1);
  EXPECT_EQ(NextUrl(page.host), "https://www.example.org/");
}

TEST_F(CollectionTest, APageIsKnownUnderBothSchemes) {
  Offer("https://www.example.org/a");
  EXPECT_FALSE(Offer("http://www.example.org/a").queued);
  ASSERT_TRUE(collection_->Commit().ok());
  Reopen();
  EXPECT_FALSE(Offer("http://www.example.org/a").queued) << "the file knows it too";
  EXPECT_EQ(collection_->waiting(), 1);
  EXPECT_THAT(Query("SELECT url FROM pages"), ElementsAre("https://www.example.org/a"));
}

TEST_F(CollectionTest, PagesOfAHostComeByDepthThenByRankThenAsFound) {
  const HostId host = Offer("https://www.example.org/deep", 2, 0).host;
  Offer("https://www.example.org/first", 1);
  Offer("https://www.example.org/second", 1);
  Offer("https://www.example.org/contact", 1, 0);
  std::vector<std::string> order;
  for (auto next = collection_->Next(host); next.value(); next = collection_->Next(host)) {
    order.push_back(next.value()->url.substr(24));
    End({next.value()->page, host}, Read());
  }
  EXPECT_THAT(order, ElementsAre("contact", "first", "second", "deep"));
}

TEST_F(CollectionTest, APageThatIsFoundNearerMovesForward) {
  const HostId host = Offer("https://www.example.org/a", 1).host;
  Offer("https://www.example.org/b", 3);
  EXPECT_TRUE(Offer("https://www.example.org/b", 0).queued);
  EXPECT_EQ(NextUrl(host), "https://www.example.org/b");
  EXPECT_EQ(collection_->waiting(), 2);
}

TEST_F(CollectionTest, APageThatWasTooDeepIsQueuedWhenItIsFoundNearer) {
  EXPECT_FALSE(Offer("https://www.example.org/a", 6, 1, kRefusedDepth).queued);
  EXPECT_EQ(collection_->waiting(), 0);
  EXPECT_TRUE(Offer("https://www.example.org/a", 5).queued);
  EXPECT_EQ(collection_->waiting(), 1);
}

TEST_F(CollectionTest, APageThatWasVisitedIsNotQueuedAgain) {
  const OfferedPage page = Offer("https://www.example.org/a", 3);
  End(page, Read());
  EXPECT_FALSE(Offer("https://www.example.org/a", 1).queued);
  EXPECT_EQ(collection_->waiting(), 0);
  EXPECT_THAT(Query("SELECT depth FROM pages"), ElementsAre("1")) << "its depth is the least that is known";
}

TEST_F(CollectionTest, AnAddressIsNewOnceWhateverItsLetterCase) {
  const OfferedPage first = Offer("https://www.example.org/a"), second = Offer("https://www.example.org/b");
  EXPECT_EQ(End(first, Read(), {kAnna, kBert}), 2u);
  EXPECT_EQ(End(second, Read(), {{"ANNA@example.org", "ANNA@example.org", AddressPlace::kComment}}), 0u);
  EXPECT_EQ(collection_->addresses(), 2);
  EXPECT_THAT(Query("SELECT address FROM addresses ORDER BY id"), ElementsAre("anna@example.org", "bert@example.org"));
  EXPECT_THAT(Query("SELECT place FROM sightings ORDER BY page, place"), ElementsAre("mailto", "text", "comment"));
}

TEST_F(CollectionTest, EveryPlaceOnAPageIsASighting) {
  const OfferedPage page = Offer("https://www.example.org/a");
  EXPECT_EQ(End(page, Read(), {kAnna, {kAnna.address, "Anna@Example.org", AddressPlace::kMailto}}), 1u);
  EXPECT_THAT(Query("SELECT written FROM sightings ORDER BY place"),
              ElementsAre("Anna@Example.org", "anna@example.org"));
}

TEST_F(CollectionTest, WhatIsNotCommittedIsGone) {
  Offer("https://www.example.org/kept");
  ASSERT_TRUE(collection_->Commit().ok());
  const OfferedPage lost = Offer("https://www.example.org/lost");
  End(lost, Read(), {kAnna});
  Reopen();
  EXPECT_EQ(collection_->waiting(), 1);
  EXPECT_EQ(collection_->addresses(), 0);
}

TEST_F(CollectionTest, WhatIsCommittedGoesOnWhereItStopped) {
  const OfferedPage read = Offer("https://www.example.org/read");
  Offer("https://www.example.org/waits");
  End(read, Read(), {kAnna});
  ASSERT_TRUE(collection_->Commit().ok());
  Reopen();
  EXPECT_EQ(collection_->addresses(), 1);
  EXPECT_EQ(NextUrl(read.host), "https://www.example.org/waits");
  EXPECT_FALSE(Offer("https://www.example.org/read").queued);
}

TEST_F(CollectionTest, ARunThatWasCutShortIsKnown) {
  ASSERT_TRUE(collection_->BeginRun(1000).ok());
  ASSERT_TRUE(collection_->Commit().ok());
  Reopen();
  EXPECT_TRUE(collection_->last_run_unfinished());
  ASSERT_TRUE(collection_->BeginRun(2000).ok());
  RunRecord run;
  run.ended = 2010;
  run.reason = "finished";
  run.pages = 3;
  ASSERT_TRUE(collection_->SaveRun(run).ok());
  EXPECT_THAT(Query("SELECT pages FROM runs WHERE reason = 'finished'"), ElementsAre("3"));
  Reopen();
  EXPECT_FALSE(collection_->last_run_unfinished());
}

TEST_F(CollectionTest, AStartIsAddedOnce) {
  const auto first = collection_->AddStart("www.example.org", "site", 0);
  const OfferedPage page = Offer("https://www.example.org/");
  ASSERT_TRUE(collection_->PlaceStart(first.value().id, page.page, "www.example.org", "example.org").ok());
  const auto again = collection_->AddStart("www.example.org", "site", 0);
  EXPECT_EQ(again.value().id, first.value().id);
  EXPECT_EQ(again.value().page, page.page);
  EXPECT_EQ(again.value().site, "example.org");
  EXPECT_EQ(collection_->Starts().value().size(), 1u);
}

TEST_F(CollectionTest, AKeywordRemembersItsSearch) {
  const auto keyword = collection_->AddStart("red cars", "keyword", 0);
  EXPECT_FALSE(keyword.value().asked.has_value());
  ASSERT_TRUE(collection_->MarkAsked(keyword.value().id, 77).ok());
  EXPECT_EQ(collection_->AddStart("red cars", "keyword", 0).value().asked, 77);
}

TEST_F(CollectionTest, AHostKeepsItsRobotsAndItsState) {
  const HostId host = Offer("https://www.example.org:8443/").host;
  ASSERT_TRUE(collection_->SaveRobots(host, 500, 200, "User-agent: *\nDisallow: /x\n").ok());
  ASSERT_TRUE(collection_->SaveHostState(host, kHostGivenUp, "no answer").ok());
  ASSERT_TRUE(collection_->Commit().ok());
  Reopen();
  const HostRow row = collection_->Host(host).value();
  EXPECT_EQ(row.origin, "https://www.example.org:8443");
  EXPECT_EQ(row.robots, "User-agent: *\nDisallow: /x\n");
  EXPECT_EQ(row.robots_time, 500);
  EXPECT_EQ(row.robots_status, 200);
  EXPECT_EQ(row.state, kHostGivenUp);
  EXPECT_EQ(row.reason, "no answer");
}

TEST_F(CollectionTest, AHostCountsThePagesThatWereRead) {
  const OfferedPage read = Offer("https://www.example.org/a"), failed = Offer("https://www.example.org/b");
  End(read, Read());
  End(failed, Failed(404));
  EXPECT_EQ(collection_->Host(read.host).value().read, 1);
}

TEST_F(CollectionTest, HostsWithWaitingPagesAreToldWithTheirNearestPage) {
  Offer("https://a.example.org/1", 4);
  const HostId a = Offer("https://a.example.org/2", 2).host;
  const OfferedPage done = Offer("https://b.example.org/");
  End(done, Read());
  std::vector<std::pair<HostId, int>> hosts;
  ASSERT_TRUE(collection_->HostsWaiting([&](HostId host, int depth) { hosts.emplace_back(host, depth); }).ok());
  EXPECT_THAT(hosts, ElementsAre(std::pair(a, 2)));
}

TEST_F(CollectionTest, ABodyOfTheSameHostIsKnownAgain) {
  const OfferedPage first = Offer("https://a.example.org/1"), second = Offer("https://a.example.org/2"),
                    elsewhere = Offer("https://b.example.org/1");
  PageEnd end = Read();
  end.body_hash = collection_->HashOf("the same words");
  End(first, end);
  EXPECT_TRUE(collection_->BodySeen(second.host, second.page, *end.body_hash).value());
  EXPECT_FALSE(collection_->BodySeen(first.host, first.page, *end.body_hash).value()) << "it is its own";
  EXPECT_FALSE(collection_->BodySeen(elsewhere.host, elsewhere.page, *end.body_hash).value());
}

TEST_F(CollectionTest, APageThatIsReadAgainMarksAddressesThatAreGone) {
  const OfferedPage page = Offer("https://www.example.org/a");
  PageEnd end = Read();
  end.body_hash = 1;
  end.etag = "\"v1\"";
  End(page, end, {kAnna, kBert}, 1000);
  VisitAgain();
  EXPECT_EQ(collection_->waiting(), 1);
  const auto next = collection_->Next(page.host);
  EXPECT_TRUE(next.value()->read_before);
  EXPECT_EQ(next.value()->etag, "\"v1\"");
  EXPECT_EQ(End(page, end, {kBert}, 1000), 0u) << "in the same second";
  EXPECT_THAT(Query("SELECT a.address FROM addresses a JOIN sightings s ON s.address = a.id WHERE s.gone = 1"),
              ElementsAre("anna@example.org"));
}

TEST_F(CollectionTest, APageThatHasNotChangedKeepsItsAddresses) {
  const OfferedPage page = Offer("https://www.example.org/a");
  PageEnd end = Read();
  end.body_hash = 1;
  End(page, end, {kAnna}, 1000);
  VisitAgain();
  ASSERT_TRUE(collection_->EndUnchanged(page.host, page.page, 2000).ok());
  EXPECT_EQ(collection_->waiting(), 0);
  EXPECT_THAT(Query("SELECT last_seen FROM sightings WHERE gone = 0"), ElementsAre("2000"));
  EXPECT_THAT(Query("SELECT title FROM pages"), ElementsAre("A page"));
}

TEST_F(CollectionTest, APageThatIsNotThereAnyMoreLosesItsAddressesAndOneThatFailsForNowDoesNot) {
  const OfferedPage gone = Offer("https://www.example.org/gone"), ill = Offer("https://www.example.org/ill");
  End(gone, Read(), {kAnna});
  End(ill, Read(), {kBert});
  VisitAgain();
  End(gone, Failed(404));
  End(ill, Failed(500));
  EXPECT_THAT(Query("SELECT a.address FROM addresses a JOIN sightings s ON s.address = a.id WHERE s.gone = 1"),
              ElementsAre("anna@example.org"));
}

TEST_F(CollectionTest, PagesThatAnOptionRefusedAreJudgedAnewWhenItChanges) {
  ASSERT_TRUE(collection_->QueueRefused(kRefusedDepth, "5").ok());
  Offer("https://www.example.org/deep", 6, 1, kRefusedDepth);
  ASSERT_TRUE(collection_->QueueRefused(kRefusedDepth, "5").ok());
  EXPECT_EQ(collection_->waiting(), 0);
  ASSERT_TRUE(collection_->QueueRefused(kRefusedDepth, "7").ok());
  EXPECT_EQ(collection_->waiting(), 1);
}

TEST_F(CollectionTest, APageCanBeAskedForUnderTheOtherScheme) {
  const OfferedPage page = Offer("https://www.example.org/");
  const Url plain = UrlOf("http://www.example.org/");
  const auto host = collection_->Readdress(page.page, plain, "example.org", 1);
  ASSERT_TRUE(host.ok());
  EXPECT_NE(host.value(), page.host);
  EXPECT_EQ(NextUrl(host.value()), "http://www.example.org/");
  EXPECT_EQ(NextUrl(page.host), "");
  EXPECT_EQ(collection_->Page(page.page).value().host, host.value());
}

TEST_F(CollectionTest, AReaderSeesWhatIsCommittedWhileARunWrites) {
  Offer("https://www.example.org/a");
  ASSERT_TRUE(collection_->Commit().ok());
  Offer("https://www.example.org/b");
  auto reader = Database::Open(path_, Database::Mode::kRead);
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(reader.value()->Number("SELECT count(*) FROM pages").value(), 1);
}

TEST_F(CollectionTest, WhatIsCommittedSoonIsThereForOthersAtOnce) {
  for (const char* const url : {"https://www.example.org/a", "https://www.example.org/b"}) {
    Offer(url);
    ASSERT_TRUE(collection_->CommitSoon().ok());
  }
  auto reader = Database::Open(path_, Database::Mode::kRead);
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(reader.value()->Number("SELECT count(*) FROM pages").value(), 2);
}

TEST_F(CollectionTest, ADamagedFileIsKeptAside) {
  Offer("https://www.example.org/a");
  collection_.reset();
  {
    std::ofstream(path_, std::ios::binary)
        << "this is not a database, and it never was one: " << std::string(4096, 'x');
  }
  std::filesystem::remove(path_ + "-wal");
  Reopen();
  EXPECT_EQ(kept_aside_, path_ + ".bak");
  EXPECT_EQ(collection_->waiting(), 0);
  EXPECT_TRUE(files_->FileExists(path_ + ".bak"));
}

TEST_F(CollectionTest, ADamagedPageOfTheFileIsNoticed) {
  for (int i = 0; i < 2000; ++i) Offer("https://www.example.org/page-with-a-long-name-" + std::to_string(i));
  ASSERT_TRUE(collection_->Commit().ok());
  collection_.reset();
  constexpr std::size_t kPage = 4096, kPlaces = 8;
  const std::string whole = ReadWhole(*files_, path_).take();
  ASSERT_GT(whole.size(), 4 * kPlaces * kPage);
  for (std::size_t i = 1; i < kPlaces; ++i) {
    SCOPED_TRACE(i);
    std::string damaged = whole;
    damaged.replace(whole.size() / kPage * i / kPlaces * kPage, kPage, kPage, '\x5A');
    ASSERT_TRUE(WriteWhole(*files_, path_, damaged).ok());
    Reopen();
    EXPECT_EQ(kept_aside_, path_ + ".bak");
    collection_.reset();
    std::filesystem::remove(path_ + ".bak");
  }
}

TEST_F(CollectionTest, ACollectionOfANewerProgramIsLeftAlone) {
  collection_.reset();
  {
    auto database = Database::Open(path_, Database::Mode::kWrite);
    ASSERT_TRUE(database.value()->Execute("PRAGMA user_version = 2").ok());
  }
  const auto opened = Collection::Open(*files_, path_);
  ASSERT_FALSE(opened.ok());
  EXPECT_EQ(opened.status().kind(), StatusKind::kLimit);
  EXPECT_THAT(opened.status().message(), testing::HasSubstr("newer version"));
  EXPECT_TRUE(files_->FileExists(path_));
}

TEST_F(CollectionTest, AFileOfAnotherProgramIsKeptAside) {
  collection_.reset();
  const std::string other = folder_.File("other.sqlite");
  {
    auto database = Database::Open(other, Database::Mode::kWrite);
    ASSERT_TRUE(database.value()->Execute("CREATE TABLE t (x)").ok());
  }
  const auto opened = Collection::Open(*files_, other);
  ASSERT_TRUE(opened.ok()) << opened.status().message();
  EXPECT_EQ(opened.value().kept_aside, other + ".bak");
}

}  // namespace
}  // namespace quenlar
