// A regular expression that a user typed, run over short texts within a limit of steps.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/status.h"

namespace quenlar {

enum class FilterAnswer { kNoMatch, kMatch, kTooManySteps };

// Perl syntax, letter case ignored (ASCII), "^" and "$" at the ends of the text alone. No locale has a part in it.
class FilterExpression {
 public:
  // kFormat with the engine's words when the pattern is none.
  [[nodiscard]] static Result<FilterExpression> Compile(const std::string& pattern);

  FilterExpression(FilterExpression&&) noexcept;
  FilterExpression& operator=(FilterExpression&&) noexcept;
  ~FilterExpression();

  // Whether the pattern occurs in the text. The steps grow at most with the product of the lengths of pattern and text.
  [[nodiscard]] FilterAnswer Find(std::string_view text) const;

 private:
  struct Compiled;
  explicit FilterExpression(std::unique_ptr<Compiled> compiled);
  std::unique_ptr<Compiled> compiled_;
};

}  // namespace quenlar
