#include "forms/frm_option.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_set>
#include <utility>

#include "base/ascii.h"
#include "base/number.h"
#include "base/product.h"
#include "settings/filter_file.h"

namespace quenlar {
namespace {

constexpr const char* kLineEnd = "\r\n";

std::vector<std::string> LanguageNames() {
  std::vector<std::string> names;
  for (const Language& language : kLanguages) names.emplace_back(language.name);
  return names;
}

std::vector<std::string> SaveIntervalTexts() {
  std::vector<std::string> texts;
  for (const int interval : kSaveIntervals) texts.push_back(std::to_string(interval));
  return texts;
}

// Of the entry that the box shows.
std::optional<std::int16_t> IndexShown(const ui::ComboBox& box) {
  const auto found = std::find(box.items().begin(), box.items().end(), box.text());
  if (found == box.items().end()) return std::nullopt;
  return static_cast<std::int16_t>(found - box.items().begin());
}

// An index outside the list leaves the box as it is.
void ShowEntry(ui::ComboBox& box, int index) {
  if (index >= 0 && index < std::ssize(box.items())) box.SetText(box.items()[static_cast<std::size_t>(index)]);
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append(kLineEnd);
  if (!text.empty()) text.resize(text.size() - 2);
  return text;
}

}  // namespace

std::vector<std::string> TidyFilterWords(std::string& text) {
  text = std::string(TrimBlanks(text));
  if (text.empty()) return {};
  const std::vector<std::string_view> lines = Split(text, kLineEnd);
  if (lines.size() == 1) return {text};
  std::vector<std::string> words;
  std::unordered_set<std::string_view> seen;
  for (const std::string_view line : lines) {
    const std::string_view word = TrimBlanks(line);
    if (!word.empty() && seen.insert(word).second) words.emplace_back(word);
  }
  text = JoinLines(words);
  return words;
}

bool IsNumeric(std::string_view text) {
  text = TrimBlanks(text);
  const auto skip_digits = [&text] {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(digits);
    return digits;
  };
  const auto skip_sign = [&text] {
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
  };
  skip_sign();
  std::size_t digits = skip_digits();
  if (text.starts_with('.')) {
    text.remove_prefix(1);
    digits += skip_digits();
  }
  if (digits == 0) return false;
  if (text.starts_with('e') || text.starts_with('E')) {
    text.remove_prefix(1);
    skip_sign();
    if (skip_digits() == 0) return false;
  }
  return text.empty();
}

frmOption::frmOption(Context context) : Form("frmOption", "Option"), context_(std::move(context)) {
  cmbSearch.editable = cmbSave.editable = false;
  txtStopNumber.max_length = 5;
  txtRemoveFilter.multi_line = txtExtractFilter.multi_line = true;
  optEmailAddress.group = {&optAllInfo};
  optAllInfo.group = {&optEmailAddress};

  tabOption.Click = [this] { tabOption_Click(); };
  cmbSearch.Click = [this] { cmbSearch_Click(); };
  cmbSave.Click = [this] { cmbSave_Click(); };
  chkCorrelation.Click = [this] { chkCorrelation_Click(); };
  txtStopNumber.Change = [this] { txtStopNumber_Change(); };
  optEmailAddress.Click = [this] { SetExportMode(0); };
  optAllInfo.Click = [this] { SetExportMode(1); };
  chkRemoveFilter.Click = [this] {
    FilterSwitch_Click(chkRemoveFilter, context_.settings.RemoveFilterOn, "RemoveFilter");
  };
  chkExtractFilter.Click = [this] {
    FilterSwitch_Click(chkExtractFilter, context_.settings.ExtractFilterOn, "ExtractFilter");
  };
  cmdOK.Click = [this] { cmdOK_Click(); };
}

std::vector<ui::Control*> frmOption::Controls() {
  return {&tabOption,       &picSearch,       &cmbSearch,        &chkCorrelation,   &cmbSave,
          &txtStopNumber,   &picExport,       &optEmailAddress,  &optAllInfo,       &picFilter,
          &chkRemoveFilter, &txtRemoveFilter, &chkExtractFilter, &txtExtractFilter, &cmdOK};
}

// Setting a control to what it does not show yet counts as a click on it, so what is stored is written back here; only
// the warnings of the filter switches wait for `loaded`.
void frmOption::Load() {
  const Settings& settings = context_.settings;
  tabOption.Select(0);
  cmbSave.SetItems(SaveIntervalTexts());
  cmbSearch.SetItems(LanguageNames());
  ShowEntry(cmbSearch, settings.SearchLanguage);
  ShowEntry(cmbSave, settings.SaveInterval);
  chkCorrelation.SetChecked(settings.CorrelationMode == 0);
  (settings.ExportMode != 0 ? optAllInfo : optEmailAddress).Select();
  txtStopNumber.SetText(std::to_string(settings.StopNumber));
  chkRemoveFilter.SetChecked(settings.RemoveFilterOn == 1);
  chkExtractFilter.SetChecked(settings.ExtractFilterOn == 1);
  txtRemoveFilter.SetText(JoinLines(context_.filter.RemoveFilterWords));
  txtExtractFilter.SetText(JoinLines(context_.filter.ExtractFilterWords));
  loaded = true;
}

void frmOption::Unload() { loaded = false; }

void frmOption::tabOption_Click() {
  ui::Panel* const panels[] = {&picSearch, &picExport, &picFilter};
  for (ui::Panel* panel : panels) panel->SetVisible(false);
  if (tabOption.selected() < std::size(panels)) panels[tabOption.selected()]->SetVisible(true);
}

void frmOption::cmbSearch_Click() {
  const std::string language = cmbSearch.text();
  const auto index = IndexShown(cmbSearch);
  if (!index) return;
  context_.settings.SearchLanguage = *index;
  context_.show_language(LanguageCode(*index));
  Warn("Please use " + language + " to search !");
  context_.store.Save("Search");
}

void frmOption::cmbSave_Click() {
  if (const auto index = IndexShown(cmbSave)) context_.settings.SaveInterval = *index;
  context_.store.Save("Save");
}

// The stored value is the inverse of the box: 0 when it is checked, because 0 is what keeps a run on its site.
// Settings that are already stored keep their meaning that way.
// Kept: OptionTest.TheCorrelationIsStoredTheOtherWayRound.
void frmOption::chkCorrelation_Click() {
  context_.settings.CorrelationMode = chkCorrelation.checked() ? 0 : 1;
  context_.store.Save("Correlation");
}

// Setting the text back calls this handler again, inside.
void frmOption::txtStopNumber_Change() {
  const std::string text = txtStopNumber.text();
  if (!IsNumeric(text)) {
    Warn("Enter numbers only !");
    ResetStopNumber();
  } else if (const double number = LeadingNumber(text); number > 0) {
    context_.settings.StopNumber = RoundToInt32(number).value_or(context_.settings.StopNumber);
  } else {
    Warn("Please enter number between 1 and " + std::to_string(kHighestStopNumber) + " !");
    ResetStopNumber();
  }
  context_.store.Save("StopNumber");
}

void frmOption::ResetStopNumber() {
  txtStopNumber.SetText(std::to_string(kHighestStopNumber));
  context_.settings.StopNumber = kHighestStopNumber;
  txtStopNumber.MoveCaretToEnd();
}

void frmOption::SetExportMode(std::int16_t mode) {
  context_.settings.ExportMode = mode;
  context_.store.Save("Export");
}

void frmOption::FilterSwitch_Click(const ui::CheckBox& box, std::int16_t& setting, const char* value_name) {
  setting = box.checked() ? 1 : 0;
  if (setting == 1 && loaded) {
    Warn(
        "Be careful, improper filter word may sharply decrease\r\n"
        "the number of Email addresses you can get !");
  }
  context_.store.Save(value_name);
}

void frmOption::cmdOK_Click() {
  FilterWords& filter = context_.filter;
  const auto tidy = [](ui::TextBox& box, std::vector<std::string>& words) {
    std::string text = box.text();
    words = TidyFilterWords(text);
    box.SetText(text);
  };
  tidy(txtRemoveFilter, filter.RemoveFilterWords);
  tidy(txtExtractFilter, filter.ExtractFilterWords);
  const Status written =
      WriteFilterFile(context_.files, context_.code_page, FilterFilePath(context_.installation), filter);
  std::vector<std::string> messages = filter.BuildFilterPatterns();
  if (!written.ok()) messages.push_back(SentenceOf(written));
  Close();
  for (const std::string& message : messages) Warn(message);
}

void frmOption::Warn(const std::string& text) {
  context_.boxes.Show(text, kProductCaption, BoxIcon::kExclamation, BoxButtons::kOk);
}

}  // namespace quenlar
