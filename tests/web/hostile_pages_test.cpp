// Pages of megabytes that nobody would write: what they give, in time in proportion to their size. Anything that looks
// at a byte more often than a few times does not come to its end here.
#include <gtest/gtest.h>

#include "support/random_pages.h"
#include "web/analysis_world.h"

namespace quenlar {
namespace {

// An analysis that pumps as the program's own does.
struct CalmWorld : AnalysisWorld {
  Pump calm_pump{loop};
  AnalysisContext calm{run, project, settings, *this, *this, view, calm_pump};
  PageOutcome Parse(std::string_view page) { return ParsePage(calm, page, "M1http://h/a/page.html"); }
};

class HostilePage : public testing::Test, protected CalmWorld {};

std::string Repeated(std::string_view unit, std::size_t bytes) {
  std::string text;
  text.reserve(bytes + unit.size());
  while (text.size() < bytes) text += unit;
  return text;
}

TEST_F(HostilePage, OfAHundredMegabytesWithoutATagComesToItsEnd) {
  const PageOutcome outcome = CalmWorld::Parse(std::string(100'000'000, 'x'));
  EXPECT_TRUE(outcome.result);
  EXPECT_EQ(view.stages, (Strings{"Parsing data ...", "Completed analysis ..."}));
  EXPECT_EQ(project.found.Count(), 0u);
}

TEST_F(HostilePage, OfNothingButOpeningSignsComesToItsEnd) {
  EXPECT_TRUE(CalmWorld::Parse(std::string(20'000'000, '<')).result);
  EXPECT_EQ(project.found.Count(), 0u);
  EXPECT_TRUE(Queue(1).empty());
}

TEST_F(HostilePage, WithAnAddressAmongMegabytesOfTextBetweenTwoTagsGivesIt) {
  for (const char* filler : {" ", " x ", "\r\n"}) {
    CalmWorld world;
    const std::string text = Repeated(filler, 2'000'000);
    world.Parse("<p>" + text + "me@x.de" + text + "</p>");
    EXPECT_EQ(world.Addresses(), Strings{"me@x.de"});
  }
}

TEST_F(HostilePage, WithAMegabyteOfLettersAndASignGivesNothing) {
  CalmWorld::Parse("<" + std::string(1'000'000, 'a') + "@" + std::string(1'000'000, 'b'));
  CalmWorld::Parse("<p>" + Repeated("a.", 1'000'000) + "@" + Repeated("b.", 1'000'000) + "<");
  EXPECT_TRUE(Addresses().empty());
}

TEST_F(HostilePage, WithAnAddressOfAMegabyteKeepsItWhole) {
  const std::string address = std::string(1'000'000, 'a') + "@x.de";
  CalmWorld::Parse("<p>" + address + "</p>");
  EXPECT_TRUE(Addresses() == Strings{address});
}

TEST_F(HostilePage, WithATitleOfTenMegabytesStoresItOnce) {
  CalmWorld::Parse("<title>" + std::string(10'000'000, 't') + "</title><p>a@x.de</p><p>b@x.de</p>");
  ASSERT_EQ(project.found.Count(), 2u);
  EXPECT_EQ(project.found.At(0).Title.size(), 10'000'000u);
  EXPECT_EQ(project.found.At(0).Title.data(), project.found.At(1).Title.data());
}

TEST_F(HostilePage, WithAMillionLinksQueuesThemAllInTheirOrder) {
  constexpr std::uint32_t kLinks = 1'000'000;
  std::string page;
  for (std::uint32_t i = 0; i < kLinks; ++i) page += "<a href=/" + std::to_string(i) + ">x</a>";
  EXPECT_TRUE(CalmWorld::Parse(page).result);
  EXPECT_TRUE(CalmWorld::Parse(page).result);  // each of them is found to be there
  const LinkQueue& queue = project.queues[1];
  ASSERT_EQ(queue.Count(), kLinks);
  for (std::uint32_t i = 0; i < kLinks; ++i) {
    if (queue.At(i).URL != "http://h/" + std::to_string(i)) FAIL() << queue.At(i).URL << " is number " << i;
  }
}

TEST_F(HostilePage, OfAnotherKindThanTextIsAnalysedAsText) {
  std::string picture = "\x89PNG\r\n\x1A\n";
  for (int i = 0; i < 1'000'000; ++i) picture += static_cast<char>(i * 2654435761u >> 24);
  picture += std::string("\0>a@x.de<\0", 10);
  EXPECT_TRUE(CalmWorld::Parse(picture).result);
  const Strings found = Addresses();
  EXPECT_EQ(std::count(found.begin(), found.end(), "a@x.de"), 1);
}

TEST_F(HostilePage, InUtf16GivesNoAddress) {
  std::string page;
  for (const char c : std::string("<p>a@x.de</p><a href=\"/x\">x</a>")) page += {c, '\0'};
  EXPECT_TRUE(CalmWorld::Parse(page).result);
  EXPECT_TRUE(Addresses().empty());
  EXPECT_TRUE(Queue(1).empty());
}

TEST_F(HostilePage, OfEveryKindAndOfAMegabyteComesToItsEnd) {
  for (const std::string& page : HostilePages(1 << 20))
    EXPECT_TRUE(CalmWorld().Parse(page).result) << page.substr(0, 40);
}

}  // namespace
}  // namespace quenlar
