#include "archive/warc_writer.h"

#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "archive/archiving_client.h"
#include "archive/warc_head.h"
#include "platform/inflate.h"
#include "platform/sha256.h"
#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"
#include "support/scripted_web_client.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Record {
  std::string head, block;
};

// The records of a file: each must be a gzip member of its own.
std::vector<Record> RecordsOf(std::string_view file) {
  std::vector<Record> records;
  const auto inflater = MakeMemberInflater();
  std::string text(1 << 20, '\0');
  while (!file.empty()) {
    const auto step = inflater->Inflate(file, text.data(), text.size());
    EXPECT_EQ(step.outcome, MemberInflater::Outcome::kDone);
    if (step.outcome != MemberInflater::Outcome::kDone) break;
    file.remove_prefix(step.taken);
    const std::string_view record = std::string_view(text).substr(0, step.given);
    WarcHead head;
    EXPECT_EQ(ParseWarcHead(record, head), WarcHeadOutcome::kHead);
    EXPECT_EQ(head.size + head.length.value_or(0) + 4, record.size());
    EXPECT_TRUE(record.ends_with("\r\n\r\n"));
    records.push_back(
        {std::string(record.substr(0, head.size)), std::string(record.substr(head.size, head.length.value_or(0)))});
  }
  return records;
}

std::string FieldOf(const Record& record, const std::string& name) {
  const std::size_t at = record.head.find("\r\n" + name + ": ");
  if (at == std::string::npos) return "";
  const std::size_t begin = at + name.size() + 4;
  return record.head.substr(begin, record.head.find("\r\n", begin) - begin);
}

WebAnswer Answer(const std::string& head, const std::string& body) {
  WebAnswer answer;
  answer.head.status = 200;
  answer.head.ip = "192.0.2.7";
  answer.wire = WebWire{"GET /x HTTP/1.1\r\nHost: a.example\r\n\r\n", head, body, false};
  return answer;
}

class WarcWriterTest : public testing::Test {
 protected:
  WarcWriterTest() {
    files.AddFolder("/w");
    clock.utc_seconds = 1795353632;
  }
  std::unique_ptr<WarcWriter> Open(std::uint64_t file_bytes = WarcWriter::kFileBytes) {
    auto opened =
        WarcWriter::Open(files, clock, "/w/a-b", '/', {"Quenlar/3.0", "Quenlar/3.0 (+me)", "obey"}, file_bytes);
    EXPECT_TRUE(opened.ok()) << opened.status().message();
    return opened.take();
  }
  std::vector<Record> Read(const std::string& name) { return RecordsOf(files.Contents("/w/" + name).value_or("")); }

  InMemoryFiles files;
  FakeClock clock;
  const std::string url = "http://a.example/x";
};

TEST_F(WarcWriterTest, AnExchangeIsTwoRecordsBehindTheFilesOwn) {
  const auto writer = Open();
  EXPECT_TRUE(files.AllFiles().empty());
  ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n", "abc"), WarcCut::kNone).ok());
  const std::vector<Record> records = Read("a-b-00000.warc.gz");
  ASSERT_EQ(records.size(), 3u);
  EXPECT_TRUE(records[0].head.starts_with("WARC/1.1\r\n"));
  EXPECT_EQ(FieldOf(records[0], "WARC-Type"), "warcinfo");
  EXPECT_EQ(FieldOf(records[0], "WARC-Filename"), "a-b-00000.warc.gz");
  EXPECT_THAT(records[0].block, HasSubstr("http-header-user-agent: Quenlar/3.0 (+me)\r\n"));
  EXPECT_EQ(FieldOf(records[1], "WARC-Type"), "response");
  EXPECT_EQ(FieldOf(records[1], "WARC-Target-URI"), url);
  EXPECT_EQ(FieldOf(records[1], "WARC-Date"), "2026-11-22T13:20:32Z");
  EXPECT_EQ(FieldOf(records[1], "WARC-IP-Address"), "192.0.2.7");
  EXPECT_EQ(FieldOf(records[1], "Content-Type"), "application/http;msgtype=response");
  EXPECT_EQ(FieldOf(records[1], "WARC-Payload-Digest"), "sha256:" + Sha256Hex("abc"));
  EXPECT_EQ(FieldOf(records[1], "WARC-Block-Digest"), "sha256:" + Sha256Hex(records[1].block));
  EXPECT_EQ(FieldOf(records[1], "WARC-Warcinfo-ID"), FieldOf(records[0], "WARC-Record-ID"));
  EXPECT_EQ(records[1].block, "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabc");
  EXPECT_EQ(FieldOf(records[2], "WARC-Type"), "request");
  EXPECT_EQ(FieldOf(records[2], "WARC-Concurrent-To"), FieldOf(records[1], "WARC-Record-ID"));
  EXPECT_EQ(records[2].block, "GET /x HTTP/1.1\r\nHost: a.example\r\n\r\n");
}

TEST_F(WarcWriterTest, EveryRecordHasAnIdOfItsOwn) {
  const auto writer = Open();
  for (int i = 0; i < 20; ++i) ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "x"), {}).ok());
  std::map<std::string, int> ids;
  for (const Record& record : Read("a-b-00000.warc.gz")) ++ids[FieldOf(record, "WARC-Record-ID")];
  EXPECT_EQ(ids.size(), 41u);
  // RFC 4122, 4.4: hexadecimal digits, but for the version and the two bits of the variant.
  const std::string pattern = "<urn:uuid:xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx>";
  for (const auto& [id, count] : ids) {
    ASSERT_EQ(id.size(), pattern.size());
    for (std::size_t i = 0; i < id.size(); ++i) {
      const std::string allowed = pattern[i] == 'x'   ? "0123456789abcdef"
                                  : pattern[i] == 'y' ? "89ab"
                                                      : std::string(1, pattern[i]);
      EXPECT_NE(allowed.find(id[i]), std::string::npos) << id;
    }
  }
}

TEST_F(WarcWriterTest, TheDigestOfAPayloadIsThatOfTheBodyWithoutItsChunks) {
  const auto writer = Open();
  const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  ASSERT_TRUE(writer->Write(url, Answer(head, "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"), {}).ok());
  const Record response = Read("a-b-00000.warc.gz").at(1);
  EXPECT_EQ(response.block, head + "3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n");
  EXPECT_EQ(FieldOf(response, "WARC-Payload-Digest"), "sha256:" + Sha256Hex("abcde"));
}

TEST_F(WarcWriterTest, AHeadSaysSoWhereTheTransportHasJoinedTheChunks) {
  const auto writer = Open();
  WebAnswer answer = Answer("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nA: b\r\n\r\n", "abcde");
  answer.wire->chunks_joined = true;
  ASSERT_TRUE(writer->Write(url, answer, {}).ok());
  EXPECT_EQ(Read("a-b-00000.warc.gz").at(1).block,
            "HTTP/1.1 200 OK\r\nX-Archive-Orig-Transfer-Encoding: chunked\r\nA: b\r\nContent-Length: 5\r\n\r\nabcde");
}

TEST_F(WarcWriterTest, WhatIsNotWholeSaysWhy) {
  const auto writer = Open();
  ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "ab"), WarcCut::kLength).ok());
  ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 301 Moved\r\n\r\n", ""), WarcCut::kUnspecified).ok());
  ASSERT_TRUE(writer->Write(url, Answer("", ""), WarcCut::kNone).ok());
  const std::vector<Record> records = Read("a-b-00000.warc.gz");
  ASSERT_EQ(records.size(), 6u);
  EXPECT_EQ(FieldOf(records[1], "WARC-Truncated"), "length");
  EXPECT_EQ(FieldOf(records[3], "WARC-Truncated"), "unspecified");
  EXPECT_EQ(FieldOf(records[5], "WARC-Type"), "request");
  EXPECT_EQ(FieldOf(records[5], "WARC-Concurrent-To"), "");
}

TEST_F(WarcWriterTest, AFullFileIsFollowedByTheNextNumber) {
  const auto writer = Open(1);
  for (int i = 0; i < 3; ++i) ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "x"), {}).ok());
  EXPECT_THAT(files.AllFiles(), ElementsAre("/w/a-b-00000.warc.gz", "/w/a-b-00001.warc.gz", "/w/a-b-00002.warc.gz"));
  EXPECT_EQ(Read("a-b-00002.warc.gz").size(), 3u);
}

TEST_F(WarcWriterTest, NoFileThatExistsIsWrittenTo) {
  for (const char* name : {"/w/a-b-00007.warc.gz", "/w/a-b-1.warc.gz", "/w/a-b-c-00099.warc.gz", "/w/a-b-00050.warc"}) {
    files.Put(name, "old");
  }
  const auto writer = Open();
  files.Put("/w/a-b-00008.warc.gz", "another was faster");
  ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "x"), {}).ok());
  EXPECT_EQ(files.Contents("/w/a-b-00007.warc.gz"), "old");
  EXPECT_EQ(files.Contents("/w/a-b-00008.warc.gz"), "another was faster");
  EXPECT_EQ(Read("a-b-00009.warc.gz").size(), 3u);
}

TEST_F(WarcWriterTest, AFolderThatIsNotThereIsToldAtOnce) {
  EXPECT_EQ(WarcWriter::Open(files, clock, "/none/a", '/', {}).status().kind(), StatusKind::kNotFound);
}

TEST_F(WarcWriterTest, AFullDiskLeavesWholeRecords) {
  const auto writer = Open();
  ASSERT_TRUE(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "x"), {}).ok());
  files.SetFreeSpace(10);
  EXPECT_EQ(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "y"), {}).kind(), StatusKind::kFull);
  files.SetFreeSpace({});
  EXPECT_EQ(writer->Write(url, Answer("HTTP/1.1 200 OK\r\n\r\n", "z"), {}).kind(), StatusKind::kFull);
  EXPECT_EQ(writer->Flush().kind(), StatusKind::kFull);
  EXPECT_EQ(Read("a-b-00000.warc.gz").size(), 3u);
}

class EndLog final : public WebListener {
 public:
  bool wanted = true;
  std::vector<std::string> ends;
  [[nodiscard]] bool OnHead(const std::string&, const WebHead&) override { return wanted; }
  void OnEnd(const std::string& key, WebAnswer answer) override {
    EXPECT_FALSE(answer.wire.has_value());
    ends.push_back(key + " " + answer.body);
  }
};

class ArchivingClientTest : public WarcWriterTest {
 protected:
  ArchivingClientTest() { archiving.SetListener(&log); }
  void Get(const std::string& target, bool keep_wire = true) {
    WebRequest request;
    request.url = target;
    request.keep_wire = keep_wire;
    archiving.Start(request, target);
    for (int i = 0; i < 10; ++i) loop.Yield();
  }
  // Type and target of the records behind the first.
  std::vector<std::string> Written() {
    std::vector<std::string> rows;
    for (const Record& record : Read("a-b-00000.warc.gz")) {
      const std::string target = FieldOf(record, "WARC-Target-URI");
      if (!target.empty()) rows.push_back(FieldOf(record, "WARC-Type") + " " + target);
    }
    return rows;
  }

  FakeEventLoop loop;
  ScriptedWebClient client{loop};
  std::unique_ptr<WarcWriter> writer = Open();
  int failures = 0;
  ArchivingClient archiving{client, *writer, [this] { ++failures; }};
  EndLog log;
};

TEST_F(ArchivingClientTest, WhatAsksForTheWireIsWrittenBeforeItsEndIsTold) {
  client.Serve("http://a.example/", "page");
  client.Serve("http://b.example/", "secret");
  Get("http://a.example/");
  Get("http://b.example/", false);
  EXPECT_THAT(log.ends, ElementsAre("http://a.example/ page", "http://b.example/ secret"));
  EXPECT_THAT(Written(), ElementsAre("response http://a.example/", "request http://a.example/"));
}

TEST_F(ArchivingClientTest, OfAFailureTheAnswerIsLeftOut) {
  client.Serve("http://a.example/",
               ScriptedWebAnswer{.body = "half", .failure = WebFailure::kBroken, .message = "cut"});
  Get("http://a.example/");
  EXPECT_THAT(log.ends, ElementsAre("http://a.example/ half"));
  EXPECT_THAT(Written(), ElementsAre("request http://a.example/"));
}

TEST_F(ArchivingClientTest, WhatNobodyWantsIsMarkedAsCut) {
  log.wanted = false;
  client.Serve("http://a.example/", "a picture");
  Get("http://a.example/");
  EXPECT_EQ(FieldOf(Read("a-b-00000.warc.gz").at(1), "WARC-Truncated"), "unspecified");
}

TEST_F(ArchivingClientTest, WithoutSpaceTheEndIsToldToNobody) {
  client.Serve("http://a.example/", "page");
  client.Serve("http://b.example/", "page");
  files.SetFreeSpace(10);
  Get("http://a.example/");
  Get("http://b.example/");
  EXPECT_TRUE(log.ends.empty());
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(archiving.status().kind(), StatusKind::kFull);
}

TEST_F(ArchivingClientTest, ACancelledRequestIsForgotten) {
  WebRequest request;
  request.url = "http://a.example/";
  request.keep_wire = true;
  archiving.Start(request, "k");
  archiving.Cancel("k");
  for (int i = 0; i < 10; ++i) loop.Yield();
  EXPECT_TRUE(log.ends.empty());
  EXPECT_TRUE(files.AllFiles().empty());
}

}  // namespace
}  // namespace quenlar
