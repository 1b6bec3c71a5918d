#include "settings/filter_words.h"

#include <iterator>
#include <optional>

#include "base/ascii.h"
#include "settings/filter_expression.h"

namespace quenlar {
namespace {

// Returns the word as a part of the pattern. One "*" at each end is dropped, and any other stands for any text.
std::string PatternOf(std::string_view word) {
  if (word.starts_with('*')) word.remove_prefix(1);
  if (word.ends_with('*')) word.remove_suffix(1);
  return "(" + ReplaceAll(word, "*", "[\\s\\S]*") + ")";
}

std::string JoinPattern(const std::vector<std::string>& words) {
  std::string pattern;
  for (const std::string& word : words) pattern.append(pattern.empty() ? "" : "|").append(PatternOf(word));
  return pattern;
}

// One of the two filters, compiled. All words are searched together in one expression. A word that takes too many
// steps, or is not a valid expression, must not keep the others from being found, so such words are searched apart.
class WordFilter {
 public:
  // A message about the words that are not valid expressions, or "".
  std::string Build(const std::string& name, const std::vector<std::string>& words, const std::string& pattern) {
    apart_.clear();
    together_.reset();
    words_ = words;
    divisible_ = words.size() <= kMostWordsDivided;
    if (words.empty()) return "";
    auto whole = FilterExpression::Compile(pattern);
    if (whole.ok()) {
      together_.emplace(whole.take());
      return "";
    }
    std::string message;
    std::erase_if(words_, [&](const std::string& word) {
      const auto alone = FilterExpression::Compile(PatternOf(word));
      if (!alone.ok() && message.empty()) {
        message = "The word \"" + word + "\" of the " + name + " filter is no valid pattern (" +
                  alone.status().message() + ") and matches nothing !";
      }
      return !alone.ok();
    });
    if (message.empty()) {
      words_.clear();
      return "The words of the " + name + " filter make no valid pattern (" + whole.status().message() +
             ") and match nothing !";
    }
    together_ = Join(words_);
    return message;
  }

  [[nodiscard]] FilterAnswer Ask(std::string_view address) {
    FilterAnswer answer = together_ ? together_->Find(address) : FilterAnswer::kNoMatch;
    while (answer == FilterAnswer::kTooManySteps && Divide(address)) {
      answer = together_ ? together_->Find(address) : FilterAnswer::kNoMatch;
    }
    for (std::size_t i = 0; i < apart_.size() && answer != FilterAnswer::kMatch; ++i) {
      const FilterAnswer alone = apart_[i].Find(address);
      if (alone != FilterAnswer::kNoMatch) answer = alone;
    }
    return answer;
  }

 private:
  static constexpr std::size_t kMostWordsDivided = 10'000;

  // The expression of all these words. Empty when there are no words, or too many for one expression.
  static std::optional<FilterExpression> Join(const std::vector<std::string>& words) {
    if (words.empty()) return std::nullopt;
    auto joined = FilterExpression::Compile(JoinPattern(words));
    if (!joined.ok()) return std::nullopt;
    return joined.take();
  }

  // Sets those words apart that take too many steps for this address. Returns false when there are none. When memory
  // runs out, nothing has changed.
  bool Divide(std::string_view address) {
    if (!divisible_) return false;
    std::vector<std::string> rest;
    std::vector<FilterExpression> apart;
    for (const std::string& word : words_) {
      auto alone = FilterExpression::Compile(PatternOf(word));
      if (alone.ok() && alone.value().Find(address) == FilterAnswer::kTooManySteps) {
        apart.push_back(alone.take());
      } else {
        rest.push_back(word);
      }
    }
    divisible_ = !apart.empty();
    if (!divisible_) return false;
    std::optional<FilterExpression> joined = Join(rest);
    apart_.reserve(apart_.size() + apart.size());
    words_ = std::move(rest);
    apart_.insert(apart_.end(), std::make_move_iterator(apart.begin()), std::make_move_iterator(apart.end()));
    together_ = std::move(joined);
    return true;
  }

  std::vector<std::string> words_;  // those of together_
  std::optional<FilterExpression> together_;
  std::vector<FilterExpression> apart_;
  bool divisible_ = true;
};

}  // namespace

struct FilterWords::Engine {
  WordFilter remove, extract;
  std::function<void(const std::string& message)> report;
  bool reported = false;

  bool Matches(WordFilter& filter, const char* name, std::string_view address) {
    const FilterAnswer answer = filter.Ask(address);
    if (answer == FilterAnswer::kTooManySteps && !reported && report) {
      reported = true;
      report(std::string("A word of the ") + name + " filter takes too many steps and counts as no match !");
    }
    return answer == FilterAnswer::kMatch;
  }
};

FilterWords::FilterWords(const Settings& settings) : settings_(settings), engine_(std::make_unique<Engine>()) {}
FilterWords::~FilterWords() = default;

std::vector<std::string> FilterWords::BuildFilterPatterns() {
  RemoveFilterPattern = JoinPattern(RemoveFilterWords);
  ExtractFilterPattern = JoinPattern(ExtractFilterWords);
  engine_->reported = false;
  std::vector<std::string> messages;
  for (std::string message : {engine_->remove.Build("remove", RemoveFilterWords, RemoveFilterPattern),
                              engine_->extract.Build("extract", ExtractFilterWords, ExtractFilterPattern)}) {
    if (!message.empty()) messages.push_back(std::move(message));
  }
  return messages;
}

void FilterWords::OnStepLimit(std::function<void(const std::string& message)> report) {
  engine_->report = std::move(report);
}

// A switch is on when it is exactly 1. Any other stored number is off, as the check boxes of the options dialog show
// it. Kept: FilterWordsTest.OnlyASwitchOfExactlyOneIsOn.
bool FilterWords::Keeps(std::string_view address) {
  if (settings_.RemoveFilterOn == 1 && !RemoveFilterWords.empty() &&
      engine_->Matches(engine_->remove, "remove", address)) {
    return false;
  }
  return settings_.ExtractFilterOn != 1 || ExtractFilterWords.empty() ||
         engine_->Matches(engine_->extract, "extract", address);
}

std::string FilterWords::Text() const {
  std::string text;
  if (settings_.RemoveFilterOn == 1 && !RemoveFilterWords.empty()) text += "remove " + RemoveFilterPattern + "\n";
  if (settings_.ExtractFilterOn == 1 && !ExtractFilterWords.empty()) text += "extract " + ExtractFilterPattern + "\n";
  return text;
}

}  // namespace quenlar
