#include "web/harvest.h"

#include <gtest/gtest.h>

#include "web/analysis_world.h"

namespace quenlar {
namespace {

class Harvest : public testing::Test, protected AnalysisWorld {
 protected:
  // A text of `count` addresses, p0@x.de and so on, each between tags of its own.
  static std::string Many(int count) {
    std::string page;
    for (int i = 0; i < count; ++i) page += "<p>p" + std::to_string(i) + "@x.de</p>\n";
    return page;
  }
};

TEST_F(Harvest, RecordsPageAddressAndTitle) {
  EXPECT_EQ(AnalysisWorld::Harvest("<title>A &amp; B</title><p>Me@X.de</p>"), HarvestEnd::kWholePage);
  ASSERT_EQ(project.found.Count(), 1u);
  const FoundAddress record = project.found.At(0);
  EXPECT_EQ(record.URL, "http://h/page.html");
  EXPECT_EQ(record.Address, "Me@X.de");
  EXPECT_EQ(record.Title, "A & B");
  EXPECT_FALSE(record.TagOnly);
  EXPECT_EQ(view.rows, (std::vector<RecordingView::Row>{{0, false}}));
  EXPECT_EQ(view.address_count, "1 Address");
}

TEST_F(Harvest, PutsMailLinksBeforeTextAndTextBeforeTags) {
  AnalysisWorld::Harvest("<input value=tag@x.de><p>text@x.de</p><A HREF='MAILTO:link@x.de'>write</A><i tag2@x.de>");
  EXPECT_EQ(Addresses(), (Strings{"link@x.de", "text@x.de", "tag@x.de", "tag2@x.de"}));
}

TEST_F(Harvest, TakesATagForAMailLinkOnlyWithBothMarks) {
  AnalysisWorld::Harvest("<a href='x?to=one@x.de'>1</a><p>t@x.de</p><area href=mailto:two@x.de><b mailto:three@x.de>");
  // "<area" begins like an anchor, which is all that is asked for.
  EXPECT_EQ(Addresses(), (Strings{"two@x.de", "t@x.de", "one@x.de", "three@x.de"}));
}

TEST_F(Harvest, AnAddressInAMailLinkAndAnAttributeIsListedOnceAndUnmarked) {
  AnalysisWorld::Harvest("<input value='a@x.de'><a href='mailto:A@x.de'>write</a>");
  EXPECT_EQ(Addresses(), Strings{"A@x.de"});
  EXPECT_FALSE(project.found.At(0).TagOnly);
}

TEST_F(Harvest, AnOnlyAddressInATagIsMarkedRed) {
  AnalysisWorld::Harvest("<input value='a@x.de'>");
  EXPECT_TRUE(project.found.At(0).TagOnly);
  EXPECT_EQ(view.rows, (std::vector<RecordingView::Row>{{0, true}}));
}

TEST_F(Harvest, TwoAddressesInTagsAreNotMarked) {
  AnalysisWorld::Harvest("<input value='a@x.de'><input value='b@x.de'>");
  EXPECT_EQ(project.found.Count(), 2u);
  EXPECT_EQ(view.rows, (std::vector<RecordingView::Row>{{0, false}, {1, false}}));
}

TEST_F(Harvest, AnOnlyAddressInATagIsMarkedBesideAddressesInTheText) {
  AnalysisWorld::Harvest("<input value='a@x.de'><p>b@x.de</p><input value='B@x.de'>");
  EXPECT_EQ(Addresses(), (Strings{"b@x.de", "a@x.de"}));
  EXPECT_EQ(view.rows, (std::vector<RecordingView::Row>{{0, false}, {1, true}}));
}

TEST_F(Harvest, TheMarkIsDecidedBeforeTheTableIsAsked) {
  project.found.Add({"http://h/", "a@x.de", "", false});
  AnalysisWorld::Harvest("<input value='a@x.de'><input value='b@x.de'>");
  EXPECT_EQ(Addresses(), (Strings{"a@x.de", "b@x.de"}));
  EXPECT_FALSE(project.found.At(1).TagOnly);
}

TEST_F(Harvest, TwoSpellingsOfOneAddressGiveOneRecordInTheFirstOnesCase) {
  AnalysisWorld::Harvest("<p>Me@X.de</p><p>mE@x.DE</p>");
  EXPECT_EQ(Addresses(), Strings{"Me@X.de"});
}

TEST_F(Harvest, WhatTheProjectHasIsNotAddedAgain) {
  project.found.Add({"http://h/", "ME@x.de", "", false});
  AnalysisWorld::Harvest("<p>me@x.de</p>");
  EXPECT_EQ(project.found.Count(), 1u);
  EXPECT_TRUE(view.rows.empty());
}

TEST_F(Harvest, TheStopNumberEndsItInTheMiddleOfAPage) {
  settings.StopNumber = 3;
  run.baseline = 0;
  EXPECT_EQ(AnalysisWorld::Harvest(Many(5)), HarvestEnd::kStopNumberReached);
  EXPECT_EQ(project.found.Count(), 3u);
  EXPECT_TRUE(run.stop_requested);
}

TEST_F(Harvest, TheStopNumberDropsTheTagListToo) {
  settings.StopNumber = 1;
  EXPECT_EQ(AnalysisWorld::Harvest("<input value=t@x.de><p>a@x.de</p>"), HarvestEnd::kStopNumberReached);
  EXPECT_EQ(Addresses(), Strings{"a@x.de"});
}

TEST_F(Harvest, AStopNumberReachedByThePagesLastAddressDropsNothing) {
  settings.StopNumber = 5;
  EXPECT_EQ(AnalysisWorld::Harvest(Many(5)), HarvestEnd::kWholePage);
  EXPECT_TRUE(run.stop_requested);
}

TEST_F(Harvest, TheStopNumberCountsFromTheBaseline) {
  for (const char* known : {"k1@x.de", "k2@x.de"}) project.found.Add({"http://h/", known, "", false});
  run.baseline = 2;
  settings.StopNumber = 2;
  AnalysisWorld::Harvest(Many(5));
  EXPECT_EQ(project.found.Count(), 4u);
}

TEST_F(Harvest, AStopNumberBelowOneIsTheDefault) {
  settings.StopNumber = 0;
  EXPECT_EQ(AnalysisWorld::Harvest(Many(40)), HarvestEnd::kWholePage);
  EXPECT_EQ(project.found.Count(), 40u);
}

TEST_F(Harvest, SavesAtEveryIntervalOfNewAddresses) {
  const struct {
    std::int16_t interval;
    std::vector<std::uint32_t> saves;
  } kCases[] = {{0, {31, 61, 91, 121, 151}}, {1, {51, 101, 151}}, {2, {101}}, {7, {31, 61, 91, 121, 151}}};
  for (const auto& c : kCases) {
    AnalysisWorld world;
    world.settings.SaveInterval = c.interval;
    world.project.found.Add({"http://h/", "k@x.de", "", false});
    world.run.baseline = 1;
    world.Harvest(Many(160));
    EXPECT_EQ(world.data_saves, c.saves) << c.interval;
    EXPECT_EQ(world.report_saves, c.saves) << c.interval;
  }
}

TEST_F(Harvest, DroppedAddressesAreNeverListed) {
  keeps = [](std::string_view address) { return address.find("spam") == address.npos; };
  AnalysisWorld::Harvest("<p>spam@x.de</p><p>a@x.de</p><i spam@y.de b@y.de>");
  EXPECT_EQ(Addresses(), Strings{"a@x.de"});  // of the last tag only the first address is looked at
}

TEST_F(Harvest, PumpsAtEveryMatchAndBeforeEveryInsertion) {
  AnalysisWorld::Harvest("<i t@x.museum><p>a@x.de</p><p>A@x.de</p><i t@x.de>");
  // One at the start, four matches, one before the cross-clean, two insertions.
  EXPECT_EQ(loop.yields(), 8);
}

TEST_F(Harvest, AHarvestInsideAPumpAddsNoAddressTwice) {
  int depth = 0;
  loop.OnPump([&] {
    if (++depth <= 6) ExtractAddresses(context, "<p>b@x.de</p><p>c@x.de</p>", "http://h/inner.html");
    --depth;
  });
  AnalysisWorld::Harvest("<p>a@x.de</p><p>B@x.de</p>");
  Strings all = Addresses();
  std::sort(all.begin(), all.end());
  EXPECT_EQ(all, (Strings{"a@x.de", "b@x.de", "c@x.de"}));
  EXPECT_EQ(view.rows.size(), 3u);
  EXPECT_EQ(view.address_count, "3 Address");
}

TEST_F(Harvest, AStopNumberReachedByAHarvestInsideASaveEndsTheOuterOneToo) {
  settings.StopNumber = 40;
  while_saving = [this] {
    if (project.found.Count() == 30) AnalysisWorld::Harvest("<p>n1@x.de</p>" + Many(60));
  };
  EXPECT_EQ(AnalysisWorld::Harvest(Many(60)), HarvestEnd::kStopNumberReached);
  EXPECT_EQ(project.found.Count(), 40u);
}

TEST_F(Harvest, APageOfMoreThan32767AddressesIsHarvestedWhole) {
  Pump calm(loop);
  AnalysisContext calm_context{run, project, settings, *this, *this, view, calm};
  ExtractAddresses(calm_context, Many(40000), "http://h/");
  EXPECT_EQ(project.found.Count(), 40000u);
}

}  // namespace
}  // namespace quenlar
