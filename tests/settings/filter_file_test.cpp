#include "settings/filter_file.h"

#include <gmock/gmock.h>

#include "support/fake_system.h"
#include "support/in_memory_files.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Words = std::vector<std::string>;

constexpr const char* kBanner = "Brenvy Quenlar Pro, http://www.quenlar.example\r\n\r\n";

class FilterFileTest : public testing::Test {
 protected:
  FilterFileTest() { files.AddFolder("/q/data"); }

  Words Read(const std::string& contents) {
    files.Put(path, contents);
    return ReadFilterFile(files, code_page, path, words);
  }
  Status Write() { return WriteFilterFile(files, code_page, path, words); }

  const std::string path = "/q/data/ExtractFilter.dat";
  InMemoryFiles files;
  FakeCodePage code_page;
  Settings settings;
  FilterWords words{settings};
};

TEST_F(FilterFileTest, LiesInTheDataFolderWithThePlatformsSeparator) {
  Installation installation;
  installation.program_folder = "C:\\Quenlar";
  installation.separator = '\\';
  EXPECT_EQ(FilterFilePath(installation), "C:\\Quenlar\\data\\ExtractFilter.dat");
}

TEST_F(FilterFileTest, HoldsTheBannerThenOneWordALine) {
  words.RemoveFilterWords = {"cat", "dog"};
  words.ExtractFilterWords = {"m\xC3\xBCller"};
  ASSERT_TRUE(Write().ok());
  EXPECT_EQ(files.Contents(path), kBanner + std::string("<r>cat</r>\r\n<r>dog</r>\r\n<e>m\xFCller</e>\r\n"));
}

TEST_F(FilterFileTest, AFolderInItsPlaceCannotBeReadAndIsKept) {
  files.AddFolder(path);
  EXPECT_THAT(ReadFilterFile(files, code_page, path, words), ElementsAre(HasSubstr("cannot be read")));
  EXPECT_TRUE(words.keep_old_file);
}

TEST_F(FilterFileTest, EmptyListsLeaveTheBannerAndTheEmptyLine) {
  ASSERT_TRUE(Write().ok());
  EXPECT_EQ(files.Contents(path), kBanner);
}

TEST_F(FilterFileTest, WhatWasWrittenIsReadBack) {
  const Words remove = {"cat", "", "a*b", "two words", "x<r>y", "\xE2\x82\xAC"};
  const Words extract = {"(a|b)"};
  words.RemoveFilterWords = remove;
  words.ExtractFilterWords = extract;
  ASSERT_TRUE(Write().ok());
  FilterWords again(settings);
  EXPECT_THAT(ReadFilterFile(files, code_page, path, again), IsEmpty());
  EXPECT_EQ(again.RemoveFilterWords, remove);
  EXPECT_EQ(again.ExtractFilterWords, extract);
  EXPECT_EQ(again.ExtractFilterPattern, "((a|b))");
}

TEST_F(FilterFileTest, MissingFileChangesNothing) {
  words.RemoveFilterWords = {"kept"};
  EXPECT_THAT(ReadFilterFile(files, code_page, path, words), IsEmpty());
  EXPECT_THAT(words.RemoveFilterWords, ElementsAre("kept"));
  EXPECT_EQ(words.RemoveFilterPattern, "");
}

TEST_F(FilterFileTest, WordsAreFoundWhereverTheyStand) {
  EXPECT_THAT(Read("<e>late</e><r>a</r> noise <R>b</R>\n<r>two\r\nlines</r><r></r><r>open"), IsEmpty());
  EXPECT_THAT(words.RemoveFilterWords, ElementsAre("a", "b", "two\r\nlines", ""));
  EXPECT_THAT(words.ExtractFilterWords, ElementsAre("late"));
}

TEST_F(FilterFileTest, NestedTagsEndAtTheFirstClosingTag) {
  EXPECT_THAT(Read("<r>a<r>b</r>c</r><r>x<e>y</e></r>"), IsEmpty());
  EXPECT_THAT(words.RemoveFilterWords, ElementsAre("a<r>b", "x<e>y</e>"));
  EXPECT_THAT(words.ExtractFilterWords, ElementsAre("y"));
}

TEST_F(FilterFileTest, ReadingAppendsToBothListsAndBuildsThePatterns) {
  words.RemoveFilterWords = {"old"};
  Read("<r>new</r>");
  EXPECT_EQ(words.RemoveFilterPattern, "(old)|(new)");
}

TEST_F(FilterFileTest, BrokenWordsAreReported) {
  EXPECT_THAT(Read("<r>(</r><e>[</e>"), ElementsAre(HasSubstr("remove"), HasSubstr("extract")));
}

TEST_F(FilterFileTest, AnyBytesAreRead) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
  EXPECT_THAT(Read(bytes + "<r>" + bytes.substr(128) + "</r>"), IsEmpty());
  ASSERT_EQ(words.RemoveFilterWords.size(), 1u);
  ASSERT_TRUE(Write().ok());
  EXPECT_EQ(files.Contents(path), kBanner + ("<r>" + bytes.substr(128)) + "</r>\r\n");
}

TEST_F(FilterFileTest, ManyWordsAndAMillionOpenTagsAreRead) {
  std::string text;
  for (int i = 0; i < 200'000; ++i) text += "<r>a" + std::to_string(i) + "x</r>\r\n";
  EXPECT_THAT(Read(text), IsEmpty());
  EXPECT_EQ(words.RemoveFilterWords.size(), 200'000u);
  settings.RemoveFilterOn = 1;
  EXPECT_FALSE(words.Keeps("a199999x@x.de"));
  EXPECT_TRUE(words.Keeps("a200000x@a199999.de"));
  FilterWords others(settings);
  std::string open;
  for (int i = 0; i < 1'000'000; ++i) open += "<r>";
  files.Put(path, open);
  EXPECT_THAT(ReadFilterFile(files, code_page, path, others), IsEmpty());
  EXPECT_TRUE(others.RemoveFilterWords.empty());
}

TEST_F(FilterFileTest, MoreWordsThanTheWriterCountsOverflowAndLeaveTheFile) {
  files.Put(path, "old");
  words.RemoveFilterWords.assign(32'769, "x");
  const Status status = Write();
  EXPECT_EQ(status.kind(), StatusKind::kLimit);
  EXPECT_EQ(status.message(), "Overflow !");
  EXPECT_EQ(files.Contents(path), "old");
  words.RemoveFilterWords.pop_back();
  EXPECT_TRUE(Write().ok());
}

TEST_F(FilterFileTest, FailedWriteLeavesTheOldFileWhole) {
  words.RemoveFilterWords = {"new"};
  for (int call = 1; call <= 3; ++call) {
    files.Put(path, "old");
    files.FailCall(call, StatusKind::kFull);
    EXPECT_EQ(Write().kind(), StatusKind::kFull) << call;
    EXPECT_EQ(files.Contents(path), "old");
    EXPECT_THAT(files.AllFiles(), ElementsAre(path));
  }
  files.FailCall(0);
  EXPECT_TRUE(Write().ok());
}

TEST_F(FilterFileTest, UnreadableFileIsReportedAndLeavesTheWords) {
  files.Put(path, "<r>a</r>");
  files.FailCall(1, StatusKind::kDenied);
  EXPECT_THAT(ReadFilterFile(files, code_page, path, words), ElementsAre(HasSubstr("cannot be read")));
  EXPECT_TRUE(words.RemoveFilterWords.empty());
}

TEST_F(FilterFileTest, UnreadableFileIsKeptAsideByTheNextWriteAndByNoLaterOne) {
  files.Put(path + ".bak", "an earlier one");
  files.Put(path, "<r>a</r>");
  files.FailCall(1, StatusKind::kDenied);
  (void)ReadFilterFile(files, code_page, path, words);
  words.RemoveFilterWords = {"b"};
  ASSERT_TRUE(Write().ok());
  ASSERT_TRUE(Write().ok());
  EXPECT_EQ(files.Contents(path + ".bak"), "an earlier one");
  EXPECT_EQ(files.Contents(path + ".bak2"), "<r>a</r>");
  EXPECT_EQ(files.Contents(path), std::string(kBanner) + "<r>b</r>\r\n");
  EXPECT_EQ(files.AllFiles().size(), 3u);
}

TEST_F(FilterFileTest, UnreadableFileKeepsItsNameWhenTheWriteFails) {
  for (int n = 1; n <= 4; ++n) {  // the rename aside, then the replacement's three calls
    files.Put(path, "<r>a</r>");
    files.FailCall(1, StatusKind::kDenied);
    (void)ReadFilterFile(files, code_page, path, words);
    files.FailCall(n, StatusKind::kFull);
    EXPECT_FALSE(Write().ok()) << n;
    EXPECT_EQ(files.Contents(path), "<r>a</r>") << n;
    EXPECT_EQ(files.AllFiles().size(), 1u) << n;
  }
}

TEST_F(FilterFileTest, ReadableFileIsReplacedWithoutACopy) {
  (void)Read("<r>a</r>");
  ASSERT_TRUE(Write().ok());
  EXPECT_EQ(files.AllFiles().size(), 1u);
}

}  // namespace
}  // namespace quenlar
