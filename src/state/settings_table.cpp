#include "state/settings_table.h"

#include <iterator>

#include "base/ascii.h"

namespace quenlar {
namespace {

std::vector<ChoiceWord> LanguageWords() {
  std::vector<ChoiceWord> words;
  for (const Language& language : kLanguages) words.push_back({language.code, static_cast<int>(words.size())});
  return words;
}

std::vector<ChoiceWord> SaveIntervalWords() {
  std::vector<ChoiceWord> words;
  for (const int interval : kSaveIntervals) words.push_back({std::to_string(interval), static_cast<int>(words.size())});
  return words;
}

// "0 en, 1 fr"
std::string NumberedLanguages() {
  std::string text;
  for (const ChoiceWord& language : LanguageWords()) {
    text += (text.empty() ? "" : ", ") + std::to_string(language.value) + " " + language.word;
  }
  return text;
}

// "30, 50 or 100 new addresses: 0, 1, 2"
std::string NumberedSaveIntervals() {
  std::string intervals, numbers;
  const std::vector<ChoiceWord> words = SaveIntervalWords();
  for (const ChoiceWord& interval : words) {
    const bool first = &interval == &words.front(), last = &interval == &words.back();
    intervals += (first ? "" : last ? " or " : ", ") + interval.word;
    numbers += (first ? "" : ", ") + std::to_string(interval.value);
  }
  return intervals + " new addresses: " + numbers;
}

std::vector<SettingRow> MakeTable() {
  return {
      // Every rewrite of the key takes the choice "never upgrade" back: the question for a newer version comes again.
      // Kept: ProjectListTest.AddingRewritesTheKeyInItsOrder.
      {.value_name = "NeverUpgrade",
       .variable = &Settings::NeverUpgradeFlag,
       .meaning = "1: newer versions are never offered again",
       .rewritten = Rewritten::kAsDefault},
      {.value_name = "Search",
       .member = "SearchLanguage",
       .variable = &Settings::SearchLanguage,
       .highest = std::ssize(kLanguages) - 1,
       .meaning = "search language: " + NumberedLanguages(),
       .option = {"--language", "Language of the search, for a keyword", LanguageWords()}},
      {.value_name = "Save",
       .member = "SaveInterval",
       .variable = &Settings::SaveInterval,
       .highest = std::ssize(kSaveIntervals) - 1,
       .meaning = "save after every " + NumberedSaveIntervals(),
       .option = {"--save-interval", "Save the project after so many new addresses", SaveIntervalWords()}},
      {.value_name = "Correlation",
       .member = "CorrelationMode",
       .variable = &Settings::CorrelationMode,
       .meaning = "1: links to other sites are followed too",
       .option = {"--other-sites",
                  "Whether a run from an address follows links to other sites",
                  {{"yes", 1}, {"no", 0}}}},
      {.value_name = "StopNumber",
       .member = "StopNumber",
       .variable = &Settings::StopNumber,
       .lowest = 1,
       .highest = kHighestStopNumber,
       .meaning = "new addresses after which a run ends",
       .option = {"--stop-number", "End the run after so many new addresses"}},
      {.value_name = "Export",
       .member = "ExportMode",
       .variable = &Settings::ExportMode,
       .meaning = "report: 0 addresses alone, 1 all information",
       .option = {"--export",
                  "What the report holds: addresses alone, or all information",
                  {{"addresses", 0}, {"all", 1}}},
       .rewritten = Rewritten::kWithFilters},
      {.value_name = "RemoveFilter",
       .member = "RemoveFilterOn",
       .variable = &Settings::RemoveFilterOn,
       .meaning = "1: addresses that match the remove words are dropped",
       .rewritten = Rewritten::kWithFilters},
      {.value_name = "ExtractFilter",
       .member = "ExtractFilterOn",
       .variable = &Settings::ExtractFilterOn,
       .meaning = "1: only addresses that match the extract words are kept",
       .rewritten = Rewritten::kWithFilters},
  };
}

}  // namespace

const std::vector<SettingRow>& SettingsTable() {
  static const std::vector<SettingRow> kTable = MakeTable();
  return kTable;
}

const SettingRow* FindSetting(std::string_view value_name) {
  for (const SettingRow& row : SettingsTable()) {
    if (EqualsIgnoreCase(value_name, row.value_name)) return &row;
  }
  return nullptr;
}

void Apply(const std::vector<SettingChange>& changes, Settings& settings) {
  for (const SettingChange& change : changes) SetFromText(settings, *change.row, change.text);
}

}  // namespace quenlar
