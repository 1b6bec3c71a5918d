#include "web/page_analysis.h"

#include <gtest/gtest.h>

#include "web/analysis_world.h"

namespace quenlar {
namespace {

class PageAnalysis : public testing::Test, protected AnalysisWorld {};

TEST(LevelOfLetter, KnowsElevenLetters) {
  for (int level = 0; level < kLevels; ++level) EXPECT_EQ(LevelOfLetter(RequestLetter(level)), level);
  for (const char letter : {'G', 'U', 'm', 'A', '\0'}) EXPECT_EQ(LevelOfLetter(letter), -1) << letter;
}

TEST_F(PageAnalysis, QueuesAnchorsAndFrames) {
  const PageOutcome outcome = Parse("<a href=x.html>x</a><FRAME src='menu.html'><A HREF=\"/y\">y</A>");
  EXPECT_TRUE(outcome.result);
  EXPECT_FALSE(outcome.cut_short);
  EXPECT_EQ(Queue(1), (Strings{"http://h/a/x.html", "http://h/a/menu.html", "http://h/y"}));
  EXPECT_EQ(view.stages, (Strings{"Parsing data ...", "Completed analysis ..."}));
  EXPECT_EQ(view.scan_count, "Scan 1");
}

TEST_F(PageAnalysis, TakesTheLevelFromTheDigitOfTheRequestName) {
  Parse("<a href=x>x</a>", "M9http://h/page");
  Parse("<a href=x>x</a>", "M0http://h/page");
  Parse("<a href=y>x</a>", "M-http://h/page");
  EXPECT_EQ(Queue(9), Strings{"http://h/x"});
  EXPECT_EQ(Queue(10), Strings{"http://h/x"});
  EXPECT_EQ(run.ScanCount, 3);
}

TEST_F(PageAnalysis, KnowsATagByItsExactName) {
  const struct {
    const char* page;
    bool queued;
  } kCases[] = {
      {"<a href=x></a>", true},
      {"<A HREF='x'></a>", true},
      {"<a\nhref=x></a>", false},
      {"<a\thref=x></a>", false},
      {"<a/ href=x></a>", false},
      {"<  a href=x  ></a>", true},
      {"<a&nbsp;href=x></a>", true},
      {"<A&NBSP;HREF=x></a>", true},
      {"<&nbsp;a href=x></a>", false},
      {"<area href=x></a>", false},
      {"<abbr href=x></a>", false},
      {"<frame src=x>", true},
      {"<frame\nsrc=x>", false},
      {"<iframe src=x>", false},
      {"<frameset src=x>", false},
      {"<FRAME&nbsp;SRC=x>", true},
      {"<frame href=x>", false},
      {"<a src=x></a>", false},
      {"<a></a>", false},
      {"<a <b href=x></a>", true},
      {"<b <a href=x></a>", false},
      {"<a data-href=x></a>", true},
      {"a href=x></a>", false},
      {"<a href=x </a", false},
      {"><a href=x></a>", true},
      {"<!-- <a href=x> --></a>", false},
      {"", false},
  };
  for (const auto& c : kCases) {
    AnalysisWorld world;
    EXPECT_TRUE(world.Parse(c.page).result) << c.page;
    EXPECT_EQ(world.Queue(1), c.queued ? Strings{"http://h/a/x"} : Strings{}) << c.page;
    EXPECT_EQ(world.view.last_stage(), "Completed analysis ...") << c.page;
  }
}

TEST_F(PageAnalysis, PassesOverTargetsThatNameUnwantedFiles) {
  for (const char* ending : {".gif", ".jpg", "jpeg", ".bmp", ".png", ".pcx", ".tif", "tiff", ".wmf", ".exe", ".zip",
                             ".pdf", ".doc", ".avi", ".mpg", "mpeg", ".wmv", "rmvb", ".mp3", ".wav", ".JPG", ".Pdf"}) {
    Parse("<a href=x" + std::string(ending) + ">x</a>");
    EXPECT_EQ(Queue(1), Strings{}) << ending;
  }
  Parse("<a href=x.jpg?x=1>x</a><a href=.docx>x</a><a href=jpg>x</a><frame src=x.jpg>");
  EXPECT_EQ(Queue(1), (Strings{"http://h/a/x.jpg?x=1", "http://h/a/.docx", "http://h/a/jpg", "http://h/a/x.jpg"}));
}

TEST_F(PageAnalysis, AnAnchorWithoutAClosingTagBehindItEndsTheWalk) {
  EXPECT_TRUE(Parse("<frame src=1><a href=2>x</a><a href=3>x<frame src=4><p>a@x.de</p><a href=5>").result);
  EXPECT_EQ(Queue(1), (Strings{"http://h/a/1", "http://h/a/2"}));
  EXPECT_EQ(Addresses(), Strings{"a@x.de"});
  EXPECT_EQ(view.last_stage(), "Completed analysis ...");
}

TEST_F(PageAnalysis, AnythingThatBeginsLikeAClosingAnchorIsOne) {
  Parse("<a href=1>x<p></ADDRESS>");
  EXPECT_EQ(Queue(1), Strings{"http://h/a/1"});
  Parse("<a title=</a href=2>");  // the closing tag must stand behind the anchor's end
  EXPECT_EQ(Queue(1).size(), 1u);
}

TEST_F(PageAnalysis, AnExpansionPageIsHarvestedAndItsLinksAreNotFollowed) {
  for (int level = 1; level <= 10; ++level) {
    AnalysisWorld world;
    const PageOutcome outcome =
        world.Parse("<a href=x>a</a><p>me@x.de</p>", RequestLetter(level) + std::string("1http://h/p"));
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(world.Addresses(), Strings{"me@x.de"});
    EXPECT_EQ(world.view.stages, Strings{});
    EXPECT_EQ(world.view.scan_count, "Scan 1");
    for (int queue = 0; queue < kLevels; ++queue) EXPECT_EQ(world.Queue(queue), Strings{});
  }
}

TEST_F(PageAnalysis, AnExpansionPageBelowTheLinkDepthIsFollowedOnItsOwnLevel) {
  const char* const kWords[] = {"One", "Two", "Three", "Four", "Five", "Six", "Five", "Five", "Five", "Five"};
  for (int level = 1; level <= 10; ++level) {
    AnalysisWorld world;
    world.Parse("<a href=x>a</a>", RequestLetter(level) + std::string("0http://h/p"));
    EXPECT_EQ(world.Queue(level), Strings{"http://h/x"});
    EXPECT_EQ(world.project.queues[static_cast<std::size_t>(level)].At(0).number, 1);
    const std::string words = kWords[level - 1];
    EXPECT_EQ(world.view.stages,
              (Strings{"Parsing Channel " + words + " data ...", "Completed Channel " + words + " analysis ..."}));
  }
}

TEST_F(PageAnalysis, ALevelDigitThatIsNoDigitCountsAsZero) {
  Parse("<a href=x>a</a>", "Xhhttp://h/p");
  EXPECT_EQ(Queue(1), Strings{"http://h/x"});
}

TEST_F(PageAnalysis, AStopRequestCutsTheWalkShort) {
  loop.OnPump([this] { run.stop_requested = loop.yields() >= 5; });  // two in the harvest, two at the first anchor
  const PageOutcome outcome = Parse("<a href=1>x</a><a href=2>x</a>");
  EXPECT_FALSE(outcome.result);
  EXPECT_TRUE(outcome.cut_short);
  EXPECT_EQ(Queue(1), Strings{"http://h/a/1"});
  EXPECT_EQ(view.last_stage(), "Parsing data ...");
}

TEST_F(PageAnalysis, AStopRequestStillLetsTheHarvestFinish) {
  run.stop_requested = true;
  EXPECT_FALSE(Parse("<p>a@x.de</p><p>b@x.de</p>").result);
  EXPECT_EQ(Addresses(), (Strings{"a@x.de", "b@x.de"}));
}

TEST_F(PageAnalysis, AStopOnAPageWithoutTagsCutsNothing) {
  run.stop_requested = true;
  const PageOutcome outcome = Parse("no tags");
  EXPECT_TRUE(outcome.result);
  EXPECT_FALSE(outcome.cut_short);
}

TEST_F(PageAnalysis, TheStopNumberInTheMiddleOfAPageCutsItShort) {
  settings.StopNumber = 1;
  const PageOutcome outcome = Parse("<p>a@x.de</p><p>b@x.de</p>", "X1http://h/p");
  EXPECT_TRUE(outcome.result);
  EXPECT_TRUE(outcome.cut_short);
  EXPECT_EQ(Addresses(), Strings{"a@x.de"});
}

TEST_F(PageAnalysis, PumpsAtEveryTagAndTwiceAtAnchorsAndFrames) {
  Parse("<b><a href=1></a><frame src=2>");
  EXPECT_EQ(loop.yields(), 2 + 4 + 2);  // harvest, one for each tag, one more for the anchor and the frame
}

TEST_F(PageAnalysis, APageInsideAPumpLeavesTheOuterOneWhole) {
  int depth = 0;
  loop.OnPump([&] {
    if (++depth == 1) ParsePage(context, "<a href=inner>x</a><p>inner@x.de</p>", "M1http://h/a/inner.html");
    --depth;
  });
  EXPECT_TRUE(Parse("<p>outer@x.de</p><a href=1>x</a><a href=2>x</a>").result);
  EXPECT_EQ(Queue(1), (Strings{"http://h/a/inner", "http://h/a/1", "http://h/a/2"}));
  EXPECT_EQ(Addresses(), (Strings{"inner@x.de", "outer@x.de"}));
  EXPECT_GT(run.ScanCount, 2);
}

TEST_F(PageAnalysis, ShortAndForeignRequestNamesDoNoHarm) {
  EXPECT_TRUE(Parse("<a href=x>a</a>", "M").result);
  EXPECT_TRUE(Parse("<a href=x>a</a>", "M1").result);
  EXPECT_TRUE(Parse("<a href=x>a</a>", "X").result);
  EXPECT_FALSE(Parse("<a href=x>a</a>", "").result);
  EXPECT_FALSE(Parse("<a href=x>a</a>", "G1").result);
  EXPECT_EQ(run.ScanCount, 3);
}

}  // namespace
}  // namespace quenlar
