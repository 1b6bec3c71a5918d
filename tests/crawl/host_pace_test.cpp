#include "crawl/host_pace.h"

#include <gtest/gtest.h>

namespace quenlar {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr CrawlTime kNow{hours(1000)};
constexpr std::int64_t kUtc = 784111777;  // Sun, 06 Nov 1994 08:49:37 GMT

CrawlDuration PauseOf(const HostPace& pace) { return std::chrono::duration_cast<CrawlDuration>(pace.ready() - kNow); }

TEST(HostPace, ANewHostMayBeAskedAtOnce) { EXPECT_LE(HostPace(seconds(1)).ready(), kNow); }

TEST(HostPace, ThePauseIsTheLongestOfDelayCrawlDelayAndTheLastAnswersTime) {
  HostPace pace(seconds(1));
  pace.OnAnswer(kNow, milliseconds(200));
  EXPECT_EQ(PauseOf(pace), seconds(1));
  pace.OnAnswer(kNow, seconds(3));
  EXPECT_EQ(PauseOf(pace), seconds(3));
  pace.SetCrawlDelay(seconds(10));
  pace.OnAnswer(kNow, seconds(3));
  EXPECT_EQ(PauseOf(pace), seconds(10));
}

TEST(HostPace, WithoutADelayTheServerIsOnesOwnAndItsTimeMakesNoPause) {
  HostPace pace(seconds(0));
  pace.OnAnswer(kNow, seconds(3));
  EXPECT_EQ(PauseOf(pace), seconds(0));
  pace.SetCrawlDelay(seconds(2));
  pace.OnAnswer(kNow, seconds(3));
  EXPECT_EQ(PauseOf(pace), seconds(2)) << "a Crawl-delay holds";
}

TEST(HostPace, ABusyHostIsParkedForAsLongAsItAsks) {
  HostPace pace(seconds(1));
  pace.OnBusy(kNow, milliseconds(10), seconds(90));
  EXPECT_EQ(PauseOf(pace), seconds(90));
  EXPECT_TRUE(pace.parked());
  pace.OnBusy(kNow, milliseconds(10), hours(5));
  EXPECT_EQ(PauseOf(pace), hours(1)) << "an hour at most";
  pace.OnBusy(kNow, milliseconds(10), seconds(0));
  EXPECT_EQ(PauseOf(pace), seconds(1)) << "the usual pause at least";
}

TEST(HostPace, WithoutAWordFromTheHostThePauseDoublesUpToFiveMinutes) {
  HostPace pace(seconds(0));
  std::vector<std::int64_t> pauses;
  for (int i = 0; i < 10; ++i) {
    pace.OnBusy(kNow, milliseconds(10), std::nullopt);
    pauses.push_back(std::chrono::duration_cast<seconds>(PauseOf(pace)).count());
  }
  EXPECT_EQ(pauses, (std::vector<std::int64_t>{2, 4, 8, 16, 32, 64, 128, 256, 300, 300}));
}

TEST(HostPace, TheDoublingBeginsAtThePauseAtHand) {
  HostPace pace(seconds(7));
  pace.OnBusy(kNow, milliseconds(10), std::nullopt);
  EXPECT_EQ(PauseOf(pace), seconds(14));
}

TEST(HostPace, OneGoodAnswerMakesThePauseNormal) {
  HostPace pace(seconds(1));
  pace.OnBusy(kNow, milliseconds(10), std::nullopt);
  pace.OnBusy(kNow, milliseconds(10), std::nullopt);
  pace.OnAnswer(kNow, milliseconds(10));
  EXPECT_EQ(PauseOf(pace), seconds(1));
  EXPECT_FALSE(pace.parked());
  pace.OnBusy(kNow, milliseconds(10), std::nullopt);
  EXPECT_EQ(PauseOf(pace), seconds(2));
}

TEST(HostPace, AFailureDoesNotMakeThePauseOfABusyHostNormal) {
  HostPace pace(seconds(1));
  pace.OnBusy(kNow, milliseconds(10), std::nullopt);
  pace.OnFailure(kNow, milliseconds(10));
  EXPECT_EQ(PauseOf(pace), seconds(1));
  pace.OnBusy(kNow, milliseconds(10), std::nullopt);
  EXPECT_EQ(PauseOf(pace), seconds(4));
}

TEST(RetryAfter, TakesSeconds) {
  EXPECT_EQ(RetryAfter("0", kUtc), seconds(0));
  EXPECT_EQ(RetryAfter("120", kUtc), seconds(120));
  EXPECT_EQ(RetryAfter("86400", kUtc), hours(1));
  EXPECT_EQ(RetryAfter("99999999999999999999", kUtc), hours(1));
}

TEST(RetryAfter, TakesADate) {
  EXPECT_EQ(RetryAfter("Sun, 06 Nov 1994 08:50:37 GMT", kUtc), minutes(1));
  EXPECT_EQ(RetryAfter("Sun, 06 Nov 1994 08:00:00 GMT", kUtc), seconds(0)) << "it has passed";
  EXPECT_EQ(RetryAfter("Tue, 06 Dec 1994 08:00:00 GMT", kUtc), hours(1));
}

TEST(RetryAfter, IsNothingWhereItIsNeither) {
  for (const char* const value : {"", "soon", "-5", "1.5", "Sun, 31 Feb 1994 08:50:37 GMT",
                                  "Sun, 06 Foo 1994 08:50:37 GMT", "Sun, 06 Nov 1994 08:50:37 CET"}) {
    EXPECT_EQ(RetryAfter(value, kUtc), std::nullopt) << value;
  }
}

}  // namespace
}  // namespace quenlar
