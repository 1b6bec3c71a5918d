// The page of a collection: that it is whole, holds what was chosen, and is closed to what comes from the web. What it
// does in a browser is tested by browser/overview.py.
#include "collection/overview.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "collection/scratch_collection.h"

namespace quenlar {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view kDataTag = R"(<script type="application/json" id="data">)";
constexpr std::int64_t kSecondVisit = 400;

// Anna stands on two pages of one site, Bert on a page of another one.
class OverviewTest : public CollectionTest {
 protected:
  void SetUp() override {
    const OfferedPage home = Offer("https://www.example.org/"), team = Offer("https://www.example.org/team", 1);
    PageEnd end;
    end.status = 200;
    end.title = "Home";
    End(home, end, {{"Anna@example.org", "Anna@example.org", AddressPlace::kText}}, 100);
    end.title = "</script><!-- \xE6\x97\xA5";
    End(team, end, {{"anna@example.org", "anna@example.org", AddressPlace::kMailto}}, 200);
    const Url other = UrlOf("https://example.net/");
    PageOffer offer{other, "example.net"};
    offer.parent = home.page;
    other_ = collection_->Offer(offer).value();
    End(other_, end, {{"bert@example.net", "bert@example.net", AddressPlace::kText}}, 300);
  }

  // What the page of `choice` says, in full.
  std::string Page(const OverviewChoice& choice = {}) {
    EXPECT_TRUE(collection_->Commit().ok());
    const auto reader = CollectionReader::Open(path_);
    EXPECT_TRUE(reader.ok()) << reader.status().message();
    std::string page;
    const Status written = WriteOverview(*reader.value(), "example <org>", choice, [&](std::string_view piece) {
      page += piece;
      return true;
    });
    EXPECT_TRUE(written.ok()) << written.message();
    return page;
  }

  json Data(const OverviewChoice& choice = {}) {
    const std::string page = Page(choice);
    const std::size_t begin = page.find(kDataTag) + kDataTag.size();
    return json::parse(page.substr(begin, page.find("</script>", begin) - begin));
  }

  // The addresses among the records.
  static std::vector<std::string> Addresses(const json& data) {
    std::vector<std::string> addresses;
    for (const json& record : data["records"]) {
      if (record[0].is_string()) addresses.push_back(record[0]);
    }
    return addresses;
  }

  OfferedPage other_;
};

TEST_F(OverviewTest, PagesAndAddressesAreRecordsEachPageBeforeItsFirstAddress) {
  EXPECT_EQ(Data()["records"], json::parse(R"([
    [1, "https://www.example.org/", "Home", "example.org"],
    [2, "https://www.example.org/team", "</script><!-- \u65e5", "example.org"],
    ["Anna@example.org", [1,0,100,0, 2,1,200,0]],
    [3, "https://example.net/", "</script><!-- \u65e5", "example.net"],
    ["bert@example.net", [3,0,300,0]]])"));
}

TEST_F(OverviewTest, FiguresAndRunsStandBeforeTheRecords) {
  RunRecord run;
  run.ended = 20;
  run.reason = "pages";
  run.pages = 7;
  run.fresh = 3;
  run.seconds = 10.4;
  ASSERT_TRUE(collection_->BeginRun(10).ok());
  ASSERT_TRUE(collection_->SaveRun(run).ok());
  const json data = Data();
  EXPECT_EQ(data["collection"], "example <org>");
  EXPECT_EQ(data["figures"], json::parse(R"({"addresses": 2, "pages": 3, "left": 0, "last_run": 10})"));
  EXPECT_EQ(data["runs"], json::parse(R"([{"started": 10, "ended": 20, "reason": "pages", "pages": 7, "failed": 0,
                                           "refused": 0, "new": 3, "seconds": 10}])"));
  EXPECT_EQ(data["places"], json::parse(R"(["text", "mailto", "attribute", "script", "comment", "protected"])"));
}

TEST_F(OverviewTest, HoldsWhatWasChosenAndSaysSo) {
  OverviewChoice choice;
  EXPECT_EQ(Data()["only"], json::object());
  choice.sightings.place = "mailto";
  EXPECT_THAT(Addresses(Data(choice)), ElementsAre("Anna@example.org"));
  EXPECT_EQ(Data(choice)["only"], json::parse(R"({"place": "mailto"})"));
  choice.sightings = {};
  choice.sightings.site = "example.net";
  choice.sightings.since = 250;
  EXPECT_THAT(Addresses(Data(choice)), ElementsAre("bert@example.net"));
  EXPECT_EQ(Data(choice)["only"], json::parse(R"({"site": "example.net", "since": 250})"));
  choice.sightings.since = 301;
  EXPECT_EQ(Data(choice)["records"], json::array());
}

TEST_F(OverviewTest, WhatIsGoneComesLastAndAnAddressThatIsGoneEverywhereOnlyOnDemand) {
  VisitAgain();
  PageEnd end;
  end.title = "Home";
  End({1, 1, true}, end, {}, kSecondVisit);
  End(other_, end, {}, kSecondVisit);
  EXPECT_THAT(Addresses(Data()), ElementsAre("Anna@example.org"));
  EXPECT_THAT(Page(), Not(HasSubstr("bert@")));
  const json with_gone = Data({.sightings = {}, .with_gone = true})["records"];
  EXPECT_THAT(with_gone, testing::Contains(json::parse(R"(["Anna@example.org", [2,1,200,0, 1,8,100,0]])")));
  EXPECT_THAT(with_gone, testing::Contains(json::parse(R"(["bert@example.net", [3,8,300,0]])")));
}

TEST_F(OverviewTest, NothingFromOutsideStandsInItAsMarkup) {
  const std::string page = Page();
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  EXPECT_TRUE(std::all_of(page.begin(), page.end(), [](char c) { return c == '\n' || (c >= ' ' && c < 0x7F); }));
  EXPECT_THAT(page, Not(HasSubstr("<!--")));
  std::size_t scripts = 0;
  for (std::size_t at = 0; (at = page.find("</script", at)) != std::string::npos; ++at) ++scripts;
  EXPECT_EQ(scripts, 2u);
}

TEST_F(OverviewTest, AsksNothingOfTheNetworkAndForbidsIt) {
  const std::string page = Page();
  for (const char* outside : {"<link", "<img", "<iframe", " src=", "@import", "url(", "fetch(", "XMLHttpRequest",
                              "innerHTML", "insertAdjacentHTML", "document.write", "eval("}) {
    EXPECT_THAT(page, Not(HasSubstr(outside)));
  }
  constexpr std::string_view kPolicy = "http-equiv=\"Content-Security-Policy\" content=\"";
  const std::size_t begin = page.find(kPolicy) + kPolicy.size();
  const std::string policy = page.substr(begin, page.find('"', begin) - begin);
  EXPECT_TRUE(policy.starts_with("default-src 'none'; script-src 'sha256-")) << policy;
  EXPECT_THAT(policy, HasSubstr("='; style-src 'sha256-"));
  EXPECT_THAT(policy, Not(HasSubstr("unsafe")));
}

TEST_F(OverviewTest, ALargeCollectionComesInManyPiecesAndEndsWhenNobodyWantsMore) {
  std::vector<std::string> names;
  for (int i = 0; i < 5000; ++i) names.push_back("address-number-" + std::to_string(i) + "@example.org");
  std::vector<SeenAddress> seen;
  for (const std::string& name : names) seen.push_back({name, name, AddressPlace::kText});
  PageEnd end;
  End(Offer("https://www.example.org/many", 1), end, seen);
  ASSERT_TRUE(collection_->Commit().ok());
  const auto reader = CollectionReader::Open(path_);
  std::size_t pieces = 0, largest = 0;
  const auto count = [&](std::string_view piece) {
    ++pieces;
    largest = std::max(largest, piece.size());
    return true;
  };
  ASSERT_TRUE(WriteOverview(*reader.value(), "many", {}, count).ok());
  EXPECT_GT(pieces, 4u);
  EXPECT_LT(largest, std::size_t{100} << 10);
  int taken = 0;
  ASSERT_TRUE(WriteOverview(*reader.value(), "many", {}, [&](std::string_view) { return ++taken < 2; }).ok());
  EXPECT_EQ(taken, 2);
}

}  // namespace
}  // namespace quenlar
