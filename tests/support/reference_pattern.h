// Regular expressions run as they are written, by engines that others keep: what fast code is checked against.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace quenlar {

// One pattern, case-insensitive. Throws std::runtime_error where the engine gives up on an input.
class ReferencePattern {
 public:
  virtual ~ReferencePattern() = default;
  // The first match at or after `from`, a view into `text`; what stands before `from` is seen by a word boundary.
  [[nodiscard]] virtual std::optional<std::string_view> Find(std::string_view text, std::size_t from) const = 0;

  // All matches, each search going on where the last match ended. For patterns that match no empty text.
  [[nodiscard]] std::vector<std::string_view> FindAll(std::string_view text) const;
};

using MakeReferencePattern = std::function<std::unique_ptr<ReferencePattern>(const char* pattern)>;

// A backtracking engine; gives up on long hostile texts.
[[nodiscard]] std::unique_ptr<ReferencePattern> BoostPattern(const char* pattern);

}  // namespace quenlar
