// The words by which addresses are filtered, and the patterns that are made of them.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "state/address_filter.h"
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

  // Rebuilds both patterns. Call it when a list has changed. A word is a regular expression as it stands, in which "*"
  // is any text. When a pattern is not a valid expression, its words are tried one by one, and those that are not valid
  // match nothing. Returns one message for each list with such words: a sentence that ends in " !".
  [[nodiscard]] std::vector<std::string> BuildFilterPatterns();

  // Sets a function that is called with a message when a match has reached the limit of steps. It is called once, and
  // once more after each BuildFilterPatterns.
  void OnStepLimit(std::function<void(const std::string& message)> report);

  // Returns false when the remove filter is on and matches, and when the extract filter is on and does not match. A
  // filter without words matches and removes nothing. A word that takes too many steps for this address does not match
  // it. Does not pump.
  [[nodiscard]] bool Keeps(std::string_view address) override;

  // What the filters keep and drop, as a text: another one where they may decide otherwise. Empty when both are off.
  [[nodiscard]] std::string Text() const;

 private:
  struct Engine;
  const Settings& settings_;
  std::unique_ptr<Engine> engine_;
};

}  // namespace quenlar
