// The list of projects that the user has run, newest or most recently picked first, and its copy in the registry.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "state/settings.h"

namespace quenlar {

// The entry of a text that names a project: a keyword without "_" gets the suffix of its language ("cars_en"), where
// the index names one.
[[nodiscard]] std::string ListedName(std::string_view text, bool is_keyword, int language);

class ProjectList {
 public:
  ProjectList(Registry& registry, Settings& settings) : registry_(registry), settings_(settings) {}

  [[nodiscard]] const std::vector<std::string>& entries() const { return entries_; }
  void Load(std::vector<std::string> entries) { entries_ = std::move(entries); }

  // AddCurrentProject: the text of the input box, with the language's suffix for a keyword without "_", goes to the
  // top unless it is there already; then the key is rewritten. True when the list changed.
  bool Add(std::string_view text, bool is_keyword);

  // PickProject: moves the picked entry to the top. The registry is not rewritten.
  void Pick(std::string_view text);

  // DeleteProject's step on the list: removes the entry equal to `text`. When there is none, the oldest entry leaves
  // instead. Does not rewrite the key: the caller does so after it has filled its list again.
  // Kept: ProjectListTest.DeletingAProjectThatIsNotInTheListRemovesTheOldestEntry.
  void Remove(std::string_view text);

  // Deletes the key and writes the entries and the settings anew. Export and the two filter switches are written only
  // with `with_filters`; DeleteProject goes without, so the next start reads them as 0, which is their first value.
  // Kept: MainWindowProjects.ADeleteLeavesExportAndTheFiltersOutOfTheRegistry.
  void WriteProjectKey(bool with_filters);

 private:
  Registry& registry_;
  Settings& settings_;
  std::vector<std::string> entries_;
};

}  // namespace quenlar
