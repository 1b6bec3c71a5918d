#include "project/report_file.h"

#include <random>

#include <gmock/gmock.h>

#include "project/data_file.h"
#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"
#include "support/reference_report.h"

namespace quenlar {
namespace {

using testing::ElementsAre;

constexpr const char* kPath = "/q/report/x.rpt";
const std::string kHeader = "Brenvy Quenlar Pro, http://www.quenlar.example\r\n\r\n";

class ReportFileTest : public testing::Test {
 protected:
  ReportFileTest() { files.AddFolder("/q/report"); }

  void Add(const char* url, const char* address, const char* title, bool tag_only = false) {
    found.Add({url, address, title, tag_only});
  }
  Status Write(bool all = true) { return WriteReport(files, code_page, loop, kPath, found, all, Pump::Pace::kAlways); }
  std::string Written(bool all = true) {
    EXPECT_TRUE(Write(all).ok());
    return files.Contents(kPath).value_or("nothing");
  }

  InMemoryFiles files;
  FakeCodePage code_page;
  FakeEventLoop loop;
  FoundAddresses found;
};

TEST_F(ReportFileTest, AddressesAloneAreOneALine) {
  Add("http://a.de/1", "b@a.de", "Title");
  Add("http://a.de/2", "c@a.de", "");
  EXPECT_EQ(Written(false), kHeader + "b@a.de\r\nc@a.de\r\n");
  EXPECT_EQ(loop.yields(), 0);
}

TEST_F(ReportFileTest, AllInformationIsLaidOutInColumns) {
  Add("http://a.de/1", "b@a.de", "Title one");
  Add("http://www.b.de/page", "long.name@b.de", "");
  // Widths: 1 + 5, 14 + 5, 20 + 5, 9 + 5.
  const std::string rule = std::string(6 + 19 + 25 + 14, '#') + "\r\n";
  EXPECT_EQ(Written(), kHeader + rule + "eMail address\r\n" + rule +
                           "b@a.de\r\nlong.name@b.de\r\n"
                           "\r\n\r\n" +
                           rule + "#     eMail address      URL                      Title\r\n" + rule +
                           "1     b@a.de             http://a.de/1            Title one\r\n"
                           "2     long.name@b.de     http://www.b.de/page     \r\n"
                           "\r\n\r\n" +
                           rule + "URL\r\n" + rule +
                           "http://a.de/1\r\nhttp://www.b.de/page\r\n"
                           "\r\n\r\n" +
                           rule + "Home Page\r\n" + rule + "http://a.de\r\nhttp://www.b.de\r\n");
}

TEST_F(ReportFileTest, RecordsOfTagOnlyPagesAreLeftOutButCountForWidthsAndNumbers) {
  for (int i = 0; i < 9; ++i) Add("", "a@b.cc", "");
  Add("http://a.very.long.address.de/", "a.very.long.address@b.cc", "A very long title", true);
  const std::string text = Written();
  EXPECT_EQ(text.find("very"), std::string::npos);
  const std::string rule(7 + 29 + 35 + 22, '#');
  EXPECT_NE(text.find("\r\n" + rule + "\r\n"), std::string::npos);
  EXPECT_NE(text.find("\r\n9      a@b.cc" + std::string(29 - 6 + 35, ' ') + "\r\n"), std::string::npos);
  EXPECT_EQ(text.find("\r\n10 "), std::string::npos);
  EXPECT_EQ(Written(false),
            kHeader + "a@b.cc\r\na@b.cc\r\na@b.cc\r\na@b.cc\r\na@b.cc\r\na@b.cc\r\na@b.cc\r\na@b.cc\r\na@b.cc\r\n");
}

TEST_F(ReportFileTest, RowsAreNumberedAsTheyArePrinted) {
  Add("", "a@b.cc", "", true);
  Add("", "b@b.cc", "");
  Add("", "c@b.cc", "", true);
  Add("", "d@b.cc", "");
  const std::string text = Written();
  EXPECT_NE(text.find("\r\n1     b@b.cc "), std::string::npos);
  EXPECT_NE(text.find("\r\n2     d@b.cc "), std::string::npos);
}

// The part of a report behind the heading.
std::string Behind(const std::string& text, const std::string& heading) {
  const std::size_t at = text.find("\r\n" + heading + "\r\n#");
  if (at == std::string::npos) return "no " + heading;
  const std::size_t from = text.find("#\r\n", at) + 3;
  return text.substr(from, text.find("\r\n\r\n\r\n", from) - from);
}

TEST_F(ReportFileTest, UrlsAreDistinctAndOneSeenOnARecordLeftOutIsNotPrintedLater) {
  Add("http://a.de/1", "a@b.cc", "", true);
  Add("http://a.de/2", "b@b.cc", "");
  Add("http://a.de/1", "c@b.cc", "");
  Add("http://a.de/2", "d@b.cc", "");
  Add("http://A.de/2", "e@b.cc", "");
  const std::string text = Written();
  EXPECT_EQ(Behind(text, "URL"), "http://a.de/2\r\nhttp://A.de/2");
  // The same rule holds for the home pages: http://a.de was seen on the first record.
  EXPECT_EQ(Behind(text, "Home Page"), "http://A.de\r\n");
}

TEST_F(ReportFileTest, HomePagesAreOfRecordsWithAUrl) {
  Add("", "a@b.cc", "");
  Add("http://x.de/a/b", "b@b.cc", "");
  Add("https://x.de/a", "c@b.cc", "");
  Add("http://x.de", "d@b.cc", "");
  const std::string text = Written();
  EXPECT_EQ(Behind(text, "URL"), "\r\nhttp://x.de/a/b\r\nhttps://x.de/a\r\nhttp://x.de");
  EXPECT_EQ(Behind(text, "Home Page"), "http://x.de\r\nhttp://https:\r\n");
}

TEST_F(ReportFileTest, WidthsCountCharactersAndTheFileIsInTheCodePage) {
  Add("http://m\xC3\xBCller.de/", "a@b.cc", "\xE2\x98\x85 \xE2\x82\xAC");
  const std::string text = Written();
  const std::string rule(6 + 11 + 22 + 8, '#');
  EXPECT_NE(text.find("\r\n" + rule + "\r\n"), std::string::npos);
  EXPECT_NE(text.find("1     a@b.cc     http://m\xFCller.de/     ? \x80\r\n"), std::string::npos);
}

TEST_F(ReportFileTest, NoValueCanEndItsLine) {
  Add("http://x.de/a\r\nevil@x.de", "a@b.cc", "one\r\ntwo\nthree");
  const std::string text = Written();
  EXPECT_NE(text.find("\r\n1     a@b.cc     http://x.de/a%0D%0Aevil@x.de     one  two three\r\n"), std::string::npos);
  EXPECT_NE(text.find("\r\nhttp://x.de/a%0D%0Aevil@x.de\r\n"), std::string::npos);
}

TEST_F(ReportFileTest, PumpsBeforeEachRecordOfRowsUrlsAndHomePages) {
  Add("http://a.de/1", "a@b.cc", "");
  Add("http://a.de/2", "b@b.cc", "");
  Add("http://a.de/2", "c@b.cc", "", true);
  (void)Written();
  EXPECT_EQ(loop.yields(), 2 + 2 + 1);
}

TEST_F(ReportFileTest, RecordsFoundWhileItIsWrittenWaitForTheNextTime) {
  Add("http://a.de/1", "a@b.cc", "");
  Add("http://a.de/2", "b@b.cc", "");
  loop.OnPump([&] { found.Add({"http://later.de", "later@b.cc", "", false}); });
  EXPECT_EQ(Written().find("later"), std::string::npos);
  loop.OnPump({});
  EXPECT_NE(Written().find("later"), std::string::npos);
}

TEST_F(ReportFileTest, EmptyTableGivesTheHeadingsAlone) {
  const std::string rule = std::string(6 + 5 + 5 + 5, '#') + "\r\n";
  EXPECT_EQ(Written(), kHeader + rule + "eMail address\r\n" + rule + "\r\n\r\n" + rule +
                           "#     eMail addressURL  Title\r\n" + rule + "\r\n\r\n" + rule + "URL\r\n" + rule +
                           "\r\n\r\n" + rule + "Home Page\r\n" + rule);
  EXPECT_EQ(Written(false), kHeader);
}

TEST_F(ReportFileTest, TableOfMoreThan32768RecordsOverflowsBeforeAnythingIsTouched) {
  files.Put(kPath, "old");
  for (std::uint32_t i = 0; i <= kMaxWritten; ++i) Add("", "a@b.cc", "");
  files.FailCall(0);
  const Status status = Write();
  EXPECT_EQ(status.kind(), StatusKind::kLimit);
  EXPECT_EQ(status.message(), "Overflow !");
  EXPECT_EQ(files.calls(), 0);
  EXPECT_EQ(files.Contents(kPath), "old");
}

TEST_F(ReportFileTest, TableOf32768RecordsIsWrittenAndReadBack) {
  for (std::uint32_t i = 0; i < kMaxWritten; ++i) {
    const std::string number = std::to_string(i);
    found.Add({"http://x.de/" + number, "a" + number + "@b.cc", "Title " + number, false});
  }
  FoundAddresses again;
  ReadReport(Written(), again, [] { return true; });
  ASSERT_EQ(again.Count(), kMaxWritten);
  for (std::uint32_t i = 0; i < kMaxWritten; ++i) {
    ASSERT_EQ(again.At(i).Address, found.At(i).Address);
    ASSERT_EQ(again.At(i).URL, found.At(i).URL);
    ASSERT_EQ(again.At(i).Title, found.At(i).Title);
  }
}

TEST_F(ReportFileTest, RecordsWithoutUrlAreReadBackFromTheirPaddedRows) {
  Add("http://a.de/1", "a@b.cc", "One");
  Add("", "b@b.cc", "");
  FoundAddresses again;
  ReadReport(Written(), again, [] { return true; });
  ASSERT_EQ(again.Count(), 2u);
  EXPECT_EQ(again.At(0).Title, "One");
  EXPECT_EQ(again.At(1).Address, "b@b.cc");
}

TEST_F(ReportFileTest, AddressOnlyReportComesBackWithEmptyPagesAndTitles) {
  Add("http://a.de/1", "a@b.cc", "One");
  Add("http://a.de/1", "b@b.cc", "One");
  FoundAddresses again;
  ReadReport(Written(false), again, [] { return true; });
  ASSERT_EQ(again.Count(), 2u);
  EXPECT_EQ(again.At(1).Address, "b@b.cc");
  EXPECT_EQ(again.At(1).URL, "");
  EXPECT_EQ(again.At(1).Title, "");
}

TEST_F(ReportFileTest, ExportingTwiceGivesTheSameFile) {
  Add("http://a.de/1", "a@b.cc", "One");
  const std::string once = Written();
  EXPECT_EQ(Written(), once);
}

TEST_F(ReportFileTest, EveryFailingCallLeavesTheOldFileWhole) {
  for (int i = 0; i < 3000; ++i) Add("http://a.de/1", "a@b.cc", "One");
  files.FailCall(0);
  (void)Written();
  const int calls = files.calls();
  ASSERT_GE(calls, 5);
  for (int call = 1; call <= calls; ++call) {
    files.Put(kPath, "old");
    files.FailCall(call, StatusKind::kFull);
    EXPECT_EQ(Write().kind(), StatusKind::kFull) << call;
    EXPECT_EQ(files.Contents(kPath), "old") << call;
  }
}

TEST_F(ReportFileTest, WrittenReportsAreReadBackAsThePatternsReadThem) {
  const std::vector<std::string> urls = {
      "",         "http://www.x.de",        "http://x.de/a?m=b@c.de", "https://x.de:80/~u;v#w",
      "http://x", "http://x.de/\xC3\xBC b", "ftp://y.z/a\r\nb@c.de"};
  const std::vector<std::string> addresses = {"a@b.cc", "Info+x%y@long-host.example.info", "u@v.ww.co", "1@2.de"};
  const std::vector<std::string> titles = {"",
                                           "Home",
                                           "Mail a@b.cc now",
                                           "http://www.x.de",
                                           "a: b; c@d",
                                           "\xE2\x98\x85 best",
                                           "tab\there",
                                           "b@c.de http://q.rs tail",
                                           "      seven       "};
  std::mt19937 random(3);
  const auto any = [&](const std::vector<std::string>& texts) { return texts[random() % texts.size()]; };
  for (int round = 0; round < 200; ++round) {
    found.Clear();
    for (std::size_t n = random() % 12; n > 0; --n)
      found.Add({any(urls), any(addresses), any(titles), random() % 5 == 0});
    const std::string text = code_page.ToUtf8(Written(round % 4 != 0));
    FoundAddresses again;
    ReadReport(text, again, [] { return true; });
    const std::vector<ReferenceReportRecord> expected = ReferenceReadReport(text);
    ASSERT_EQ(again.Count(), expected.size()) << text;
    for (std::uint32_t i = 0; i < again.Count(); ++i) {
      const FoundAddress record = again.At(i);
      ASSERT_EQ(record.URL, expected[i].url) << text;
      ASSERT_EQ(record.Address, expected[i].address) << text;
      ASSERT_EQ(record.Title, expected[i].title) << text;
    }
  }
}

// A page address of a million bytes pads every row; the rows never stand in memory together.
TEST_F(ReportFileTest, WideRowsAreWrittenOneByOne) {
  class CountingFiles : public InMemoryFiles {
   public:
    std::size_t longest = 0, total = 0;
    Result<std::unique_ptr<FileReplacement>> Replace(const std::string&) override {
      class Counter : public FileReplacement {
       public:
        explicit Counter(CountingFiles& files) : files_(files) {}
        Status Write(std::string_view bytes) override {
          files_.longest = std::max(files_.longest, bytes.size());
          files_.total += bytes.size();
          return Status::Ok();
        }
        Status Commit() override { return Status::Ok(); }

       private:
        CountingFiles& files_;
      };
      return std::unique_ptr<FileReplacement>(std::make_unique<Counter>(*this));
    }
  } counting;
  Add(("http://x.de/" + std::string(1'000'000, 'x')).c_str(), "a@b.cc", "");
  for (int i = 0; i < 500; ++i) Add("http://x.de/", "a@b.cc", "");
  ASSERT_TRUE(WriteReport(counting, code_page, loop, kPath, found, true).ok());
  EXPECT_GT(counting.total, 500'000'000u);
  EXPECT_LT(counting.longest, 4'000'000u);
}

}  // namespace
}  // namespace quenlar
