// Reads the lines of an answer's head as the system's HTTP client gives them.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace quenlar::win32 {

// Feeds every line to `head`, an AnswerHead or a WebHeadReader. The system may leave out the empty line that ends the
// head. False when there are no lines, when `head` refuses one, or when the head is not complete behind them.
template <typename Head>
[[nodiscard]] bool AddHeadLines(const std::optional<std::string>& lines, Head& head) {
  if (!lines) return false;
  for (std::size_t at = 0; at < lines->size();) {
    const std::size_t end = std::min(lines->find('\n', at), lines->size());
    if (!head.AddLine(std::string_view(*lines).substr(at, end - at))) return false;
    at = end + 1;
  }
  return head.complete() || (head.AddLine("") && head.complete());
}

}  // namespace quenlar::win32
