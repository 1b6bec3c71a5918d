#include "engine/collection_texts.h"

#include <algorithm>
#include <unordered_set>

#include "base/ascii.h"
#include "base/number.h"
#include "crawl/crawler.h"
#include "engine/collections.h"
#include "project/project_name.h"
#include "settings/web_settings.h"

namespace quenlar {
namespace {

constexpr const char* kCount = "CollectionNum";
constexpr std::int32_t kMostTexts = 10'000;

std::string ValueName(std::size_t number) { return "Collection" + std::to_string(number); }

std::size_t StoredCount(const Registry& registry) {
  if (!registry.ValueExists(kWebKey, kCount)) return 0;
  const auto count = RoundToInt32(LeadingNumber(registry.GetRegValue(kWebKey, kCount))).value_or(0);
  return static_cast<std::size_t>(std::clamp(count, 0, kMostTexts));
}

bool IsLanguage(std::string_view code) {
  return std::any_of(std::begin(kLanguages), std::end(kLanguages),
                     [code](const Language& language) { return code == language.code; });
}

}  // namespace

NamedCollection CollectionOfText(std::string_view text, const Settings& settings, const Installation& installation,
                                 const Files& files) {
  text = TrimBlanks(text);
  if (text.empty()) return {};
  NamedCollection named;
  named.language = LanguageCode(settings.SearchLanguage);
  std::string start(text);
  if (IsKeywordText(text) && text.find('_') != std::string_view::npos) {
    const std::vector<std::string_view> pieces = Split(text, "_");
    if (const std::string suffix = Lower(pieces[1]); IsLanguage(suffix)) {
      start = pieces[0];
      named.language = suffix;
    }
  }
  if (named.language.empty()) named.language = kLanguages[0].code;
  named.name = CollectionName(text, named.language, installation);
  named.starts = {start};
  const auto exists = [&](std::string_view name) { return files.FileExists(CollectionPath(installation, name)); };
  // The name that a text gives may be the text itself: "cars_jp" of a run that the command line has made.
  const bool same_name = named.name == SafeFileName(text);
  if (!exists(text)) return named;
  if (start != text && same_name) {
    named.may_be_name = true;
  } else if (start != text || same_name || !exists(named.name)) {
    named.name = text;
    named.starts.clear();
  }
  return named;
}

void CollectionTexts::Load() {
  run_.clear();
  const std::size_t count = StoredCount(registry_);
  for (std::size_t i = 1; i <= count; ++i) {
    if (!registry_.ValueExists(kWebKey, ValueName(i))) continue;
    std::string text = registry_.GetRegValue(kWebKey, ValueName(i));
    if (!text.empty()) run_.push_back(std::move(text));
  }
}

std::string CollectionTexts::NameOf(std::string_view text) const {
  return CollectionOfText(text, settings_, installation_, files_).name;
}

std::vector<std::string> CollectionTexts::All() const {
  std::vector<std::string> all = run_;
  if (!picked_.empty()) all.insert(all.begin(), picked_);
  std::unordered_set<std::string> texts(all.begin(), all.end()), names;
  for (const std::string& text : all) names.insert(NameOf(text));
  for (const std::string& text : projects_.entries()) names.insert(NameOf(text));
  const Result<std::vector<std::string>> found = CollectionNames(files_, installation_);
  for (const std::string& name : found.ok() ? found.value() : std::vector<std::string>()) {
    if (!names.contains(name) && texts.insert(name).second) all.push_back(name);
  }
  for (const std::string& text : projects_.entries()) {
    if (texts.insert(text).second) all.push_back(text);
  }
  return all;
}

bool CollectionTexts::Add(std::string_view text) {
  const bool by_name = CollectionOfText(text, settings_, installation_, files_).starts.empty();
  const bool is_keyword = IsKeywordText(text) && !IsSiteText(text);  // http://localhost has no dot
  const std::string listed = by_name ? std::string(text) : ListedName(text, is_keyword, settings_.SearchLanguage);
  if (std::find(run_.begin(), run_.end(), listed) != run_.end()) return false;
  const std::vector<std::string> before = All();
  if (picked_ == listed) picked_.clear();
  run_.insert(run_.begin(), listed);
  Store();
  return All() != before;
}

void CollectionTexts::Pick(std::string_view text) {
  const auto picked = std::find(run_.begin(), run_.end(), text);
  if (picked != run_.end()) {
    std::rotate(run_.begin(), picked, picked + 1);
    picked_.clear();
  } else {
    picked_ = text;
  }
}

void CollectionTexts::Remove(std::string_view text) {
  const std::string name = NameOf(text);
  const auto names_it = [&](const std::string& other) { return other == text || NameOf(other) == name; };
  std::erase_if(run_, names_it);
  if (names_it(picked_)) picked_.clear();
}

// Values that are not needed any more are emptied, so that nothing of a deleted text stays.
void CollectionTexts::Store() const {
  const std::size_t before = StoredCount(registry_);
  for (std::size_t i = 0; i < std::max(run_.size(), before); ++i) {
    registry_.SaveRegValue(kWebKey, ValueName(i + 1), i < run_.size() ? run_[i] : "");
  }
  registry_.SaveRegValue(kWebKey, kCount, std::to_string(run_.size()));
}

}  // namespace quenlar
