// A regular expression that a user typed, run over short texts within a limit of steps.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/status.h"

namespace quenlar {

enum class FilterAnswer { kNoMatch, kMatch, kTooManySteps };

// The syntax is that of Perl. ASCII letter case is ignored. "^" and "$" match only at the ends of the text. The locale
// makes no difference.
class FilterExpression {
 public:
  // Returns kFormat, with the words of the regular-expression engine, when `pattern` is not an expression.
  [[nodiscard]] static Result<FilterExpression> Compile(const std::string& pattern);

  FilterExpression(FilterExpression&&) noexcept;
  FilterExpression& operator=(FilterExpression&&) noexcept;
  ~FilterExpression();

  // Returns whether the pattern occurs in `text` (UTF-8). The limit of steps grows with the product of both lengths. A
  // pattern that backtracks for ever reaches it and gives kTooManySteps.
  [[nodiscard]] FilterAnswer Find(std::string_view text) const;

 private:
  struct Compiled;
  explicit FilterExpression(std::unique_ptr<Compiled> compiled);
  std::unique_ptr<Compiled> compiled_;
};

}  // namespace quenlar
