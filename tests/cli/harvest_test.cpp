// quenlar harvest over a platform in memory.
#include <gtest/gtest.h>

#include "cli/exit_status.h"
#include "cli/paths.h"
#include "command_system.h"

namespace quenlar {
namespace {

constexpr const char* kEnd = "\r\n\r\n";

std::string Record(const std::string& target, const std::string& body,
                   const std::string& date = "2026-11-22T13:20:32Z") {
  const std::string block = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" + body;
  return "WARC/1.1\r\nWARC-Type: response\r\nWARC-Target-URI: " + target + "\r\n" +
         (date.empty() ? "" : "WARC-Date: " + date + "\r\n") + "Content-Length: " + std::to_string(block.size()) +
         kEnd + block + kEnd;
}

class HarvestCommandTest : public testing::Test {
 protected:
  HarvestCommandTest() {
    system.fake.files.AddFolder(in);
    system.fake.files.Put(in + "/a.warc", Record("http://x.de/1", "<title>One, \"1\"</title>a@x.de A@x.de b@x.de") +
                                              Record("http://x.de/2", "b@x.de"));
    system.fake.files.Put(in + "/b.html", "<p>c@x.de");
  }
  // A file that is named itself.
  void Put(const std::string& path, const std::string& bytes) { system.fake.files.Put(AbsolutePath(path), bytes); }

  const std::string in = AbsolutePath("/in");
  CommandSystem system;
};

TEST_F(HarvestCommandTest, LinesAreAddressesOnce) {
  EXPECT_EQ(system.Run({"harvest", "/in"}), kExitDone);
  EXPECT_EQ(system.output(), "a@x.de\nb@x.de\nc@x.de\n");
  EXPECT_EQ(system.errors(), "3 addresses on 3 of 3 pages.\n");
}

TEST_F(HarvestCommandTest, TheOtherFormatsHaveARowForEachRecordAndAddress) {
  EXPECT_EQ(system.Run({"harvest", "--format", "csv", "/in"}), kExitDone);
  EXPECT_EQ(system.output(),
            "\"a@x.de\",\"http://x.de/1\",\"One, \"\"1\"\"\",\"text\"\n\"b@x.de\",\"http://x.de/1\",\"One, \"\"1\"\"\","
            "\"text\"\n\"b@x.de\",\"http://x.de/2\",\"\",\"text\"\n\"c@x.de\",\"/in/b.html\",\"\",\"text\"\n");
  Put("/c.html", "<p>c@x.de");
  Put("/d.warc", Record("http://x.de/1", "<title>One, \"1\"</title>a@x.de"));
  EXPECT_EQ(system.Run({"harvest", "--format", "jsonl", "/c.html", "/d.warc"}), kExitDone);
  EXPECT_TRUE(system.output().starts_with(
      R"({"address":"c@x.de","page":"/c.html","title":"","place":"text","seen":"2023-11-14T22:13:20Z"})"
      "\n"
      R"({"address":"a@x.de","page":"http://x.de/1","title":"One, \"1\"","place":"text","seen":"2026-11-22T13:20:32Z"})"
      "\n"));
}

TEST_F(HarvestCommandTest, StandardInputIsRead) {
  system.streams.input = "c@x.de and d@x.de";
  EXPECT_EQ(system.Run({"harvest", "--format", "csv", "-"}), kExitDone);
  EXPECT_EQ(system.output(), "\"c@x.de\",\"-\",\"\",\"text\"\n\"d@x.de\",\"-\",\"\",\"text\"\n");
}

TEST_F(HarvestCommandTest, FiltersHold) {
  EXPECT_EQ(system.Run({"harvest", "--remove", "b@", "/in"}), kExitDone);
  EXPECT_EQ(system.output(), "a@x.de\nc@x.de\n");
  EXPECT_EQ(system.errors(), "2 addresses on 3 of 3 pages, 2 dropped by the filters.\n");
}

TEST_F(HarvestCommandTest, OfWordsToExtractOneMustOccur) {
  EXPECT_EQ(system.Run({"harvest", "--extract", "b@", "--extract", "^c@", "/in"}), kExitDone);
  EXPECT_EQ(system.output(), "b@x.de\nc@x.de\n");
}

TEST_F(HarvestCommandTest, TheSummaryTellsDamageFromWhatCannotBeRead) {
  Put("/in/c.warc", Record("http://x.de/1", "c@x.de and more").substr(0, 170));
  Put("/e.png", std::string("\x89PNG\0", 5));
  EXPECT_EQ(system.Run({"harvest", "--remove", "^a@", "--summary", "/s", "/missing", "/in", "/e.png"}), kExitFailed);
  EXPECT_EQ(
      system.fake.files.Contents(AbsolutePath("/s")),
      R"({"reason":"finished","addresses":2,"pages":4,"filtered":1,"suppressed":0,"damaged":1,"other":1,"unread":1})"
      "\n");
  EXPECT_EQ(system.Run({"harvest", "--summary", "/s", "/in/b.html"}), kExitDone);
  EXPECT_EQ(
      system.fake.files.Contents(AbsolutePath("/s")),
      R"({"reason":"finished","addresses":1,"pages":1,"filtered":0,"suppressed":0,"damaged":0,"other":0,"unread":0})"
      "\n");
}

TEST_F(HarvestCommandTest, AListThatCannotBeReadEndsItBeforeItBegins) {
  system.fake.files.AddFolder("/user/quenlar/suppressed.txt");
  EXPECT_EQ(system.Run({"harvest", "--summary", "/s", "/in"}), kExitFailed);
  EXPECT_EQ(system.output(), "");
  EXPECT_TRUE(system.fake.files.Contents(AbsolutePath("/s")).value_or("").starts_with(R"({"reason":"failed")"));
}

TEST_F(HarvestCommandTest, SuppressedAddressesAreNotListed) {
  system.fake.files.AddFolder("/user/quenlar");
  system.fake.files.Put("/user/quenlar/suppressed.txt", "B@x.de\n");
  EXPECT_EQ(system.Run({"harvest", "/in"}), kExitDone);
  EXPECT_EQ(system.output(), "a@x.de\nc@x.de\n");
  EXPECT_EQ(system.errors(), "2 addresses on 3 of 3 pages, 2 suppressed.\n");
}

TEST_F(HarvestCommandTest, TitlesAndPagesThatNameSuppressedAddressesAreNotListed) {
  system.fake.files.AddFolder("/user/quenlar");
  system.fake.files.Put("/user/quenlar/suppressed.txt", "b@x.de\n");
  Put("/e.warc", Record("http://x.de/1", "<title>Write to B@x.de</title>a@x.de") +
                     Record("http://x.de/?mail=b%40x.de", "<title>Two</title>c@x.de"));
  EXPECT_EQ(system.Run({"harvest", "--format", "csv", "/e.warc"}), kExitDone);
  EXPECT_EQ(system.output(), "\"a@x.de\",\"http://x.de/1\",\"\",\"text\"\n");
  EXPECT_EQ(system.errors(), "1 address on 1 of 2 pages, 1 suppressed.\n");
}

TEST_F(HarvestCommandTest, WithoutAProgramFolderItWorksAndItNeverWrites) {
  system.default_home.clear();
  EXPECT_EQ(system.Run({"harvest", "/in"}), kExitDone);
  EXPECT_EQ(system.output(), "a@x.de\nb@x.de\nc@x.de\n");
  EXPECT_EQ(system.fake.files.AllFiles().size(), 2u);
}

TEST_F(HarvestCommandTest, WhatCannotBeReadIsToldAndTheOthersAreRead) {
  system.fake.files.Put(in + "/c.warc", Record("http://x.de/1", "c@x.de and more").substr(0, 170));
  system.fake.files.Put(in + "/d.arc", "filedesc://d.arc 0.0.0.0 20200101000000 text/plain 1\n");
  Put("/e.png", std::string("\x89PNG\0", 5));
  EXPECT_EQ(system.Run({"harvest", "/missing", "/in", "/e.png"}), kExitFailed);
  EXPECT_EQ(system.output(), "a@x.de\nb@x.de\nc@x.de\n");
  EXPECT_EQ(system.errors(), AbsolutePath("/missing") +
                                 ": no such file !\n"
                                 "/in/c.warc: 1 damaged record. Everything readable has been read.\n"
                                 "/in/d.arc: An ARC file, the format before WARC. It is not read.\n"
                                 "/e.png: Neither an archive nor a page of text.\n"
                                 "3 addresses on 4 of 4 pages.\n");
}

TEST_F(HarvestCommandTest, RecordsWithoutADateCountAsSeenNow) {
  Put("/a.warc", Record("http://x.de/1", "a@x.de", "") + Record("http://x.de/2", "a@x.de", "x"));
  EXPECT_EQ(system.Run({"harvest", "--format", "jsonl", "/a.warc"}), kExitDone);
  EXPECT_EQ(system.errors(), "/a.warc: Records without a date count as seen now.\n2 addresses on 2 of 2 pages.\n");
}

TEST_F(HarvestCommandTest, AReaderThatGoesAwayEndsIt) {
  system.streams.readers_patience = 1;
  EXPECT_EQ(system.Run({"harvest", "/in", "/in"}), kExitDone);
  EXPECT_EQ(system.errors(), "");
}

}  // namespace
}  // namespace quenlar
