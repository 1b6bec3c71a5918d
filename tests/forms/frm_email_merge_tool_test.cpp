#include "forms/frm_email_merge_tool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fake_event_loop.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"
#include "support/recorders.h"

namespace quenlar {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Enabled = std::vector<bool>;

struct MergeToolTest : testing::Test {
  FakeEventLoop loop;
  InMemoryFiles files;
  FakeCodePage code_page;
  RecordingBoxes boxes;
  RecordingFileDialogs dialogs;
  eMailBookMerge books;
  Installation installation;
  Status suppression;
  frmEmailMergeTool tool{{books, files, code_page, loop, boxes, dialogs, installation, [this] { return suppression; }}};

  MergeToolTest() {
    installation.program_folder = "C:\\Q";
    installation.separator = '\\';
    files.AddFolder("C:\\Q\\report");
    files.AddFolder("C:\\other");
    files.Put("C:\\Q\\report\\a.txt", "one@x.test\r\ntwo@x.test\r\n");
    files.Put("C:\\Q\\report\\b c.rpt", "TWO@x.test\r\nthree@x.test\r\n");
    files.Put("C:\\other\\a.txt", "four@x.test");
  }
  void Open(const std::string& names, const std::string& folder = "C:\\Q\\report") {
    dialogs.open_answers.push_back(FileDialogs::Choice{names, folder});
    tool.cmdOpen.Click();
  }
  void OpenBoth() { Open("C:\\Q\\report\0b c.rpt\0a.txt"s); }
  void Select(std::vector<bool> selected) { tool.lstBook.UserSelect(std::move(selected)); }
  // cmdDelete, cmdDeleteAll, cmdExtract, cmdClear, cmdSave
  [[nodiscard]] Enabled States() const {
    return {tool.cmdDelete.enabled(), tool.cmdDeleteAll.enabled(), tool.cmdExtract.enabled(), tool.cmdClear.enabled(),
            tool.cmdSave.enabled()};
  }
  [[nodiscard]] std::vector<std::string> Books() const {
    std::vector<std::string> paths;
    for (const Book& book : books.BookList) paths.push_back(book.Path);
    return paths;
  }
};

TEST_F(MergeToolTest, WithoutTheSuppressionListNothingIsMerged) {
  OpenBoth();
  suppression = Status(StatusKind::kDenied, "The list cannot be read");
  tool.cmdExtract.Click();
  EXPECT_EQ(boxes.shown.back().text, "The list cannot be read !");
  EXPECT_EQ(books.Addresses.Count(), 0u);
  EXPECT_EQ(Books().size(), 2u) << "the books stay for another try";
}

// --- Opening the window ---

TEST_F(MergeToolTest, HasItsCaptionsAndOpensWithNothingToDoButOpen) {
  tool.Show();
  EXPECT_EQ(tool.caption(), "Mailing List Management Tool");
  EXPECT_TRUE(tool.lstBook.sorted);
  EXPECT_TRUE(tool.lstBook.multi_select);
  EXPECT_FALSE(tool.lstAddress.sorted);
  EXPECT_TRUE(tool.cmdOpen.enabled());
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
}

TEST_F(MergeToolTest, EveryAccessKeyIsThereOnce) {
  std::string keys;
  for (const ui::Button* button :
       {&tool.cmdOpen, &tool.cmdDelete, &tool.cmdDeleteAll, &tool.cmdExtract, &tool.cmdClear, &tool.cmdSave}) {
    const std::size_t mark = button->text().find('&');
    ASSERT_NE(mark, std::string::npos) << button->text();
    const char key = button->text()[mark + 1];
    EXPECT_EQ(keys.find(key), std::string::npos) << button->text();
    keys += key;
  }
}

TEST_F(MergeToolTest, LoadMakesTheDataFolderWhereItIsMissing) {
  EXPECT_FALSE(files.FolderExists("C:\\Q\\data"));
  tool.Show();
  EXPECT_TRUE(files.FolderExists("C:\\Q\\data"));
}

TEST_F(MergeToolTest, EveryCommandFirstMovesTheFocusToOpen) {
  tool.Show();
  int focused = 0;
  tool.cmdOpen.changed = [&](ui::Aspect aspect) { focused += aspect == ui::Aspect::kFocus; };
  int expected = 0;
  for (ui::Button* button : {&tool.cmdOpen, &tool.cmdDelete, &tool.cmdDeleteAll, &tool.cmdExtract, &tool.cmdClear,
                             &tool.cmdSave, &tool.cmdOK}) {
    button->Click();
    EXPECT_EQ(focused, ++expected) << button->name();
  }
}

// --- Books ---

TEST_F(MergeToolTest, OpenAsksForTextAndReportFilesInTheReportFolder) {
  tool.Show();
  OpenBoth();
  ASSERT_EQ(dialogs.open_requests.size(), 1u);
  const FileDialogRequest& request = dialogs.open_requests[0];
  EXPECT_EQ(request.title, "Open");
  EXPECT_EQ(request.filter, "Text Files (*.txt;*.rpt)|*.txt;*.rpt");
  EXPECT_EQ(request.folder, "C:\\Q\\report");
  EXPECT_TRUE(request.several);
}

TEST_F(MergeToolTest, OpenedBooksStandSortedAndCanBeExtractedOrRemoved) {
  tool.Show();
  OpenBoth();
  EXPECT_THAT(tool.lstBook.items(), ElementsAre("a.txt", "b c.rpt"));
  ASSERT_EQ(books.BookList.size(), 2u);
  EXPECT_EQ(FileTitleOf(books.BookList[0].Path), "a.txt") << "BookList follows the order of the list";
  EXPECT_EQ(States(), (Enabled{false, true, true, false, false}));
}

TEST_F(MergeToolTest, CancellingOpenAddsNothingAndSaysNothing) {
  tool.Show();
  tool.cmdOpen.Click();
  EXPECT_THAT(books.BookList, IsEmpty());
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
}

TEST_F(MergeToolTest, TheSameFileChosenTwiceIsAddedOnceAlsoInAnotherSpelling) {
  tool.Show();
  Open("C:\\Q\\report\\a.txt");
  Open("C:\\Q\\report\\A.TXT");
  EXPECT_THAT(tool.lstBook.items(), ElementsAre("a.txt"));
}

TEST_F(MergeToolTest, TwoFilesOfOneNameInTwoFoldersBothStayAndTheSecondIsMarked) {
  tool.Show();
  Open("C:\\Q\\report\\a.txt");
  Open("C:\\other\\a.txt", "C:\\other");
  EXPECT_THAT(tool.lstBook.items(), ElementsAre("a.txt", "a.txt *"));
}

TEST_F(MergeToolTest, AnAnswerThatCannotBeSplitIsAnError) {
  tool.Show();
  Open("x", "C:\\Q\\report");
  ASSERT_THAT(boxes.texts(), ElementsAre("GetDlgSelectFileInfo error !"));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kStop);
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0") << "the program's own title";
  EXPECT_THAT(books.BookList, IsEmpty());
}

TEST_F(MergeToolTest, MoreBooksThanTheDialogCanHandOverAreAnErrorAndNoSilentCancel) {
  tool.Show();
  Open("");
  EXPECT_THAT(boxes.texts(), ElementsAre("GetDlgSelectFileInfo error !"));
  EXPECT_THAT(books.BookList, IsEmpty());
}

TEST_F(MergeToolTest, MoreBooksThanA16BitCountAreAnOverflowAndTheOthersStay) {
  for (int i = 0; i < 32766; ++i) books.BookList.push_back({"C:\\other\\" + std::to_string(i), ""});
  tool.Show();
  OpenBoth();
  EXPECT_THAT(boxes.texts(), ElementsAre("Overflow !"));
  EXPECT_EQ(boxes.shown[0].title, "Email Merge Tool");
  EXPECT_EQ(books.BookList.size(), 32767u);
}

TEST_F(MergeToolTest, DeleteIsEnabledExactlyWhileABookIsSelected) {
  tool.Show();
  OpenBoth();
  Select({false, true});
  EXPECT_TRUE(tool.cmdDelete.enabled());
  Select({false, false});
  EXPECT_FALSE(tool.cmdDelete.enabled());
}

TEST_F(MergeToolTest, DeleteRemovesTheSelectedBooksFromListAndBookList) {
  tool.Show();
  OpenBoth();
  Open("C:\\other\\a.txt", "C:\\other");
  Select({true, false, true});
  tool.cmdDelete.Click();
  EXPECT_THAT(tool.lstBook.items(), ElementsAre("a.txt *"));
  EXPECT_THAT(Books(), ElementsAre(testing::HasSubstr("other")));
  EXPECT_EQ(States(), (Enabled{false, true, true, false, false}));
}

TEST_F(MergeToolTest, TheDeleteKeyInTheBooksDoesWhatTheButtonDoes) {
  tool.Show();
  OpenBoth();
  tool.lstBook.DeleteKey();
  EXPECT_EQ(tool.lstBook.items().size(), 2u) << "nothing is selected";
  Select({true, false});
  tool.lstBook.DeleteKey();
  EXPECT_EQ(tool.lstBook.items().size(), 1u);
}

TEST_F(MergeToolTest, DeletingTheLastBooksIsDeletingAll) {
  tool.Show();
  OpenBoth();
  Select({true, true});
  tool.cmdDelete.Click();
  EXPECT_THAT(tool.lstBook.items(), IsEmpty());
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
}

TEST_F(MergeToolTest, DeleteAllEmptiesTheBooks) {
  tool.Show();
  OpenBoth();
  Select({true, false});
  tool.cmdDeleteAll.Click();
  EXPECT_THAT(tool.lstBook.items(), IsEmpty());
  EXPECT_THAT(books.BookList, IsEmpty());
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
}

// --- Extracting ---

TEST_F(MergeToolTest, ExtractMergesTheBooksInTheirOrderAndEmptiesTheBookList) {
  tool.Show();
  OpenBoth();
  tool.cmdExtract.Click();
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("one@x.test", "two@x.test", "three@x.test"));
  EXPECT_THAT(tool.lstBook.items(), IsEmpty());
  EXPECT_THAT(books.BookList, IsEmpty());
  EXPECT_EQ(States(), (Enabled{false, false, false, true, true}));
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(MergeToolTest, ExtractingTwiceFromTheSameBooksAddsNothingTheSecondTime) {
  tool.Show();
  for (int i = 0; i < 2; ++i) {
    OpenBoth();
    tool.cmdExtract.Click();
    EXPECT_THAT(tool.lstAddress.items(), ElementsAre("one@x.test", "two@x.test", "three@x.test"));
  }
}

TEST_F(MergeToolTest, ASecondExtractionShowsTheWholeMergedList) {
  tool.Show();
  OpenBoth();
  tool.cmdExtract.Click();
  Open("C:\\other\\a.txt", "C:\\other");
  tool.cmdExtract.Click();
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("one@x.test", "two@x.test", "three@x.test", "four@x.test"));
}

TEST_F(MergeToolTest, BooksWithoutAddressesSaySo) {
  files.Put("C:\\Q\\report\\a.txt", "nobody@nowhere");
  tool.Show();
  Open("C:\\Q\\report\\a.txt");
  tool.cmdExtract.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("No valid Email address are available !"));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kInformation);
  EXPECT_EQ(boxes.shown[0].title, "Email Merge Tool");
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
}

TEST_F(MergeToolTest, ABookThatHasGoneIsToldAndTheOthersAreMerged) {
  tool.Show();
  OpenBoth();
  files.Delete("C:\\Q\\report\\a.txt").Ignore("it is there");
  tool.cmdExtract.Click();
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("TWO@x.test", "three@x.test"));
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_THAT(boxes.shown[0].text, testing::HasSubstr("a.txt"));
  EXPECT_TRUE(boxes.shown[0].text.ends_with(" !"));
  EXPECT_EQ(boxes.shown[0].title, "Email Merge Tool");
}

TEST_F(MergeToolTest, ReportFilesOfTheMainWindowCanBeBooks) {
  files.Put("C:\\Q\\report\\cars_en.rpt", "Brenvy Quenlar Pro, http://www.quenlar.example\r\n\r\nseller@cars.test\r\n");
  tool.Show();
  Open("C:\\Q\\report\\cars_en.rpt");
  tool.cmdExtract.Click();
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("seller@cars.test"));
}

TEST_F(MergeToolTest, CommandsDuringAnExtractionArePassedOver) {
  tool.Show();
  OpenBoth();
  bool pumped = false;
  loop.OnPump([&] {
    if (std::exchange(pumped, true)) return;
    tool.cmdDeleteAll.Click();
    tool.cmdExtract.Click();
    tool.cmdClear.Click();
  });
  tool.cmdExtract.Click();
  EXPECT_TRUE(pumped);
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("one@x.test", "two@x.test", "three@x.test"));
}

TEST_F(MergeToolTest, ClearEmptiesTheAddressesAndNothingCanBeSaved) {
  tool.Show();
  OpenBoth();
  tool.cmdExtract.Click();
  tool.cmdClear.Click();
  EXPECT_EQ(books.Addresses.Count(), 0u);
  EXPECT_THAT(tool.lstAddress.items(), IsEmpty());
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
}

// --- Saving ---

struct MergeToolSaveTest : MergeToolTest {
  MergeToolSaveTest() {
    tool.Show();
    OpenBoth();
    tool.cmdExtract.Click();
  }
};

TEST_F(MergeToolSaveTest, ASavedFileHasATrailingBlankOnEveryLineAndYieldsTheSameAddresses) {
  dialogs.save_answers = {"C:\\Q\\report\\new.txt"};
  tool.cmdSave.Click();
  EXPECT_EQ(files.Contents("C:\\Q\\report\\new.txt"), "one@x.test \r\ntwo@x.test \r\nthree@x.test \r\n");
  EXPECT_THAT(boxes.shown, IsEmpty());
  const FileDialogRequest& request = dialogs.save_requests.at(0);
  EXPECT_EQ(request.title, "Save As");
  EXPECT_EQ(request.filter, "Text Files (*.txt)|*.txt");
  EXPECT_EQ(request.folder, "C:\\Q\\report");
  EXPECT_EQ(request.proposed_name, "AddressBook1.txt");

  tool.cmdClear.Click();
  Open("C:\\Q\\report\\new.txt");
  tool.cmdExtract.Click();
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("one@x.test", "two@x.test", "three@x.test"));
}

TEST_F(MergeToolSaveTest, SavingOntoAnExistingFileAndAnsweringNoReturnsToTheDialogWithTheProposedName) {
  dialogs.save_answers = {"C:\\Q\\report\\a.txt", "C:\\Q\\report\\new.txt"};
  boxes.answers = {BoxAnswer::kNo};
  tool.cmdSave.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("a.txt file existed , Overwrite it ?"));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(boxes.shown[0].buttons, BoxButtons::kYesNo);
  EXPECT_EQ(boxes.shown[0].title, "Email Merge Tool");
  ASSERT_EQ(dialogs.save_requests.size(), 2u);
  EXPECT_EQ(dialogs.save_requests[1].proposed_name, "AddressBook1.txt");
  EXPECT_EQ(files.Contents("C:\\Q\\report\\a.txt"), "one@x.test\r\ntwo@x.test\r\n");
  EXPECT_TRUE(files.FileExists("C:\\Q\\report\\new.txt"));
}

TEST_F(MergeToolSaveTest, AnsweringYesReplacesTheFileAlsoWhenItWasAnInput) {
  dialogs.save_answers = {"C:\\Q\\report\\a.txt"};
  boxes.answers = {BoxAnswer::kYes};
  tool.cmdSave.Click();
  EXPECT_EQ(files.Contents("C:\\Q\\report\\a.txt"), "one@x.test \r\ntwo@x.test \r\nthree@x.test \r\n");
}

TEST_F(MergeToolSaveTest, CancellingTheDialogSaysSoAndWritesNothing) {
  const auto before = files.AllFiles();
  tool.cmdSave.Click();
  ASSERT_THAT(boxes.texts(), ElementsAre("Canceled selection !"));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kInformation);
  EXPECT_EQ(boxes.shown[0].title, "Email Merge Tool");
  EXPECT_EQ(files.AllFiles(), before);
}

TEST_F(MergeToolSaveTest, CancellingAfterANoSaysSoToo) {
  dialogs.save_answers = {"C:\\Q\\report\\a.txt"};
  tool.cmdSave.Click();
  EXPECT_THAT(boxes.texts(), ElementsAre("a.txt file existed , Overwrite it ?", "Canceled selection !"));
}

TEST_F(MergeToolSaveTest, AFileThatCannotBeWrittenIsToldAndStaysWhole) {
  files.Protect("C:\\Q\\report");
  dialogs.save_answers = {"C:\\Q\\report\\a.txt"};
  boxes.answers = {BoxAnswer::kYes};
  tool.cmdSave.Click();
  ASSERT_EQ(boxes.shown.size(), 2u);
  EXPECT_TRUE(boxes.shown[1].text.ends_with(" !")) << boxes.shown[1].text;
  EXPECT_EQ(boxes.shown[1].icon, BoxIcon::kExclamation);
  EXPECT_EQ(files.Contents("C:\\Q\\report\\a.txt"), "one@x.test\r\ntwo@x.test\r\n");
}

TEST_F(MergeToolSaveTest, AFullDiskIsToldAndLeavesTheOldFileWhole) {
  files.SetFreeSpace(5);
  dialogs.save_answers = {"C:\\Q\\report\\a.txt"};
  boxes.answers = {BoxAnswer::kYes};
  tool.cmdSave.Click();
  EXPECT_EQ(boxes.shown.size(), 2u);
  EXPECT_EQ(files.Contents("C:\\Q\\report\\a.txt"), "one@x.test\r\ntwo@x.test\r\n");
}

// --- Closing ---

TEST_F(MergeToolSaveTest, ClosingAndReopeningKeepsTheAddressesUntilTheNextExtraction) {
  tool.cmdOK.Click();
  EXPECT_FALSE(tool.loaded());
  tool.Show();
  EXPECT_THAT(tool.lstAddress.items(), IsEmpty());
  EXPECT_EQ(States(), (Enabled{false, false, false, false, false}));
  Open("C:\\other\\a.txt", "C:\\other");
  tool.cmdExtract.Click();
  EXPECT_THAT(tool.lstAddress.items(), ElementsAre("one@x.test", "two@x.test", "three@x.test", "four@x.test"));
}

TEST_F(MergeToolTest, BooksThatWereOpenedBeforeTheWindowClosedAreShownAgain) {
  tool.Show();
  OpenBoth();
  tool.Close();
  tool.Show();
  EXPECT_THAT(tool.lstBook.items(), ElementsAre("a.txt", "b c.rpt"));
  EXPECT_EQ(States(), (Enabled{false, true, true, false, false}));
}

}  // namespace
}  // namespace quenlar
