// Answers that are slow, endless, torn or wrong, as the crawler's client meets them.
#include "hostile_web.h"

namespace quenlar {
namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kMegabytesForAPage = 24;  // a body at the limit of 8 MiB, and once more while it moves
constexpr std::size_t kBodyLimit = 8u << 20;

TEST_F(HostileWeb, WhatCannotBeConnectedToFailsByItsKind) {
  ExpectFailure("http://127.0.0.1:" + Fetch("/closed-port").body + "/", WebFailure::kNoConnection);
  ExpectFailure("http://no-such-host.invalid/", WebFailure::kNoName);
  ExpectFailure("http://255.255.255.255/", WebFailure::kNoConnection);
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, SilenceIsATimeout) {
  for (const char* path : {"/never", "/trickle?ms=60000"}) {
    WebRequest request = Request(path);
    request.silence_limit = milliseconds(600);
    EXPECT_EQ(Fetch(request).failure, WebFailure::kTimeout) << path;
  }
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, AByteNowAndThenIsATimeoutInTheEnd) {
  for (const char* path : {"/trickle?ms=20", "/trickle-head?ms=20"}) {
    WebRequest request = Request(path);
    request.whole_limit = milliseconds(800);
    const WebAnswer answer = Fetch(request);
    EXPECT_EQ(answer.failure, WebFailure::kTimeout) << path;
    EXPECT_GE(answer.duration, milliseconds(700)) << path;
  }
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, AStuckHostHoldsUpNoOther) {
  const auto stuck = HostsOfOneAddress("/never");
  for (std::size_t i = 0; i < 3; ++i) client_->Start(Request(stuck[i]), "stuck" + std::to_string(i));
  for (int i = 0; i < 20; ++i) ExpectOrdinaryService();
  for (std::size_t i = 0; i < 3; ++i) client_->Cancel("stuck" + std::to_string(i));
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, EndlessAndHugeBodiesAreCutAtTheLimitWithinBoundedMemory) {
  for (const char* path : {"/endless", "/two-gigabytes", "/chunks/endless", "/gzip/bomb"}) {
    ExpectMemoryBelow(kMegabytesForAPage, [&] {
      const WebAnswer answer = Fetch(path);
      EXPECT_EQ(answer.failure, WebFailure::kNone) << path << ": " << answer.message;
      EXPECT_TRUE(answer.truncated) << path;
      EXPECT_EQ(answer.body.size(), kBodyLimit) << path;
    });
  }
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, AnEndlessBodyThatDecodesToNothingFails) {
  ExpectMemoryBelow(kMegabytesForAPage, [&] { ExpectFailure("/gzip/empty-members", WebFailure::kBroken); });
}

TEST_F(HostileWeb, AnEndlessBodyThatIsNotWantedIsLeftAtOnce) {
  log_.on_head = [](const std::string&, const WebHead&) { return false; };
  for (const char* path : {"/endless", "/trickle?ms=60000", "/redirect/endless-body", "/unasked/brotli"}) {
    const WebAnswer answer = Fetch(path);
    EXPECT_EQ(answer.failure, WebFailure::kNone) << path << ": " << answer.message;
    EXPECT_EQ(answer.body, "") << path;
    EXPECT_NE(answer.head.status, 0) << path;
  }
  log_.on_head = nullptr;
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, AnImpossibleContentLengthIsBroken) {
  for (const char* path : {"/length/negative", "/length/plus", "/length/huge", "/length/wrapping", "/length/word",
                           "/length/list", "/length/none", "/length/two-different", "/length/two-alike"}) {
    ExpectBroken(path);
  }
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, ABodyThatIsCutShortIsBrokenAndBringsWhatThereIs) {
  for (const char* path : {"/short", "/reset", "/reset?length=0"}) {
    const WebAnswer answer = Fetch(path);
    EXPECT_EQ(answer.failure, WebFailure::kBroken) << path;
    EXPECT_FALSE(answer.truncated) << path;
    if (platform_->HttpIsStrict()) {
      EXPECT_GT(answer.body.size(), 0u) << path;
    }
  }
  ExpectPage("/until-close", "to the end");
}

TEST_F(HostileWeb, ChunksAreJoinedAndBadOnesAreBroken) {
  ExpectPage("/chunks/right", "hello world");
  ExpectPage("/chunks/trailers", "hello");
  ExpectPage("/chunks/one-byte", std::string(10'000, 'x'));
  for (const char* path : {"/chunks/bad-size", "/chunks/negative-size", "/chunks/overflow", "/chunks/wrapping",
                           "/chunks/size-too-small", "/chunks/no-last", "/chunks/cut", "/chunks/no-chunks"}) {
    ExpectBroken(path);
  }
  ExpectMemoryBelow(kMegabytesForAPage, [&] { ExpectBroken("/chunks/endless-trailers"); });
}

TEST_F(HostileWeb, CompressedBodiesArriveAsTheyWereBefore) {
  const std::string text = "write to someone@mail.example.org";
  for (const char* path :
       {"/gzip/right", "/gzip/x-gzip", "/gzip/followed", "/deflate/zlib", "/deflate/raw", "/identity"}) {
    ExpectPage(path, text);
  }
  ExpectPage("/gzip/two-members", text + text);
  for (const char* path : {"/gzip/cut", "/gzip/no-gzip", "/gzip/corrupt", "/deflate/cut", "/nested/one-line",
                           "/nested/two-lines", "/unasked/brotli", "/unasked/zstd", "/unasked/unknown"}) {
    ExpectFailure(path, WebFailure::kBroken);
  }
  ExpectBroken("/unasked/transfer");
}

TEST_F(HostileWeb, AGarbageHeadIsBroken) {
  for (const char* path :
       {"/start/garbage", "/start/http09", "/start/other-protocol", "/start/no-code", "/start/code-too-long",
        "/start/no-version", "/start/nothing", "/start/cut-in-line", "/start/cut-in-head"}) {
    ExpectBroken(path);
  }
  ExpectMemoryBelow(kMegabytesForAPage, [&] {
    ExpectBroken("/header/line-of-a-megabyte");
    ExpectFailure("/header/many?count=10000", WebFailure::kBroken);
    if (!platform_->HttpIsStrict()) return;
    for (const char* path : {"/header/endless", "/header/endless-line", "/interim/endless"}) ExpectBroken(path);
  });
  ExpectOrdinaryService();
}

TEST_F(HostileWeb, EveryFieldOfTheFinalHeadIsThereAndNoneOfTheInterimOnes) {
  const WebAnswer many = Fetch("/header/many?count=500");
  EXPECT_EQ(many.head.fields.size(), 501u);
  if (!platform_->HttpIsStrict()) return;
  const WebAnswer answer = Fetch("/interim");
  EXPECT_EQ(answer.head.status, 200);
  EXPECT_EQ(answer.head.Find("Link"), nullptr);
  EXPECT_EQ(answer.body, "page");
}

TEST_F(HostileWeb, EveryStatusIsAnAnswer) {
  for (const int status : {200, 203, 400, 403, 404, 410, 429, 500, 503}) {
    const WebAnswer answer = Fetch("/status?code=" + std::to_string(status));
    EXPECT_EQ(answer.failure, WebFailure::kNone) << status;
    EXPECT_EQ(answer.head.status, status);
  }
  EXPECT_EQ(Fetch("/no-content").head.status, 204);
  EXPECT_EQ(Fetch("/401").head.status, 401);
}

TEST_F(HostileWeb, LocationsComeAsTheyStand) {
  for (const auto& [path, location] :
       {std::pair{"/redirect/file", "file:///etc/passwd"}, std::pair{"/redirect/javascript", "javascript:alert(1)"}}) {
    const WebAnswer answer = Fetch(path);
    ASSERT_NE(answer.head.Find("location"), nullptr) << path;
    EXPECT_EQ(*answer.head.Find("location"), location);
  }
}

}  // namespace
}  // namespace quenlar
