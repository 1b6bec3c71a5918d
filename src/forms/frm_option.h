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

class frmOption final : public ui::Form {
 public:
  // What the dialog works on; all of it must outlive the dialog. `show_language` puts a language code into the hidden
  // field of the main window.
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

  ui::ComboBox cmbSearch{"cmbSearch", "English"};
  ui::CheckBox chkCorrelation{"chkCorrelation", "High Correlation between eMail Addresses and Keyword"};
  ui::ComboBox cmbSave{"cmbSave"};
  ui::TextBox txtStopNumber{"txtStopNumber", "99999"};

  ui::OptionButton optEmailAddress{"optEmailAddress", "Export &only Email addresses"};
  ui::OptionButton optAllInfo{"optAllInfo", "Export &all information"};

  ui::CheckBox chkRemoveFilter{"chkRemoveFilter", "Enable to remove like this:"};
  ui::TextBox txtRemoveFilter{"txtRemoveFilter"};
  ui::CheckBox chkExtractFilter{"chkExtractFilter", "Enable to extract like this:"};
  ui::TextBox txtExtractFilter{"txtExtractFilter"};

  ui::Button cmdOK{"cmdOK", "OK"};

  // False until the controls are filled, and again after the dialog has gone. Until then no filter warning appears.
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

// The words of a filter's text box, one a line, blanks cut and repeated words dropped (the first one stays); a text of
// one line is one word as it stands. Puts the tidied text back into `text`. Empty for a text without words.
[[nodiscard]] std::vector<std::string> TidyFilterWords(std::string& text);

// What the stop number's box counts as a number: a sign, digits, a fraction, an exponent, with blanks around them.
[[nodiscard]] bool IsNumeric(std::string_view text);

}  // namespace quenlar
