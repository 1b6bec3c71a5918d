// The ANSI code page that the user's system is set to.
#pragma once

#include "platform/code_page.h"

namespace quenlar {

class Win32CodePage final : public CodePage {
 public:
  Win32CodePage();

  [[nodiscard]] std::string ToUtf8(std::string bytes) const override;
  [[nodiscard]] std::string FromUtf8(std::string text) const override;

  // The number of the code page, such as 1252.
  [[nodiscard]] unsigned number() const { return number_; }

 private:
  unsigned number_;
  bool exact_;  // the system has an option not to replace characters with similar ones
};

}  // namespace quenlar
