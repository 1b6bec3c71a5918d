// The system's ANSI code page, in which pages are read and files are written. Inside the program all text is UTF-8.
#pragma once

#include <string>

namespace quenlar {

class CodePage {
 public:
  virtual ~CodePage() = default;
  // Returns the text of any bytes. Every byte sequence converts. Pure ASCII comes back without a copy.
  [[nodiscard]] virtual std::string ToUtf8(std::string bytes) const = 0;
  // Returns the bytes of a text. A character that the code page does not have becomes "?", and so does malformed UTF-8.
  [[nodiscard]] virtual std::string FromUtf8(std::string text) const = 0;
};

}  // namespace quenlar
