// The system's ANSI code page, in which pages are read and files are written. Inside the program all text is UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace quenlar {

class CodePage {
 public:
  virtual ~CodePage() = default;
  // Every byte sequence converts; pure ASCII comes back without a copy.
  [[nodiscard]] virtual std::string ToUtf8(std::string bytes) const = 0;
  // Characters that the code page lacks become "?"; malformed UTF-8 as well.
  [[nodiscard]] virtual std::string FromUtf8(std::string text) const = 0;
};

}  // namespace quenlar
