#include "mailtool/email_book_merge.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"

namespace quenlar {
namespace {

using namespace std::string_literals;

class MergeTest : public testing::Test {
 protected:
  MergeTest() { files_.AddFolder("/books"); }

  void Book(const std::string& name, const std::string& contents) {
    files_.Put("/books/" + name, contents);
    ASSERT_TRUE(merge_.AddBook("/books/" + name).ok());
  }
  std::vector<std::string> Extract() { return merge_.Extract(files_, code_page_, loop_); }
  std::vector<std::string> Addresses() {
    std::vector<std::string> all;
    for (const std::string_view address : merge_.Addresses) all.emplace_back(address);
    return all;
  }
  std::vector<std::string> ShownBooks() {
    std::vector<std::string> all;
    for (const auto& book : merge_.BookList) all.push_back(book.ShownText());
    return all;
  }

  InMemoryFiles files_;
  FakeCodePage code_page_;
  FakeEventLoop loop_;
  eMailBookMerge merge_;
};

using Strings = std::vector<std::string>;

// --- The list of books ---

TEST_F(MergeTest, KeepsTwoFilesOfOneNameFromTwoFoldersAndMarksTheSecond) {
  EXPECT_TRUE(merge_.AddBook("C:\\a\\book.txt").value());
  EXPECT_TRUE(merge_.AddBook("C:\\b\\book.txt").value());
  EXPECT_TRUE(merge_.AddBook("C:\\c\\book.txt").value());
  EXPECT_TRUE(merge_.AddBook("C:\\c\\Book.txt.txt").value());
  EXPECT_EQ(ShownBooks(), (Strings{"book.txt", "book.txt *", "book.txt **", "Book.txt.txt"}));
  EXPECT_EQ(merge_.BookList[2].Mark, "**");
}

TEST_F(MergeTest, AddsAFileChosenTwiceOnceEvenWhenTheCaseOfItsPathDiffers) {
  EXPECT_TRUE(merge_.AddBook("C:\\a\\book.txt").value());
  EXPECT_FALSE(merge_.AddBook("C:\\a\\book.txt").value());
  EXPECT_FALSE(merge_.AddBook("c:\\A\\BOOK.txt").value());
  EXPECT_EQ(merge_.BookList.size(), 1u);
}

TEST_F(MergeTest, RefusesABookBeyondASixteenBitCount) {
  for (int i = 0; i < 32767; ++i) merge_.BookList.push_back({"C:\\" + std::to_string(i), ""});
  const Result<bool> added = merge_.AddBook("C:\\more");
  ASSERT_FALSE(added.ok());
  EXPECT_EQ(added.status().kind(), StatusKind::kLimit);
  EXPECT_EQ(added.status().message(), "Overflow !");
  EXPECT_FALSE(merge_.AddBook("C:\\5").value());
  EXPECT_EQ(merge_.BookList.size(), 32767u);
}

TEST(FileTitleOf, IsWhatFollowsTheLastSeparator) {
  EXPECT_EQ(FileTitleOf("C:\\a\\b.txt"), "b.txt");
  EXPECT_EQ(FileTitleOf("/home/b.txt"), "b.txt");
  EXPECT_EQ(FileTitleOf("b.txt"), "b.txt");
  EXPECT_EQ(FileTitleOf("C:\\a\\"), "");
  EXPECT_EQ(FileTitleOf(""), "");
}

TEST(Book, ShowsItsFileNameAndMarkTrimmed) {
  EXPECT_EQ((Book{"C:\\a\\b.txt", ""}).ShownText(), "b.txt");
  EXPECT_EQ((Book{"C:\\a\\b.txt", "**"}).ShownText(), "b.txt **");
  EXPECT_EQ((Book{"C:\\a\\ b.txt ", ""}).ShownText(), "b.txt");
}

TEST_F(MergeTest, PutsTheBooksIntoTheOrderOfTheListBox) {
  for (const char* path : {"C:\\x\\c.txt", "C:\\x\\a.txt", "C:\\y\\a.txt"}) ASSERT_TRUE(merge_.AddBook(path).ok());
  merge_.SyncBookListToListBox({"a.txt", "a.txt *", "c.txt"});
  EXPECT_EQ(merge_.BookList[0].Path, "C:\\x\\a.txt");
  EXPECT_EQ(merge_.BookList[1].Path, "C:\\y\\a.txt");
  EXPECT_EQ(merge_.BookList[2].Path, "C:\\x\\c.txt");
}

TEST_F(MergeTest, LosesNoBookOfTwoThatShowAlike) {
  for (const char* path : {"C:\\x\\a.txt", "C:\\y\\a.txt"}) ASSERT_TRUE(merge_.AddBook(path).ok());
  merge_.BookList.erase(merge_.BookList.begin());
  ASSERT_TRUE(merge_.AddBook("C:\\z\\a.txt").value());
  ASSERT_EQ(ShownBooks(), (Strings{"a.txt *", "a.txt *"}));
  merge_.SyncBookListToListBox(ShownBooks());
  EXPECT_EQ(merge_.BookList[0].Path, "C:\\y\\a.txt");
  EXPECT_EQ(merge_.BookList[1].Path, "C:\\z\\a.txt");
}

TEST_F(MergeTest, LeavesPlacesWithoutAMatchingBookAlone) {
  for (const char* path : {"C:\\x\\b.txt", "C:\\x\\a.txt"}) ASSERT_TRUE(merge_.AddBook(path).ok());
  merge_.SyncBookListToListBox({"nobody", "b.txt", "one too many"});
  EXPECT_EQ(ShownBooks(), (Strings{"b.txt", "b.txt"}));
}

// --- Extraction ---

TEST_F(MergeTest, GivesOneEntryForTwoSpellingsOfAnAddressThatDifferInCaseSpelledAsFirstMet) {
  Book("1", "John.Doe@Example.com\r\njohn.doe@example.COM");
  Book("2", "JOHN.DOE@EXAMPLE.COM x@y.zz");
  EXPECT_TRUE(Extract().empty());
  EXPECT_EQ(Addresses(), (Strings{"John.Doe@Example.com", "x@y.zz"}));
}

TEST_F(MergeTest, DoesNotFindAnAddressWhoseLastLabelHasFiveOrMoreLetters) {
  Book("1", "a@b.photo\nc@d.co.museum e@f.info g@h.infos.i");
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"c@d.co", "e@f.info"}));
}

TEST_F(MergeTest, KeepsTheOrderOfFirstAppearance) {
  Book("1", "z@z.com\na@a.com\nm@m.com\nA@A.com");
  Book("2", "b@b.com\nz@z.com");
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"z@z.com", "a@a.com", "m@m.com", "b@b.com"}));
}

TEST_F(MergeTest, NeverFindsAnAddressAcrossALineEndOrABookEnd) {
  for (const char* line_end : {"\r\n", "\n", "\r"}) {
    files_.Put("/books/1",
               "one@"s + line_end + "example.com two@example" + line_end + ".org three@example.c" + line_end + "om");
    files_.Put("/books/2", "end@example.com.");
    files_.Put("/books/3", "net");
    merge_.BookList = {{"/books/1", ""}, {"/books/2", ""}, {"/books/3", ""}};
    merge_.Addresses.Clear();
    EXPECT_TRUE(Extract().empty());
    EXPECT_EQ(Addresses(), (Strings{"end@example.com"}));
  }
}

TEST_F(MergeTest, AddsNothingOnASecondExtractionFromTheSameBooks) {
  Book("1", "a@b.com c@d.com");
  Extract();
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"a@b.com", "c@d.com"}));
}

TEST_F(MergeTest, KeepsTheListWhenNothingMatches) {
  Book("1", "a@b.com");
  Extract();
  merge_.BookList.clear();
  Book("2", "no address here, not even a@b");
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"a@b.com"}));
  EXPECT_FALSE(merge_.Addresses.AddMatchesToAddressList("a@b"));
  EXPECT_TRUE(merge_.Addresses.AddMatchesToAddressList("a@c.org"));
  EXPECT_FALSE(merge_.Addresses.AddMatchesToAddressList("A@C.org"));
}

TEST_F(MergeTest, SkipsBooksThatCannotBeReadWithAMessageEach) {
  files_.AddFolder("/books/folder");
  Book("1", "a@b.com");
  merge_.BookList.push_back({"/books/deleted", ""});
  merge_.BookList.push_back({"/books/folder", ""});
  Book("2", "c@d.com");
  const Strings messages = Extract();
  ASSERT_EQ(messages.size(), 2u);
  for (const std::string& message : messages) EXPECT_EQ(message.substr(message.size() - 2), " !");
  EXPECT_NE(messages[0].find("/books/deleted"), std::string::npos) << messages[0];
  EXPECT_EQ(Addresses(), (Strings{"a@b.com", "c@d.com"}));
}

TEST_F(MergeTest, ConvertsFromTheCodePageAndReadsPastNuls) {
  Book("1",
       "m\xFCller@x.de \x93q@r.com\x94 a@b.com\0c@d.com\xE9 \xE9"
       "e@f.com"s);
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"ller@x.de", "q@r.com", "a@b.com", "c@d.com", "e@f.com"}));
}

TEST_F(MergeTest, YieldsOnceABook) {
  Book("1", "a@b.com");
  Book("2", "");
  Book("3", "c@d.com");
  Extract();
  EXPECT_EQ(loop_.yields(), 3);
}

TEST_F(MergeTest, GoesOnWithWhatIsLeftWhenTheBooksChangeDuringItsYield) {
  Book("1", "a@b.com");
  Book("2", "c@d.com");
  loop_.OnPump([this] { merge_.BookList.clear(); });
  EXPECT_TRUE(Extract().empty());
  EXPECT_EQ(Addresses(), (Strings{"a@b.com"}));
}

TEST_F(MergeTest, PassesOverARunOfAddressCharactersThatNobodyCouldMean) {
  Book("1", "a@b.com\n" + std::string(70u << 20, 'x') + "@y.com\nc@d.com");
  files_.SetBlockSize(std::size_t{1} << 20);
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"a@b.com", "c@d.com"}));
}

// --- Saving ---

TEST_F(MergeTest, SavesOneAddressAndABlankALineAndReadsThemBack) {
  Book("1", "a@b.com C@d.com");
  Extract();
  ASSERT_TRUE(merge_.Save(files_, code_page_, "/books/out.txt").ok());
  EXPECT_EQ(files_.Contents("/books/out.txt"), "a@b.com \r\nC@d.com \r\n");
  merge_.BookList = {{"/books/out.txt", ""}};
  merge_.Addresses.Clear();
  Extract();
  EXPECT_EQ(Addresses(), (Strings{"a@b.com", "C@d.com"}));
}

TEST_F(MergeTest, SavesAnEmptyListAsAnEmptyFile) {
  files_.Put("/books/out.txt", "old");
  ASSERT_TRUE(merge_.Save(files_, code_page_, "/books/out.txt").ok());
  EXPECT_EQ(files_.Contents("/books/out.txt"), "");
}

TEST_F(MergeTest, LeavesTheOldFileWholeWhenAnyStepOfASaveFails) {
  std::string many;
  for (int i = 0; i < 20000; ++i) many += "name" + std::to_string(i) + "@example.com\n";
  Book("1", many);
  Extract();
  ASSERT_EQ(merge_.Addresses.Count(), 20000u);
  files_.Put("/books/out.txt", "old");
  int failures = 0;
  for (int n = 1; n < 100; ++n) {
    files_.FailCall(n, StatusKind::kFull);
    const Status saved = merge_.Save(files_, code_page_, "/books/out.txt");
    if (saved.ok()) break;
    ++failures;
    EXPECT_EQ(files_.Contents("/books/out.txt"), "old") << n;
    EXPECT_EQ(files_.AllFiles(), (Strings{"/books/1", "/books/out.txt"})) << n;
  }
  EXPECT_GE(failures, 4);  // opening, several blocks, committing
  EXPECT_EQ(files_.Contents("/books/out.txt")->size(), many.size() + 2 * 20000);
}

}  // namespace
}  // namespace quenlar
