// The words that addresses are filtered by, and the patterns made of them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "state/page_host.h"
#include "state/settings.h"

namespace quenlar {

class FilterWords final : public AddressFilter {
 public:
  explicit FilterWords(const Settings& settings);
  ~FilterWords() override;

  std::vector<std::string> RemoveFilterWords;
  std::vector<std::string> ExtractFilterWords;
  std::string RemoveFilterPattern;
  std::string ExtractFilterPattern;
  bool keep_old_file = false;  // the filter file could not be read; the next save keeps it under another name

  // Rebuilds both patterns from the words. A word is a regular expression as it stands; "*" in it is [\s\S]*.
  // Where a pattern is no valid expression, the words that are none by themselves count as no match. Returns one
  // message for each list with such words: a sentence ending in " !".
  [[nodiscard]] std::vector<std::string> BuildFilterPatterns();

  // Called once, with a message, when a match has run into the step limit; then not again until the next build.
  void OnStepLimit(std::function<void(const std::string& message)> report);

  // The remove and the extract filter, by the switches of the settings. What takes more steps than the engine's limit
  // counts as no match for this address. Never pumps.
  [[nodiscard]] bool Keeps(std::string_view address) override;

 private:
  struct Engine;
  const Settings& settings_;
  std::unique_ptr<Engine> engine_;
};

}  // namespace quenlar
