// The options dialog: every control writes its setting the moment it changes; OK applies the filter words.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/code_page.h"
#include "platform/files.h"
#include "platform/message_boxes.h"
#include "settings/filter_words.h"
#include "settings/settings_store.h"
#include "ui/controls.h"

namespace quenlar {

// A dialog with three tabs. It is modal, and its state is that of the settings: Load fills the controls, and each
// handler stores what the user has changed. So closing the dialog in any way keeps the settings; only the filter words
// need OK.
class frmOption final : public ui::Form {
 public:
  // Everything that the dialog works on. It must outlive the dialog. `show_language` puts the code of a language into
  // the hidden field of the main window.
  struct Context {
    Settings& settings;
    SettingsStore& store;
    FilterWords& filter;
    Files& files;
    const CodePage& code_page;
    MessageBoxes& boxes;
    const Installation& installation;
    std::function<void(const std::string& code)> show_language;
  };

  explicit frmOption(Context context);

  ui::TabStrip tabOption{"tabOption", {"&Search", "&Export", "&Filter"}};
  ui::Panel picSearch{"picSearch"}, picExport{"picExport"}, picFilter{"picFilter"};

  // Tab Search: the language of the search engine, whether a run stays on its site, how often a run saves, and after
  // how many addresses it ends.
  ui::ComboBox cmbSearch{"cmbSearch", "English"};
  ui::CheckBox chkCorrelation{"chkCorrelation", "High Correlation between eMail Addresses and Keyword"};
  ui::ComboBox cmbSave{"cmbSave"};
  ui::TextBox txtStopNumber{"txtStopNumber", "99999"};

  // Tab Export: whether a report holds the addresses alone, or their pages and titles too.
  ui::OptionButton optEmailAddress{"optEmailAddress", "Export &only Email addresses"};
  ui::OptionButton optAllInfo{"optAllInfo", "Export &all information"};

  // Tab Filter: the two filters, each with a switch and with one word a line.
  ui::CheckBox chkRemoveFilter{"chkRemoveFilter", "Enable to remove like this:"};
  ui::TextBox txtRemoveFilter{"txtRemoveFilter"};
  ui::CheckBox chkExtractFilter{"chkExtractFilter", "Enable to extract like this:"};
  ui::TextBox txtExtractFilter{"txtExtractFilter"};

  ui::Button cmdOK{"cmdOK", "OK"};

  // Whether the controls have been filled and the dialog is there. Only then do filter warnings appear.
  bool loaded = false;

  [[nodiscard]] std::vector<ui::Control*> Controls() override;
  void Load() override;
  void Unload() override;

 private:
  void tabOption_Click();
  void cmbSearch_Click();
  void cmbSave_Click();
  void chkCorrelation_Click();
  void txtStopNumber_Change();
  void FilterSwitch_Click(const ui::CheckBox& box, std::int16_t& setting, const char* value_name);
  void cmdOK_Click();

  void SetExportMode(std::int16_t mode);
  void ResetStopNumber();
  void Warn(const std::string& text);

  Context context_;
};

// Returns the words of a filter's text box, one from each line. Blanks at the ends are cut, and of words that are the
// same the first one stays. A text of one line is one word as it stands. Puts the tidied text back into `text`. Empty
// for a text without words, also one of line ends alone: an empty word would match every address.
[[nodiscard]] std::vector<std::string> TidyFilterWords(std::string& text);

// Returns whether the box of the stop number takes the text for a number: digits with an optional sign, fraction and
// exponent, and blanks around them.
[[nodiscard]] bool IsNumeric(std::string_view text);

}  // namespace quenlar
