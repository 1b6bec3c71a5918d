#include "engine/erase.h"

#include <fstream>
#include <iterator>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/ascii.h"
#include "collection/scratch_collection.h"
#include "engine/collections.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

bool KeepsAllButAnna(std::string_view address) { return !EqualsIgnoreCase(address, "anna@firma.de"); }

std::string Without(std::string_view text) {
  std::set<std::string> erased;
  return WithoutAddresses(text, KeepsAllButAnna, erased);
}

TEST(WithoutAddresses, ALineGoesWhoseFirstAddressIsUnwanted) {
  EXPECT_EQ(Without("bert@firma.de\r\nAnna@Firma.de\r\ncarl@firma.de\r\n"), "bert@firma.de\r\ncarl@firma.de\r\n");
  EXPECT_EQ(Without("1     anna@firma.de     http://firma.de     Anna\r\n2     bert@firma.de\r\n"),
            "2     bert@firma.de\r\n");
  EXPECT_EQ(Without("[A]\r\nhttp://firma.de/?to=anna%40firma.de\r\nhttp://firma.de/b\r\n"),
            "[A]\r\nhttp://firma.de/b\r\n");
  EXPECT_EQ(Without("anna@firma.de"), "");
}

TEST(WithoutAddresses, OfALineThatOnlyNamesItNothingElseGoes) {
  EXPECT_EQ(Without("1  bert@firma.de  http://firma.de/?to=anna@firma.de  By ANNA@firma.de, and all\r\n"),
            "1  bert@firma.de  http://firma.de/?to=  By , and all\r\n");
}

TEST(WithoutAddresses, EveryOtherByteStays) {
  const std::string text = "joanna@firma.de\r\n\xFF\xFE@%40\r\n\r\n@\nanna@firma.dev\n";
  EXPECT_EQ(Without(text), text);
  EXPECT_EQ(Without(""), "");
}

class EraseEverywhereTest : public testing::Test {
 protected:
  EraseEverywhereTest() {
    installation_.program_folder = folder_.File("");
    installation_.program_folder.pop_back();
    std::filesystem::create_directory(installation_.Data());
    std::filesystem::create_directory(installation_.Report());
  }

  static void Write(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
  static std::string Text(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  [[nodiscard]] std::unique_ptr<Collection> OpenNamed(const std::string& name) {
    auto opened = Collection::Open(*files_, CollectionPath(installation_, name));
    EXPECT_TRUE(opened.ok()) << opened.status().message();
    return std::move(opened.value().collection);
  }
  void MakeCollection(const std::string& name, const std::string& address) {
    const auto collection = OpenNamed(name);
    const Url url = UrlOf("https://www.firma.de/");
    const auto page = collection->Offer({url, "firma.de"});
    const std::vector<SeenAddress> seen = {{address, address, AddressPlace::kText}};
    ASSERT_TRUE(collection->End(page.value().host, page.value().page, {}, seen, 1000).ok());
    ASSERT_TRUE(collection->Commit().ok());
  }
  EraseOutcome Erase(OtherWriters others = OtherWriters::kNone) {
    return EraseEverywhere(*files_, installation_, KeepsAllButAnna, others);
  }
  // Whether any file of the program folder holds the bytes.
  [[nodiscard]] bool IsAnywhere(const std::string& lower) const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(installation_.program_folder)) {
      if (entry.is_regular_file() && ContainsIgnoreCase(Text(entry.path().string()), lower)) return true;
    }
    return false;
  }

  ScratchFolder folder_;
  std::unique_ptr<Files> files_ = SystemFiles();
  Installation installation_;
};

TEST_F(EraseEverywhereTest, NoFileHoldsTheAddressAfterwards) {
  MakeCollection("one", "Anna@firma.de");
  MakeCollection("two", "anna@firma.de");
  MakeCollection("three", "bert@firma.de");
  Write(installation_.Data("firma_de.dat"), "[A]\r\nhttp://firma.de/?to=anna@firma.de\r\nhttp://firma.de/\r\n");
  Write(installation_.Data("firma_de.dat.bak"), "[A]\r\nhttp://firma.de/?to=anna@firma.de\r\n");
  Write(installation_.Report("firma_de.rpt"), "anna@firma.de\r\nbert@firma.de\r\n");
  Write(installation_.Report("one.web.rpt"), "anna@firma.de\r\n");
  Write(installation_.Report("other.rpt"), "bert@firma.de\r\n");
  const EraseOutcome outcome = Erase();
  EXPECT_THAT(outcome.problems, IsEmpty());
  EXPECT_THAT(outcome.addresses, ElementsAre("anna@firma.de"));
  EXPECT_EQ(outcome.collections, 2u);
  EXPECT_EQ(outcome.files, 4u);
  EXPECT_FALSE(IsAnywhere("anna@firma.de"));
  EXPECT_EQ(Text(installation_.Report("firma_de.rpt")), "bert@firma.de\r\n");
  EXPECT_EQ(OpenNamed("three")->addresses(), 1);
}

TEST_F(EraseEverywhereTest, ACollectionThatARunUsesIsToldAndTheOthersAreDone) {
  MakeCollection("idle", "anna@firma.de");
  MakeCollection("running", "anna@firma.de");
  const auto running = OpenNamed("running");
  ASSERT_TRUE(running->BeginRun(1000).ok());
  ASSERT_TRUE(running->Commit().ok());  // between two transactions of its run
  const EraseOutcome outcome = Erase();
  EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("collection running is in use")));
  EXPECT_EQ(outcome.collections, 1u);
  EXPECT_EQ(OpenNamed("idle")->addresses(), 0);
  EXPECT_EQ(running->addresses(), 1);
}

TEST_F(EraseEverywhereTest, WithAnotherWriterTheFilesOfProjectsStayAsTheyAre) {
  MakeCollection("one", "anna@firma.de");
  Write(installation_.Report("firma_de.rpt"), "anna@firma.de\r\n");
  const EraseOutcome outcome = Erase(OtherWriters::kPossible);
  EXPECT_THAT(outcome.problems,
              ElementsAre(HasSubstr("Another Quenlar is at work in " + installation_.program_folder)));
  EXPECT_EQ(outcome.collections, 1u);
  EXPECT_EQ(Text(installation_.Report("firma_de.rpt")), "anna@firma.de\r\n");
}

TEST_F(EraseEverywhereTest, WhatCannotBeCleanedIsTold) {
  MakeCollection("one", "anna@firma.de");
  Write(installation_.Data("broken.sqlite"), std::string(4096, 'x'));
  Write(installation_.Data("old.sqlite.bak"), "anna@firma.de");
  const EraseOutcome outcome = Erase();
  EXPECT_THAT(outcome.problems, ElementsAre(HasSubstr("broken.sqlite"), HasSubstr("old.sqlite.bak")));
  EXPECT_EQ(outcome.collections, 1u);
}

TEST_F(EraseEverywhereTest, TheWordsOfTheFiltersStay) {
  Write(installation_.Data("ExtractFilter.dat"), "<r>anna@firma.de</r>\r\n");
  EXPECT_EQ(Erase().files, 0u);
  EXPECT_TRUE(IsAnywhere("anna@firma.de"));
}

TEST_F(EraseEverywhereTest, AProgramFolderWithoutFilesHasNothing) {
  std::filesystem::remove(installation_.Data());
  std::filesystem::remove(installation_.Report());
  const EraseOutcome outcome = Erase();
  EXPECT_THAT(outcome.problems, IsEmpty());
  EXPECT_THAT(outcome.addresses, IsEmpty());
}

}  // namespace
}  // namespace quenlar
