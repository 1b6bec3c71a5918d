#include "project/data_file.h"

#include <gmock/gmock.h>

#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using Urls = std::vector<std::string>;

constexpr const char* kPath = "/q/data/x.dat";
const std::string kHeader = "Brenvy Quenlar Pro, http://www.quenlar.example\r\n";
const std::string kMarkers = "[A]\r\n[B]\r\n[C]\r\n[D]\r\n[E]\r\n[M]\r\n[F]\r\n[G]\r\n[H]\r\n[I]\r\n[J]\r\n";

Urls All(const LinkQueue& queue) {
  Urls urls;
  for (std::uint32_t i = 0; i < queue.Count(); ++i) urls.emplace_back(queue.At(i).URL);
  return urls;
}

class DataFileTest : public testing::Test {
 protected:
  DataFileTest() { files.AddFolder("/q/data"); }

  Status Write() { return WriteDataFile(files, code_page, loop, kPath, queues, Pump::Pace::kAlways); }
  std::string Written() {
    EXPECT_TRUE(Write().ok());
    return files.Contents(kPath).value_or("nothing");
  }
  DataFileContents Read(const std::string& contents) {
    files.Put(kPath, contents);
    for (LinkQueue& queue : queues) queue.Clear();
    added = 0;
    return ReadDataFile(files, code_page, kPath, queues, [this] { return ++added < stop_after; });
  }
  // Queue 'A' to 'J' or 'M'.
  Urls Queue(char letter) {
    for (int level = 0; level < kLevels; ++level) {
      if (SectionLetter(level) == letter) return All(queues[level]);
    }
    return {};
  }
  std::size_t Total() {
    std::size_t total = 0;
    for (const LinkQueue& queue : queues) total += queue.Count();
    return total;
  }

  InMemoryFiles files;
  FakeCodePage code_page;
  FakeEventLoop loop;
  LinkQueues queues;
  int added = 0, stop_after = 1 << 30;
};

TEST_F(DataFileTest, AllQueuesFullyVisitedLeaveTheHeaderAndTheElevenMarkers) {
  for (LinkQueue& queue : queues) {
    queue.AddIfNew("http://done");
    queue.Finish(queue.StartNext());
  }
  EXPECT_EQ(Written(), kHeader + kMarkers);
  EXPECT_EQ(loop.yields(), 0);
}

TEST_F(DataFileTest, UnvisitedLinksStandBehindTheirMarkersWithMBetweenEAndF) {
  for (int level = 0; level < kLevels; ++level) {
    queues[level].AddIfNew("done");
    queues[level].Finish(queues[level].StartNext());
    queues[level].AddIfNew(std::string("http://") + SectionLetter(level));
  }
  queues[10].AddIfNew("http://last");
  EXPECT_EQ(Written(),
            kHeader +
                "[A]\r\nhttp://A\r\n[B]\r\nhttp://B\r\n[C]\r\nhttp://C\r\n[D]\r\nhttp://D\r\n[E]\r\nhttp://E\r\n"
                "[M]\r\nhttp://M\r\n[F]\r\nhttp://F\r\n[G]\r\nhttp://G\r\n[H]\r\nhttp://H\r\n[I]\r\nhttp://I\r\n"
                "[J]\r\nhttp://J\r\nhttp://last\r\n");
  EXPECT_EQ(loop.yields(), 12);
}

TEST_F(DataFileTest, LinksInFlightAreWrittenBeforeTheNextOnes) {
  for (const char* url : {"0", "1", "2", "3", "4"}) queues[0].AddIfNew(url);
  for (int i = 0; i < 4; ++i) queues[0].StartNext();
  queues[0].Finish(0);
  queues[0].Finish(2);
  EXPECT_NE(Written().find("[M]\r\n1\r\n3\r\n4\r\n[F]"), std::string::npos);
}

TEST_F(DataFileTest, FileIsInTheCodePage) {
  queues[1].AddIfNew("http://m\xC3\xBCller/\xE2\x82\xAC\xE2\x98\x85");
  EXPECT_NE(Written().find("[A]\r\nhttp://m\xFCller/\x80?\r\n"), std::string::npos);
  Read(Written());
  EXPECT_THAT(Queue('A'), ElementsAre("http://m\xC3\xBCller/\xE2\x82\xAC?"));
}

TEST_F(DataFileTest, LinkWithALineEndStaysOneLine) {
  queues[1].AddIfNew("http://x/a\r\n[M]\nhttp://evil\rb\tc");
  const std::string text = Written();
  EXPECT_NE(text.find("[A]\r\nhttp://x/a%0D%0A[M]%0Ahttp://evil%0Db\tc\r\n[B]"), std::string::npos);
  Read(text);
  EXPECT_EQ(Total(), 1u);
}

TEST_F(DataFileTest, LinksFoundWhileItIsWrittenWaitForTheNextTime) {
  queues[0].AddIfNew("a");
  queues[10].AddIfNew("b");
  int pumps = 0;
  loop.OnPump([&] {
    for (LinkQueue& queue : queues) queue.AddIfNew("later" + std::to_string(++pumps));
  });
  EXPECT_EQ(Written().find("later"), std::string::npos);
}

TEST_F(DataFileTest, LevelEmptiedWhileItIsWrittenIsLeftOut) {
  for (const char* url : {"a", "b", "c"}) queues[1].AddIfNew(url);
  queues[2].AddIfNew("d");
  loop.OnPump([&] {
    if (loop.yields() == 2) queues[1].Clear();
  });
  EXPECT_NE(Written().find("[A]\r\na\r\n[B]\r\nd\r\n[C]"), std::string::npos);
}

TEST_F(DataFileTest, QueueOfMoreThan32768LinksOverflowsBeforeAnythingIsTouched) {
  files.Put(kPath, "old");
  for (std::uint32_t i = 0; i <= kMaxWritten; ++i) queues[5].AddIfNew(std::to_string(i));
  files.FailCall(0);
  const Status status = Write();
  EXPECT_EQ(status.kind(), StatusKind::kLimit);
  EXPECT_EQ(status.message(), "Overflow !");
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(files.Contents(kPath), "old");
}

TEST_F(DataFileTest, QueueOf32768LinksIsWrittenAndReadBack) {
  for (std::uint32_t i = 0; i < kMaxWritten; ++i) queues[5].AddIfNew("http://x.de/" + std::to_string(i));
  const Urls before = All(queues[5]);
  EXPECT_EQ(Read(Written()), DataFileContents::kLoaded);
  EXPECT_EQ(Queue('E'), before);
  EXPECT_EQ(Total(), kMaxWritten);
  EXPECT_EQ(queues[5].Next(), 0u);
}

TEST_F(DataFileTest, EveryFailingCallLeavesTheOldFileWhole) {
  for (int i = 0; i < 20'000; ++i) queues[3].AddIfNew("http://x.de/" + std::to_string(i));
  files.FailCall(0);
  (void)Written();
  const int calls = files.calls();
  ASSERT_GT(calls, 4);
  for (int call = 1; call <= calls; ++call) {
    files.Put(kPath, "old");
    files.FailCall(call, StatusKind::kFull);
    EXPECT_EQ(Write().kind(), StatusKind::kFull) << call;
    EXPECT_EQ(files.Contents(kPath), "old") << call;
  }
}

TEST_F(DataFileTest, EverySectionIsReadIntoItsQueue) {
  EXPECT_EQ(Read(kHeader + "[A]\r\na\r\n[B]\r\nb\r\n[C]\r\nc\r\n[D]\r\nd\r\n[E]\r\ne\r\n[M]\r\nm1\r\nm2\r\n[F]\r\nf\r\n"
                           "[G]\r\ng\r\n[H]\r\nh\r\n[I]\r\ni\r\n[J]\r\nj\r\n"),
            DataFileContents::kLoaded);
  for (const char letter : std::string("ABCDEFGHIJ")) {
    EXPECT_THAT(Queue(letter), ElementsAre(std::string(1, static_cast<char>(letter + ('a' - 'A'))))) << letter;
  }
  EXPECT_THAT(Queue('M'), ElementsAre("m1", "m2"));
  EXPECT_EQ(queues[0].At(0).number, 1);
  EXPECT_EQ(added, 12);
}

TEST_F(DataFileTest, MarkersOutOfOrderBecomeLinksOfTheCurrentQueue) {
  Read(kHeader + "[A]\r\n[C]\r\nx\r\n[M]rest\r\n[B]\r\n[E]\r\n[C]\r\n");
  EXPECT_THAT(Queue('A'), ElementsAre("[C]", "x", "[M]rest"));
  EXPECT_THAT(Queue('B'), ElementsAre("[E]"));
  EXPECT_THAT(Queue('C'), IsEmpty());
  Read(kHeader + "[E]\r\n[F]\r\ny\r\n[M]\r\nz\r\n[F]\r\nf\r\n");  // M stands between E and F
  EXPECT_THAT(Queue('E'), ElementsAre("[F]", "y"));
  EXPECT_THAT(Queue('M'), ElementsAre("z"));
  EXPECT_THAT(Queue('F'), ElementsAre("f"));
}

TEST_F(DataFileTest, EarlierOrRepeatedMarkerGoesBackToItsSection) {
  Read(kHeader + "[C]\r\nc\r\n[C]\r\nc2\r\n[A]\r\na\r\n[B]\r\n[J]\r\n");
  EXPECT_THAT(Queue('C'), ElementsAre("c", "c2"));
  EXPECT_THAT(Queue('A'), ElementsAre("a"));
  EXPECT_THAT(Queue('B'), ElementsAre("[J]"));
}

TEST_F(DataFileTest, FirstMarkerMayBeAnyOfThem) {
  Read(kHeader + "[G]\r\ng\r\n");
  EXPECT_THAT(Queue('G'), ElementsAre("g"));
}

TEST_F(DataFileTest, LinesBeforeAnyMarkerAndInTheLastSectionGoToQueueJ) {
  Read(kHeader + "early\r\n[J]\r\nlate\r\n[J]\r\n[K]\r\n[a]\r\n");
  EXPECT_THAT(Queue('J'), ElementsAre("early", "late", "[K]", "[a]"));
  Read(kHeader + "[J]\r\n[A]\r\na\r\n");
  EXPECT_THAT(Queue('A'), ElementsAre("a"));
}

TEST_F(DataFileTest, LineThatBeginsWithAMarkerIsThatMarker) {
  Read(kHeader + "[E]\r\n[M]http://x\r\nm\r\n");
  EXPECT_THAT(Queue('E'), IsEmpty());
  EXPECT_THAT(Queue('M'), ElementsAre("m"));
}

TEST_F(DataFileTest, SearchResultThatLooksLikeAMarkerIsReadBackByTheMarkerRules) {
  queues[0].AddIfNew("http://one");
  queues[0].AddIfNew("[F]x");
  queues[0].AddIfNew("http://two");
  Read(Written());
  EXPECT_THAT(Queue('M'), ElementsAre("http://one"));
  EXPECT_THAT(Queue('F'), ElementsAre("http://two"));
}

TEST_F(DataFileTest, UrlTwiceInOneSectionIsLoadedOnceAndInTwoSectionsTwice) {
  Read(kHeader + "[A]\r\nx\r\nx\r\nX\r\n[B]\r\nx\r\n");
  EXPECT_THAT(Queue('A'), ElementsAre("x", "X"));
  EXPECT_THAT(Queue('B'), ElementsAre("x"));
  EXPECT_EQ(added, 4);
}

TEST_F(DataFileTest, LinesMayEndInLfAloneAndEmptyLinesAreLines) {
  EXPECT_EQ(Read("Brenvy Quenlar Pro, http://www.quenlar.example\n[A]\na\n\nb\r\nlast"), DataFileContents::kLoaded);
  EXPECT_THAT(Queue('A'), ElementsAre("a", "", "b", "last"));
}

TEST_F(DataFileTest, FileCutShortAnywhereIsLoadedAsFarAsItGoes) {
  for (int level = 0; level < kLevels; ++level) queues[level].AddIfNew(std::string("http://") + SectionLetter(level));
  const std::string whole = Written();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const DataFileContents contents = Read(whole.substr(0, size));
    const bool has_header = size >= kHeader.size() - 2;
    EXPECT_EQ(contents, has_header ? DataFileContents::kLoaded : DataFileContents::kOtherHeader) << size;
    EXPECT_LE(Total(), 11u);
    for (const std::string& url : Queue('A')) EXPECT_THAT(url, Not(EndsWith("\r"))) << size;
  }
  EXPECT_EQ(Total(), 11u);
}

TEST_F(DataFileTest, OtherHeaderLoadsNothing) {
  for (const std::string& header :
       {std::string(), std::string("\r\n"), std::string("Brenvy Quenlar Pro\r\n"), "\xEF\xBB\xBF" + kHeader,
        " " + kHeader, std::string("brenvy quenlar pro, http://www.quenlar.example\r\n"),
        std::string("Brenvy Quenlar Pro, http://www.quenlar.example \r\n")}) {
    EXPECT_EQ(Read(header + "[A]\r\na\r\n"), DataFileContents::kOtherHeader) << header;
    EXPECT_EQ(Total(), 0u);
  }
}

TEST_F(DataFileTest, MissingFileAndFolderAreMissing) {
  EXPECT_EQ(ReadDataFile(files, code_page, kPath, queues, [] { return true; }), DataFileContents::kMissing);
  files.AddFolder(kPath);
  EXPECT_EQ(ReadDataFile(files, code_page, kPath, queues, [] { return true; }), DataFileContents::kMissing);
}

TEST_F(DataFileTest, UnreadableFileIsNoDataFile) {
  files.Put(kPath, kHeader + "[A]\r\na\r\n");
  files.FailCall(1, StatusKind::kDenied);
  EXPECT_EQ(ReadDataFile(files, code_page, kPath, queues, [] { return true; }), DataFileContents::kOtherHeader);
}

TEST_F(DataFileTest, ReadingStopsWhenItIsToldTo) {
  stop_after = 2;
  Read(kHeader + "[A]\r\na\r\nb\r\nc\r\nd");
  EXPECT_THAT(Queue('A'), ElementsAre("a", "b"));
}

TEST_F(DataFileTest, BlocksMayEndAnywhere) {
  queues[0].AddIfNew("http://m\xC3\xBCller");
  queues[10].AddIfNew("http://last");
  const std::string text = Written();
  for (std::size_t block = 1; block < 60; ++block) {
    files.SetBlockSize(block);
    EXPECT_EQ(Read(text), DataFileContents::kLoaded);
    EXPECT_THAT(Queue('M'), ElementsAre("http://m\xC3\xBCller"));
    EXPECT_THAT(Queue('J'), ElementsAre("http://last"));
  }
}

TEST_F(DataFileTest, NulsAndAnyBytesAreKept) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) {
    if (i != '\n') bytes += static_cast<char>(i);
  }
  Read(kHeader + "[A]\r\n" + bytes + "\n");
  ASSERT_EQ(Queue('A').size(), 1u);
  EXPECT_EQ(code_page.FromUtf8(Queue('A')[0]), bytes);
}

// Hands out a line that is longer than any link, without holding it.
TEST_F(DataFileTest, EndlessLineIsPassedOverInBoundedMemory) {
  class LongLine : public InMemoryFiles {
   public:
    Status Read(const std::string&, const std::function<bool(std::string_view)>& block) const override {
      const std::string filler(1 << 20, 'x');
      if (!block(kHeader + "[A]\r\nbefore\r\n")) return Status::Ok();
      for (int i = 0; i < 200; ++i) {
        if (!block(filler)) return Status::Ok();
      }
      block("\r\nafter\r\n");
      return Status::Ok();
    }
  } long_line;
  long_line.Put(kPath, "");
  EXPECT_EQ(ReadDataFile(long_line, code_page, kPath, queues, [] { return true; }), DataFileContents::kCutShort);
  EXPECT_THAT(Queue('A'), ElementsAre("before", "after"));
}

}  // namespace
}  // namespace quenlar
