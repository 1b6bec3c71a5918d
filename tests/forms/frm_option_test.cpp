#include "forms/frm_option.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fake_registry.h"
#include "support/fake_system.h"
#include "support/in_memory_files.h"
#include "support/recorders.h"

namespace quenlar {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kFilterFile = "/home/data/ExtractFilter.dat";
constexpr const char* kBanner = "Brenvy Quenlar Pro, http://www.quenlar.example\r\n\r\n";
constexpr const char* kFilterWarning =
    "Be careful, improper filter word may sharply decrease\r\nthe number of Email addresses you can get !";

struct OptionTest : testing::Test {
  FakeRegistry registry;
  InMemoryFiles files;
  FakeCodePage code_page;
  RecordingBoxes boxes;
  Settings settings;
  SettingsStore store{registry, settings};
  FilterWords filter{settings};
  Installation installation;
  std::string language_field = "en";
  frmOption option{{settings, store, filter, files, code_page, boxes, installation,
                    [this](const std::string& code) { language_field = code; }}};

  OptionTest() {
    installation.program_folder = "/home";
    files.AddFolder("/home/data");
  }
  [[nodiscard]] std::string Stored(const std::string& name) const {
    return registry.Stored(kProjectKey, name).value_or("(none)");
  }
  void Pick(ui::ComboBox& box, const std::string& text) {
    const auto found = std::find(box.items().begin(), box.items().end(), text);
    ASSERT_NE(found, box.items().end());
    box.UserPick(static_cast<std::size_t>(found - box.items().begin()));
  }
  void Ok(const std::string& remove, const std::string& extract = "") {
    option.Show();
    option.txtRemoveFilter.UserText(remove);
    option.txtExtractFilter.UserText(extract);
    option.cmdOK.Click();
  }
};

// --- Design and loading ---

TEST_F(OptionTest, HasItsDesignTexts) {
  EXPECT_EQ(option.caption(), "Option");
  EXPECT_THAT(option.tabOption.captions(), ElementsAre("&Search", "&Export", "&Filter"));
  EXPECT_EQ(option.cmbSearch.text(), "English");
  EXPECT_EQ(option.chkCorrelation.text(), "High Correlation between eMail Addresses and Keyword");
  EXPECT_EQ(option.txtStopNumber.text(), "99999");
  EXPECT_EQ(option.txtStopNumber.max_length, 5u);
  EXPECT_EQ(option.optEmailAddress.text(), "Export &only Email addresses");
  EXPECT_EQ(option.optAllInfo.text(), "Export &all information");
  EXPECT_EQ(option.chkRemoveFilter.text(), "Enable to remove like this:");
  EXPECT_EQ(option.chkExtractFilter.text(), "Enable to extract like this:");
  EXPECT_TRUE(option.txtRemoveFilter.multi_line);
  EXPECT_TRUE(option.txtExtractFilter.multi_line);
}

TEST_F(OptionTest, LoadFillsTheControlsFromTheSettings) {
  settings = {.SearchLanguage = 3,
              .SaveInterval = 1,
              .CorrelationMode = 0,
              .StopNumber = 250,
              .ExportMode = 1,
              .RemoveFilterOn = 1,
              .ExtractFilterOn = 0};
  filter.RemoveFilterWords = {"cat", "dog"};
  filter.ExtractFilterWords = {"cow"};
  option.Show();
  EXPECT_THAT(option.cmbSearch.items(), ElementsAre("English", "French", "German", "Italian", "Spanish", "Japanese"));
  EXPECT_THAT(option.cmbSave.items(), ElementsAre("30", "50", "100"));
  EXPECT_EQ(option.cmbSearch.text(), "Italian");
  EXPECT_EQ(option.cmbSave.text(), "50");
  EXPECT_TRUE(option.chkCorrelation.checked());
  EXPECT_EQ(option.txtStopNumber.text(), "250");
  EXPECT_TRUE(option.optAllInfo.selected());
  EXPECT_FALSE(option.optEmailAddress.selected());
  EXPECT_TRUE(option.chkRemoveFilter.checked());
  EXPECT_FALSE(option.chkExtractFilter.checked());
  EXPECT_EQ(option.txtRemoveFilter.text(), "cat\r\ndog");
  EXPECT_EQ(option.txtExtractFilter.text(), "cow");
  EXPECT_TRUE(option.loaded);
}

TEST_F(OptionTest, LoadShowsNoMessageAndChangesNoSetting) {
  settings = {.SearchLanguage = 5, .CorrelationMode = 0, .StopNumber = 7, .ExportMode = 1, .RemoveFilterOn = 1};
  option.Show();
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_EQ(settings.SearchLanguage, 5);
  EXPECT_EQ(settings.CorrelationMode, 0);
  EXPECT_EQ(settings.StopNumber, 7);
  EXPECT_EQ(settings.ExportMode, 1);
  EXPECT_EQ(settings.RemoveFilterOn, 1);
  EXPECT_EQ(language_field, "en");
}

TEST_F(OptionTest, LanguageAndIntervalOutsideTheirListsLeaveTheBoxesAsTheyAre) {
  settings.SearchLanguage = 9;
  settings.SaveInterval = 7;
  option.Show();
  EXPECT_EQ(option.cmbSearch.text(), "English");
  EXPECT_EQ(option.cmbSave.text(), "");
}

TEST_F(OptionTest, ACorrelationModeThatIsNeitherZeroNorOneIsNoHighCorrelation) {
  settings.CorrelationMode = 5;
  option.Show();
  EXPECT_FALSE(option.chkCorrelation.checked());
}

TEST_F(OptionTest, AFilterSwitchIsOnlyOnAtExactlyOne) {
  settings.RemoveFilterOn = -1;
  settings.ExtractFilterOn = 2;
  option.Show();
  EXPECT_FALSE(option.chkRemoveFilter.checked());
  EXPECT_FALSE(option.chkExtractFilter.checked());
}

TEST_F(OptionTest, AStoredStopNumberThatIsNoneIsAnsweredWhenTheDialogOpens) {
  settings.StopNumber = 0;
  option.Show();
  EXPECT_THAT(boxes.texts(), ElementsAre("Please enter number between 1 and 99999 !"));
  EXPECT_EQ(settings.StopNumber, 99999);
}

// --- Tabs ---

TEST_F(OptionTest, ExactlyThePanelOfTheChosenTabIsVisible) {
  option.Show();
  const auto seen = [&] {
    return std::vector<bool>{option.picSearch.visible(), option.picExport.visible(), option.picFilter.visible()};
  };
  EXPECT_THAT(seen(), ElementsAre(true, false, false));
  option.tabOption.Select(1);
  EXPECT_THAT(seen(), ElementsAre(false, true, false));
  option.tabOption.Select(2);
  EXPECT_THAT(seen(), ElementsAre(false, false, true));
  option.Close();
  option.Show();
  EXPECT_EQ(option.tabOption.selected(), 0u);
  EXPECT_THAT(seen(), ElementsAre(true, false, false));
}

// --- Search ---

TEST_F(OptionTest, PickingALanguageStoresItAndAsksToSearchInIt) {
  const struct {
    const char *language, *code, *index;
  } kRows[] = {{"French", "fr", "1"},  {"German", "de", "2"},   {"Italian", "it", "3"},
               {"Spanish", "es", "4"}, {"Japanese", "ja", "5"}, {"English", "en", "0"}};
  option.Show();
  for (const auto& row : kRows) {
    boxes.shown.clear();
    Pick(option.cmbSearch, row.language);
    EXPECT_EQ(std::to_string(settings.SearchLanguage), row.index);
    EXPECT_EQ(language_field, row.code);
    EXPECT_EQ(Stored("Search"), row.index);
    ASSERT_EQ(boxes.shown.size(), 1u);
    EXPECT_EQ(boxes.shown[0].text, std::string("Please use ") + row.language + " to search !");
    EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
    EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  }
}

TEST_F(OptionTest, TheLanguageIsWrittenOnlyAfterItsMessage) {
  option.Show();
  boxes.while_shown = [&] {
    EXPECT_EQ(settings.SearchLanguage, 2);
    EXPECT_EQ(language_field, "de");
    EXPECT_EQ(Stored("Search"), "(none)");
  };
  Pick(option.cmbSearch, "German");
  EXPECT_EQ(Stored("Search"), "2");
}

TEST_F(OptionTest, PickingASaveIntervalStoresItsIndex) {
  option.Show();
  for (const auto& [text, index] : {std::pair("100", 2), std::pair("30", 0), std::pair("50", 1)}) {
    Pick(option.cmbSave, text);
    EXPECT_EQ(settings.SaveInterval, index);
    EXPECT_EQ(Stored("Save"), std::to_string(index));
  }
}

TEST_F(OptionTest, TheCorrelationIsStoredTheOtherWayRound) {
  option.Show();
  option.chkCorrelation.UserClick();
  EXPECT_EQ(settings.CorrelationMode, 0);
  EXPECT_EQ(Stored("Correlation"), "0");
  option.chkCorrelation.UserClick();
  EXPECT_EQ(settings.CorrelationMode, 1);
  EXPECT_EQ(Stored("Correlation"), "1");
  EXPECT_TRUE(option.chkCorrelation.enabled());
  EXPECT_TRUE(option.tabOption.enabled());
}

// --- The stop number ---

TEST_F(OptionTest, AStopNumberIsStoredAsItIsTyped) {
  option.Show();
  option.txtStopNumber.UserText("2");
  EXPECT_EQ(Stored("StopNumber"), "2");
  option.txtStopNumber.UserText("25");
  EXPECT_EQ(settings.StopNumber, 25);
  EXPECT_EQ(Stored("StopNumber"), "25");
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(OptionTest, TypingZeroInTheStopNumberBoxGivesTheMessageAndShows99999Again) {
  option.Show();
  option.txtStopNumber.UserText("0");
  EXPECT_THAT(boxes.texts(), ElementsAre("Please enter number between 1 and 99999 !"));
  EXPECT_EQ(option.txtStopNumber.text(), "99999");
  EXPECT_EQ(settings.StopNumber, 99999);
  EXPECT_EQ(Stored("StopNumber"), "99999");
}

TEST_F(OptionTest, ATextThatIsNoNumberIsAnsweredAndSetBackOnce) {
  for (const char* text : {"x", "", "12x", "1 2", ".", "-", "1e", "&H1F"}) {
    boxes.shown.clear();
    option.Show();
    option.txtStopNumber.UserText("5");
    option.txtStopNumber.UserText(text);
    ASSERT_THAT(boxes.texts(), ElementsAre("Enter numbers only !")) << text;
    EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
    EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
    EXPECT_EQ(option.txtStopNumber.text(), "99999");
    EXPECT_EQ(settings.StopNumber, 99999);
    EXPECT_EQ(Stored("StopNumber"), "99999");
  }
}

TEST_F(OptionTest, ASetBackStopNumberLeavesTheCaretAtTheEnd) {
  option.Show();
  std::vector<ui::Aspect> aspects;
  option.txtStopNumber.changed = [&](ui::Aspect aspect) { aspects.push_back(aspect); };
  option.txtStopNumber.UserText("x");
  EXPECT_THAT(aspects, ElementsAre(ui::Aspect::kText, ui::Aspect::kCaret));
}

TEST_F(OptionTest, StopNumbersOfEveryFormThatIsANumber) {
  const struct {
    const char* text;
    std::int32_t number;
  } kRows[] = {{"12", 12}, {" 12 ", 12}, {"+12", 12},   {"1.5", 2},    {"2.5", 2},
               {".6", 1},  {"12.", 12},  {"1e3", 1000}, {"1E+2", 100}, {"99999", 99999}};
  option.Show();
  for (const auto& row : kRows) {
    option.txtStopNumber.UserText(row.text);
    EXPECT_EQ(settings.StopNumber, row.number) << row.text;
    EXPECT_EQ(Stored("StopNumber"), std::to_string(row.number));
  }
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(OptionTest, ANegativeStopNumberIsAnsweredLikeZero) {
  option.Show();
  option.txtStopNumber.UserText("-3");
  EXPECT_THAT(boxes.texts(), ElementsAre("Please enter number between 1 and 99999 !"));
  EXPECT_EQ(settings.StopNumber, 99999);
}

TEST_F(OptionTest, AStopNumberBeyond32BitsLeavesTheSettingAsItWas) {
  option.Show();
  option.txtStopNumber.UserText("77");
  option.txtStopNumber.UserText("9e99");
  EXPECT_EQ(settings.StopNumber, 77);
  EXPECT_EQ(Stored("StopNumber"), "77");
}

// --- Export ---

TEST_F(OptionTest, TheExportModeFollowsTheOptionButtons) {
  option.Show();
  option.optAllInfo.Select();
  EXPECT_EQ(settings.ExportMode, 1);
  EXPECT_EQ(Stored("Export"), "1");
  EXPECT_FALSE(option.optEmailAddress.selected());
  option.optEmailAddress.Select();
  EXPECT_EQ(settings.ExportMode, 0);
  EXPECT_EQ(Stored("Export"), "0");
}

// --- Filters ---

TEST_F(OptionTest, SwitchingAFilterOnWarnsAndStoresIt) {
  option.Show();
  option.chkRemoveFilter.UserClick();
  ASSERT_THAT(boxes.texts(), ElementsAre(kFilterWarning));
  EXPECT_EQ(boxes.shown[0].icon, BoxIcon::kExclamation);
  EXPECT_EQ(boxes.shown[0].title, "Brenvy Quenlar Pro 3.0");
  EXPECT_EQ(settings.RemoveFilterOn, 1);
  EXPECT_EQ(Stored("RemoveFilter"), "1");
  option.chkExtractFilter.UserClick();
  EXPECT_THAT(boxes.texts(), ElementsAre(kFilterWarning, kFilterWarning));
  EXPECT_EQ(settings.ExtractFilterOn, 1);
  EXPECT_EQ(Stored("ExtractFilter"), "1");
}

TEST_F(OptionTest, SwitchingAFilterOffStoresItWithoutAWord) {
  settings.RemoveFilterOn = settings.ExtractFilterOn = 1;
  option.Show();
  option.chkRemoveFilter.UserClick();
  option.chkExtractFilter.UserClick();
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_EQ(settings.RemoveFilterOn, 0);
  EXPECT_EQ(settings.ExtractFilterOn, 0);
  EXPECT_EQ(Stored("RemoveFilter"), "0");
  EXPECT_EQ(Stored("ExtractFilter"), "0");
}

TEST_F(OptionTest, AfterTheDialogHasGoneNothingWarnsUntilItIsFilledAgain) {
  option.Show();
  option.Close();
  EXPECT_FALSE(option.loaded);
  settings.RemoveFilterOn = 1;
  option.Show();
  EXPECT_THAT(boxes.shown, IsEmpty());
  EXPECT_TRUE(option.chkRemoveFilter.checked());
}

// --- OK ---

TEST_F(OptionTest, TheLinesCatDogCatBlankDogBecomeCatAndDog) {
  Ok("cat\r\ndog\r\ncat\r\n\r\ndog");
  EXPECT_EQ(option.txtRemoveFilter.text(), "cat\r\ndog");
  EXPECT_THAT(filter.RemoveFilterWords, ElementsAre("cat", "dog"));
  EXPECT_EQ(filter.RemoveFilterPattern, "(cat)|(dog)");
  EXPECT_EQ(files.Contents(kFilterFile), std::string(kBanner) + "<r>cat</r>\r\n<r>dog</r>\r\n");
  EXPECT_FALSE(static_cast<ui::Form&>(option).loaded());
  EXPECT_THAT(boxes.shown, IsEmpty());
}

TEST_F(OptionTest, TheLinesCatInTwoSpellingsAreBothKept) {
  Ok("Cat\r\ncat");
  EXPECT_THAT(filter.RemoveFilterWords, ElementsAre("Cat", "cat"));
}

TEST_F(OptionTest, ASingleLineIsStoredAsItStands) {
  Ok("  cat dog  ", " cow ");
  EXPECT_EQ(option.txtRemoveFilter.text(), "cat dog");
  EXPECT_THAT(filter.RemoveFilterWords, ElementsAre("cat dog"));
  EXPECT_THAT(filter.ExtractFilterWords, ElementsAre("cow"));
}

TEST_F(OptionTest, AWordOfASingleStarBecomesAnEmptyPairOfParentheses) {
  Ok("*");
  EXPECT_THAT(filter.RemoveFilterWords, ElementsAre("*"));
  EXPECT_EQ(filter.RemoveFilterPattern, "()");
}

TEST_F(OptionTest, AnEmptyTextBoxGivesAnEmptyListPatternAndFile) {
  filter.RemoveFilterWords = {"old"};
  Ok("", "");
  EXPECT_THAT(filter.RemoveFilterWords, IsEmpty());
  EXPECT_EQ(filter.RemoveFilterPattern, "");
  EXPECT_EQ(filter.ExtractFilterPattern, "");
  EXPECT_EQ(files.Contents(kFilterFile), kBanner);
}

TEST_F(OptionTest, LinesAreTrimmedBeforeTheyAreCompared) {
  Ok(" cat \r\ncat\r\n  dog");
  EXPECT_EQ(option.txtRemoveFilter.text(), "cat\r\ndog");
}

TEST_F(OptionTest, LinesOfBlanksAloneLeaveNoWord) {
  Ok("\r\n  \r\n");
  EXPECT_THAT(filter.RemoveFilterWords, IsEmpty());
  EXPECT_EQ(option.txtRemoveFilter.text(), "");
}

TEST_F(OptionTest, BothListsAreTidiedAlike) {
  Ok("r", "b\r\na\r\nb");
  EXPECT_THAT(filter.ExtractFilterWords, ElementsAre("b", "a"));
  EXPECT_EQ(filter.ExtractFilterPattern, "(b)|(a)");
  EXPECT_EQ(files.Contents(kFilterFile), std::string(kBanner) + "<r>r</r>\r\n<e>b</e>\r\n<e>a</e>\r\n");
}

TEST_F(OptionTest, ABoxOfLineEndsAloneHasNoWords) {
  std::string text = "\r\n \r\n\r\n";
  EXPECT_THAT(TidyFilterWords(text), IsEmpty());
  EXPECT_EQ(text, "");
}

TEST_F(OptionTest, TenThousandWordsAreTidiedAtOnce) {
  std::string text;
  for (int i = 0; i < 10000; ++i) text += "word" + std::to_string(i % 7000) + "\r\n";
  EXPECT_EQ(TidyFilterWords(text).size(), 7000u);
}

TEST_F(OptionTest, ClosingWithoutOkKeepsTheSettingsButNotTheWords) {
  option.Show();
  Pick(option.cmbSave, "50");
  option.txtRemoveFilter.UserText("cat");
  option.Close();
  EXPECT_EQ(Stored("Save"), "1");
  EXPECT_THAT(filter.RemoveFilterWords, IsEmpty());
  EXPECT_FALSE(files.FileExists(kFilterFile));
  option.Show();
  EXPECT_EQ(option.txtRemoveFilter.text(), "");
}

TEST_F(OptionTest, AWordThatIsNoPatternIsToldOnceAndTheDialogCloses) {
  Ok("(");
  EXPECT_EQ(boxes.shown.size(), 1u);
  EXPECT_FALSE(static_cast<ui::Form&>(option).loaded());
}

TEST_F(OptionTest, AFilterFileThatCannotBeWrittenIsToldAndTheWordsHoldAllTheSame) {
  files.Put(kFilterFile, "old");
  files.Protect("/home/data");
  Ok("cat");
  ASSERT_EQ(boxes.shown.size(), 1u);
  EXPECT_TRUE(boxes.shown[0].text.ends_with(" !")) << boxes.shown[0].text;
  EXPECT_EQ(files.Contents(kFilterFile), "old");
  EXPECT_EQ(filter.RemoveFilterPattern, "(cat)");
}

TEST_F(OptionTest, MoreWordsThanA16BitCountAreAnOverflow) {
  std::string text;
  for (int i = 0; i <= 32768; ++i) text += std::to_string(i) + "\r\n";
  Ok(text);
  EXPECT_TRUE(boxes.texts().back() == "Overflow !") << boxes.texts().back();
  EXPECT_FALSE(files.FileExists(kFilterFile));
}

}  // namespace
}  // namespace quenlar
