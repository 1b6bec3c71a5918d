// The blanks of HTML: space, tab, line feed, form feed, carriage return.
#pragma once

#include <string_view>

namespace quenlar {

[[nodiscard]] constexpr bool IsHtmlBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r';
}

[[nodiscard]] constexpr std::string_view TrimHtmlBlanks(std::string_view text) {
  while (!text.empty() && IsHtmlBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsHtmlBlank(text.back())) text.remove_suffix(1);
  return text;
}

// Takes the first word off `text`; empty when there is none.
[[nodiscard]] constexpr std::string_view TakeHtmlWord(std::string_view& text) {
  text = TrimHtmlBlanks(text);
  std::size_t end = 0;
  while (end < text.size() && !IsHtmlBlank(text[end])) ++end;
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(end);
  return word;
}

}  // namespace quenlar
