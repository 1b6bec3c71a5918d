// The options dialog: every control and the registry value or file that it stands for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "project/data_file.h"
#include "window/program.h"

namespace quenlar::window_test {
namespace {

using testing::ElementsAre;
using ui::ControlNumber;

struct OptionTest : testing::Test {
  Program program;
  Window option;

  void Open() {
    if (!program.Running()) program.Start();
    // The button is disabled for a moment longer than the dialog of before is there.
    ASSERT_TRUE(WaitUntil([&] { return program.Main().Control("cmdOption").Enabled(); }));
    program.Main().Control("cmdOption").Click();
    option = program.WaitForWindow("Option");
    ASSERT_TRUE(option);
  }
  void Ok() {
    option.Control(IDOK).Click();
    ASSERT_TRUE(WaitUntil([&] { return !option; }));
  }
  [[nodiscard]] static bool Stored(const std::string& name, const std::string& text) {
    return WaitUntil([&] { return StoredSettings()[name] == text; });
  }
};

TEST_F(OptionTest, ShowsWhatIsStoredAndIsModal) {
  StoreSetting("ProjectNum", "0");
  StoreSetting("Search", "3");
  StoreSetting("Save", "1");
  StoreSetting("Correlation", "0");
  StoreSetting("StopNumber", "250");
  StoreSetting("Export", "1");
  StoreSetting("RemoveFilter", "1");
  program.WriteFile("data/ExtractFilter.dat", "banner\r\n\r\n<r>cat</r>\r\n<r>dog</r>\r\n<e>cow</e>\r\n");
  Open();
  EXPECT_EQ(option.Control("cmbSearch").Text(), "Italian");
  EXPECT_EQ(option.Control("cmbSave").Text(), "50");
  EXPECT_TRUE(option.Control("chkCorrelation").Checked());
  EXPECT_EQ(option.Control("txtStopNumber").Text(), "250");
  EXPECT_FALSE(option.Control("optEmailAddress").Checked());
  EXPECT_TRUE(option.Control("optAllInfo").Checked());
  EXPECT_TRUE(option.Control("chkRemoveFilter").Checked());
  EXPECT_FALSE(option.Control("chkExtractFilter").Checked());
  EXPECT_EQ(option.Control("txtRemoveFilter").Text(), "cat\r\ndog");
  EXPECT_EQ(option.Control("txtExtractFilter").Text(), "cow");
  EXPECT_FALSE(program.Main().Enabled());
  Ok();
  EXPECT_TRUE(WaitUntil([&] { return program.Main().Enabled(); }));
  EXPECT_TRUE(WaitUntil([&] { return program.Main().Control("cmdOption").Enabled(); }));
}

TEST_F(OptionTest, OnePageIsSeenAtATime) {
  Open();
  const Window tabs = option.Control("tabOption");
  const auto seen = [&] {
    return std::string(option.Control("cmbSearch").Visible() ? "S" : "") +
           (option.Control("optAllInfo").Visible() ? "E" : "") +
           (option.Control("txtRemoveFilter").Visible() ? "F" : "");
  };
  EXPECT_TRUE(WaitUntil([&] { return seen() == "S"; })) << seen();
  tabs.Send(TCM_SETCURFOCUS, 1);
  EXPECT_TRUE(WaitUntil([&] { return seen() == "E"; })) << seen();
  tabs.Send(TCM_SETCURFOCUS, 2);
  EXPECT_TRUE(WaitUntil([&] { return seen() == "F"; })) << seen();
}

TEST_F(OptionTest, TabWalksOverThePageInSightThenOkThenTheTabs) {
  Open();
  EXPECT_THAT(option.TabStops(),
              ElementsAre(ControlNumber("cmbSearch"), ControlNumber("chkCorrelation"), ControlNumber("cmbSave"),
                          ControlNumber("txtStopNumber"), IDOK, ControlNumber("tabOption")));
  option.Control("tabOption").Send(TCM_SETCURFOCUS, 2);
  ASSERT_TRUE(WaitUntil([&] { return option.Control("txtRemoveFilter").Visible(); }));
  EXPECT_THAT(option.TabStops(), ElementsAre(ControlNumber("chkRemoveFilter"), ControlNumber("txtRemoveFilter"),
                                             ControlNumber("chkExtractFilter"), ControlNumber("txtExtractFilter"), IDOK,
                                             ControlNumber("tabOption")));
}

TEST_F(OptionTest, TabLeavesTheListsOfWords) {
  Open();
  option.Control("tabOption").Send(TCM_SETCURFOCUS, 2);
  const Window words = option.Control("txtRemoveFilter");
  ASSERT_TRUE(WaitUntil([&] { return words.Visible(); }));
  words.MouseClick({5, 5});
  int last = ControlNumber("txtRemoveFilter");
  ASSERT_TRUE(WaitUntil([&] { return option.FocusedControl() == last; }));
  for (const int next :
       {ControlNumber("chkExtractFilter"), ControlNumber("txtExtractFilter"), IDOK, ControlNumber("tabOption")}) {
    option.Control(last).Press(VK_TAB);
    ASSERT_TRUE(WaitUntil([&] { return option.FocusedControl() == next; })) << option.FocusedControl();
    last = next;
  }
}

TEST_F(OptionTest, UnseenLabelsNameTheListsOfWords) {
  Open();
  for (const auto& [box, name] :
       {std::pair{"txtRemoveFilter", "Words to remove"}, std::pair{"txtExtractFilter", "Words to extract"}}) {
    const Window label(GetWindow(option.Control(box).handle(), GW_HWNDPREV));
    EXPECT_EQ(label.ClassName(), "Static");
    EXPECT_EQ(label.Text(), name);
    EXPECT_FALSE(GetWindowLongPtrW(label.handle(), GWL_STYLE) & WS_VISIBLE);
  }
}

TEST_F(OptionTest, TheLanguageIsStoredAndMentioned) {
  Open();
  EXPECT_THAT(option.Control("cmbSearch").Items(),
              ElementsAre("English", "French", "German", "Italian", "Spanish", "Japanese"));
  option.Control("cmbSearch").Pick(5);
  EXPECT_TRUE(program.Answer("Please use Japanese to search !"));
  EXPECT_TRUE(Stored("Search", "5"));
  EXPECT_TRUE(WaitUntil([&] { return program.Main().Control("txtSearch").Text() == "ja"; }));
}

TEST_F(OptionTest, TheSaveIntervalIsStored) {
  Open();
  EXPECT_THAT(option.Control("cmbSave").Items(), ElementsAre("30", "50", "100"));
  option.Control("cmbSave").Pick(2);
  EXPECT_TRUE(Stored("Save", "2"));
}

TEST_F(OptionTest, TheCorrelationIsStoredTheOtherWayRound) {
  Open();
  option.Control("chkCorrelation").Click();
  EXPECT_TRUE(Stored("Correlation", "0"));
  option.Control("chkCorrelation").Click();
  EXPECT_TRUE(Stored("Correlation", "1"));
}

TEST_F(OptionTest, TheStopNumberIsStoredAsItIsTyped) {
  Open();
  const Window box = option.Control("txtStopNumber");
  EXPECT_EQ(box.Send(EM_GETLIMITTEXT), 5);
  box.Type("250");
  EXPECT_TRUE(Stored("StopNumber", "250"));
}

TEST_F(OptionTest, AStopNumberThatIsNoneIsAnsweredAndSetBack) {
  Open();
  const Window box = option.Control("txtStopNumber");
  box.Type("250");
  ASSERT_TRUE(Stored("StopNumber", "250"));
  // Typing waits until the message is answered, so it is done letter by letter through the queue.
  box.Send(EM_SETSEL, 0, -1);
  box.PressLetter('x');
  ASSERT_TRUE(program.Answer("Enter numbers only !"));
  EXPECT_TRUE(WaitUntil([&] { return box.Text() == "99999"; }));
  EXPECT_TRUE(Stored("StopNumber", "99999"));
  box.Send(EM_SETSEL, 0, -1);
  box.PressLetter('0');
  ASSERT_TRUE(program.Answer("Please enter number between 1 and 99999 !"));
  EXPECT_TRUE(WaitUntil([&] { return box.Text() == "99999"; }));
}

TEST_F(OptionTest, TheExportModeIsStored) {
  Open();
  option.Control("optAllInfo").Click();
  EXPECT_TRUE(Stored("Export", "1"));
  option.Control("optEmailAddress").Click();
  EXPECT_TRUE(Stored("Export", "0"));
  EXPECT_FALSE(option.Control("optAllInfo").Checked());
}

TEST_F(OptionTest, TheFilterSwitchesAreStoredAfterAWarning) {
  const char* kWarning =
      "Be careful, improper filter word may sharply decrease\r\nthe number of Email addresses you can get !";
  Open();
  option.Control("chkRemoveFilter").Click();
  ASSERT_TRUE(program.Answer(kWarning));
  EXPECT_TRUE(Stored("RemoveFilter", "1"));
  option.Control("chkExtractFilter").Click();
  ASSERT_TRUE(program.Answer(kWarning));
  EXPECT_TRUE(Stored("ExtractFilter", "1"));
  option.Control("chkRemoveFilter").Click();
  EXPECT_TRUE(Stored("RemoveFilter", "0"));
}

TEST_F(OptionTest, OkWritesTheFilterFileByteForByte) {
  Open();
  option.Control("txtRemoveFilter").Type("cat\r\ndog\r\ncat\r\n\r\ndog");
  option.Control("txtExtractFilter").Type(" example ");
  Ok();
  EXPECT_EQ(program.ReadFile("data/ExtractFilter.dat"),
            HeaderLine() + "\r\n\r\n<r>cat</r>\r\n<r>dog</r>\r\n<e>example</e>\r\n");
  Open();
  EXPECT_EQ(option.Control("txtRemoveFilter").Text(), "cat\r\ndog");
}

TEST_F(OptionTest, ClosingKeepsTheSettingsButNotTheWords) {
  Open();
  option.Control("cmbSave").Pick(1);
  ASSERT_TRUE(Stored("Save", "1"));
  option.Control("txtRemoveFilter").Type("cat");
  option.Close();
  ASSERT_TRUE(WaitUntil([&] { return !option; }));
  EXPECT_FALSE(program.HasFile("data/ExtractFilter.dat"));
  EXPECT_EQ(StoredSettings()["Save"], "1");
  EXPECT_TRUE(WaitUntil([&] { return program.Main().Enabled(); }));
}

TEST_F(OptionTest, AltWithALetterOfATabAndCtrlTabGoFromPageToPage) {
  Open();
  const Window tabs = option.Control("tabOption");
  const auto chosen = [&](LRESULT page) { return WaitUntil([&] { return tabs.Send(TCM_GETCURSEL) == page; }); };
  constexpr LPARAM kAltHeld = 1 << 29;
  PostMessageW(option.Control("cmbSearch").handle(), WM_SYSCHAR, 'f', kAltHeld);
  EXPECT_TRUE(chosen(2));
  EXPECT_TRUE(WaitUntil([&] { return option.Control("txtRemoveFilter").Visible(); }));
  const ControlKeyHeld held(option);
  option.Control("txtRemoveFilter").Press(VK_TAB);
  EXPECT_TRUE(chosen(0)) << "behind the last page comes the first one";
  option.Control("cmbSearch").Press(VK_PRIOR);
  EXPECT_TRUE(chosen(2));
}

TEST_F(OptionTest, TheTabsTakeTheKeyboardFromAPageThatGoes) {
  Open();
  const Window tabs = option.Control("tabOption"), words = option.Control("txtRemoveFilter");
  const auto go_into_the_words = [&] {
    tabs.Send(TCM_SETCURFOCUS, 2);
    words.MouseClick({5, 5});
    return WaitUntil([&] { return option.FocusedControl() == ControlNumber("txtRemoveFilter"); });
  };
  const auto tabs_have_the_keyboard = [&] {
    return WaitUntil([&] { return !words.Visible() && option.FocusedControl() == ControlNumber("tabOption"); });
  };
  constexpr LPARAM kAltHeld = 1 << 29;
  ASSERT_TRUE(go_into_the_words());
  PostMessageW(words.handle(), WM_SYSCHAR, 's', kAltHeld);
  EXPECT_TRUE(tabs_have_the_keyboard()) << option.FocusedControl();
  ASSERT_TRUE(go_into_the_words());
  tabs.Send(TCM_SETCURFOCUS, 1);
  EXPECT_TRUE(tabs_have_the_keyboard()) << option.FocusedControl();
  ASSERT_TRUE(go_into_the_words());
  const ControlKeyHeld held(option);
  words.Press(VK_TAB);
  EXPECT_TRUE(tabs_have_the_keyboard()) << option.FocusedControl();
}

TEST_F(OptionTest, EnterIsOk) {
  Open();
  option.Control("txtRemoveFilter").Type("cat");
  option.Control("txtStopNumber").Press(VK_RETURN);
  ASSERT_TRUE(WaitUntil([&] { return !option; }));
  EXPECT_EQ(program.ReadFile("data/ExtractFilter.dat"), HeaderLine() + "\r\n\r\n<r>cat</r>\r\n");
}

TEST_F(OptionTest, EscClosesTheDialogAndEnterInAListOfWordsDoesNot) {
  Open();
  option.Control("tabOption").Send(TCM_SETCURFOCUS, 2);
  const Window words = option.Control("txtRemoveFilter");
  ASSERT_TRUE(WaitUntil([&] { return words.Visible(); }));
  words.PressLetter('a');
  words.Press(VK_RETURN);
  ASSERT_TRUE(WaitUntil([&] { return words.Text() == "a\r\n"; })) << words.Text();
  words.Press(VK_ESCAPE);
  EXPECT_TRUE(WaitUntil([&] { return !option; }));
}

}  // namespace
}  // namespace quenlar::window_test
