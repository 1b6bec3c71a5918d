#include "cli/live_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fake_console.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr LiveView::Time kNow{std::chrono::hours(1)};

LiveView::Figures Figures() {
  LiveView::Figures figures;
  figures.crawl.pages = 120;
  figures.crawl.fresh = 7;
  figures.addresses = 9;
  figures.left = 40;
  figures.requests = 3;
  figures.hosts = 5;
  return figures;
}

TEST(LiveView, SaysHowFarTheRunIs) {
  EXPECT_THAT(LiveText(Figures(), 12.5, 100),
              ElementsAre("9 addresses (7 new), 120 pages, 12.5 a second, 40 left to visit",
                          "3 requests under way on 5 hosts"));
}

TEST(LiveView, NamesTheSlowestHosts) {
  LiveView::Figures figures = Figures();
  figures.slowest = {{"https://slow.example", 8.24}, {"http://other.example:81", 1}};
  EXPECT_EQ(LiveText(figures, 1, 100)[1],
            "3 requests under way on 5 hosts; slowest: slow.example 8.2 s other.example:81 1.0 s");
}

TEST(LiveView, SaysForWhomItWaits) {
  LiveView::Figures figures = Figures();
  figures.waiting_for = "waiting 90 s for https://a.example";
  EXPECT_EQ(LiveText(figures, 1, 100)[1], "waiting 90 s for https://a.example");
}

TEST(LiveView, EstimatesTheRestWhereABudgetIsSet) {
  LiveView::Figures figures = Figures();
  figures.pages = 1000;
  EXPECT_THAT(LiveText(figures, 10, 200)[0], HasSubstr(", about 4 s left")) << "only 40 pages are known";
  figures.left = 100'000;
  EXPECT_THAT(LiveText(figures, 10, 200)[0], HasSubstr(", about 1 min left"));
  figures.minutes_left = 90.0;
  EXPECT_THAT(LiveText(figures, 10, 200)[0], HasSubstr(", 1 h 30 min left"));
}

TEST(LiveView, LinesAreCutToTheTerminal) {
  for (const std::string& line : LiveText(Figures(), 1, 20)) EXPECT_LE(line.size(), 19u);
}

TEST(LiveView, NothingOfAPageSteersTheTerminal) {
  LiveView::Figures figures = Figures();
  figures.slowest = {{"https://\x1B[2Jevil", 1}};
  EXPECT_EQ(LiveText(figures, 1, 200)[1].find('\x1B'), std::string::npos);
}

TEST(LiveView, DrawsOnATerminalAndGivesItsLinesBack) {
  FakeConsole console;
  console.error_is_terminal = true;
  LiveView view(console);
  view.Draw(Figures(), kNow);
  EXPECT_THAT(console.errors, HasSubstr("9 addresses"));
  console.errors.clear();
  view.Clear();
  EXPECT_EQ(console.errors, "\r\x1B[K\x1B[A\r\x1B[K");
  view.Clear();
  EXPECT_EQ(console.errors, "\r\x1B[K\x1B[A\r\x1B[K") << "once";
}

TEST(LiveView, DrawsNothingElsewhere) {
  FakeConsole console;
  LiveView view(console);
  view.Draw(Figures(), kNow);
  EXPECT_EQ(console.errors, "");
}

}  // namespace
}  // namespace quenlar
