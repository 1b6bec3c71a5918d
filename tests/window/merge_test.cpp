// The mailing list tool, end to end through its dialogs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "forms/win32/resource.h"
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
    ASSERT_TRUE(WaitUntil([&] { return program.Main().Control(IDC_CMDTOOL).Enabled(); }));
    program.Main().Control(IDC_CMDTOOL).Click();
    tool = program.WaitForWindow("Mailing List Management Tool");
    ASSERT_TRUE(tool);
  }
  void OpenBooks(const std::string& names) {
    Control(IDC_CMDOPEN).Click();
    ASSERT_TRUE(program.AnswerFileDialog("Open", names));
  }
  [[nodiscard]] Window Control(int id) const { return tool.Control(id); }
};

TEST_F(MergeToolTest, OpensWithNothingToDoButOpen) {
  Open();
  EXPECT_TRUE(Control(IDC_CMDOPEN).Enabled());
  for (const int id : {IDC_CMDDELETE, IDC_CMDDELETEALL, IDC_CMDEXTRACT, IDC_CMDCLEAR, IDC_CMDSAVE}) {
    EXPECT_FALSE(Control(id).Enabled()) << id;
  }
  EXPECT_FALSE(program.Main().Enabled());
}

TEST_F(MergeToolTest, TheListsHaveAccessKeys) {
  Open();
  constexpr LPARAM kAltHeld = 1 << 29;
  for (const auto& [key, list] : {std::pair{'m', IDC_LSTADDRESS}, std::pair{'b', IDC_LSTBOOK}}) {
    PostMessageW(Control(IDC_CMDOPEN).handle(), WM_SYSCHAR, static_cast<WPARAM>(key), kAltHeld);
    EXPECT_TRUE(WaitUntil([&] { return tool.FocusedControl() == list; })) << key;
  }
}

TEST_F(MergeToolTest, MergesSeveralBooksAndSavesThem) {
  Open();
  OpenBooks("\"b c.rpt\" \"a.txt\"");
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_LSTBOOK).Items().size() == 2; }));
  EXPECT_THAT(Control(IDC_LSTBOOK).Items(), ElementsAre("a.txt", "b c.rpt"));
  EXPECT_TRUE(Control(IDC_CMDDELETEALL).Enabled());

  Control(IDC_CMDEXTRACT).Click();
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDSAVE).Enabled(); }));
  EXPECT_THAT(Control(IDC_LSTADDRESS).Items(), ElementsAre("one@x.test", "two@x.test", "three@x.test"));
  EXPECT_THAT(Control(IDC_LSTBOOK).Items(), IsEmpty());
  EXPECT_FALSE(Control(IDC_CMDEXTRACT).Enabled());

  Control(IDC_CMDSAVE).Click();
  ASSERT_TRUE(program.AnswerFileDialog("Save As", "merged.txt"));
  ASSERT_TRUE(WaitUntil([&] { return program.HasFile("report/merged.txt"); }));
  EXPECT_EQ(program.ReadFile("report/merged.txt"), "one@x.test \r\ntwo@x.test \r\nthree@x.test \r\n");

  Control(IDC_CMDCLEAR).Click();
  EXPECT_TRUE(WaitUntil([&] { return !Control(IDC_CMDSAVE).Enabled(); }));
  EXPECT_THAT(Control(IDC_LSTADDRESS).Items(), IsEmpty());
}

TEST_F(MergeToolTest, SavingOntoAFileAsksAndNoLeadsBackToTheDialog) {
  Open();
  OpenBooks("a.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDEXTRACT).Enabled(); }));
  Control(IDC_CMDEXTRACT).Click();
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDSAVE).Enabled(); }));
  const std::string before = program.ReadFile("report/b c.rpt");
  Control(IDC_CMDSAVE).Click();
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
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDEXTRACT).Enabled(); }));
  Control(IDC_CMDEXTRACT).Click();
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDSAVE).Enabled(); }));
  Control(IDC_CMDSAVE).Click();
  const Window dialog = program.WaitForWindow("Save As");
  ASSERT_TRUE(dialog);
  dialog.Control(IDCANCEL).Click();
  EXPECT_TRUE(program.Answer("Canceled selection !"));
}

TEST_F(MergeToolTest, SelectedBooksCanBeRemoved) {
  Open();
  OpenBooks("\"a.txt\" \"b c.rpt\"");
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_LSTBOOK).Items().size() == 2; }));
  EXPECT_FALSE(Control(IDC_CMDDELETE).Enabled());
  Control(IDC_LSTBOOK).PickListItem(0);
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDDELETE).Enabled(); }));
  Control(IDC_CMDDELETE).Click();
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_LSTBOOK).Items().size() == 1; }));
  EXPECT_THAT(Control(IDC_LSTBOOK).Items(), ElementsAre("b c.rpt"));
  EXPECT_TRUE(WaitUntil([&] { return !Control(IDC_CMDDELETE).Enabled(); }));
  Control(IDC_CMDDELETEALL).Click();
  EXPECT_TRUE(WaitUntil([&] { return Control(IDC_LSTBOOK).Items().empty(); }));
  EXPECT_FALSE(Control(IDC_CMDEXTRACT).Enabled());
}

TEST_F(MergeToolTest, TheListsCanBeUsedByTheKeyboard) {
  Open();
  OpenBooks("\"a.txt\" \"b c.rpt\"");
  const Window books = Control(IDC_LSTBOOK);
  ASSERT_TRUE(WaitUntil([&] { return books.Items().size() == 2; }));
  Control(IDC_CMDEXTRACT).Click();
  const Window addresses = Control(IDC_LSTADDRESS);
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
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDDELETE).Enabled(); }));
  books.Press(VK_DELETE);
  EXPECT_TRUE(WaitUntil([&] { return books.Items() == std::vector<std::string>{"b c.rpt"}; }));
}

TEST_F(MergeToolTest, BooksWithoutAddressesSaySo) {
  program.WriteFile("report/empty.txt", "nobody\r\n");
  Open();
  OpenBooks("empty.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDEXTRACT).Enabled(); }));
  Control(IDC_CMDEXTRACT).Click();
  EXPECT_TRUE(program.Answer("No valid Email address are available !"));
  EXPECT_FALSE(Control(IDC_CMDSAVE).Enabled());
}

TEST_F(MergeToolTest, ClosingAndReopeningKeepsTheMergedAddresses) {
  Open();
  OpenBooks("a.txt");
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDEXTRACT).Enabled(); }));
  Control(IDC_CMDEXTRACT).Click();
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDSAVE).Enabled(); }));
  Control(IDOK).Click();
  ASSERT_TRUE(WaitUntil([&] { return !tool && program.Main().Enabled(); }));
  Open();
  EXPECT_THAT(Control(IDC_LSTADDRESS).Items(), IsEmpty());
  OpenBooks("b c.rpt");
  ASSERT_TRUE(WaitUntil([&] { return Control(IDC_CMDEXTRACT).Enabled(); }));
  Control(IDC_CMDEXTRACT).Click();
  EXPECT_TRUE(WaitUntil([&] { return Control(IDC_LSTADDRESS).Items().size() == 3; }));
}

}  // namespace
}  // namespace quenlar::window_test
