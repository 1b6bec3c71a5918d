// The list of projects that the user has run, newest or most recently picked first, and its copy in the registry.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/registry.h"
#include "state/run_state.h"
#include "state/settings.h"

namespace quenlar {

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

  // DeleteProject's step on the list: removes the entry equal to `text`; without one the oldest entry leaves (meant).
  // Does not rewrite the key: the caller does so after it has filled its list again.
  void Remove(std::string_view text);

  // Deletes the key and writes the entries and the settings; Export and the two filter switches only with
  // `with_filters`.
  void WriteProjectKey(bool with_filters);

 private:
  Registry& registry_;
  Settings& settings_;
  std::vector<std::string> entries_;
};

}  // namespace quenlar
