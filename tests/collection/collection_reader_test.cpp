#include "collection/collection_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Anna stands on two pages of one site, Bert on a page of another one.
class CollectionReaderTest : public CollectionTest {
 protected:
  void SetUp() override {
    const OfferedPage home = Offer("https://www.example.org/"), team = Offer("https://www.example.org/team", 1);
    PageEnd end;
    end.state = PageState::kRead;
    end.status = 200;
    end.title = "Home";
    End(home, end, {{"Anna@example.org", "Anna@example.org", AddressPlace::kText}}, 100);
    end.title = "Team";
    End(team, end, {{"anna@example.org", "anna@example.org", AddressPlace::kMailto}}, 200);
    const Url other = UrlOf("https://example.net/");
    PageOffer offer{other, "example.net"};
    offer.parent = home.page;
    const auto page = collection_->Offer(offer);
    End(page.value(), end, {{"bert@example.net", "bert@example.net", AddressPlace::kText}}, 300);
    ASSERT_TRUE(collection_->Commit().ok());
    Open();
  }

  void Open() {
    auto opened = CollectionReader::Open(path_);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    reader_ = opened.take();
  }

  // "address page" of what `give` lists.
  std::vector<std::string> Rows(Status (CollectionReader::*give)(const SightingChoice&, const CollectionReader::Each&),
                                const SightingChoice& choice = {}) {
    std::vector<std::string> rows;
    const Status status = (reader_.get()->*give)(choice, [&](const Sighting& row) {
      rows.push_back(std::string(row.address) + " " + std::string(row.page) + (row.gone ? " gone" : ""));
      return true;
    });
    EXPECT_TRUE(status.ok()) << status.message();
    return rows;
  }

  std::unique_ptr<CollectionReader> reader_;
};

TEST_F(CollectionReaderTest, EachAddressComesWithItsFirstSighting) {
  EXPECT_THAT(Rows(&CollectionReader::Addresses),
              ElementsAre("Anna@example.org https://www.example.org/", "bert@example.net https://example.net/"));
}

TEST_F(CollectionReaderTest, EverySightingIsARow) {
  EXPECT_THAT(Rows(&CollectionReader::Sightings),
              ElementsAre("Anna@example.org https://www.example.org/", "Anna@example.org https://www.example.org/team",
                          "bert@example.net https://example.net/"));
}

TEST_F(CollectionReaderTest, WhatIsLeftOutIsNamedByNoTitleAndNoPage) {
  PageEnd end;
  end.state = PageState::kRead;
  end.title = "Page of bert@example.net";
  End(Offer("https://www.example.org/people/bert@example.net"), end,
      {{"carl@example.org", "carl@example.org", AddressPlace::kText}}, 400);
  ASSERT_TRUE(collection_->Commit().ok());
  reader_->LeaveOut([](std::string_view address) { return address != "bert@example.net"; });
  std::vector<std::string> rows;
  const Status listed = reader_->Listed([&](const ListedAddress& row) {
    rows.push_back(std::string(row.address) + " " + std::string(row.page) + " " + std::string(row.title));
    return true;
  });
  ASSERT_TRUE(listed.ok()) << listed.message();
  EXPECT_THAT(rows, ElementsAre("Anna@example.org https://www.example.org/ Home",
                                "carl@example.org https://www.example.org/(erased) "));
  EXPECT_THAT(Rows(&CollectionReader::Addresses), ElementsAre("Anna@example.org https://www.example.org/",
                                                              "carl@example.org https://www.example.org/(erased)"));
}

TEST_F(CollectionReaderTest, SightingsAreChosenByPlaceSiteAndTime) {
  SightingChoice choice;
  choice.place = "mailto";
  EXPECT_THAT(Rows(&CollectionReader::Addresses, choice), ElementsAre("Anna@example.org https://www.example.org/team"));
  choice = {};
  choice.site = "Example.NET";
  EXPECT_THAT(Rows(&CollectionReader::Addresses, choice), ElementsAre("bert@example.net https://example.net/"));
  choice = {};
  choice.since = 200;  // Anna was seen then too, but not for the first time
  EXPECT_THAT(Rows(&CollectionReader::Addresses, choice), ElementsAre("bert@example.net https://example.net/"));
  choice.since = 100;
  EXPECT_EQ(Rows(&CollectionReader::Sightings, choice).size(), 3u);
}

TEST_F(CollectionReaderTest, WhatIsGoneIsASightingButNotAnAddress) {
  VisitAgain();
  PageEnd end;
  end.state = PageState::kRead;
  const OfferedPage other{3, 2, true};
  End(other, end, {}, 400);
  ASSERT_TRUE(collection_->Commit().ok());
  EXPECT_THAT(Rows(&CollectionReader::Addresses), ElementsAre("Anna@example.org https://www.example.org/"));
  EXPECT_THAT(Rows(&CollectionReader::Sightings), testing::Contains("bert@example.net https://example.net/ gone"));
}

TEST_F(CollectionReaderTest, SightingsOfAnAddressAreFoundInAnyLetterCase) {
  std::vector<std::string> places;
  ASSERT_TRUE(reader_
                  ->SightingsOf("ANNA@EXAMPLE.ORG",
                                [&](const Sighting& row) {
                                  places.emplace_back(row.place);
                                  return true;
                                })
                  .ok());
  EXPECT_THAT(places, ElementsAre("text", "mailto"));
}

TEST_F(CollectionReaderTest, AListEndsWhenItsReaderHasEnough) {
  int rows = 0;
  ASSERT_TRUE(reader_->Sightings({}, [&](const Sighting&) { return ++rows < 2; }).ok());
  EXPECT_EQ(rows, 2);
}

TEST_F(CollectionReaderTest, TheFiguresAreThoseOfTheFile) {
  Offer("https://www.example.org/more", 1);
  ASSERT_TRUE(collection_->BeginRun(777).ok());
  ASSERT_TRUE(collection_->Commit().ok());
  const CollectionFigures figures = reader_->Figures().value();
  EXPECT_EQ(figures.addresses, 2);
  EXPECT_EQ(figures.pages, 3);
  EXPECT_EQ(figures.left, 1);
  EXPECT_EQ(figures.last_run, 777);
}

TEST_F(CollectionReaderTest, APageIsFoundUnderBothSchemesWithItsFacts) {
  const auto page = reader_->Page(UrlOf("http://example.net/"));
  ASSERT_TRUE(page.ok() && page.value());
  EXPECT_EQ(page.value()->url, "https://example.net/");
  EXPECT_EQ(page.value()->parent, "https://www.example.org/");
  EXPECT_EQ(page.value()->state, "read");
  EXPECT_EQ(page.value()->status, 200);
  EXPECT_EQ(page.value()->addresses, 1);
  EXPECT_FALSE(reader_->Page(UrlOf("https://example.net/unknown")).value().has_value());
}

TEST_F(CollectionReaderTest, ARunIsReadAsItWasWritten) {
  RunRecord run;
  run.ended = 20;
  run.reason = "pages";
  run.pages = 7;
  run.fresh = 3;
  run.seconds = 1.5;
  ASSERT_TRUE(collection_->BeginRun(10).ok());
  ASSERT_TRUE(collection_->SaveRun(run).ok());
  ASSERT_TRUE(collection_->Commit().ok());
  const auto runs = reader_->Runs();
  ASSERT_EQ(runs.value().size(), 1u);
  EXPECT_EQ(runs.value()[0].started, 10);
  EXPECT_EQ(runs.value()[0].reason, "pages");
  EXPECT_EQ(runs.value()[0].pages, 7u);
  EXPECT_EQ(runs.value()[0].fresh, 3u);
  EXPECT_EQ(runs.value()[0].seconds, 1.5);
}

TEST_F(CollectionReaderTest, AFileThatIsNotThereOrIsNoCollectionIsRefused) {
  EXPECT_EQ(CollectionReader::Open(folder_.File("none.sqlite")).status().kind(), StatusKind::kNotFound);
  const std::string other = folder_.File("other.sqlite");
  ASSERT_TRUE(Database::Open(other, Database::Mode::kWrite).value()->Execute("CREATE TABLE t (x)").ok());
  EXPECT_EQ(CollectionReader::Open(other).status().kind(), StatusKind::kFormat);
}

}  // namespace
}  // namespace quenlar
