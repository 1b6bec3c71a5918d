#include "project/project_list.h"

#include <gtest/gtest.h>

#include "support/fake_registry.h"

namespace quenlar {
namespace {

using testing::Test;

// Writes down the order of the writes as well.
class OrderedRegistry : public FakeRegistry {
 public:
  std::vector<std::string> order;
  void SaveRegValue(const std::string& key, const std::string& name, const std::string& text) override {
    order.push_back(name + "=" + text);
    FakeRegistry::SaveRegValue(key, name, text);
  }
  void DeleteRegKey(const std::string& key) override {
    order.push_back("delete " + key);
    FakeRegistry::DeleteRegKey(key);
  }
};

class ProjectListTest : public Test {
 protected:
  using Entries = std::vector<std::string>;
  OrderedRegistry registry;
  Settings settings;
  ProjectList list{registry, settings};
};

TEST_F(ProjectListTest, RunningTheSameKeywordTwiceAddsItOnce) {
  EXPECT_TRUE(list.Add("cars", true));
  registry.order.clear();
  EXPECT_FALSE(list.Add("cars", true));
  EXPECT_EQ(list.entries(), Entries{"cars_en"});
  EXPECT_TRUE(registry.order.empty());
}

TEST_F(ProjectListTest, KeywordTypedWithAndWithoutItsSuffixIsOneEntry) {
  EXPECT_TRUE(list.Add("cars_en", true));
  EXPECT_FALSE(list.Add("cars", true));
  EXPECT_EQ(list.entries(), Entries{"cars_en"});
}

TEST_F(ProjectListTest, NewestEntryStandsFirst) {
  list.Add("one.de", false);
  list.Add("two words", true);
  settings.SearchLanguage = 5;
  list.Add("three", true);
  settings.SearchLanguage = 7;
  list.Add("four", true);
  EXPECT_EQ(list.entries(), (Entries{"four", "three_ja", "two words_en", "one.de"}));
}

TEST_F(ProjectListTest, AddressWithAnUnderscoreOrWithoutGetsNoSuffix) {
  list.Add("a_b.de", false);
  list.Add("ab.de", false);
  EXPECT_EQ(list.entries(), (Entries{"ab.de", "a_b.de"}));
}

TEST_F(ProjectListTest, ComparisonIsExact) {
  list.Add("Cars", true);
  EXPECT_TRUE(list.Add("cars", true));
}

TEST_F(ProjectListTest, AddingRewritesTheKeyInItsOrder) {
  settings = {.SearchLanguage = 1,
              .SaveInterval = 2,
              .CorrelationMode = 0,
              .StopNumber = 70,
              .ExportMode = 1,
              .RemoveFilterOn = 1,
              .ExtractFilterOn = 1,
              .NeverUpgradeFlag = 1};
  list.Load({"old"});
  registry.SaveRegValue(kProjectKey, "Project7", "stale");
  registry.order.clear();
  list.Add("new", true);
  EXPECT_EQ(registry.order, (Entries{"delete Software\\Quenlar\\Project", "Project1=new_fr", "Project2=old",
                                     "ProjectNum=2", "NeverUpgrade=0", "Search=1", "Save=2", "Correlation=0",
                                     "StopNumber=70", "Export=1", "RemoveFilter=1", "ExtractFilter=1"}));
  EXPECT_FALSE(registry.ValueExists(kProjectKey, "Project7"));
}

TEST_F(ProjectListTest, RewritingWithoutFiltersLeavesThreeValuesOut) {
  list.Load({"one"});
  list.Remove("one");
  list.WriteProjectKey(false);
  EXPECT_EQ(registry.order, (Entries{"delete Software\\Quenlar\\Project", "ProjectNum=0", "NeverUpgrade=0", "Search=0",
                                     "Save=0", "Correlation=1", "StopNumber=99999"}));
}

TEST_F(ProjectListTest, PickingMovesAnEntryToTheTopAndWritesNothing) {
  list.Load({"a", "b", "c"});
  list.Pick("c");
  EXPECT_EQ(list.entries(), (Entries{"c", "a", "b"}));
  list.Pick("nothing");
  EXPECT_EQ(list.entries(), (Entries{"c", "a", "b"}));
  EXPECT_TRUE(registry.order.empty());
}

TEST_F(ProjectListTest, RemovingTakesTheEntryThatIsEqual) {
  list.Load({"a", "b", "c"});
  list.Remove("a");
  EXPECT_EQ(list.entries(), (Entries{"b", "c"}));
  list.Remove("c");
  EXPECT_EQ(list.entries(), Entries{"b"});
}

TEST_F(ProjectListTest, DeletingAProjectThatIsNotInTheListRemovesTheOldestEntry) {
  list.Load({"a", "b", "c"});
  list.Remove("x");
  EXPECT_EQ(list.entries(), (Entries{"a", "b"}));
}

TEST_F(ProjectListTest, DeletingTheOnlyEntryEmptiesTheListWhateverItsText) {
  list.Load({"a"});
  list.Remove("x");
  EXPECT_TRUE(list.entries().empty());
  list.Remove("x");
  EXPECT_TRUE(list.entries().empty());
}

}  // namespace
}  // namespace quenlar
