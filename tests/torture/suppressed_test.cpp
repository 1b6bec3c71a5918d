// A suppression list that a person has written by hand, so that a collection still has what it names: nothing of that
// is shown, and the next command that writes to the collection takes it out.
#include "cli/paths.h"
#include "collect_world.h"

namespace quenlar {
namespace {

const std::string kNamed = "m1@firma.de", kOther = "m2@firma.de";

class HandWrittenList : public testing::Test {
 protected:
  HandWrittenList() {
    EXPECT_EQ(world_.Collect(), 0) << world_.errors();
    EXPECT_TRUE(world_.Stores(kNamed));
    world_.fake.files.Put("/user/quenlar/suppressed.txt", "M1@Firma.de\n");
  }

  CollectWorld world_;
};

TEST_F(HandWrittenList, HoldsForEveryListOfACollection) {
  for (const char* const format : {"lines", "csv", "jsonl", "html"}) {
    for (const bool sources : {false, true}) {
      std::vector<std::string> command = {"addresses", "firma", "--format", format};
      if (sources) command.emplace_back("--sources");
      SCOPED_TRACE(testing::PrintToString(command));
      EXPECT_EQ(world_.Run(command), 0) << world_.errors();
      EXPECT_NE(world_.output().find(kOther), std::string::npos);
      EXPECT_EQ(world_.output().find(kNamed), std::string::npos);
    }
  }
  EXPECT_TRUE(world_.Stores(kNamed));
}

TEST_F(HandWrittenList, HoldsForTheFileFromTheNextRunOn) {
  EXPECT_EQ(world_.Collect(), 0) << world_.errors();
  EXPECT_NE(world_.errors().find("Suppressed addresses taken out of the collection: 1."), std::string::npos);
  EXPECT_FALSE(world_.Stores(kNamed));
  EXPECT_TRUE(world_.Stores(kOther));
}

TEST_F(HandWrittenList, HoldsForTheFileFromTheNextHarvestOn) {
  const std::string page = AbsolutePath("/new.html");
  world_.fake.files.Put(page, "<p>new@firma.de m1@firma.de");
  EXPECT_EQ(world_.Run({"harvest", "--name", "firma", page}), 0) << world_.errors();
  EXPECT_NE(world_.errors().find("Suppressed addresses taken out of the collection: 1."), std::string::npos);
  EXPECT_EQ(world_.output(), "new@firma.de\n");
  ASSERT_TRUE(world_.fake.files.Delete(page).ok());
  EXPECT_FALSE(world_.Stores(kNamed));
  EXPECT_TRUE(world_.Stores("new@firma.de"));
}

}  // namespace
}  // namespace quenlar
