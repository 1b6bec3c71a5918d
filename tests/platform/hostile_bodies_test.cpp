// Servers that are not there, do not answer, or send bodies that are endless, torn or not what they claim.
#include "hostile_server.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;

// A body at the limit of 64 MiB, and half of it once more while it moves.
constexpr std::uint64_t kMegabytesForAPage = 112;
// No body at all.
constexpr std::uint64_t kMegabytesForNothing = 16;

TEST_F(HostileServer, ARefusedConnectionFails) {
  ExpectFailure("http://127.0.0.1:" + Fetch("/closed-port").body + "/");
  ExpectOrdinaryService();
}

TEST_F(HostileServer, AnUnknownHostFails) { ExpectFailure("http://no-such-host.invalid/"); }

TEST_F(HostileServer, AnUnreachableHostFails) { ExpectFailure("http://255.255.255.255/"); }

TEST_F(HostileServer, AServerThatNeverAnswersIsWaitedForUntilItIsCancelled) {
  fetcher_->Start(Address("/never"), "stuck");
  for (int i = 0; i < 10; ++i) ExpectOrdinaryService();
  EXPECT_EQ(log_.Count("0 stuck") + log_.Count("done stuck") + log_.Count("14 stuck"), 0u);
  fetcher_->Cancel("stuck");
  ExpectOrdinaryService();
  EXPECT_EQ(log_.Count("0 stuck") + log_.Count("done stuck"), 0u);
}

TEST_F(HostileServer, AByteNowAndThenIsWaitedForUntilItIsCancelled) {
  fetcher_->Start(Address("/trickle?ms=5"), "body");
  fetcher_->Start(Address("/trickle-head?ms=5"), "head");
  ASSERT_TRUE(PumpUntil(loop_, [&] { return log_.Count("14 body") == 1; }));
  for (int i = 0; i < 10; ++i) ExpectPage("/slow-page?ms=20", "slow");
  EXPECT_EQ(log_.Count("14 body"), 1u);
  EXPECT_EQ(log_.Count("0 body") + log_.Count("done body"), 0u);
  fetcher_->Cancel("body");
  fetcher_->Cancel("head");
  ExpectOrdinaryService();
  EXPECT_EQ(log_.Count("0 body") + log_.Count("done body") + log_.Count("0 head") + log_.Count("done head"), 0u);
}

TEST_F(HostileServer, AStuckPageDoesNotHoldUpTheOthers) {
  for (int i = 0; i < 20; ++i) fetcher_->Start(Address("/never"), "stuck" + std::to_string(i));
  for (int i = 0; i < 50; ++i) ExpectOrdinaryService();
  for (int i = 0; i < 20; ++i) fetcher_->Cancel("stuck" + std::to_string(i));
}

TEST_F(HostileServer, CancellingManyTimesOverLeavesNothingBehind) {
  for (int round = 0; round < 200; ++round) {
    for (int i = 0; i < 3; ++i) fetcher_->Start(Address(i == 0 ? "/never" : "/trickle?ms=1"), "k" + std::to_string(i));
    loop_.Yield();
    for (int i = 0; i < 3; ++i) fetcher_->Cancel("k" + std::to_string(i));
  }
  ExpectOrdinaryService();
}

TEST_F(HostileServer, AnEndlessBodyFailsAtTheLimitWithinBoundedMemory) {
  ExpectMemoryBelow(kMegabytesForAPage, [&] { ExpectFailure("/endless"); });
}

TEST_F(HostileServer, AnEndlessChunkedBodyFailsAtTheLimitWithinBoundedMemory) {
  ExpectMemoryBelow(kMegabytesForAPage, [&] { ExpectFailure("/chunks/endless"); });
}

TEST_F(HostileServer, PagesThatFailedTogetherKeepNoMemory) {
  constexpr std::size_t kPages = 8;
  ExpectMemoryBelow(kMegabytesForNothing, [&] {
    const std::size_t finished = log_.Finished();
    for (std::size_t i = 0; i < kPages; ++i) fetcher_->Start(Address("/endless"), "page" + std::to_string(i));
    ASSERT_TRUE(PumpUntil(loop_, [&] { return log_.Finished() == finished + kPages; }));
    platform_->ForgetPeakMemory();  // what they held while they came is not the question
    ExpectOrdinaryService();
  });
  for (std::size_t i = 0; i < kPages; ++i) EXPECT_EQ(log_.Count("0 page" + std::to_string(i)), 1u);
}

TEST_F(HostileServer, APageOfTwoGigabytesFailsBeforeItIsRead) {
  ExpectMemoryBelow(kMegabytesForNothing, [&] { ExpectFailure("/two-gigabytes"); });
}

TEST_F(HostileServer, APageAtTheLimitArrivesAndOneByteMoreFails) {
  const Fetched page = Fetch("/exactly?bytes=" + std::to_string(kMaxBodyBytes));
  EXPECT_FALSE(page.failed);
  EXPECT_EQ(page.body.size(), kMaxBodyBytes);
  ExpectFailure("/exactly?bytes=" + std::to_string(kMaxBodyBytes + 1));
}

TEST_F(HostileServer, AnImpossibleContentLengthFailsAndIsNotAllocated) {
  ExpectMemoryBelow(kMegabytesForNothing, [&] {
    for (const char* path : {"/length/negative", "/length/plus", "/length/huge", "/length/wrapping", "/length/word",
                             "/length/list", "/length/two-different", "/length/two-alike"}) {
      ExpectFailure(path);
    }
  });
  ExpectOrdinaryService();
}

TEST_F(HostileServer, AnEmptyContentLengthFails) { ExpectFailure("/length/none"); }

TEST_F(HostileServer, WhatFollowsTheAnnouncedLengthIsNotPartOfThePage) {
  ExpectPageOfStrictHttp("/length/not-all-read", "page");
  ExpectOrdinaryService();
}

TEST_F(HostileServer, ABodyWithoutALengthEndsWithTheConnection) { ExpectPage("/until-close", "to the end"); }

TEST_F(HostileServer, ABodyShorterThanAnnouncedFails) { ExpectFailure("/short"); }

TEST_F(HostileServer, AResetInTheBodyFails) {
  ExpectFailure("/reset");
  ExpectFailure("/reset?length=0");
  ExpectOrdinaryService();
}

TEST_F(HostileServer, ChunksAreJoined) {
  ExpectPage("/chunks/right", "hello world");
  ExpectPage("/chunks/extensions", "hello");
  ExpectPage("/chunks/one-byte", std::string(10'000, 'x'));
}

TEST_F(HostileServer, TrailersAreAccepted) { ExpectPage("/chunks/trailers", "hello"); }

TEST_F(HostileServer, BadChunksFail) {
  for (const char* path : {"/chunks/bad-size", "/chunks/negative-size", "/chunks/overflow", "/chunks/wrapping",
                           "/chunks/size-too-small", "/chunks/no-last", "/chunks/cut", "/chunks/no-chunks"}) {
    ExpectRefusal(path);
  }
  ExpectOrdinaryService();
}

TEST_F(HostileServer, EndlessTrailersFailWithinBoundedMemory) {
  ExpectMemoryBelow(kMegabytesForNothing, [&] { ExpectRefusal("/chunks/endless-trailers"); });
}

TEST_F(HostileServer, CompressedPagesArriveAsTheyWereBefore) {
  const std::string text = "write to someone@mail.example.org";
  for (const char* path :
       {"/gzip/right", "/gzip/x-gzip", "/gzip/followed", "/deflate/zlib", "/deflate/raw", "/identity"}) {
    ExpectPage(path, text);
  }
  ExpectPage("/gzip/two-members", text + text);
  ExpectPage("/gzip/nothing", "");
}

TEST_F(HostileServer, TornOrDamagedCompressionFails) {
  for (const char* path : {"/gzip/cut", "/gzip/no-gzip", "/gzip/corrupt", "/deflate/cut"}) ExpectFailure(path);
}

TEST_F(HostileServer, ACompressionBombFailsAtTheLimitOfDecodedBytes) {
  ExpectMemoryBelow(kMegabytesForAPage, [&] { ExpectFailure("/gzip/bomb"); });
}

TEST_F(HostileServer, AnEndlessBodyThatDecodesToNothingFails) {
  ExpectMemoryBelow(kMegabytesForNothing, [&] { ExpectFailure("/gzip/empty-members"); });
}

TEST_F(HostileServer, NestedEncodingsFail) {
  ExpectFailure("/nested/one-line");
  ExpectFailure("/nested/two-lines");
}

TEST_F(HostileServer, EncodingsThatWereNotAskedForFail) {
  for (const char* path : {"/unasked/brotli", "/unasked/zstd", "/unasked/unknown", "/unasked/transfer"}) {
    ExpectFailure(path);
  }
  ExpectOrdinaryService();
}

TEST_F(HostileServer, APictureSentAsAPageArrivesByteForByte) {
  const Fetched picture = Fetch("/binary");
  EXPECT_FALSE(picture.failed);
  EXPECT_EQ(picture.body.size(), 1u << 20);
  EXPECT_NE(picture.body.find('\0'), std::string::npos);
}

}  // namespace
}  // namespace quenlar
