#include "engine/collection_end.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "run/end_reasons.h"

namespace quenlar {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

CollectionEnd EndBy(CrawlEnd reason) {
  CollectionEnd end;
  end.end = reason;
  end.opened = true;
  return end;
}

TEST(EndOfACollection, BeginsWithTheReasonInTheWordsOfTheWindow) {
  const struct {
    CrawlEnd end;
    const char* text;
  } kCases[] = {{CrawlEnd::kFinished, kEndAllParsed},   {CrawlEnd::kNothingToDo, kEndAllParsed},
                {CrawlEnd::kStopped, kEndStopButton},   {CrawlEnd::kOffLine, kEndOffLine},
                {CrawlEnd::kAddresses, kEndStopNumber}, {CrawlEnd::kFailed, "None of the starts could be visited !"}};
  for (const auto& [end, text] : kCases) EXPECT_THAT(EndText(EndBy(end), {}), StartsWith(text));
}

TEST(EndOfACollection, TellsWhatWasFound) {
  CollectionEnd end = EndBy(CrawlEnd::kStopped);
  end.figures.fresh = 1;
  end.figures.pages = 2;
  end.addresses = 30;
  end.left = 1;
  EXPECT_EQ(EndText(end, {}), std::string(kEndStopButton) +
                                  "\r\n\r\n1 new address on 2 pages. The collection has 30 addresses, and 1 page left "
                                  "to visit.");
}

TEST(EndOfACollection, SaysWhatWasLeftOutAndWhy) {
  CollectionEnd end = EndBy(CrawlEnd::kFinished);
  end.refusals = {{"depth", 3}, {"private", 1}, {"robots", 2}, {"scope", 4}, {"trap", 5}, {"address", 6}};
  end.left = 7;
  end.figures.failed = 8;
  end.figures.protected_count = 9;
  end.figures.suppressed = 10;
  end.figures.filtered = 11;
  EXPECT_THAT(EndText(end, {}), HasSubstr("\r\n\r\nLeft out:"
                                          "\r\n3 pages more than 5 clicks away from a start"
                                          "\r\n1 page of private places that a public page leads to"
                                          "\r\n2 pages that robots.txt keeps programs away from"
                                          "\r\n4 pages outside of what links may lead to"
                                          "\r\n5 pages whose path repeats itself"
                                          "\r\n7 pages of hosts that have had their 1000 pages or do not answer for now"
                                          "\r\n8 pages that could not be read"
                                          "\r\n9 addresses that their owners hide from programs"
                                          "\r\n10 addresses that the suppression list holds"
                                          "\r\n11 addresses that the filters drop"));
  WebSettings listing;
  listing.list_protected = 1;
  EXPECT_THAT(EndText(end, listing), Not(HasSubstr("hide from programs")));
}

TEST(EndOfACollection, NamesTwelveNoticesAtMost) {
  CollectionEnd end = EndBy(CrawlEnd::kFinished);
  for (int i = 1; i <= 15; ++i) end.notices.push_back("Notice " + std::to_string(i));
  const std::string text = EndText(end, {});
  EXPECT_THAT(text, HasSubstr("\r\nNotice 12.\r\nand 3 more."));
  EXPECT_THAT(text, Not(HasSubstr("Notice 13")));
}

TEST(EndOfACollection, WithoutACollectionSaysOnlyWhy) {
  CollectionEnd end;
  end.status = {StatusKind::kDenied, "/q/data/x.sqlite: no permission"};
  EXPECT_EQ(EndText(end, {}), "/q/data/x.sqlite: no permission !");
}

TEST(StageOfACollection, NamesTheHostAndWhatItWaitsFor) {
  CollectionMoment moment;
  moment.hosts = 2;
  moment.left = 30;
  EXPECT_EQ(StageText(moment), "Looking for pages, 2 hosts under way, 30 pages left");
  moment.pausing = HostUnderWay{"https://www.cars.example", 0.5};
  EXPECT_EQ(StageText(moment),
            "Pause of 0.5 s before the next page of www.cars.example, 2 hosts under way, 30 pages left");
  moment.asked = HostUnderWay{"http://127.0.0.1:8080", 12.34};
  EXPECT_EQ(StageText(moment), "Reading 127.0.0.1:8080 (12.4 s), 2 hosts under way, 30 pages left");
  moment.waiting_for = "waiting 12 s for https://www.cars.example";
  EXPECT_EQ(StageText(moment), "Nothing else is left: waiting 12 s for https://www.cars.example");
}

}  // namespace
}  // namespace quenlar
