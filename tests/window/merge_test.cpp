// The mailing list tool, end to end through its dialogs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "window/program.h"

namespace quenlar::window_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct MergeToolTest : testing::Test {
  Program program;
  Window tool;

  MergeToolTest() {
    program.WriteFile("report/a.txt", "one@x.test\r\ntwo@x.test\r\n");
    program.WriteFile("report/b c.rpt", "TWO@x.test\r\nthree@x.test\r\n");
  }
  void Open() {
    if (!program.Running()) program.Start();
    // The button is disabled for a moment longer than the window of before is there.
    ASSERT_TRUE(WaitUntil([&] { return program.Main().Control("cmdTool").Enabled(); }));
    program.Main().Control("cmdTool").Click();
    tool = program.WaitForWindow("Mailing List Management Tool");
    ASSERT_TRUE(tool);
  }
  void OpenBooks(const std::string& names) {
    Control("cmdOpen").Click();
    ASSERT_TRUE(program.AnswerFileDialog("Open", names));
  }
  [[nodiscard]] Window Control(std::string_view name) const { return tool.Control(name); }
};

TEST_F(MergeToolTest, OpensWithNothingToDoButOpen) {
  Open();
  EXPECT_TRUE(Control("cmdOpen").Enabled());
  for (const char* name : {"cmdDelete", "cmdDeleteAll", "cmdExtract", "cmdClear", "cmdSave"}) {
    EXPECT_FALSE(Control(name).Enabled()) << name;
  }
  EXPECT_FALSE(program.Main().Enabled());
}

TEST_F(MergeToolTest, TheListsHaveAccessKeys) {
  Open();
  constexpr LPARAM kAltHeld = 1 << 29;
  for (const auto& [key, list] : {std::pair{'m', "lstAddress"}, std::pair{'b', "lstBook"}}) {
    PostMessageW(Control("cmdOpen").handle(), WM_SYSCHAR, static_cast<WPARAM>(key), kAltHeld);
    EXPECT_TRUE(WaitUntil([&] { return tool.FocusedControl() == ui::ControlNumber(list); })) << key;
  }
}

TEST_F(MergeToolTest, MergesSeveralBooksAndSavesThem) {
  Open();
  OpenBooks("\"b c.rpt\" \"a.txt\"");
  ASSERT_TRUE(WaitUntil([&] { return Control("lstBook").Items().size() == 2; }));
  EXPECT_THAT(Control("lstBook").Items(), ElementsAre("a.txt", "b c.rpt"));
  EXPECT_TRUE(Control("cmdDeleteAll").Enabled());

  Control("cmdExtract").Click();
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdSave").Enabled(); }));
  EXPECT_THAT(Control("lstAddress").Items(), ElementsAre("one@x.test", "two@x.test", "three@x.test"));
  EXPECT_THAT(Control("lstBook").Items(), IsEmpty());
  EXPECT_FALSE(Control("cmdExtract").Enabled());

  Control("cmdSave").Click();
  ASSERT_TRUE(program.AnswerFileDialog("Save As", "merged.txt"));
  const std::string merged = "one@x.test \r\ntwo@x.test \r\nthree@x.test \r\n";
  EXPECT_TRUE(WaitUntil([&] { return program.ReadFile("report/merged.txt") == merged; }));

  Control("cmdClear").Click();
  EXPECT_TRUE(WaitUntil([&] { return !Control("cmdSave").Enabled(); }));
  EXPECT_THAT(Control("lstAddress").Items(), IsEmpty());
}

TEST_F(MergeToolTest, SavingOntoAFileAsksAndNoLeadsBackToTheDialog) {
  Open();
  OpenBooks("a.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled(); }));
  Control("cmdExtract").Click();
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdSave").Enabled(); }));
  const std::string before = program.ReadFile("report/b c.rpt");
  Control("cmdSave").Click();
  ASSERT_TRUE(program.AnswerFileDialog("Save As", "b c.rpt"));
  ASSERT_TRUE(program.Answer("b c.rpt file existed , Overwrite it ?", IDNO));
  EXPECT_EQ(program.ReadFile("report/b c.rpt"), before);
  ASSERT_TRUE(program.AnswerFileDialog("Save As", "b c.rpt"));
  ASSERT_TRUE(program.Answer("b c.rpt file existed , Overwrite it ?", IDYES));
  EXPECT_TRUE(WaitUntil([&] { return program.ReadFile("report/b c.rpt") == "one@x.test \r\ntwo@x.test \r\n"; }));
}

TEST_F(MergeToolTest, CancellingTheSaveDialogSaysSo) {
  Open();
  OpenBooks("a.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled(); }));
  Control("cmdExtract").Click();
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdSave").Enabled(); }));
  Control("cmdSave").Click();
  const Window dialog = program.WaitForWindow("Save As");
  ASSERT_TRUE(dialog);
  dialog.Control(IDCANCEL).Click();
  EXPECT_TRUE(program.Answer("Canceled selection !"));
}

TEST_F(MergeToolTest, SelectedBooksCanBeRemoved) {
  Open();
  OpenBooks("\"a.txt\" \"b c.rpt\"");
  ASSERT_TRUE(WaitUntil([&] { return Control("lstBook").Items().size() == 2; }));
  EXPECT_FALSE(Control("cmdDelete").Enabled());
  Control("lstBook").PickListItem(0);
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdDelete").Enabled(); }));
  Control("cmdDelete").Click();
  ASSERT_TRUE(WaitUntil([&] { return Control("lstBook").Items().size() == 1; }));
  EXPECT_THAT(Control("lstBook").Items(), ElementsAre("b c.rpt"));
  EXPECT_TRUE(WaitUntil([&] { return !Control("cmdDelete").Enabled(); }));
  Control("cmdDeleteAll").Click();
  EXPECT_TRUE(WaitUntil([&] { return Control("lstBook").Items().empty(); }));
  EXPECT_FALSE(Control("cmdExtract").Enabled());
}

TEST_F(MergeToolTest, TheListsCanBeUsedByTheKeyboard) {
  Open();
  OpenBooks("\"a.txt\" \"b c.rpt\"");
  const Window books = Control("lstBook");
  ASSERT_TRUE(WaitUntil([&] { return books.Items().size() == 2; }));
  Control("cmdExtract").Click();
  const Window addresses = Control("lstAddress");
  ASSERT_TRUE(WaitUntil([&] { return addresses.Items().size() == 3; }));
  ClearClipboard();
  {
    const ControlKeyHeld held(addresses);
    addresses.Press('A');
    addresses.Press('C');
    EXPECT_TRUE(WaitUntil([] { return ClipboardText() == "one@x.test\r\ntwo@x.test\r\nthree@x.test"; }))
        << ClipboardText();
  }
  OpenBooks("\"a.txt\" \"b c.rpt\"");
  ASSERT_TRUE(WaitUntil([&] { return books.Items().size() == 2; }));
  books.PickListItem(0);
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdDelete").Enabled(); }));
  books.Press(VK_DELETE);
  EXPECT_TRUE(WaitUntil([&] { return books.Items() == std::vector<std::string>{"b c.rpt"}; }));
}

TEST_F(MergeToolTest, BooksWithoutAddressesSaySo) {
  program.WriteFile("report/empty.txt", "nobody\r\n");
  Open();
  OpenBooks("empty.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled(); }));
  Control("cmdExtract").Click();
  EXPECT_TRUE(program.Answer("No valid Email address are available !"));
  EXPECT_FALSE(Control("cmdSave").Enabled());
}

TEST_F(MergeToolTest, ClosingAndReopeningKeepsTheMergedAddresses) {
  Open();
  OpenBooks("a.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled(); }));
  Control("cmdExtract").Click();
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdSave").Enabled(); }));
  tool.Control(IDOK).Click();
  ASSERT_TRUE(WaitUntil([&] { return !tool && program.Main().Enabled(); }));
  Open();
  EXPECT_THAT(Control("lstAddress").Items(), IsEmpty());
  OpenBooks("b c.rpt");
  ASSERT_TRUE(WaitUntil([&] { return Control("cmdExtract").Enabled(); }));
  Control("cmdExtract").Click();
  EXPECT_TRUE(WaitUntil([&] { return Control("lstAddress").Items().size() == 3; }));
}

}  // namespace
}  // namespace quenlar::window_test
